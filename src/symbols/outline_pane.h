// The outline pane: the symbols of the active document in a list, with a field that filters them. UI thread only.
#pragma once

#include <windows.h>

#include "base/events.h"

HWND OutlinePaneCreate(HWND parent, int controlId);  // null on failure
void OutlinePaneApplyTheme();
void OutlinePaneFocus();

// --- What the pane follows; each costs nothing while it is not shown.
void OutlineOnSymbols(DocumentId document);    // the document has got a new table
void OutlineOnActivated(DocumentId document);  // another document is shown
void OutlineOnCaret();                         // the caret has moved, some time ago
