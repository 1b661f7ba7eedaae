// The user's breakpoints, kept per file for the whole run: across sessions, rebuilds, and closing a file. In an open file
// marker 2 says where one is and moves with the text; this list adds what a marker cannot hold. UI thread only.
#pragma once

#include "debugger/debug_state.h"

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

enum class BreakpointStatus : std::uint8_t {
    Idle,      // no session runs
    Planted,   // in the program
    NoCode,    // refused: its line has no code, or its file is not part of the program; `reason` says which
    Refused,   // refused for another reason: table full, memory not writable
    Disabled,  // switched off by the user
};

struct UserBreakpoint {
    std::wstring path;      // full path of the file; empty for an untitled document
    int line = 0;           // from 1
    std::string condition;  // UTF-8, at most 63 bytes, empty: none
    bool enabled = true;
    BreakpointStatus status = BreakpointStatus::Idle;
    std::wstring reason;        // for the tooltip
    std::uint64_t address = 0;  // while planted
    std::uint64_t shares = 0;   // refused, as another line's breakpoint stands at this address
    std::uint32_t hits = 0;     // in this session
    HWND editor = nullptr;      // while the file is open
    int handle = -1;            // of its marker
};

// Every breakpoint, by file and line, brought up to date with the markers of the open files first. The reference holds
// until the next call into this header.
const std::vector<UserBreakpoint>& BreakpointList();

// F9, and a click into the margin: `line` from 1. Plants or removes it in a running session.
void BreakpointToggle(HWND editor, int line);
void BreakpointRemove(std::size_t index);  // index into BreakpointList()
void BreakpointRemoveAll();
void BreakpointEnable(std::size_t index, bool enabled);
void BreakpointSetCondition(std::size_t index, const std::string& condition);
void BreakpointJump(std::size_t index);  // opens the file and goes to the line
// The breakpoint of a line, made when there is none: index, or -1.
int BreakpointAt(HWND editor, int line, bool make);

// A session has been created: plants every enabled one that belongs to it (DebugSetPlantHook).
void BreakpointsPlantAll(DebuggerState* state);
// The program has stopped: where its start made it stop, no breakpoint is left that the list does not know.
void BreakpointsDropStart(DebuggerState* state);
// A session has ended: all are idle again.
void BreakpointsOnSessionEnd();
// Tooltip of the breakpoint on a line ("No code on this line..."), empty: none.
std::wstring BreakpointTip(HWND editor, int line);
// The editor has drawn itself: whatever folded or unfolded since shows in the signs of folded breakpoints now.
void BreakpointsOnPainted(HWND editor);
// Lines of an open document moved: `line` from 0 is the first that did, by `added`.
void BreakpointsOnLinesMoved(HWND editor, int line, int added);
// A document is about to lose its editor, or its text is about to be replaced; and has it (again).
void BreakpointsKeepLines(HWND editor);
void BreakpointsRestoreMarkers(HWND editor);
