// Names of imported functions: by the slots that the program's file names, and by the jumps through them. UI thread
// only.
#include "debugui/pane_symbols.h"

#include "debugger/debug_session.h"
#include "debugger/debug_state.h"
#include "files/file_io.h"
#include "program/pe_image.h"
#include "settings/settings.h"

#include <array>
#include <cstring>
#include <unordered_map>

namespace {

constexpr std::size_t kMostFile = 16 << 20;  // reading more would be felt

struct ImportNames {
    std::uint32_t processId = 0;
    std::unordered_map<std::uint32_t, std::string> slots;   // by RVA
    std::unordered_map<std::uint64_t, std::string> places;  // by address, found already; most are empty
};
ImportNames g_names;

void ReadImports() {
    g_names = {.processId = g_debugger.processId, .slots = {}, .places = {}};
    wchar_t path[kPathCapacity] = {};
    DWORD length = static_cast<DWORD>(kPathCapacity);
    std::string bytes;
    if (!QueryFullProcessImageNameW(g_debugger.process, 0, path, &length) || !ReadSharedFile(path, kMostFile, &bytes))
        return;
    g_names.slots = PeImageRead({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}).imports;
}

std::string NameOfSlot(std::uint64_t address) {
    std::uint32_t rva = 0;
    if (!RvaOf(address, g_debugger.map.imageBase, &rva)) return {};
    const auto found = g_names.slots.find(rva);
    return found == g_names.slots.end() ? std::string() : found->second;
}

// JMP [slot], which linkers put between a call and the library.
std::string NameOfJump(std::uint64_t address) {
    std::array<std::uint8_t, 6> code = {};
    if (address - g_debugger.map.imageBase >= g_debugger.imageSize) return {};
    if (!DebugReadMem(&g_debugger, address, code.data(), code.size()) || code[0] != 0xFF || code[1] != 0x25) return {};
    std::int32_t operand = 0;
    std::memcpy(&operand, &code[2], sizeof(operand));
    const auto distance = static_cast<std::uint64_t>(static_cast<std::int64_t>(operand));
    return NameOfSlot(g_debugger.isX64 != 0 ? address + code.size() + distance : static_cast<std::uint32_t>(operand));
}

}  // namespace

std::string PaneSymbolAt(std::uint64_t address) {
    if (g_names.processId != g_debugger.processId) ReadImports();
    const auto [place, isNew] = g_names.places.try_emplace(address);
    if (!isNew) return place->second;
    place->second = NameOfSlot(address);
    if (place->second.empty()) place->second = NameOfJump(address);
    return place->second;
}
