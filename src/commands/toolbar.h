// The toolbar. UI thread only.
#pragma once

#include "commands/command_table.h"

#include <windows.h>

HWND ToolbarCreate(HWND parent, int controlId);
// Pictures, font and colours of the current theme and DPI; once after creation and after each change.
void ToolbarApplyTheme();
void ToolbarDestroyImages();  // at the window's end

void ToolbarUpdateCompiler();  // the compiler button's text
void ToolbarUpdateAi();        // the sidebar button's check mark
void ToolbarShowMore();        // the menu of the buttons without room; nothing when all are shown
void ToolbarApplyState(const CommandView& view);

// Pixels above the buttons that put them in the middle of the bar: versions of the control differ in how high they make
// a button, whatever they are told.
int ToolbarInset();
int ToolbarHeight();  // pixels at the current DPI
// WM_NOTIFY of the bar and of its tooltips; true when handled, `result` then holds the answer.
bool ToolbarHandleNotify(const NMHDR& header, LRESULT* result);
