// Debugging the same program again. UI thread only.
#include "debugui/restart.h"

#include "debugui/debug_commands.h"
#include "debugui/debug_run.h"
#include "debugui/location.h"

namespace {

std::wstring g_debuggedSource;

}  // namespace

void DebugRememberSource(const std::wstring& source) { g_debuggedSource = source; }

void DebugRestart() {
    if (DebugFlowNow().phase != DebugPhase::None) DebugRunStop();
    if (g_debuggedSource.empty() || DebugShowFile(g_debuggedSource)) DebugBuildAndStart();
}
