// The output pane (Rich Edit, read-only), the diagnostics in it and their list. UI thread only.
#pragma once

#include <windows.h>

void OutputPaneInit(HWND pane);
// Appends at once, line by line, coloured by severity, diagnostics recorded; then scrolls to the end. For short
// texts; what a build prints is queued and applied in batches (BuildOnOutput).
void OutputPaneAppend(const wchar_t* text, COLORREF colour);
void OutputPaneClear();
void OutputPaneScrollToEnd();
void OutputPaneApplyFont();
// Font, colours and margins of any of the Rich Edit panes (output, ASM, chat) from the settings and theme.
void PaneApplyFontAndTheme(HWND richEdit);
// The diagnostic on the pane's current line, if it is one (double-click, Enter).
void OutputPaneNavigateError();

void CompilerClearErrors();
void CompilerNavigateToError(int index);
void CompilerNextError();
void CompilerPrevError();

// Error list (list view); null when it cannot be made. Follows the records by itself.
HWND ErrorListCreate(HWND parent, int controlId);
void ErrorListRefresh();
void ErrorListShowCurrent();  // selects the current record's row
bool ErrorListHandleNotify(const NMHDR& header);
