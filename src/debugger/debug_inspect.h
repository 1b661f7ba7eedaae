// Registers, stack, memory and values of a stopped program. Texts are new heap blocks that the caller frees; they are
// null without a session. UI thread only.
#pragma once

#include "debugger/debug_state.h"
#include "debugger/program_places.h"
#include "debugger/registers.h"
#include "debugger/watch_value.h"

#include <string>
#include <vector>

// The full context of the main thread (flags 0x10001F).
bool DebugGetContext(const DebuggerState* state, CONTEXT* context);
// Registers of a thread, in 64-bit and 32-bit programs. `threadId` 0: the thread of the last stop, or the main one
// before any stop.
bool DebugGetRegisters(const DebuggerState* state, std::uint32_t threadId, RegisterSet* registers);
// Writes a whole general register (RAX, EAX; any letter case) of a stopped thread. False: the program is not stopped,
// it has no register of that name, or the value does not fit the 32 bits of a 32-bit program.
bool DebugSetRegister(const DebuggerState* state, std::uint32_t threadId, const wchar_t* name, std::uint64_t value);

wchar_t* DebugFormatRegisters(const DebuggerState* state);
wchar_t* DebugWalkStack(const DebuggerState* state);
wchar_t* DebugHexDump(const DebuggerState* state, std::uint64_t address, int count);  // 1..4096 bytes, else null
wchar_t* DebugDisassembleAt(const DebuggerState* state, std::uint64_t address);
std::uint64_t DebugEvaluate(const DebuggerState* state, const char* expression);
// Kind 0: LONG, 1: QUAD, 2: text, 3: DOUBLE; any other: "<unknown kind>".
wchar_t* DebugWatchValue(const DebuggerState* state, std::uint64_t address, int kind);
// The same as people see it: with the reason when it cannot be read (IsUnreadableWatch). Empty without a session.
std::wstring DebugShownValue(const DebuggerState* state, std::uint64_t address, WatchKind kind);

// The frames of a thread, in 64-bit and 32-bit programs; the innermost first, at most 32 (FramesWithLines).
std::vector<DebugFrame> DebugFrames(const DebuggerState* state, std::uint32_t threadId);
// File id and line that the map gives for an address in the executable's image; false for any other address.
bool DebugLineAt(const DebuggerState* state, std::uint64_t address, std::uint32_t* fileId, std::uint32_t* line);
// Address in the program's own code where a thread is: its instruction pointer or, inside a system call, the nearest
// return address on its stack that belongs to a line. False: there is none.
bool DebugPlaceInProgram(const DebuggerState* state, std::uint32_t threadId, std::uint64_t* address);
// For a stop outside the lines of the program, as in a library: the address in the program's code to which the thread
// returns. False: the stop is on a line, or no such address is found.
bool DebugCallerOfLibrary(const DebuggerState* state, std::uint64_t* returnAddress);
// What an exception event means, with the line of the source (ExceptionText). `passed`: the program's handlers get it.
std::wstring DebugExceptionText(const DebuggerState& state, const DEBUG_EVENT& event, bool passed);
