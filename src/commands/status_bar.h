// The status bar: message, build progress, position, selection, encoding, line ending, compiler. The texts are the
// control's own (so that other programs can read them); the painting follows the theme. UI thread only.
#pragma once

#include <windows.h>

HWND StatusBarCreate(HWND parent, int controlId);
int StatusBarHeight();            // pixels at the current DPI
void StatusBarLayout(int width);  // distributes the parts
void StatusBarApplyTheme();       // font and colours
// Text of the first part ("Building...", "Build stopped"). Stays until the next one.
void StatusBarSetText(const wchar_t* text);
// Time and moving mark of what runs (BuildProgressText); empty: nothing runs.
void StatusBarSetProgress(const wchar_t* text);
// Line, column, selection, encoding, line ending of the active editor.
void StatusBarUpdatePosition();
void StatusBarUpdateCompiler();
