#include "commands/status_bar_fit.h"

#include <algorithm>

static constexpr StatusPart kGiveUpOrder[] = {kSelection, kZoom,       kTabWidth, kProgress,
                                              kProject,   kLineEnding, kEncoding};

StatusWidths FitStatusParts(int width, const StatusWidths& wanted) {
    StatusWidths widths = wanted;
    int fixed = 0;
    for (std::size_t part = kProgress; part < kStatusPartCount; ++part) fixed += widths[part];
    for (const StatusPart part : kGiveUpOrder) {
        if (width - fixed >= wanted[kMessage]) break;
        fixed -= widths[part];
        widths[part] = 0;
    }
    StatusWidths ends = {};
    ends[kMessage] = std::max(0, width - fixed);
    for (std::size_t part = kProgress; part < kStatusPartCount; ++part) ends[part] = ends[part - 1] + widths[part];
    return ends;
}
