#include "files/break_kinds.h"

#include <algorithm>
#include <cstddef>

void BreakKinds::Look(std::string_view piece) {
    constexpr std::size_t kBlock = 4096;
    if (piece.empty()) return;
    const auto lookAt = [this](char before, char here) {
        const auto cr = static_cast<std::uint8_t>(before == '\r'), lf = static_cast<std::uint8_t>(here == '\n');
        crLf_ = static_cast<std::uint8_t>(crLf_ | (cr & lf));
        lf_ = static_cast<std::uint8_t>(lf_ | (lf & ~cr));
        cr_ = static_cast<std::uint8_t>(cr_ | (cr & ~lf));
    };
    lookAt(last_, piece.front());
    last_ = piece.back();
    const char* at = piece.data() + 1;
    std::size_t left = piece.size() - 1;
    // Without branches and with a fixed number of turns the compiler makes vectors of the inner loop.
    for (; left >= kBlock && crLf_ + lf_ + cr_ < 2; at += kBlock, left -= kBlock) {
        std::uint8_t crLf = 0, lf = 0, cr = 0;
        const char* const from = at - 1;
        for (std::size_t i = 0; i < kBlock; ++i) {
            const auto before = static_cast<std::uint8_t>(from[i] == '\r');
            const auto here = static_cast<std::uint8_t>(from[i + 1] == '\n');
            crLf = static_cast<std::uint8_t>(crLf | (before & here));
            lf = static_cast<std::uint8_t>(lf | (here & ~before));
            cr = static_cast<std::uint8_t>(cr | (before & ~here));
        }
        crLf_ |= crLf;
        lf_ |= lf;
        cr_ |= cr;
    }
    for (left = std::min(left, kBlock); left > 0; ++at, --left) lookAt(at[-1], *at);
}

bool BreakKinds::Mixed() const { return crLf_ + lf_ + (cr_ | static_cast<std::uint8_t>(last_ == '\r')) > 1; }
