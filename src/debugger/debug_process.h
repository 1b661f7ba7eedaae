// What only the parts of the session need from each other: raw memory, threads, events. UI thread only.
#pragma once

#include "debugger/debug_session.h"

inline constexpr DWORD kContinueStatus = 0x00010002;  // "continue", for every event and every exception

inline bool DebugIsActive(const DebuggerState* state) { return state != nullptr && state->active != 0; }

// Bytes as they stand in the program, breakpoints included; the whole count or false.
bool DebugReadRaw(const DebuggerState& state, std::uint64_t address, void* out, std::size_t count);
bool DebugWriteRaw(const DebuggerState& state, std::uint64_t address, const void* bytes, std::size_t count);

// Handle of a thread of the program, owned by the state, or null.
HANDLE DebugThreadHandle(const DebuggerState& state, std::uint32_t threadId);
// Sets the instruction pointer, and with `trapOnce` the trap flag: a single-step event follows the next instruction.
bool DebugSetIp(const DebuggerState& state, std::uint32_t threadId, std::uint64_t address, bool trapOnce);
bool DebugGetIp(const DebuggerState& state, std::uint32_t threadId, std::uint64_t* address);
// True when the stopped thread's next instruction is the one at `address`. After a pause in a call of the system, that is
// not the one at `currentAddress`.
bool DebugStandsOn(const DebuggerState& state, std::uint64_t address);

// Writes the trap byte of an entry that is not armed.
bool DebugArm(DebuggerState* state, DebugBreakpoint* breakpoint);
// Removes an entry from the table; later ones move down. Its byte is not put back.
void DebugForgetBreakpoint(DebuggerState* state, int index);
void DebugForgetTemporaries(DebuggerState* state);

// Continues the pending event.
bool DebugResume(DebuggerState* state);
// Resumes the program. When the stopped thread stands on a breakpoint, the single-step event after that instruction arms it
// again.
bool DebugStepOffAndResume(DebuggerState* state);

// Takes over the handles that an event carries, or closes them; the state learns of image and threads.
void DebugNoteEvent(DebuggerState* state, const DEBUG_EVENT& event);
// A thread has ended and its event was continued: closes its handle.
void DebugCloseThread(DebuggerState* state, std::uint32_t threadId);
// Closes the handles of an event and continues it. True: it was the end of the state's process.
bool DebugDropEvent(DebuggerState* state, const DEBUG_EVENT& event);
// The program has stopped or ends: says how many of its reports were left out. From now on reports are shown again.
void DebugSayLeftOut(DebuggerState* state);
// Closes every handle and frees the map; the session is over and the state inactive.
void DebugEndSession(DebuggerState* state);

// Overwrites the program's own trap bytes where the map asks for it.
void DebugNeutralizeNativeTraps(DebuggerState* state);
