// Waiting for the debugged program inside a command. UI thread only.
#pragma once

#include "debugger/debug_session.h"
#include "debugui/debug_flow.h"

#include <windows.h>

// While one exists, `flow->waiting` is true, and the engine calls the hook (null: none) between its waits.
class DebugWaitScope {
public:
    DebugWaitScope(DebugFlow* flow, DebugWaitHook hook);
    ~DebugWaitScope();
    DebugWaitScope(const DebugWaitScope&) = delete;
    DebugWaitScope& operator=(const DebugWaitScope&) = delete;

private:
    DebugFlow* flow_;
    DebugWaitHook previous_;
};

// Waits for the next stop, or for the first line while a start still awaits it. `milliseconds` is the time-out for one
// event; `limit` is that of the whole wait, in milliseconds, however many events come. Returns a DebugWait.
int DebugWaitInPlace(DebugFlow* flow, DWORD milliseconds, ULONGLONG limit);

// The hook of a start (DebugWaitHook). While a program starts, the window paints itself, takes text and obeys Stop. It
// handles no other message, because that could lead back into the session that is being set up. Other keys are posted
// as MSG_LATE_KEY when the wait is over.
bool DebugPumpStart();
