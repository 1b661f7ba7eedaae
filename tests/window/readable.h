// Measures over pictures of the screen whether the texts of a window can be read.
#pragma once

#include <string>

#include "harness.h"

// The height of a line of text in pixels: at 200 %, where the strokes of letters have their full colour, and at 100 %.
inline constexpr int kScaledLine = 34, kPlainLine = 17;

// Each text that can be used has a contrast of 4.5 to its ground; at 100 % of a stroke that is one pixel wide there is
// at least about three quarters of it. Returns how many words were found.
int ExpectTextsReadable(const Editor& editor, const std::string& where, HWND window, int line = kPlainLine);

// The visible window of the program with this class, which no other window owns as a child; null after a failure.
HWND AwaitPopup(const Editor& editor, const std::wstring& kind);
HWND AwaitMenuWindow(const Editor& editor);
