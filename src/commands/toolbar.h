// The toolbar. UI thread only.
#pragma once

#include "commands/command_table.h"

#include <windows.h>

// Null when the window cannot be made.
HWND ToolbarCreate(HWND parent, int controlId);
// Applies the pictures, font and colours of the current theme and DPI. Called after creation and after each change.
void ToolbarApplyTheme();
void ToolbarDestroyImages();  // when the window is destroyed

void ToolbarUpdateCompiler();  // sets the compiler button's text
void ToolbarUpdateAi();        // sets the check mark of the AI pane's button
void ToolbarUpdateAiDo();      // shows the buttons of an AI replacement while one waits
// Shows the menu of the compiler button at a point of the screen, above it.
void ToolbarShowCompilersAt(POINT screen);
bool ToolbarShowMenuOf(int command);  // of a button that opens one; false: it opens none
void ToolbarShowMore();               // shows the menu of the buttons without room, if any
void ToolbarApplyState(const CommandView& view);

// Pixels between the top of the strip and the toolbar window, so that the buttons are in the middle. They are measured,
// because versions of the control differ in the height of a button whatever TB_SETBUTTONSIZE says.
int ToolbarInset();
int ToolbarHeight();  // pixels at the current DPI
// The main window's WM_NOTIFY, from the bar and its tooltips. True when handled; `result` is then the answer.
bool ToolbarHandleNotify(const NMHDR& header, LRESULT* result);
