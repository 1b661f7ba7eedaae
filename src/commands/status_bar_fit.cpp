#include "commands/status_bar_fit.h"

#include "ui/scale.h"

#include <algorithm>

namespace {

// Both at 96 dpi.
constexpr std::array<int, kStatusPartCount> kWidths = {0, 96, 130, 110, 64, 52, 168};
constexpr int kMinimumMessage = 140;
constexpr StatusPart kGiveUpOrder[] = {kSelection, kProgress, kLineEnding, kEncoding};

}  // namespace

std::array<int, kStatusPartCount> FitStatusParts(int width, int dpi) {
    std::array<int, kStatusPartCount> widths = {};
    int fixed = 0;
    for (std::size_t part = kProgress; part < kStatusPartCount; ++part) {
        widths[part] = ScaledTo(kWidths[part], dpi);
        fixed += widths[part];
    }
    for (const StatusPart part : kGiveUpOrder) {
        if (width - fixed >= ScaledTo(kMinimumMessage, dpi)) break;
        fixed -= widths[part];
        widths[part] = 0;
    }
    std::array<int, kStatusPartCount> ends = {};
    ends[kMessage] = std::max(0, width - fixed);
    for (std::size_t part = kProgress; part < kStatusPartCount; ++part) ends[part] = ends[part - 1] + widths[part];
    return ends;
}
