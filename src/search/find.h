// Find and replace in the active document. UI thread only.
#pragma once

#include <windows.h>

// Opens the find dialog, or brings the open one to the front, with or without its replacing half. A selection within
// one line becomes the text to find; a longer one becomes the range to search.
void FindDialogShow(HWND owner, bool replace);
// True when the message belonged to the open find dialog; the message loop asks before anything else.
bool FindDialogIsMessage(MSG* message);

// Selects the next or previous match of what was last searched for, going on at the other end of the document when
// there is none. With nothing searched for yet, the selection is taken; without one, the dialog opens.
void FindNext(bool forward);
