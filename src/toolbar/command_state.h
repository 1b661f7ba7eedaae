// The current state of the program as the command table sees it, and what menus and tooltips make of it. UI thread.
#pragma once

#include "toolbar/command_table.h"

#include <windows.h>

#include <string>
#include <string_view>

CommandView CurrentCommandView();
// The pane, line or view other than an editor that has the keyboard and takes the Edit commands, or null.
HWND FocusedTextField();
// Enabled and checked of every item of a menu that is about to open.
void MenuApplyState(HMENU menu, const CommandView& view);

// "Save A&ll\tCtrl+Shift+S" -> "Save All (Ctrl+Shift+S)". Dots at the end go.
std::wstring CommandTipFromMenuText(std::wstring_view menuText);

// The system's message font at the current DPI; owned here, valid until the next change of DPI.
HFONT UiFont();
void UiFontReset();

// Fills an area with one colour.
void FillArea(HDC dc, const RECT& area, COLORREF colour);
