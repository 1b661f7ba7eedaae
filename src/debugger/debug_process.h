// What the engine's files share with each other and with nobody else: raw memory, threads, events. UI thread only.
#pragma once

#include "debugger/debug_session.h"
#include "debugger/stack_walk.h"

// DBG_CONTINUE, for every event, and for every exception that is not passed to the program.
inline constexpr DWORD kContinueStatus = 0x00010002;
inline constexpr DWORD kPassStatus = 0x80010001;  // DBG_EXCEPTION_NOT_HANDLED

inline bool DebugIsActive(const DebuggerState* state) { return state != nullptr && state->active != 0; }

// Bytes as they stand in the program, trap bytes of breakpoints included. False unless the whole count was moved.
bool DebugReadRaw(const DebuggerState& state, std::uint64_t address, void* out, std::size_t count);
bool DebugWriteRaw(const DebuggerState& state, std::uint64_t address, const void* bytes, std::size_t count);

// Handle of a thread of the program, owned by the state, or null.
HANDLE DebugThreadHandle(const DebuggerState& state, std::uint32_t threadId);
// Sets the instruction pointer. `trapOnce` also sets the trap flag: a single-step event follows the next instruction.
bool DebugSetIp(const DebuggerState& state, std::uint32_t threadId, std::uint64_t address, bool trapOnce);
bool DebugGetIp(const DebuggerState& state, std::uint32_t threadId, std::uint64_t* address);
// True when the stopped thread's next instruction is the one at `address`. After a pause inside a system call, it is
// not the one at `currentAddress`.
bool DebugStandsOn(const DebuggerState& state, std::uint64_t address);

// Writes the trap byte of an entry that is not armed. False: the memory cannot be written.
bool DebugArm(DebuggerState* state, DebugBreakpoint* breakpoint);
// Removes an entry from the table; later ones move down. Its byte is not put back.
void DebugForgetBreakpoint(DebuggerState* state, int index);
// Removes the entries of steps and puts their bytes back.
void DebugForgetTemporaries(DebuggerState* state);

// True when a breakpoint was lately removed at the address.
bool DebugWasRemoved(const DebuggerState& state, std::uint64_t address);

// Continues the pending event. False, and the program stays stopped: it cannot be continued, or an instruction pointer
// is owed and cannot be written.
bool DebugResume(DebuggerState* state);
// Sets the instruction pointer as DebugSetIp does. When that fails, it is owed: the output pane says so, and no resume
// succeeds before it is written. Otherwise the thread would run on inside an instruction.
bool DebugMoveIp(DebuggerState* state, std::uint32_t threadId, std::uint64_t address);

// --- Stepping off breakpoints (debug_step_off_win.cpp)
// Arms the user's breakpoints and resumes the program. A thread that stands on one runs its instruction first, while
// the others are suspended. False: see DebugResume.
bool DebugStepOffAndResume(DebuggerState* state);
// The thread has run the instruction: arms all breakpoints. The next thread that stands on one is next, or all run.
void DebugFinishStepOff(DebuggerState* state);
// Gives up stepping off: the other threads are released, the trap after the instruction goes; the breakpoint stays
// disarmed.
void DebugAbandonStepOff(DebuggerState* state);
// The instruction has failed and will run again: it is stepped off as before.
void DebugRepeatStepOff(DebuggerState* state, std::uint32_t threadId);
// Notes that a thread has stopped at the breakpoint there.
void DebugNoteStoppedAt(DebuggerState* state, std::uint32_t threadId, std::uint64_t address);
// True when the thread is suspended for the step of another.
bool DebugIsHeld(const DebuggerState& state, std::uint32_t threadId);
// Releases the other threads when the instruction takes too long, because it may wait for one of them (a system call).
void DebugCheckStepOffTime(DebuggerState* state);
// A thread was created, which must wait as the others do.
void DebugHoldNewThread(DebuggerState* state, std::uint32_t threadId);
inline bool DebugIsSteppingOff(const DebuggerState& state) { return state.stepOff.threadId != 0; }

// Stores the handles of process and threads that an event carries, closes its file handle, and notes the image's base
// and size.
void DebugNoteEvent(DebuggerState* state, const DEBUG_EVENT& event);
// Closes the handle of a thread that has ended and whose event was continued.
void DebugCloseThread(DebuggerState* state, std::uint32_t threadId);
// Continues an event that means nothing any more and closes its file handle; notes process and threads as
// DebugNoteEvent does. True: it was the end of the state's process.
bool DebugDropEvent(DebuggerState* state, const DEBUG_EVENT& event);
// Continues an event of a program that has been left behind.
void DebugDropForeignEvent(const DEBUG_EVENT& event);
// At a stop or the end: shows the last of the program's reports, and how many before them were left out. Later reports
// are shown at once again.
void DebugSayLeftOut(DebuggerState* state);
// Closes every handle and frees the map; the session is over and the state inactive.
void DebugEndSession(DebuggerState* state);

// Overwrites the program's own trap bytes where the map asks for it.
void DebugNeutralizeNativeTraps(DebuggerState* state);
