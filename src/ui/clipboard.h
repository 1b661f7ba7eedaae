// The clipboard of the desktop. UI thread only.
#pragma once

#include <windows.h>

#include <string>

// Puts a text in place of whatever is there; the window becomes its owner. A failure is logged and leaves nothing behind.
void ClipboardPutText(HWND owner, const std::wstring& text);
