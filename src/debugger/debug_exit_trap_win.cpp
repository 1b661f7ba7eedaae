// A trap at ExitProcess. UI thread only.
#include "debugger/debug_exit_trap.h"

#include "debugger/debug_process.h"
#include "files/file_io.h"
#include "program/pe_image.h"
#include "settings/settings.h"

#include <array>
#include <cstring>
#include <string>

namespace {

constexpr std::size_t kMostFile = 16 << 20;  // a larger program is not read for this
DebugExitHook g_exitHook = nullptr;

// What the program's own import of the function leads to; 0: it has none.
std::uint64_t ExitByImport(const DebuggerState& state) {
    wchar_t path[kPathCapacity] = {};
    DWORD length = static_cast<DWORD>(kPathCapacity);
    std::string bytes;
    if (!QueryFullProcessImageNameW(state.process, 0, path, &length) || !ReadSharedFile(path, kMostFile, &bytes))
        return 0;
    const PeImage image = PeImageRead({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    for (const auto& [rva, name] : image.imports) {
        std::uint64_t address = 0;
        const std::size_t width = state.isX64 != 0 ? sizeof(std::uint64_t) : sizeof(std::uint32_t);
        if (name.ends_with("!ExitProcess") && DebugReadRaw(state, state.map.imageBase + rva, &address, width))
            return address;
    }
    return 0;
}

// A library of the system is at the same address in all programs of one width; its code proves it.
std::uint64_t ExitAsHere(const DebuggerState& state) {
    const auto* const own =
        reinterpret_cast<const std::uint8_t*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "ExitProcess"));
    std::array<std::uint8_t, 16> code = {};
    const auto address = reinterpret_cast<std::uint64_t>(own);
    if (state.isX64 == 0 || own == nullptr || !DebugReadRaw(state, address, code.data(), code.size())) return 0;
    return std::memcmp(code.data(), own, code.size()) == 0 ? address : 0;
}

}  // namespace

void DebugSetExitHook(DebugExitHook hook) { g_exitHook = hook; }

void DebugPlantExitTrap(DebuggerState* state) {
    if (g_exitHook == nullptr) return;
    DebugExitTrap trap = {.address = ExitByImport(*state)};
    if (trap.address == 0) trap.address = ExitAsHere(*state);
    if (trap.address == 0 || !DebugIsExecutable(state, trap.address)) return;
    if (!DebugReadRaw(*state, trap.address, &trap.originalByte, 1) || trap.originalByte == kTrapByte) return;
    if (DebugWriteRaw(*state, trap.address, &kTrapByte, 1)) state->exitTrap = trap;
}

bool DebugOnExitTrap(DebuggerState* state, std::uint32_t threadId, std::uint64_t address) {
    const DebugExitTrap trap = state->exitTrap;
    if (trap.address == 0 || (address != trap.address && address != trap.address + 1)) return false;
    state->exitTrap = {};
    if (g_exitHook != nullptr) g_exitHook(state);
    DebugWriteRaw(*state, trap.address, &trap.originalByte, 1);
    return DebugMoveIp(state, threadId, trap.address);
}
