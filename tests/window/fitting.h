// Whether the controls of a window have room: for their texts, and beside each other.
#pragma once

#include "window/harness.h"

#include <string>
#include <vector>

// The font of dialogs, and the system's for messages, which the settings have.
enum class Font { Dialog, Message };

// The size of a text in lines of at most `width`; 0: in one line.
SIZE SizeOf(const std::wstring& text, Font font, UINT format, LONG width = 0, int dpi = 96);
// No part of a label's or a button's text lies beyond its window. Labels that end with dots shorten themselves.
void ExpectWhole(const std::string& where, HWND control, const std::wstring& text, Font font, int dpi = 96);
std::vector<HWND> VisibleChildren(HWND parent);  // also those of its children
// The visible children of a window lie in it, and none lies over another. Labels without a text show nothing, and the
// bars between panes reach over their edges to be grabbed.
void ExpectApart(const std::string& where, const Editor& editor, HWND parent);
