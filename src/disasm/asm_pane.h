// The ASM pane's text, shown in blocks like the output pane's. UI thread only.
#pragma once

#include "disasm/asm_feed.h"

#include <string>

// The pane is filled only while it is shown.
void AsmPaneClear();
void AsmPaneLoad(const wchar_t* source, const wchar_t* listing);
void AsmPaneShowNext();  // on TIMER_OUTPUT
bool AsmPaneIsEmpty();   // nothing waits to be shown, and nothing is being made
void AsmPaneShutdown();
