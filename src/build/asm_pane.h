// The ASM pane's text, shown in blocks like the output pane's. UI thread only.
#pragma once

// Gives a listing's disassembly as new heap text that the caller frees, or null. Installed by whoever has one; without
// it the pane shows the listing alone.
using AsmRenderer = wchar_t* (*)(const wchar_t* listing);
void AsmPaneSetRenderer(AsmRenderer renderer);

void AsmPaneShowNext();  // on TIMER_OUTPUT
bool AsmPaneIsEmpty();   // nothing waits to be shown
