// An edit field over a cell of a list: Enter takes its text, Escape drops it. There is at most one at a time. UI thread
// only.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

// Takes the text and returns an empty text, or returns the reason why it cannot be taken.
using InlineCommit = std::function<std::wstring(const std::wstring& text)>;

// Opens the field. `cell` is in client coordinates of the list. An unchanged text is not passed to `commit`, because a
// rounded number would be written back. With `append`, `text` is the first character that the user typed; it is passed
// even when nothing follows, and the caret is after it. A text that `commit` refuses stays in the field, and the reason
// is shown in the status bar.
void InlineEditBegin(HWND list, const RECT& cell, const std::wstring& text, bool append, InlineCommit commit);
// Closes the field and drops its text. The list gets the focus if the field had it.
void InlineEditCancel();
// The answer to WM_CTLCOLOREDIT of the list.
LRESULT InlineEditColours(HDC dc);
