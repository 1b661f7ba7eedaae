// The phases of a debug session in the window. Must not know a window or a process.
#include "debugui/debug_flow.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::uint64_t kStartInPlaceMs = 1000;  // that a start waits in place for the first line
constexpr std::uint64_t kLongRunMs = 30000;      // without a stop, after which a message says so
constexpr std::uint64_t kLongStepMs = 1000;      // of a step by address, after which a message names the other way
constexpr std::uint64_t kMayPassUnseenMs = 50;   // after a stop that was shown, the next may be left out
constexpr int kConsoleLooks = 40;
constexpr int kLooksAfterConsole = 6;

}  // namespace

void FlowStart(DebugFlow* flow, std::uint64_t now) {
    *flow = {.phase = DebugPhase::Starting, .since = now, .suffix = {}, .lastSeen = flow->lastSeen};
}

void FlowResume(DebugFlow* flow, const std::wstring& suffix, std::uint64_t now) {
    if (flow->phase != DebugPhase::Starting) flow->phase = DebugPhase::Running;
    flow->since = now;
    flow->suffix = suffix;
    flow->toldLong = false;
    flow->byAddress = false;
    flow->unseen = false;
}

void FlowStartGivenUp(DebugFlow* flow) {
    if (flow->phase == DebugPhase::Starting) flow->phase = DebugPhase::Running;
}

void FlowStopped(DebugFlow* flow) { flow->phase = DebugPhase::Stopped; }

void FlowEnding(DebugFlow* flow) { flow->phase = DebugPhase::Ending; }

void FlowEnded(DebugFlow* flow) { *flow = {.suffix = {}, .lastSeen = flow->lastSeen}; }

void FlowWantStop(DebugFlow* flow, bool thenClose) {
    flow->stopWanted = true;
    flow->closeWanted = flow->closeWanted || thenClose;
}

bool FlowIsStopped(const DebugFlow& flow) { return flow.phase == DebugPhase::Stopped && !flow.waiting; }

bool FlowIsRunning(const DebugFlow& flow) {
    return (flow.phase == DebugPhase::Running || flow.phase == DebugPhase::Starting) && !flow.waiting;
}

bool FlowStartWaitIsOver(const DebugFlow& flow, bool awaitsFirstLine, std::uint64_t now) {
    return flow.stopWanted || (awaitsFirstLine && now - flow.since >= kStartInPlaceMs);
}

bool FlowMayPassUnseen(const DebugFlow& flow, std::uint64_t now) { return now - flow.lastSeen < kMayPassUnseenMs; }

bool FlowTakeLongRun(DebugFlow* flow, bool awaitsFirstLine, std::uint64_t now) {
    if (flow->toldLong) return false;
    flow->toldLong = awaitsFirstLine || now - flow->since >= kLongRunMs;
    return flow->toldLong && !awaitsFirstLine;
}

bool FlowTakeStepHint(DebugFlow* flow, bool ended, std::uint64_t now) {
    if (!flow->byAddress || (!ended && now - flow->since < kLongStepMs)) return false;
    flow->byAddress = false;
    return true;
}

bool FlowOpensPane(DebugFlow* flow, bool shown) {
    flow->openedPane = !shown;
    return flow->openedPane;
}

bool FlowClosesPane(DebugFlow* flow, bool shown) { return std::exchange(flow->openedPane, false) && shown; }

void FlowWatchConsole(DebugFlow* flow) { flow->consoleLooks = kConsoleLooks; }

ConsoleLook FlowLookForConsole(DebugFlow* flow, bool consoleInFront) {
    if (consoleInFront) flow->consoleLooks = std::min(flow->consoleLooks, kLooksAfterConsole);
    const bool raise = flow->consoleLooks <= kLooksAfterConsole;
    flow->consoleLooks = std::max(0, flow->consoleLooks - 1);
    return {.raise = raise, .last = flow->consoleLooks == 0};
}
