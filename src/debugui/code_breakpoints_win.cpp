// Breakpoints of single instructions. UI thread only.
#include "debugui/code_breakpoints.h"

#include "base/texts.h"
#include "debugger/at_address.h"
#include "debugger/debug_state.h"
#include "debugui/breakpoint_list.h"
#include "debugui/debug_pane.h"
#include "program/debug_say.h"

#include <algorithm>

namespace {

std::vector<std::uint64_t> g_addresses;

// Of a source line; -1: none.
int LineBreakpointAt(std::uint64_t address) {
    const UserBreakpoints& list = BreakpointList();
    const auto found = std::ranges::find(list, address, &UserBreakpoint::address);
    return found == list.end() ? -1 : static_cast<int>(found - list.begin());
}

}  // namespace

void CodeBreakpointToggle(std::uint64_t address) {
    BreakpointsUpdate();
    if (const int index = LineBreakpointAt(address); index >= 0) {
        BreakpointRemove(static_cast<std::size_t>(index));
    } else if (std::erase(g_addresses, address) != 0) {
        DebugRemoveBreakpoint(&g_debugger, address);
    } else if (DebugSetBreakpointAt(&g_debugger, address)) {
        g_addresses.push_back(address);
    } else {
        DebugSay(
            kDebugOrange, Text(L"[Debug] No breakpoint at 0x%llX: %s.\n"), static_cast<unsigned long long>(address),
            g_debugger.breakpointCount >= kMaxBreakpoints ? Text(L"all 64 are in use") : Text(L"there is no code"));
    }
    DebugPaneInvalidate();
}

bool CodeBreakpointIsSet(std::uint64_t address) {
    return LineBreakpointAt(address) >= 0 || std::ranges::find(g_addresses, address) != g_addresses.end();
}

const std::vector<std::uint64_t>& CodeBreakpoints() { return g_addresses; }

void CodeBreakpointYield(std::uint64_t address) { std::erase(g_addresses, address); }

void CodeBreakpointsRemoveAll() {
    for (const std::uint64_t address : g_addresses) DebugRemoveBreakpoint(&g_debugger, address);
    g_addresses.clear();
}

void CodeBreakpointsForget() { g_addresses.clear(); }
