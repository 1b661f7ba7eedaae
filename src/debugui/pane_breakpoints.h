// The rows of the breakpoints view. Pure.
#pragma once

#include "debugui/breakpoints.h"
#include "ui/list_rows.h"

#include <cstdint>
#include <string>
#include <vector>

enum BreakpointColumn : int { kBreakpointPlace, kBreakpointCondition, kBreakpointHits, kBreakpointState };

// A breakpoint of an instruction, which no line has.
struct CodeBreakpointView {
    std::uint64_t address = 0;
    std::uint32_t hits = 0;
    std::wstring place;  // "steps.bas:12"; empty: none
};
// A row for each breakpoint of a line, then one for each of an instruction.
std::vector<ListRow> BreakpointRows(const UserBreakpoints& list, const std::vector<CodeBreakpointView>& ofCode);
// Text of the field in which the number of hits is edited; empty: it stops at each.
std::wstring StopFromEditText(const UserBreakpoint& breakpoint);
