// Waits for the program's events and carries out what each means. UI thread only, because WaitForDebugEvent works only
// in the thread that started the program.
#include "base/texts.h"
#include "debugger/debug_exit_trap.h"
#include "debugger/debug_follow.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_process.h"
#include "debugger/exception_rules.h"
#include "debugger/stop_rules.h"
#include "settings/settings_state.h"

#include "base/decode.h"
#include "base/handles.h"
#include "base/log.h"
#include "base/wide_format.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int kGoOn = 0;  // not a DebugWait: the event was no stop and was continued
// After one event the next is waited for so long even when the time-out is over, because it usually follows at once.
// Otherwise each look of the timer would handle one event, and a breakpoint whose condition does not hold would take
// two looks.
constexpr DWORD kNextEventMs = 2;

DebugWaitHook g_waitHook = nullptr;

DebugBreakpoint& HitEntry(DebuggerState* state, int index) {
    return state->breakpoints[static_cast<std::size_t>(index)];
}

void SetPlace(DebuggerState* state, std::uint64_t address, SourcePlace place) {
    state->currentAddress = address;
    state->currentLine = static_cast<std::int32_t>(place.line);
    state->currentFileId = place.fileId;
}

int Stopped(DebuggerState* state, const DEBUG_EVENT& event) {
    state->run = DebugRun::Stopped;
    state->stopThreadId = event.dwThreadId;
    state->runsToUserBreakpoint = 0;
    state->stepTarget = 0;
    DebugAbandonStepOff(state);
    if (state->pause == DebugPause::Wanted) state->pause = DebugPause::Overtaken;
    ++state->stopSerial;
    DebugSayLeftOut(state);
    DebugFollowEnd(state);
    return kDebugStopped;
}

int GoOn(DebuggerState* state) {
    DebugResume(state);
    return kGoOn;
}

// The result of an event that a step has taken.
int Followed(DebuggerState* state, const DEBUG_EVENT& event, FollowEvent followed) {
    return followed == FollowEvent::Stop ? Stopped(state, event) : kGoOn;
}

int OnSingleStep(DebuggerState* state, const DEBUG_EVENT& event) {
    if (state->stepOff.threadId == event.dwThreadId)
        DebugFinishStepOff(state);
    else
        DebugRearmBreakpoints(state);
    const FollowEvent followed = DebugFollowOnSingleStep(state, event.dwThreadId);
    return followed == FollowEvent::NotOurs ? GoOn(state) : Followed(state, event, followed);
}

// Shows what the program reports, or keeps it for the next stop when it reports too much.
void Report(DebuggerState* state, COLORREF colour, std::wstring text) {
    const DebugReport report = {.text = std::move(text), .colour = colour};
    switch (TakeReport(&state->reports, report)) {
        case ReportFate::Shown: DebugSay(colour, L"%s", report.text.c_str()); break;
        case ReportFate::FirstKept:
            DebugSay(kDebugOrange,
                     Text(L"[Debug] The program writes too much; its last lines are shown when it stops.\n"));
            break;
        case ReportFate::Kept: break;
    }
}

void OnDebugString(DebuggerState* state, const OUTPUT_DEBUG_STRING_INFO& info) {
    std::vector<char> bytes(info.nDebugStringLength);
    const auto address = reinterpret_cast<std::uint64_t>(info.lpDebugStringData);
    if (!bytes.empty() && !DebugReadRaw(*state, address, bytes.data(), bytes.size())) return;
    bytes.push_back('\0');
    const HeapBlock<wchar_t> decoded(DecodeCompilerText(bytes.data(), std::strlen(bytes.data())));
    std::wstring text = decoded ? decoded.get() : L"";
    if (text.empty() || text.back() != L'\n') text += L'\n';  // so that the next message begins a line
    Report(state, kDebugTeal, L"[Debug] " + text);
}

// Where a breakpoint exception was reported, and where its thread stands.
struct TrapReport {
    std::uint64_t address = 0;
    std::uint64_t ip = 0;
    bool hasIp = false;
};

// True when the instruction pointer is not on the reported address.
bool HasOwnIp(const TrapReport& trap) { return !trap.hasIp || trap.ip != trap.address; }

// Index of the entry whose trap raised the exception, or -1. Systems report the address of the trap, or the next one
// with the instruction pointer on it; only in the second case the byte before the address is looked up.
int EntryOfTrap(const DebuggerState* state, const TrapReport& trap) {
    const int index = DebugFindBp(state, trap.address);
    if (index >= 0 || HasOwnIp(trap)) return index;
    return DebugFindBp(state, trap.address - 1);
}

// A stop because an instruction pointer could not be written (DebugMoveIp).
int StoppedForIp(DebuggerState* state, const DEBUG_EVENT& event, std::uint64_t address) {
    SetPlace(state, address, PlaceInImage(state->map, state->imageSize, address));
    return Stopped(state, event);
}

int OnPlantedBreakpoint(DebuggerState* state, const DEBUG_EVENT& event, int index) {
    const FollowEvent followed = DebugFollowOnHit(state, event.dwThreadId, index);
    if (followed != FollowEvent::NotOurs) return Followed(state, event, followed);
    const std::uint64_t address = HitEntry(state, index).address;
    // A trap of the program's own under the breakpoint is not run again, because it would only stop here again.
    const bool ownTrap = HitEntry(state, index).originalByte == kTrapByte;
    DebugRestoreBp(state, address);
    const DebugBreakpoint hit = HitEntry(state, index);
    if (hit.temporary != 0) DebugForgetBreakpoint(state, index);
    const bool moved = DebugMoveIp(state, event.dwThreadId, ownTrap ? address + 1 : address);
    state->stopThreadId = event.dwThreadId;  // a condition reads the registers of this thread
    const SourcePlace lastPlace = {static_cast<std::uint32_t>(state->currentLine), state->currentFileId};
    const std::uint64_t lastAddress = state->currentAddress;
    SetPlace(state, address, PlaceInImage(state->map, state->imageSize, address));
    const bool ofStart = state->awaits != DebugAwaits::Nothing && address == state->startAddress;
    const HitVerdict verdict =
        VerdictOfHit({.mustStop = ofStart || address == state->stepTarget || !moved,
                      .holds = hit.condition[0] == '\0' || DebugCheckCondition(state, hit.condition),
                      .temporary = hit.temporary != 0,
                      .hits = hit.hits,
                      .stopFrom = hit.stopFrom});
    if (verdict.counts) ++HitEntry(state, index).hits;
    if (!verdict.stops) {
        DebugStepOffAndResume(state);
        SetPlace(state, lastAddress, lastPlace);
        return kGoOn;
    }
    DebugNoteStoppedAt(state, event.dwThreadId, address);
    return Stopped(state, event);
}

// DebugBreakProcess adds a thread to the program, which runs onto a trap. The stop is shown in the main thread, because
// that is the one that the user means.
int OnPause(DebuggerState* state, const DEBUG_EVENT& event) {
    const int result = Stopped(state, event);
    state->stopThreadId = state->mainThreadId;
    std::uint64_t address = 0;
    if (!DebugPlaceInProgram(state, state->mainThreadId, &address)) DebugGetIp(*state, state->mainThreadId, &address);
    const PausePlace pause = PlaceOfPause(state->map, state->imageSize, address, DebugStandsOn(*state, address));
    SetPlace(state, pause.address, pause.place);
    return result;
}

TrapEvent TrapEventOf(const DebuggerState& state, const TrapReport& reported) {
    const std::uint64_t address = reported.address;
    TrapEvent trap = {.address = address,
                      .inImage = address - state.map.imageBase < state.imageSize,
                      .ipAfter = reported.hasIp && reported.ip == address + 1,
                      .bytes = {},
                      .removedAt = DebugWasRemoved(state, address),
                      .removedBefore = !HasOwnIp(reported) && DebugWasRemoved(state, address - 1),
                      .pause = state.pause,
                      .runsToUserBreakpoint = state.runsToUserBreakpoint != 0,
                      .lastLine = state.currentLine,
                      .lastAddress = state.currentAddress};
    std::array<std::uint8_t, 2> bytes = {};
    if (DebugReadRaw(state, address - 1, bytes.data(), bytes.size())) trap.bytes = bytes;
    return trap;
}

// Lets the thread run the instruction at `address` (again).
int RunAgain(DebuggerState* state, const DEBUG_EVENT& event, std::uint64_t address) {
    return DebugMoveIp(state, event.dwThreadId, address) ? GoOn(state) : StoppedForIp(state, event, address);
}

int OnTrap(DebuggerState* state, const DEBUG_EVENT& event, const TrapReport& reported) {
    const TrapEvent trap = TrapEventOf(*state, reported);
    switch (MeaningOfTrap(state->map, trap)) {
        case TrapMeaning::Pause: state->pause = DebugPause::None; return OnPause(state, event);
        case TrapMeaning::PauseLate: state->pause = DebugPause::None; return GoOn(state);
        case TrapMeaning::LateHit: return RunAgain(state, event, LateHitAddress(trap).value_or(trap.address));
        case TrapMeaning::PassedOver: DebugFollowKeep(*state, event.dwThreadId); return GoOn(state);
        case TrapMeaning::Stop: break;
    }
    SetPlace(state, trap.address, PlaceOfTrap(state->map, trap.address));
    return Stopped(state, event);
}

// The address of the trap that a suspended thread ran onto before it was suspended; nothing: the thread is not
// suspended, or raised the exception without a trap.
std::optional<std::uint64_t> TrapOfHeldThread(const DebuggerState& state, const DEBUG_EVENT& event,
                                              const TrapReport& trap, int index) {
    if (!DebugIsHeld(state, event.dwThreadId) || !trap.hasIp) return std::nullopt;
    if (index >= 0) return state.breakpoints[static_cast<std::size_t>(index)].address;
    return trap.ip == trap.address + 1 ? std::optional(trap.address) : std::nullopt;
}

int OnBreakpoint(DebuggerState* state, const DEBUG_EVENT& event) {
    TrapReport trap = {.address = reinterpret_cast<std::uint64_t>(event.u.Exception.ExceptionRecord.ExceptionAddress)};
    if (DebugOnExitTrap(state, event.dwThreadId, trap.address)) return GoOn(state);
    trap.hasIp = DebugGetIp(*state, event.dwThreadId, &trap.ip);
    const int index = EntryOfTrap(state, trap);
    // It runs onto its trap again after the step that is under way, so that each pass is seen once.
    if (const auto held = TrapOfHeldThread(*state, event, trap, index)) return RunAgain(state, event, *held);
    if (state->stepOff.threadId == event.dwThreadId) {
        const DebugStepOff done = state->stepOff;
        DebugFinishStepOff(state);
        const bool landed = trap.address == done.landing || (trap.address == done.landing + 1 && !HasOwnIp(trap));
        if (done.landing != 0 && done.landingByte != kTrapByte && index < 0 && landed)
            return RunAgain(state, event, done.landing);
    }
    return index >= 0 ? OnPlantedBreakpoint(state, event, index) : OnTrap(state, event, trap);
}

int OnOtherException(DebuggerState* state, const DEBUG_EVENT& event, bool fault) {
    const EXCEPTION_RECORD& record = event.u.Exception.ExceptionRecord;
    const auto address = reinterpret_cast<std::uint64_t>(record.ExceptionAddress);
    const ExceptionAction action =
        ActionOfException(ParseExceptionRules(g_settings.exceptionRules), record.ExceptionCode);
    const bool firstChance = event.u.Exception.dwFirstChance != 0;
    Report(state, kDebugRed,
           FormatW(Text(L"[Debug] Exception 0x%08lX at 0x%p\n"), record.ExceptionCode, record.ExceptionAddress));
    // What the program handles itself may come as often as it likes.
    const bool held = HoldAtFault(&state->faults, fault && !action.pass, address);
    if (state->faults.count == 1)
        Report(state, kDebugRed, L"[Debug] " + DebugExceptionText(*state, event, action.pass) + L"\n");
    if (held)
        DebugSay(kDebugRed,
                 Text(L"[Debug] The instruction has failed %lu times in a row; the program is held there.\n"),
                 static_cast<unsigned long>(kFaultsInARow));
    state->passPending = action.pass ? 1 : 0;
    if (!held && !(action.stop && firstChance) && !(action.pass && !firstChance)) {
        if (action.pass && state->stepOff.threadId == event.dwThreadId)
            DebugFinishStepOff(state);  // the handler comes next, and not the instruction
        DebugRepeatStepOff(state, event.dwThreadId);
        return GoOn(state);
    }
    SetPlace(state, address, PlaceInImage(state->map, state->imageSize, address));
    return Stopped(state, event);
}

int OnException(DebuggerState* state, const DEBUG_EVENT& event) {
    const ExceptionKind kind = ExceptionKindOf(event.u.Exception.ExceptionRecord.ExceptionCode);
    if (kind != ExceptionKind::Fault) state->faults.count = 0;
    switch (kind) {
        case ExceptionKind::Breakpoint: return OnBreakpoint(state, event);
        case ExceptionKind::SingleStep: return OnSingleStep(state, event);
        default: return OnOtherException(state, event, kind == ExceptionKind::Fault);
    }
}

int OnExitProcess(DebuggerState* state, const DEBUG_EVENT& event) {
    const DWORD exitCode = event.u.ExitProcess.dwExitCode;
    DebugSayLeftOut(state);
    DebugResume(state);
    DebugEndSession(state);
    state->exited = 1;
    state->exitCode = exitCode;
    return kDebugExited;
}

int OnEvent(DebuggerState* state, const DEBUG_EVENT& event) {
    if (event.dwProcessId != state->processId) {  // from the program of an earlier session
        DebugDropForeignEvent(event);
        return kGoOn;
    }
    state->threadId = event.dwThreadId;
    state->eventPending = 1;
    DebugNoteEvent(state, event);
    switch (event.dwDebugEventCode) {
        case OUTPUT_DEBUG_STRING_EVENT: OnDebugString(state, event.u.DebugString); return GoOn(state);
        case EXIT_PROCESS_DEBUG_EVENT: return OnExitProcess(state, event);
        case EXCEPTION_DEBUG_EVENT: return OnException(state, event);
        case EXIT_THREAD_DEBUG_EVENT: {
            if (state->stepOff.threadId == event.dwThreadId) DebugFinishStepOff(state);
            const int result = GoOn(state);
            DebugCloseThread(state, event.dwThreadId);
            return result;
        }
        default: return GoOn(state);
    }
}

}  // namespace

void DebugSayLeftOut(DebuggerState* state) {
    if (state->reports.leftOut > 0)
        DebugSay(kDebugTeal, Text(L"[Debug] ... %lu reports left out ...\n"),
                 static_cast<unsigned long>(state->reports.leftOut));
    const DebugReports reports = std::exchange(state->reports, {});
    for (const DebugReport& report : reports.kept) DebugSay(report.colour, L"%s", report.text.c_str());
}

DebugWaitHook DebugSetWaitHook(DebugWaitHook hook) { return std::exchange(g_waitHook, hook); }

int DebugWaitEvent(DebuggerState* state, DWORD timeoutMs) {
    if (state == nullptr || state->active == 0) return kDebugNoSession;
    ULONGLONG started = GetTickCount64();
    ULONGLONG asked = started;  // when the hook was asked for the last time
    DWORD least = 0;            // ms to wait even when the time-out is over
    for (;;) {
        DEBUG_EVENT event = {};
        const ULONGLONG elapsed = GetTickCount64() - started;
        const DWORD left =
            timeoutMs == INFINITE ? INFINITE : timeoutMs - static_cast<DWORD>(std::min<ULONGLONG>(elapsed, timeoutMs));
        const bool came = WaitForDebugEvent(&event, std::min(std::max(left, least), kDebugSliceMs)) != 0;
        if (came) {
            if (const int result = OnEvent(state, event); result != kGoOn) return result;
            started = GetTickCount64();
            least = kNextEventMs;
        } else if (left == 0) {
            return kDebugTimeout;
        } else if (const DWORD error = GetLastError(); error != ERROR_SEM_TIMEOUT) {
            AppLogMsg(L"FAIL: DebugWaitEvent error=%lu", error);
            if (left != INFINITE && left <= kDebugSliceMs) return kDebugTimeout;
            Sleep(std::min(left, kDebugSliceMs));
        }
        if (!came) DebugCheckStepOffTime(state);
        const ULONGLONG now = GetTickCount64();
        if (g_waitHook == nullptr || (came && now - asked < kDebugSliceMs)) continue;
        asked = now;
        if (g_waitHook()) return state->active != 0 ? kDebugTimeout : kDebugNoSession;
        if (state->active == 0) return kDebugNoSession;
    }
}
