// The ASM pane's text, shown in blocks like the output pane's. UI thread only.
#pragma once

#include "build/asm_feed.h"

#include <string>

// Adds to what the pane shows, on the feed's thread: the listing's disassembly (`listing` is null when there is none)
// and the program's. Installed at start-up by whoever has them; without it the pane shows the listing alone.
using AsmRenderer = void (*)(AsmFeed& feed, const AsmRequest& request, const std::string* listing);
void AsmPaneSetRenderer(AsmRenderer renderer);
AsmRenderer AsmPaneRenderer();

void AsmPaneShowNext();  // on TIMER_OUTPUT
bool AsmPaneIsEmpty();   // nothing waits to be shown, and nothing is being made
void AsmPaneShutdown();
