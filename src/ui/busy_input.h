// The messages of a command that takes long and keeps the window waiting: windows are painted, while keys and clicks are
// dropped, because they are meant for what was there before. UI thread only.
#pragma once

struct BusyInput {
    bool stop = false;   // Esc or Ctrl+Break was pressed, or the window is to be closed
    bool close = false;  // the user wants to close the main window
};

// Drops the keys and clicks that wait, and tells what the user wanted by them. Whoever gets `close` must post WM_CLOSE to
// the main window after the work.
BusyInput TakeBusyInput();

// Also handles the messages that other threads have sent.
void PaintWhileBusy();
