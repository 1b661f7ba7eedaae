// Geometry of the tab bar: the parts of a tab, the tab at a point, the place where a drag ends. Pure.
#include "tabs/tab_bar_layout.h"

#include <algorithm>

namespace {

constexpr int PixelsAtDpi(int pixels, int dpi) { return (pixels * dpi + 48) / 96; }

TabRect Centred(const TabRect& tab, int left, int size) {
    const int top = tab.top + (tab.Height() - size) / 2;
    return {left, top, left + size, top + size};
}

}  // namespace

TabMetrics TabMetricsForDpi(int dpi) {
    return {.height = PixelsAtDpi(32, dpi),
            .minWidth = PixelsAtDpi(112, dpi),
            .maxWidth = PixelsAtDpi(176, dpi),
            .padding = PixelsAtDpi(10, dpi),
            .closeSize = PixelsAtDpi(18, dpi),
            .markSize = PixelsAtDpi(8, dpi),
            .scroller = PixelsAtDpi(44, dpi),
            .accent = std::max(PixelsAtDpi(2, dpi), 2),
            .dragStart = PixelsAtDpi(6, dpi)};
}

int TabWidthFor(const TabMetrics& metrics, int stripWidth, int count) {
    if (count <= 0) return metrics.maxWidth;
    return std::clamp(stripWidth / count, metrics.minWidth, metrics.maxWidth);
}

TabRect TabCloseRect(const TabMetrics& metrics, const TabRect& tab) {
    return Centred(tab, tab.right - metrics.padding / 2 - metrics.closeSize, metrics.closeSize);
}

TabRect TabMarkRect(const TabMetrics& metrics, const TabRect& tab) {
    return Centred(tab, tab.left + metrics.padding, metrics.markSize);
}

TabRect TabTextRect(const TabMetrics& metrics, const TabRect& tab, bool hasMark, bool hasButton) {
    TabRect text = tab;
    text.left += metrics.padding;
    if (hasMark) text.left += metrics.markSize + metrics.padding / 2;
    const int right =
        hasButton ? TabCloseRect(metrics, tab).left - metrics.padding / 4 : tab.right - metrics.padding / 2;
    text.right = std::max(text.left, right);
    return text;
}

TabRect TabScrollerRect(const TabMetrics& metrics, int stripWidth) {
    return {std::max(stripWidth - metrics.scroller, 0), 0, stripWidth, metrics.height - 1};
}

int TabHit(std::span<const TabRect> tabs, int x, int y) {
    const auto hit = std::find_if(tabs.begin(), tabs.end(), [x, y](const TabRect& tab) { return tab.Contains(x, y); });
    return hit == tabs.end() ? -1 : static_cast<int>(hit - tabs.begin());
}

int TabDropIndex(std::span<const TabRect> tabs, int from, int x) {
    int index = 0;
    for (int i = 0; i < static_cast<int>(tabs.size()); ++i) {
        const TabRect& tab = tabs[static_cast<std::size_t>(i)];
        if (i != from && tab.left + tab.Width() / 2 < x) ++index;
    }
    return index;
}
