// Steps that follow the flow of control, by single steps and breakpoints of their own. The decisions are in
// follow_rules.h. UI thread only.
#pragma once

#include "debugger/debug_state.h"

// Begins a step and resumes the program; its stop arrives as an event. False: the program is not stopped, no step is
// possible from where it stands, or the table of breakpoints is full.
bool DebugFollowStep(DebuggerState* state, FollowKind kind);

// --- For the handling of events (debug_events_win.cpp)
enum class FollowEvent : std::uint8_t {
    NotOurs,  // the event means nothing to a step
    Resumed,  // the step goes on, and the event is continued
    Stop,     // the step ends here; the place of the stop is set
};
// A single-step event of a thread. The user's breakpoints are armed again already.
FollowEvent DebugFollowOnSingleStep(DebuggerState* state, std::uint32_t threadId);
// A thread has hit the breakpoint with that index of the table. NotOurs, unless it is one of a step.
FollowEvent DebugFollowOnHit(DebuggerState* state, std::uint32_t threadId, int index);
// Keeps a single step going over an event that is about to be continued.
void DebugFollowKeep(const DebuggerState& state, std::uint32_t threadId);
// Makes the step under way end after the present instruction. False: there is none, or it waits for a call to return.
bool DebugFollowPause(DebuggerState* state);
// At every stop: removes the step and its breakpoints.
void DebugFollowEnd(DebuggerState* state);
