// Geometry of the tab bar: the widths of the tabs, their parts, the tab at a point, the place where a drag ends. Pure.
#include "tabs/tab_bar_layout.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr int PixelsAtDpi(int pixels, int dpi) { return (pixels * dpi + 48) / 96; }

TabRect Centred(const TabRect& tab, int left, int size) {
    const int top = tab.top + (tab.Height() - size) / 2;
    return {left, top, left + size, top + size};
}

int WholeWidth(const TabMetrics& metrics, int text) {
    const TabRect none = {0, 0, 0, metrics.height};
    return text + TabTextRect(metrics, none, true).left - TabCloseRect(metrics, none).left + metrics.padding / 4;
}

// Widths of the tabs when none but the active one is wider than `limit`.
std::vector<int> WidthsWithin(const TabMetrics& metrics, std::span<const TabWish> tabs, int active, int view,
                              int limit) {
    std::vector<int> widths;
    for (int i = 0; i < static_cast<int>(tabs.size()); ++i) {
        const TabWish& tab = tabs[static_cast<std::size_t>(i)];
        const int whole = WholeWidth(metrics, tab.text);
        const int most = i == active ? view : tab.pinned ? std::min(limit, metrics.pinnedWidth) : limit;
        widths.push_back(std::min(whole, most));
    }
    return widths;
}

int SumOf(const std::vector<int>& widths) {
    int sum = 0;
    for (const int width : widths) sum += width;
    return sum;
}

// The widest limit with which all tabs have room, if there is one.
std::vector<int> TabWidths(const TabMetrics& metrics, std::span<const TabWish> tabs, int active, int view) {
    int least = metrics.minWidth, most = metrics.maxWidth;
    while (least < most) {
        const int middle = (least + most + 1) / 2;
        if (SumOf(WidthsWithin(metrics, tabs, active, view, middle)) <= view)
            least = middle;
        else
            most = middle - 1;
    }
    return WidthsWithin(metrics, tabs, active, view, least);
}

}  // namespace

TabMetrics TabMetricsForDpi(int dpi) {
    return {.height = PixelsAtDpi(32, dpi),
            .minWidth = PixelsAtDpi(112, dpi),
            .maxWidth = PixelsAtDpi(220, dpi),
            .pinnedWidth = PixelsAtDpi(112, dpi),
            .padding = PixelsAtDpi(10, dpi),
            .closeSize = PixelsAtDpi(18, dpi),
            .markSize = PixelsAtDpi(8, dpi),
            .button = PixelsAtDpi(24, dpi),
            .accent = std::max(PixelsAtDpi(2, dpi), 2),
            .dragStart = PixelsAtDpi(6, dpi)};
}

TabStrip TabStripOf(const TabMetrics& metrics, int stripWidth, std::span<const TabWish> tabs, int active, int scroll) {
    const int bottom = metrics.height - 1;
    TabStrip strip;
    const int list = std::max(stripWidth - metrics.button, 0);
    strip.list = {list, 0, stripWidth, bottom};
    strip.view = list;
    std::vector<int> widths = TabWidths(metrics, tabs, active, strip.view);
    if (SumOf(widths) > strip.view) {
        strip.view = std::max(list - 2 * metrics.button, 0);
        strip.back = {strip.view, 0, strip.view + metrics.button, bottom};
        strip.forth = {strip.back.right, 0, list, bottom};
        widths = TabWidths(metrics, tabs, active, strip.view);
    }
    strip.mostScroll = std::max(SumOf(widths) - strip.view, 0);
    strip.scroll = std::clamp(scroll, 0, strip.mostScroll);
    int left = -strip.scroll;
    for (const int width : widths) {
        strip.tabs.push_back({left, 0, left + width, metrics.height});
        left += width;
    }
    return strip;
}

int TabScrollToShow(const TabStrip& strip, int index) {
    if (index < 0 || index >= static_cast<int>(strip.tabs.size())) return strip.scroll;
    const TabRect& tab = strip.tabs[static_cast<std::size_t>(index)];
    if (tab.left < 0) return strip.scroll + tab.left;
    return strip.scroll + std::clamp(tab.right - strip.view, 0, tab.left);
}

TabRect TabCloseRect(const TabMetrics& metrics, const TabRect& tab) {
    return Centred(tab, tab.right - metrics.padding / 2 - metrics.closeSize, metrics.closeSize);
}

TabRect TabMarkRect(const TabMetrics& metrics, const TabRect& tab) {
    return Centred(tab, tab.left + metrics.padding, metrics.markSize);
}

TabRect TabTextRect(const TabMetrics& metrics, const TabRect& tab, bool hasButton) {
    TabRect text = tab;
    text.left += metrics.padding + metrics.markSize + metrics.padding / 2;
    const int right =
        hasButton ? TabCloseRect(metrics, tab).left - metrics.padding / 4 : tab.right - metrics.padding / 2;
    text.right = std::max(text.left, right);
    return text;
}

int TabHit(std::span<const TabRect> tabs, int x, int y) {
    const auto hit = std::find_if(tabs.begin(), tabs.end(), [x, y](const TabRect& tab) { return tab.Contains(x, y); });
    return hit == tabs.end() ? -1 : static_cast<int>(hit - tabs.begin());
}

int TabHit(const TabStrip& strip, int x, int y) { return x < strip.view ? TabHit(strip.tabs, x, y) : -1; }

int TabDropIndex(std::span<const TabRect> tabs, int from, int x) {
    int index = 0;
    for (int i = 0; i < static_cast<int>(tabs.size()); ++i) {
        const TabRect& tab = tabs[static_cast<std::size_t>(i)];
        if (i != from && tab.left + tab.Width() / 2 < x) ++index;
    }
    return index;
}
