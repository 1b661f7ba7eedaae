// The start page: what can be opened, in the place of the editor while no document is open, and below the empty document
// of a start without a file until something is typed. UI thread only.
#pragma once

#include "base/events.h"

#include <windows.h>

void StartPageBegin();                        // start-up is complete: from now on the page may be shown
void StartPageUpdate();                       // shows or hides it, after a document came, went or was changed
int StartPageBelow();                         // for LayoutInput
void StartPageApplyTheme();                   // after a change of theme or DPI
bool StartPageTakeFocus();                    // when no document can; false: the page is not shown
bool StartPageIsMessage(const MSG& message);  // true: a key for the page, which it has handled
void OpenSample(int command);                 // a command from IDM_SAMPLE_FIRST
