// Programs that were told to end and have not ended yet. UI thread only.
#include "debugger/debug_process.h"

#include <algorithm>
#include <vector>

namespace {

std::vector<std::uint32_t> g_leftBehind;  // process ids

}  // namespace

void DebugLeaveBehind(std::uint32_t processId) { g_leftBehind.push_back(processId); }

bool DebugHasLeftBehind() { return !g_leftBehind.empty(); }

void DebugDrainLeftBehind() {
    constexpr int kMostEvents = 100;  // of one call, because the caller is a timer
    DEBUG_EVENT event = {};
    for (int i = 0; i < kMostEvents && DebugHasLeftBehind() && WaitForDebugEvent(&event, 0); ++i)
        DebugDropForeignEvent(event);
}

void DebugDropForeignEvent(const DEBUG_EVENT& event) {
    DebuggerState none;
    DebugDropEvent(&none, event);
    if (event.dwDebugEventCode == EXIT_PROCESS_DEBUG_EVENT) std::erase(g_leftBehind, event.dwProcessId);
}
