// TIMER_OUTPUT of the main window, which runs while text waits to be shown in a pane. UI thread only.
#pragma once

void ShowTimerStart();
void ShowTimerStop();
