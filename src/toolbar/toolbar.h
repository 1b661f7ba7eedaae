// Toolbar, status bar and the state of every command. UI thread only.
#pragma once

#include <windows.h>

HWND ToolbarCreate(HWND parent, int controlId);
void ToolbarUpdateAi();
void ToolbarApplyTheme();      // colours and icons of the current theme and DPI
bool ToolbarHandleNotify(const NMHDR& header, LRESULT* result);
int ToolbarHeight();           // pixels

HWND StatusBarCreate(HWND parent, int controlId);
void StatusBarLayout(int width);
bool StatusBarHandleDrawItem(const DRAWITEMSTRUCT& item);
void StatusBarSetProgress(const wchar_t* text);
