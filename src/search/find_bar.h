// The search bar above the editor: finds while the user types, shows every match in sight and counts them all. UI thread
// only.
#pragma once

#include "base/events.h"

#include <windows.h>

// Opens the bar, or gives the open one the keyboard. A selection within one line becomes the text to find.
void FindBarShow();
// Closes it. `back` puts the caret back to where it was when the bar was opened.
void FindBarClose(bool back);

HWND FindBarWindow();  // null while closed
int FindBarHeight();   // pixels; 0 while closed
void FindBarApplyTheme();
// Handles a message for the bar, and Esc in the editor, which closes it. True when it was handled.
bool FindBarIsMessage(MSG* message);

// The main window is left, and comes back. The bar that had the keyboard gets it again, because what the user goes on
// typing would otherwise replace the match in the document.
void FindBarOnLeft();
void FindBarOnEntered();

// --- What happens to the editors. These do nothing while the bar is closed.
void FindBarOnActivated(DocumentId document);       // another document is shown; 0: none
void FindBarOnView(HWND editor, int updated);       // SCN_UPDATEUI
void FindBarOnModified(HWND editor, int modified);  // SCN_MODIFIED
void FindBarOnTimer();                              // TIMER_FIND: goes on with searching and counting
