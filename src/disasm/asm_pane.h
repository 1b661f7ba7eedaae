// Shows text in the ASM pane, in blocks as in the output pane. UI thread only.
#pragma once

#include "disasm/asm_feed.h"

#include <windows.h>

#include <string>

void AsmPaneInit(HWND pane);  // its keys and menu, and its name for screen readers
// AsmPaneLoad fills the pane only while it is shown.
void AsmPaneClear();
void AsmPaneLoad(const wchar_t* source, const wchar_t* listing);
void AsmPaneApplyTheme();  // theme, font and scaling; a long text is shown again
void AsmPaneFillAgain();   // the pane is shown: what it showed before, when it was emptied while it was hidden
void AsmPaneShowNext();    // on TIMER_OUTPUT
bool AsmPaneIsEmpty();     // no text waits to be shown, and no feed is working
void AsmPaneShutdown();

int AsmPaneLeastWidth();     // in which a line without its bytes is not cut, in pixels
void AsmPaneOnPlaced();      // the pane may have another width
void AsmPaneOnPanesTimer();  // TIMER_PANES: shows or leaves out the bytes, as there is room
