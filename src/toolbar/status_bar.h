// The status bar: message, build progress, position, selection, encoding, line ending, compiler. The texts are the
// control's own (so that other programs can read them); the painting follows the theme. UI thread only.
#pragma once

#include <windows.h>

HWND StatusBarCreate(HWND parent, int controlId);
int StatusBarHeight();            // pixels at the current DPI
void StatusBarLayout(int width);  // distributes the parts
void StatusBarApplyTheme();       // font and colours
void StatusBarSetProgress(const wchar_t* text);
void StatusBarUpdateCompiler();
