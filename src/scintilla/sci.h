// Messages to a Scintilla window. Everyone talks to an editor through these. UI thread.
#pragma once

#include <windows.h>

#include <Scintilla.h>

#include <cstddef>
#include <string>
#include <string_view>

// From SciAttach to SciDetach, which comes no later than the window's end, SciSend takes Scintilla's own messages straight
// to the editor: the way through a subclassed window costs several system calls a message, and a key needs dozens.
void SciAttach(HWND editor);
void SciDetach(HWND editor);

// SendMessageW, or 0 without sending when `editor` is empty.
LRESULT SciSend(HWND editor, UINT message, WPARAM wParam = 0, LPARAM lParam = 0);

// Sends `text` as UTF-8, cut to 511 bytes; nothing when `editor` or `text` is missing.
void SciSendString(HWND editor, UINT message, WPARAM wParam, const wchar_t* text);
