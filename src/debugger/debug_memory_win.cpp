// Memory of the program. UI thread only.
#include "debugger/debug_inspect.h"
#include "debugger/debug_process.h"

#include <algorithm>
#include <span>

namespace {

// The part of `count` bytes at `address` that lies in the page of `address`.
std::size_t WithinPage(std::uint64_t address, std::size_t count) {
    constexpr std::uint64_t kPage = 4096;
    return static_cast<std::size_t>(std::min<std::uint64_t>(count, kPage - address % kPage));
}

// The system reserves the address space of a module as a whole.
std::uint64_t ModuleBaseOf(const DebuggerState& state, std::uint64_t address) {
    MEMORY_BASIC_INFORMATION info = {};
    const void* place = reinterpret_cast<const void*>(address);
    const bool ofModule = VirtualQueryEx(state.process, place, &info, sizeof(info)) != 0 && info.State == MEM_COMMIT &&
                          info.Type == MEM_IMAGE;
    return ofModule ? reinterpret_cast<std::uint64_t>(info.AllocationBase) : 0;
}

}  // namespace

bool DebugReadRaw(const DebuggerState& state, std::uint64_t address, void* out, std::size_t count) {
    SIZE_T done = 0;
    return ReadProcessMemory(state.process, reinterpret_cast<const void*>(address), out, count, &done) && done == count;
}

bool DebugWriteRaw(const DebuggerState& state, std::uint64_t address, const void* bytes, std::size_t count) {
    SIZE_T done = 0;
    void* place = reinterpret_cast<void*>(address);
    if (!WriteProcessMemory(state.process, place, bytes, count, &done) || done != count) return false;
    FlushInstructionCache(state.process, place, count);
    return true;
}

bool DebugReadMem(const DebuggerState* state, std::uint64_t address, void* out, std::size_t count) {
    if (state == nullptr || state->active == 0 || !DebugReadRaw(*state, address, out, count)) return false;
    ShowOriginalBytes(state->breakpoints, state->breakpointCount, address,
                      std::span(static_cast<std::uint8_t*>(out), count));
    return true;
}

// Reads page by page, because ReadProcessMemory fails as a whole when one page is unreadable.
std::size_t DebugReadSome(const DebuggerState* state, std::uint64_t address, void* out, std::size_t count) {
    std::size_t done = 0;
    while (done < count) {
        const std::size_t part = WithinPage(address + done, count - done);
        if (!DebugReadMem(state, address + done, static_cast<std::uint8_t*>(out) + done, part)) break;
        done += part;
    }
    return done;
}

// Breakpoints in the range stay; the bytes that they cover change.
bool DebugWriteMem(DebuggerState* state, std::uint64_t address, const void* bytes, std::size_t count) {
    if (state == nullptr || state->active == 0 || !DebugWriteRaw(*state, address, bytes, count)) return false;
    const std::uint64_t armed = NoteOverwritten(&state->breakpoints, state->breakpointCount, address,
                                                std::span(static_cast<const std::uint8_t*>(bytes), count));
    for (int i = 0; i < state->breakpointCount; ++i)
        if ((armed >> i & 1) != 0)
            DebugWriteRaw(*state, state->breakpoints[static_cast<std::size_t>(i)].address, &kTrapByte, 1);
    return true;
}

ProgramMemory DebugMemory(const DebuggerState& state) {
    return {.read = [&state](std::uint64_t address, void* out,
                             std::size_t count) { return DebugReadMem(&state, address, out, count); },
            .readSome = [&state](std::uint64_t address, void* out,
                                 std::size_t count) { return DebugReadSome(&state, address, out, count); },
            .moduleBase = [&state](std::uint64_t address) { return ModuleBaseOf(state, address); },
            .wordBytes = state.isX64 != 0 ? 8U : 4U};
}

bool DebugIsExecutable(const DebuggerState* state, std::uint64_t address) {
    MEMORY_BASIC_INFORMATION info = {};
    constexpr DWORD kExecutable = PAGE_EXECUTE | PAGE_EXECUTE_READ | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    return state != nullptr && state->active != 0 &&
           VirtualQueryEx(state->process, reinterpret_cast<const void*>(address), &info, sizeof(info)) != 0 &&
           info.State == MEM_COMMIT && (info.Protect & kExecutable) != 0;
}
