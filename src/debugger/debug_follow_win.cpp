// Carries out steps that follow the program: traps after single instructions, and breakpoints that hold for one thread
// and a range of the stack pointer. UI thread only.
#include "debugger/debug_follow.h"

#include "debugger/debug_inspect.h"
#include "debugger/debug_process.h"
#include "debugger/program_places.h"

#include <array>
#include <limits>
#include <utility>

namespace {

constexpr DWORD kControlFlags64 = 0x100001, kControlFlags32 = 0x10001;  // CONTEXT_CONTROL
constexpr std::size_t kInstructionBytes = 16;

struct ThreadPlace {
    std::uint64_t ip = 0;
    std::uint64_t sp = 0;
};

// Only the control registers, because this runs at every instruction of a step.
bool ReadThreadPlace(const DebuggerState& state, std::uint32_t threadId, ThreadPlace* place) {
    const HANDLE thread = DebugThreadHandle(state, threadId);
    if (state.isX64 != 0) {
        CONTEXT context = {};
        context.ContextFlags = kControlFlags64;
        if (!GetThreadContext(thread, &context)) return false;
        *place = {.ip = context.Rip, .sp = context.Rsp};
        return true;
    }
    WOW64_CONTEXT context = {};
    context.ContextFlags = kControlFlags32;
    if (!Wow64GetThreadContext(thread, &context)) return false;
    *place = {.ip = context.Eip, .sp = context.Esp};
    return true;
}

SourcePlace PlaceAtAddress(const DebuggerState& state, std::uint64_t address) {
    return PlaceInImage(state.map, state.imageSize, address);
}

StepInstruction InstructionAt(const DebuggerState& state, std::uint64_t address) {
    std::array<std::uint8_t, kInstructionBytes> bytes = {};
    const std::size_t count = DebugReadSome(&state, address, bytes.data(), bytes.size());
    return StepInstructionAt(std::span(bytes).first(count), state.isX64 != 0);
}

bool ReadView(const DebuggerState& state, std::uint32_t threadId, FollowView* view) {
    ThreadPlace place;
    if (!ReadThreadPlace(state, threadId, &place)) return false;
    *view = {.ip = place.ip, .sp = place.sp};
    view->instruction = InstructionAt(state, place.ip);
    FollowReadLines(state.map, state.imageSize, view);
    return true;
}

std::optional<ReturnPlace> ReturnOf(const DebuggerState& state, std::uint32_t threadId) {
    RegisterSet registers;
    if (!DebugGetRegisters(&state, threadId, &registers)) return std::nullopt;
    const auto place = ReturnPlaceOf(registers, DebugMemory(state).read);
    return place && DebugIsExecutable(&state, place->address) ? place : std::nullopt;
}

std::optional<ReturnPlace> CallerWithSource(const DebuggerState& state, std::uint32_t threadId) {
    RegisterSet registers;
    if (!DebugGetRegisters(&state, threadId, &registers)) return std::nullopt;
    return NearestCaller(registers, DebugMemory(state),
                         [&](std::uint64_t address) { return PlaceAtAddress(state, address).line != 0; });
}

// --- Breakpoints of steps

bool IsOfStep(const DebugBreakpoint& breakpoint) { return breakpoint.temporary != 0 && breakpoint.thread != 0; }

void RemoveBreakpointsOfStep(DebuggerState* state) {
    for (int i = state->breakpointCount - 1; i >= 0; --i) {
        const DebugBreakpoint breakpoint = state->breakpoints[static_cast<std::size_t>(i)];
        if (IsOfStep(breakpoint)) DebugRemoveBreakpoint(state, breakpoint.address);
    }
}

// A breakpoint of the user at that address serves as well: it stops by itself, or its condition does not hold and the
// single step that leaves it ends the run.
bool PlantForStep(DebuggerState* state, std::uint64_t address, std::uint64_t leastSp, std::uint64_t mostSp) {
    if (DebugFindBp(state, address) >= 0) return true;
    if (!DebugSetTempBp(state, address, static_cast<int>(PlaceAtAddress(*state, address).line))) return false;
    DebugBreakpoint& made = state->breakpoints[static_cast<std::size_t>(state->breakpointCount - 1)];
    made.thread = state->follow.thread;
    made.leastSp = leastSp;
    made.mostSp = mostSp;
    return true;
}

// --- Moves

// Resumes with the user's breakpoints armed, and off the one at `ip` if there is one. DebugStepOffAndResume does so from
// the place of the last stop.
bool StepOff(DebuggerState* state, std::uint32_t threadId, std::uint64_t ip) {
    const std::uint64_t address = std::exchange(state->currentAddress, ip);
    const std::uint32_t thread = std::exchange(state->stopThreadId, threadId);
    const bool resumed = DebugStepOffAndResume(state);
    state->currentAddress = address;
    state->stopThreadId = thread;
    return resumed;
}

bool SingleStep(DebuggerState* state, std::uint64_t ip, bool fromStop) {
    const std::uint32_t thread = state->follow.thread;
    state->follow.running = false;
    state->runsToUserBreakpoint = 0;
    if (!DebugSetIp(*state, thread, ip, true)) return false;
    return fromStop ? StepOff(state, thread, ip) : DebugResume(state);
}

bool RunStep(DebuggerState* state, const FollowMove& move, const FollowView& view, bool fromStop) {
    Follow& follow = state->follow;
    const std::uint64_t leastSp = move.to.leastSp;
    if (!PlantForStep(state, move.to.address, leastSp, std::numeric_limits<std::uint64_t>::max())) return false;
    if (move.firstLine != 0) PlantForStep(state, move.firstLine, 0, leastSp - 1);
    follow.running = true;
    follow.leastSp = leastSp;
    state->runsToUserBreakpoint = follow.kind != FollowKind::Into ? 1 : 0;
    return fromStop ? StepOff(state, follow.thread, view.ip) : DebugResume(state);
}

// No caller has source: the program runs on, to a breakpoint of the user or to its end.
bool LetRun(DebuggerState* state) {
    DebugFollowEnd(state);
    state->runsToUserBreakpoint = 1;
    return DebugResume(state);
}

bool LeaveStep(DebuggerState* state, const FollowView& view, bool fromStop) {
    const auto caller = CallerWithSource(*state, state->follow.thread);
    if (!caller) return !fromStop && LetRun(state);
    state->follow.returned = true;
    return RunStep(state, {.act = FollowMove::Act::Run, .to = *caller}, view, fromStop);
}

// True when the program was resumed; otherwise it stops where it is.
bool Carry(DebuggerState* state, const FollowMove& move, const FollowView& view, bool fromStop) {
    switch (move.act) {
        case FollowMove::Act::Stop: return false;
        case FollowMove::Act::Step: return SingleStep(state, view.ip, fromStop);
        case FollowMove::Act::Run: return RunStep(state, move, view, fromStop);
        case FollowMove::Act::Leave: return LeaveStep(state, view, fromStop);
    }
    return false;
}

// A breakpoint of the user where a step ends counts as reached.
void CountBreakpointAt(DebuggerState* state, std::uint64_t address) {
    const int index = DebugFindBp(state, address);
    if (index < 0) return;
    DebugBreakpoint& breakpoint = state->breakpoints[static_cast<std::size_t>(index)];
    const bool holds = breakpoint.condition[0] == '\0' || DebugCheckCondition(state, breakpoint.condition);
    if (breakpoint.temporary == 0 && holds) ++breakpoint.hits;
}

FollowEvent StopHere(DebuggerState* state, std::uint32_t threadId, std::uint64_t address) {
    const SourcePlace place = PlaceAtAddress(*state, address);
    state->stopThreadId = threadId;  // a condition reads the registers of this thread
    state->currentAddress = address;
    state->currentLine = static_cast<std::int32_t>(place.line);
    state->currentFileId = place.fileId;
    CountBreakpointAt(state, address);
    DebugNoteStoppedAt(state, threadId, address);
    return FollowEvent::Stop;
}

FollowEvent Arrive(DebuggerState* state, std::uint32_t threadId) {
    FollowView view;
    const bool read = ReadView(*state, threadId, &view);
    const FollowMove move = read ? FollowArrived(&state->follow, view) : FollowMove{};
    RemoveBreakpointsOfStep(state);
    return Carry(state, move, view, false) ? FollowEvent::Resumed : StopHere(state, threadId, view.ip);
}

}  // namespace

bool DebugFollowStep(DebuggerState* state, FollowKind kind) {
    if (!DebugIsActive(state) || state->run != DebugRun::Stopped) return false;
    const std::uint32_t thread = state->stopThreadId != 0 ? state->stopThreadId : state->mainThreadId;
    FollowView view;
    if (!ReadView(*state, thread, &view)) return false;
    DebugForgetTemporaries(state);
    if (kind == FollowKind::Out) view.returnsTo = ReturnOf(*state, thread);
    state->follow = {.kind = kind, .thread = thread, .from = view.place, .traps = state->map.nativeTrapMap != 0};
    const FollowMove move = FollowBegin(&state->follow, view);
    if (Carry(state, move, view, true)) return true;
    DebugFollowEnd(state);
    return false;
}

FollowEvent DebugFollowOnSingleStep(DebuggerState* state, std::uint32_t threadId) {
    const Follow& follow = state->follow;
    if (follow.kind == FollowKind::None || follow.thread != threadId) return FollowEvent::NotOurs;
    ThreadPlace place;
    // During a run, only a conditional breakpoint where it ends leads here; others were left below it.
    const bool inRun = follow.running && !follow.stopAtNext;
    if (inRun && (!ReadThreadPlace(*state, threadId, &place) || place.sp < follow.leastSp)) return FollowEvent::NotOurs;
    return Arrive(state, threadId);
}

FollowEvent DebugFollowOnHit(DebuggerState* state, std::uint32_t threadId, int index) {
    const DebugBreakpoint hit = state->breakpoints[static_cast<std::size_t>(index)];
    if (!IsOfStep(hit)) return FollowEvent::NotOurs;
    ThreadPlace place;
    const bool read = ReadThreadPlace(*state, threadId, &place);
    const bool meant = threadId == hit.thread && (!read || (place.sp >= hit.leastSp && place.sp <= hit.mostSp));
    // Of a run to a frame, which ends as at any other temporary breakpoint.
    if (meant && state->follow.kind == FollowKind::None) return FollowEvent::NotOurs;
    DebugRestoreBp(state, hit.address);
    if (!DebugMoveIp(state, threadId, hit.address)) return StopHere(state, threadId, hit.address);
    if (meant) return Arrive(state, threadId);
    StepOff(state, threadId, hit.address);
    return FollowEvent::Resumed;
}

void DebugFollowKeep(const DebuggerState& state, std::uint32_t threadId) {
    std::uint64_t ip = 0;
    const bool steps = state.follow.kind != FollowKind::None && !state.follow.running;
    if (steps && state.follow.thread == threadId && DebugGetIp(state, threadId, &ip))
        DebugSetIp(state, threadId, ip, true);
}

bool DebugFollowPause(DebuggerState* state) {
    if (state->follow.kind == FollowKind::None || state->follow.running) return false;
    state->follow.stopAtNext = true;
    return true;
}

void DebugFollowEnd(DebuggerState* state) {
    if (state->follow.kind == FollowKind::None) return;
    RemoveBreakpointsOfStep(state);
    state->follow = {};
}
