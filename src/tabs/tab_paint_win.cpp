// Paints the tab strip in the colours of the theme. UI thread.
#include "tabs/tab_bar_internal.h"

#include "documents/document_row.h"
#include "tabs/tab_look.h"
#include "ui/chrome.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/paint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace {

constexpr int kArm = 4;  // of the cross and the arrows, at 96 dpi

RECT ToRect(const TabRect& rect) { return {rect.left, rect.top, rect.right, rect.bottom}; }

COLORREF ColourOf(TabColour colour) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    switch (colour) {
        case TabColour::Back: return chrome.tabBack;
        case TabColour::ActiveBack: return chrome.tabActiveBack;
        case TabColour::Hover: return chrome.hover;
        case TabColour::Accent: return chrome.accent;
        case TabColour::Line: return chrome.line;
        case TabColour::Text: return chrome.tabText;
        case TabColour::ActiveText: return chrome.tabActiveText;
        case TabColour::Modified: return chrome.modified;
        case TabColour::Error: return chrome.error;
        case TabColour::Outside: return chrome.modified;
        case TabColour::Success: break;
    }
    return chrome.success;
}

void DrawRing(HDC dc, const RECT& place, COLORREF colour) {
    std::array<POINT, 25> points = {};
    const double radius = (place.right - place.left - 1) / 2.0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double angle = 2 * std::numbers::pi * static_cast<double>(i) / (points.size() - 1);
        points[i] = {std::lround(place.left + radius + radius * std::cos(angle)),
                     std::lround(place.top + radius + radius * std::sin(angle))};
    }
    DrawPolyline(dc, points, colour, std::max(UiScaled(2), 1));
}

void DrawTabStrokes(HDC dc, const std::vector<TabStroke>& strokes, TabColour colour) {
    for (const TabStroke& stroke : strokes) {
        const POINT line[][2] = {{{stroke.fromX, stroke.fromY}, {stroke.toX, stroke.toY}}};
        DrawStrokes(dc, line, ColourOf(colour), std::max(UiScaled(1), 1));
    }
}

void DrawLook(HDC dc, const TabLook& look, const wchar_t* label) {
    for (const TabPart& part : look.parts) {
        RECT place = ToRect(part.place);
        switch (part.shape) {
            case TabShape::Area: FillArea(dc, place, ColourOf(part.colour)); break;
            case TabShape::Dot: FillDot(dc, place, ColourOf(part.colour)); break;
            case TabShape::Ring: DrawRing(dc, place, ColourOf(part.colour)); break;
            case TabShape::Label:
                SetBkMode(dc, TRANSPARENT);
                SetTextColor(dc, ColourOf(part.colour));
                DrawTextW(dc, label, -1, &place, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
                break;
        }
    }
    DrawTabStrokes(dc, look.markStrokes, TabColour::Outside);
    DrawTabStrokes(dc, look.strokes, look.strokeColour);
}

TabMark MarkOf(BuildMark mark) {
    if (mark == BuildMark::None) return TabMark::None;
    return mark == BuildMark::Error ? TabMark::Error : TabMark::Success;
}

TabFileMark FileMarkOf(const DocumentTab& tab) {
    switch (tab.outside.kind) {
        case OutsideKind::Changed:
        case OutsideKind::Replaced: return TabFileMark::Changed;
        case OutsideKind::Gone:
        case OutsideKind::Moved: return TabFileMark::Gone;
        case OutsideKind::None: break;
    }
    return tab.onDisk.readOnly ? TabFileMark::ReadOnly : TabFileMark::None;
}

}  // namespace

void TabBarPaintTab(HDC dc, int index, const TabRect& rect) {
    if (!IsTabIndex(index)) return;
    const DocumentTab& tab = TabAt(index);
    const TabPointer& pointer = g_tabBar.pointer;
    const TabFacts facts = {.active = index == g_documents.activeTab,
                            .modified = tab.modified,
                            .mark = MarkOf(tab.buildMark),
                            .fileMark = FileMarkOf(tab),
                            .pointed = index == pointer.hoverTab,
                            .onClose = pointer.hoverClose,
                            .dragging = pointer.dragging};
    DrawLook(dc, TabLookOf(facts, TabBarMetrics(), rect, UiScaled(kArm)), tab.label);
}

void TabBarPaint(HDC dc, const RECT& client) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    FillArea(dc, client, chrome.tabBack);
    FillArea(dc, {client.left, client.bottom - 1, client.right, client.bottom}, chrome.line);
    const HGDIOBJ oldFont = SelectObject(dc, UiFont());
    const std::vector<TabRect> rects = TabBarRects();
    for (std::size_t i = 0; i < rects.size(); ++i)
        if (rects[i].right > client.left && rects[i].left < client.right)
            TabBarPaintTab(dc, static_cast<int>(i), rects[i]);
    SelectObject(dc, oldFont);
}

void TabBarPaintScroller(HDC dc, const RECT& client, bool pressedLeft, bool pressedRight) {
    const TabRect area = {static_cast<int>(client.left), static_cast<int>(client.top), static_cast<int>(client.right),
                          static_cast<int>(client.bottom)};
    DrawLook(dc, ScrollerLookOf(area, pressedLeft, pressedRight, UiScaled(kArm)), L"");
}
