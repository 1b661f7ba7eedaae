// The switch to the tab that was used before, with a list of the tabs while Ctrl is held. UI thread only.
#pragma once

#include <windows.h>

// Goes to the tab that was shown before the active one, or with `back` to the one that was not shown for the longest
// time. While Ctrl is held each further call goes on in that order, and the tab is shown when Ctrl is released.
void TabSwitch(bool back);
// True when the message is a key for a switch that is under way, which then has handled it.
bool TabSwitchIsMessage(const MSG& message);
void TabSwitchOnTimer();  // TIMER_TAB_SWITCH
