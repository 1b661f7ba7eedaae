// The debug pane: a row of tabs over one view - breakpoints, call stack, registers, locals, watches, memory, threads,
// disassembly. A window of its own; the frame places it. UI thread only.
#pragma once

#include "base/events.h"

#include <windows.h>

#include <cstdint>
#include <string>

// The settings keep the number of the view that was shown last.
enum class DebugTab : std::uint8_t { Breakpoints, CallStack, Registers, Locals, Watches, Memory, Threads, Disassembly };
inline constexpr int kDebugTabCount = 8;

HWND DebugPaneCreate(HWND parent, int controlId);  // null when it cannot be made
void DebugPaneSelect(DebugTab tab);
// Call this when what the pane shows may be out of date (a stop, a resume, an end, a changed breakpoint). The visible
// view then reads the program once, when the message queue is empty, however often this was called.
void DebugPaneInvalidate();
// True while the disassembly has the keyboard, so that Step Over and Step Into mean instructions.
bool DebugPaneStepsInstructions();
// F9 while the disassembly has the keyboard: makes or removes the breakpoint of the selected instruction. False: another
// window has it.
bool DebugPaneToggleBreakpoint();
void DebugPaneApplyTheme();  // after a change of theme or DPI
// Writes the tooltip for a register's name in an editor: "RAX = 000000000000002A (42)". `capacity` is in characters.
// False: not a register's name, or no stopped program.
bool DebugRegisterTip(const wchar_t* word, wchar_t* out, int capacity);
// The tooltip for a name that the user has given to a place, at a position (bytes) of a document: "i = 42 (0x0000002A)
// LONG at RBP-4". Empty: no such name there, or no program stopped in its procedure.
std::wstring DebugNameTip(DocumentId document, LRESULT position);
