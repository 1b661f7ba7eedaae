// The table of breakpoints. Must not know a process.
#include "debugger/breakpoint_table.h"

#include <algorithm>
#include <cstring>

namespace {

// The entries in use. A count out of range would be a fault of the engine; it is limited to the table.
template <typename Table>
auto EntriesOf(Table& table, int count) {
    return std::span(table).first(static_cast<std::size_t>(std::clamp(count, 0, kMaxBreakpoints)));
}

bool IsWithin(std::uint64_t wanted, std::uint64_t address, std::size_t count) {
    return wanted >= address && wanted - address < count;
}

}  // namespace

int FindInTable(const BreakpointTable& table, int count, std::uint64_t address) {
    const auto entries = EntriesOf(table, count);
    const auto found = std::ranges::find(entries, address, &DebugBreakpoint::address);
    return found == entries.end() ? -1 : static_cast<int>(found - entries.begin());
}

int RemoveFromTable(BreakpointTable* table, int count, int index) {
    const auto entries = EntriesOf(*table, count);
    std::move(entries.begin() + index + 1, entries.end(), entries.begin() + index);
    entries.back() = {};
    return count - 1;
}

void StoreCondition(DebugBreakpoint* breakpoint, const char* condition) {
    std::memset(breakpoint->condition, 0, sizeof(breakpoint->condition));
    if (condition == nullptr) return;
    std::memcpy(breakpoint->condition, condition, std::min(std::strlen(condition), kConditionCapacity - 1));
}

void ShowOriginalBytes(const BreakpointTable& table, int count, std::uint64_t address, std::span<std::uint8_t> bytes) {
    for (const DebugBreakpoint& entry : EntriesOf(table, count))
        if (entry.armed != 0 && IsWithin(entry.address, address, bytes.size()))
            bytes[entry.address - address] = entry.originalByte;
}

std::uint64_t NoteOverwritten(BreakpointTable* table, int count, std::uint64_t address,
                              std::span<const std::uint8_t> bytes) {
    std::uint64_t armed = 0;
    const auto entries = EntriesOf(*table, count);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (!IsWithin(entries[i].address, address, bytes.size())) continue;
        entries[i].originalByte = bytes[entries[i].address - address];
        if (entries[i].armed != 0) armed |= std::uint64_t{1} << i;
    }
    return armed;
}
