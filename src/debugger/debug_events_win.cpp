// Waiting for the program's events and deciding which of them is a stop. UI thread only: the thread that started the
// program is the only one that the system lets wait for it.
#include "debugger/debug_inspect.h"
#include "debugger/debug_process.h"
#include "debugger/stop_rules.h"

#include "base/decode.h"
#include "base/handles.h"
#include "base/log.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace {

// A fault that is continued as handled fails again at once, for ever; after so many in a row the program is held there.
constexpr std::uint32_t kFaultsInARow = 16;
constexpr int kGoOn = 0;  // beside DebugWait: the event was no stop and is continued
// The next event of a program that was just continued comes in a moment. A look that does not wait for it would see one
// event at a time: a condition that does not hold would cost two ticks of the timer.
constexpr DWORD kNextEventMs = 2;

DebugWaitHook g_waitHook = nullptr;

DebugBreakpoint& Entry(DebuggerState* state, int index) { return state->breakpoints[static_cast<std::size_t>(index)]; }

void SetPlace(DebuggerState* state, std::uint64_t address, SourcePlace place) {
    state->currentAddress = address;
    state->currentLine = static_cast<std::int32_t>(place.line);
    state->currentFileId = place.fileId;
}

// Code of a library has no line, however far it lies behind the last one of the map.
SourcePlace PlaceInImage(const DebuggerState& state, std::uint64_t address) {
    SourcePlace place;
    return DebugLineAt(&state, address, &place.fileId, &place.line) ? place : SourcePlace{};
}

int Stopped(DebuggerState* state, const DEBUG_EVENT& event) {
    state->run = DebugRun::Stopped;
    state->stopThreadId = event.dwThreadId;
    state->exceptionCode = event.u.Exception.ExceptionRecord.ExceptionCode;
    state->runsToUserBreakpoint = 0;
    if (state->pause == DebugPause::Wanted) state->pause = DebugPause::Overtaken;
    ++state->stopSerial;
    DebugSayLeftOut(state);
    return kDebugStopped;
}

int GoOn(DebuggerState* state) {
    DebugResume(state);
    return kGoOn;
}

// False: the program reports too much, and this one is left out.
bool MayReport(DebuggerState* state, std::size_t characters) {
    constexpr std::uint32_t kMostReports = 10000;
    constexpr std::size_t kMostCharacters = std::size_t{4} << 20;
    DebugReports& reports = state->reports;
    if (reports.shown < kMostReports && reports.characters < kMostCharacters) {
        ++reports.shown;
        reports.characters += characters;
        return true;
    }
    if (reports.leftOut++ == 0)
        DebugSay(kDebugOrange, L"[Debug] The program writes too much; the rest is left out until it stops.\n");
    return false;
}

void OnDebugString(DebuggerState* state, const OUTPUT_DEBUG_STRING_INFO& info) {
    if (!MayReport(state, info.nDebugStringLength)) return;
    std::vector<char> bytes(info.nDebugStringLength);
    const auto address = reinterpret_cast<std::uint64_t>(info.lpDebugStringData);
    if (!bytes.empty() && !DebugReadRaw(*state, address, bytes.data(), bytes.size())) return;
    bytes.push_back('\0');
    const HeapBlock<wchar_t> decoded(DecodeCompilerText(bytes.data(), std::strlen(bytes.data())));
    std::wstring text = decoded ? decoded.get() : L"";
    if (text.empty() || text.back() != L'\n') text += L'\n';  // the next message begins a line of its own
    DebugSay(kDebugTeal, L"[Debug] %s", text.c_str());
}

// The entry that a breakpoint exception at `address` belongs to: systems report the trap's own address or the next one.
// Only where they report the next one does the thread stand on it; else it is the address of another trap.
int EntryOfTrap(const DebuggerState* state, const DEBUG_EVENT& event, std::uint64_t address) {
    const int index = DebugFindBp(state, address);
    std::uint64_t ip = 0;
    if (index >= 0 || !DebugGetIp(*state, event.dwThreadId, &ip) || ip != address) return index;
    return DebugFindBp(state, address - 1);
}

int OnPlantedBreakpoint(DebuggerState* state, const DEBUG_EVENT& event, int index) {
    const std::uint64_t address = Entry(state, index).address;
    // Over a trap of the program's own there is nothing to go back to: run again, it would only stop here again.
    const bool ownTrap = Entry(state, index).originalByte == kTrapByte;
    DebugRestoreBp(state, address);
    const DebugBreakpoint hit = Entry(state, index);
    if (hit.temporary != 0) DebugForgetBreakpoint(state, index);
    DebugSetIp(*state, event.dwThreadId, ownTrap ? address + 1 : address, false);
    state->stopThreadId = event.dwThreadId;  // whose registers a condition is about
    const SourcePlace lastPlace = {static_cast<std::uint32_t>(state->currentLine), state->currentFileId};
    const std::uint64_t lastAddress = state->currentAddress;
    SetPlace(state, address, PlaceInImage(*state, address));
    // The start stops at its line in any case.
    const bool ofStart = state->awaits != DebugAwaits::Nothing && address == state->startAddress;
    if (!ofStart && hit.condition[0] != '\0' && !DebugCheckCondition(state, hit.condition)) {
        DebugStepOffAndResume(state);
        SetPlace(state, lastAddress, lastPlace);
        return kGoOn;
    }
    if (hit.temporary == 0) ++Entry(state, index).hits;
    return Stopped(state, event);
}

// Two threads may run onto one breakpoint at the same time: the second one's event comes when the byte is back already.
bool IsLateHit(const DebuggerState& state, std::uint64_t address) {
    if (address < state.map.imageBase || address - state.map.imageBase >= state.imageSize) return false;
    std::uint8_t bytes[2] = {};
    return DebugReadRaw(state, address - 1, bytes, sizeof(bytes)) && bytes[1] != kTrapByte && bytes[0] != kTrapByte &&
           !(bytes[0] == 0xCD && bytes[1] == 0x03);
}

// The system pauses a program by a thread of its own that runs onto a trap; what the user asks about is the main thread.
int OnPause(DebuggerState* state, const DEBUG_EVENT& event) {
    const bool overtaken = state->pause == DebugPause::Overtaken;
    state->pause = DebugPause::None;
    if (overtaken) return GoOn(state);
    const int result = Stopped(state, event);
    state->stopThreadId = state->mainThreadId;
    std::uint64_t address = 0;
    if (!DebugPlaceInProgram(state, state->mainThreadId, &address)) DebugGetIp(*state, state->mainThreadId, &address);
    // Behind a call the next line may begin already; it is the call that still runs, and the statement that holds it is
    // where steps begin.
    std::uint32_t rva = 0;
    const bool inCall = !DebugStandsOn(*state, address) && RvaOf(address - 1, state->map.imageBase, &rva);
    SourcePlace place;
    if (DebugLineAt(state, inCall ? address - 1 : address, &place.fileId, &place.line) && inCall)
        address = state->map.imageBase + state->map.lines[SdbgFindRecord(&state->map, rva)].rva;
    SetPlace(state, address, place);
    return result;
}

int OnOwnTrap(DebuggerState* state, const DEBUG_EVENT& event, std::uint64_t address) {
    const bool inImage = address - state->map.imageBase < state->imageSize;
    if (state->pause != DebugPause::None && !inImage) return OnPause(state, event);
    if (IsLateHit(*state, address)) {
        DebugSetIp(*state, event.dwThreadId, address, false);
        return GoOn(state);
    }
    const SourcePlace place = PlaceOfTrap(state->map, address);
    if (IsRepeatedTrap(state->map, place, address, state->currentLine, state->currentAddress)) return GoOn(state);
    if (state->map.nativeTrapMap != 0 && place.line != 0 && state->runsToUserBreakpoint != 0) return GoOn(state);
    SetPlace(state, address, place);
    return Stopped(state, event);
}

int OnBreakpoint(DebuggerState* state, const DEBUG_EVENT& event) {
    const auto address = reinterpret_cast<std::uint64_t>(event.u.Exception.ExceptionRecord.ExceptionAddress);
    const int index = EntryOfTrap(state, event, address);
    return index >= 0 ? OnPlantedBreakpoint(state, event, index) : OnOwnTrap(state, event, address);
}

int OnOtherException(DebuggerState* state, const DEBUG_EVENT& event, bool fault) {
    const EXCEPTION_RECORD& record = event.u.Exception.ExceptionRecord;
    const auto address = reinterpret_cast<std::uint64_t>(record.ExceptionAddress);
    constexpr std::size_t kLine = 60;
    if (MayReport(state, kLine))
        DebugSay(kDebugRed, L"[Debug] Exception 0x%08lX at 0x%p\n", record.ExceptionCode, record.ExceptionAddress);
    state->faultCount = fault && address == state->faultAddress ? state->faultCount + 1 : 1;
    state->faultAddress = address;
    if (!fault || state->faultCount < kFaultsInARow) return GoOn(state);
    state->faultCount = 0;
    DebugSay(kDebugRed, L"[Debug] The instruction has failed %lu times in a row; the program is held there.\n",
             static_cast<unsigned long>(kFaultsInARow));
    SetPlace(state, address, PlaceInImage(*state, address));
    return Stopped(state, event);
}

int OnException(DebuggerState* state, const DEBUG_EVENT& event) {
    const ExceptionKind kind = ExceptionKindOf(event.u.Exception.ExceptionRecord.ExceptionCode);
    if (kind != ExceptionKind::Fault) state->faultCount = 0;
    switch (kind) {
        case ExceptionKind::Breakpoint: return OnBreakpoint(state, event);
        case ExceptionKind::SingleStep: DebugRearmBreakpoints(state); return GoOn(state);
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
    if (event.dwProcessId != state->processId) {  // what an earlier session has left behind
        DebugDropEvent(state, event);
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
        DebugSay(kDebugTeal, L"[Debug] ... %lu reports left out ...\n",
                 static_cast<unsigned long>(state->reports.leftOut));
    state->reports = {};
}

DebugWaitHook DebugSetWaitHook(DebugWaitHook hook) { return std::exchange(g_waitHook, hook); }

int DebugWaitEvent(DebuggerState* state, DWORD timeoutMs) {
    if (state == nullptr || state->active == 0) return kDebugNoSession;
    ULONGLONG started = GetTickCount64();
    ULONGLONG asked = started;  // the hook
    DWORD least = 0;            // ms to wait, whatever the time-out
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
        } else if (GetLastError() != ERROR_SEM_TIMEOUT) {
            AppLogMsg(L"FAIL: DebugWaitEvent error=%lu", GetLastError());
            if (left != INFINITE && left <= kDebugSliceMs) return kDebugTimeout;
            Sleep(std::min(left, kDebugSliceMs));
        }
        const ULONGLONG now = GetTickCount64();
        if (g_waitHook == nullptr || (came && now - asked < kDebugSliceMs)) continue;
        asked = now;
        if (g_waitHook()) return state->active != 0 ? kDebugTimeout : kDebugNoSession;
        if (state->active == 0) return kDebugNoSession;
    }
}
