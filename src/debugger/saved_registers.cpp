// Registers out of the area that the FXSAVE instruction writes. Pure.
#include "debugger/saved_registers.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t kXmmArea = 160;  // where the first of them stands
constexpr std::size_t kXmmBytes = 16;  // of one, the low half first

}  // namespace

void ReadSavedXmm(std::span<const std::uint8_t> area, std::size_t count, RegisterSet* out) {
    count = std::min(count, out->xmmLow.size());
    for (std::size_t i = 0; i < count && kXmmArea + (i + 1) * kXmmBytes <= area.size(); ++i) {
        const std::uint8_t* const bytes = area.data() + kXmmArea + i * kXmmBytes;
        std::memcpy(&out->xmmLow[i], bytes, sizeof(std::uint64_t));
        std::memcpy(&out->xmmHigh[i], bytes + sizeof(std::uint64_t), sizeof(std::uint64_t));
    }
}
