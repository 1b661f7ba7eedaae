// Breakpoints of single instructions, set in the disassembly. They last as long as the session, because the next build
// may have other code there. UI thread only.
#pragma once

#include <cstdint>
#include <vector>

// Makes or removes the breakpoint of an instruction; that of a source line there is removed, too. Says why it cannot.
void CodeBreakpointToggle(std::uint64_t address);
// True when a breakpoint of the user stands there, of a line or of an instruction.
bool CodeBreakpointIsSet(std::uint64_t address);
// Addresses of those of instructions, in the order in which they were made.
const std::vector<std::uint64_t>& CodeBreakpoints();
// A breakpoint of a source line was planted there. It takes the place of the instruction's.
void CodeBreakpointYield(std::uint64_t address);
void CodeBreakpointsRemoveAll();
void CodeBreakpointsForget();  // at the end of a session
