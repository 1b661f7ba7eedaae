// The clipboard. UI thread only.
#pragma once

#include <windows.h>

#include <string>

// Replaces the content of the clipboard by the text. `owner` becomes the clipboard's owner. A failure is written to the
// log; the clipboard may then be empty.
void ClipboardPutText(HWND owner, const std::wstring& text);
