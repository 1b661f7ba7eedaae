// The dark theme of the system's own controls: frames, scroll bars, buttons, boxes and arrows. In the light theme the
// system draws all of them. UI thread only.
#pragma once

#include <windows.h>

// Gives a control the looks of the present theme. Called once after its creation and after each change of the theme. A
// control of another class keeps its looks.
void ControlApplyTheme(HWND control);
// Asks the system for scroll bars of the present theme. Older systems have no dark ones and keep the light ones.
// `light` names the looks in the light theme, those with which the window was created; null means the system's own.
void ScrollBarsApplyTheme(HWND window, const wchar_t* light = nullptr);
// Null is no tooltip.
void TooltipApplyTheme(HWND tooltip);
