// Find and replace in the active document. UI thread only.
#pragma once

#include "base/events.h"

#include <windows.h>

#include <cstddef>

// Opens the find dialog or activates the open one, with or without the controls for replacing. A selection within one
// line becomes the text to find; a longer one becomes the range to search.
void FindDialogShow(HWND owner, bool replace);
// Handles a message for the open find dialog. True when it was handled; the message loop then leaves it alone.
bool FindDialogIsMessage(MSG* message);

// Selects the next or previous match of the last search text, and continues at the other end of the document. Before
// the first search the selection is searched for, or else the newest text of the history; without these the dialog
// opens.
void FindNext(bool forward);

// Follows the document that is searched "in selection".
void FindOnEdit(DocumentId document, std::ptrdiff_t position, std::ptrdiff_t inserted, std::ptrdiff_t removed);

// Takes away the marks of Mark All in the active document.
void FindMarksClear();
