// An edit field over a cell of a list: Enter takes its text, Escape drops it. One at a time. Knows not what is edited.
// UI thread only.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

// Returns why the text cannot be taken, or an empty text when it has been.
using InlineCommit = std::function<std::wstring(const std::wstring& text)>;

// `cell` in client coordinates of the list. A text that was not changed is not taken: a rounded number would be written
// back. `append`: the text is the user's first character, and the caret stands after it. What cannot be taken stays in
// the field, its reason in the status bar.
void InlineEditBegin(HWND list, const RECT& cell, const std::wstring& text, bool append, InlineCommit commit);
void InlineEditCancel();
// Answers WM_CTLCOLOREDIT of the list.
LRESULT InlineEditColours(HDC dc);
