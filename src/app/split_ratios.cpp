#include "app/split_ratios.h"

#include "app/layout.h"
#include "ui/scale.h"

#include <cmath>

namespace {

void StoreRatios(const SplitRatios& ratios, Settings& settings) {
    const auto stored = [](double ratio) { return static_cast<std::int32_t>(std::lround(ratio * kFullRatio)); };
    settings.splitterRatio = {stored(ratios.output), settings.splitter};
    settings.sidebarRatio = {stored(ratios.side), settings.aiSidebarWidth};
}

// A setting that was changed otherwise counts itself.
bool IsKnown(const StoredRatio& stored, std::int32_t setting) { return stored.ratio > 0 && stored.of == setting; }

}  // namespace

double RatioOf(int position, int start, int end) {
    return end > start ? static_cast<double>(position - start) / (end - start) : 0.0;
}

int PositionAt(double ratio, int start, int end) {
    return start + static_cast<int>(std::lround(ratio * (end - start)));
}

void RatiosCapture(SplitRatios& ratios, Settings& settings, const BarArea& area) {
    if (area.width <= 0) return;
    settings.splitter = ClampSplitter(area.bottom, area.top, settings.splitter);
    ratios.output = RatioOf(settings.splitter, area.top, area.bottom);
    ratios.side = RatioOf(ScaledTo(settings.aiSidebarWidth, area.dpi), 0, area.width);
    StoreRatios(ratios, settings);
}

void RatiosRestore(SplitRatios& ratios, Settings& settings, const BarArea& area) {
    const StoredRatio output = settings.splitterRatio, side = settings.sidebarRatio;
    if (output.ratio == 0 && settings.splitter == kUnchosenSplit && area.bottom > area.top)
        settings.splitter = PositionAt(kFirstOutputRatio, area.top, area.bottom);
    const bool outputKnown = IsKnown(output, settings.splitter), sideKnown = IsKnown(side, settings.aiSidebarWidth);
    RatiosCapture(ratios, settings, area);
    if (outputKnown) ratios.output = static_cast<double>(output.ratio) / kFullRatio;
    if (sideKnown) ratios.side = static_cast<double>(side.ratio) / kFullRatio;
    RatiosApply(ratios, settings, area);
}

void RatiosApply(SplitRatios& ratios, Settings& settings, const BarArea& area) {
    if (ratios.output <= 0.0) return;
    if (area.bottom > area.top)
        settings.splitter = ClampSplitter(area.bottom, area.top, PositionAt(ratios.output, area.top, area.bottom));
    const int side = PositionAt(ratios.side, 0, area.width);
    settings.aiSidebarWidth = ClampSideWidth(static_cast<int>(std::lround(side * 96.0 / area.dpi)));
    StoreRatios(ratios, settings);
}
