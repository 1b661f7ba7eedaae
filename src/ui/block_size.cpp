// How many lines go into a pane at a time. Pure.
#include "ui/block_size.h"

#include <algorithm>

namespace {

// A block takes about this long, so that with a repaint after it the window answers well within 100 ms.
constexpr double kBlockMs = 30.0;
constexpr std::size_t kMinBlockLines = 50;
constexpr std::size_t kMaxBlockLines = 2000;

}  // namespace

void BlockSizeLearn(BlockSize& size, std::size_t inserted, double milliseconds) {
    if (inserted < size.lines) return;
    const double wanted = static_cast<double>(inserted) * kBlockMs / std::max(milliseconds, 1.0);
    // Half way: one slow block, because the machine was busy, is no reason to make all that follow tiny.
    const auto next = static_cast<std::size_t>((static_cast<double>(size.lines) + wanted) / 2.0);
    size.lines = std::clamp(next, kMinBlockLines, kMaxBlockLines);
}
