// Paints the tab strip in the colours of the theme. UI thread.
#include "tabs/tab_bar_internal.h"

#include "documents/document_row.h"
#include "tabs/tab_look.h"
#include "tabs/tabs_state.h"
#include "ui/chrome.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/paint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <string>
#include <vector>

namespace {

constexpr int kArm = 4;  // of the cross and the arrows, at 96 dpi

RECT ToRect(const TabRect& rect) { return {rect.left, rect.top, rect.right, rect.bottom}; }

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

void DrawTabStrokes(HDC dc, const std::vector<TabStroke>& strokes, TabColour colour, int width) {
    for (const TabStroke& stroke : strokes) {
        const POINT line[][2] = {{{stroke.fromX, stroke.fromY}, {stroke.toX, stroke.toY}}};
        DrawStrokes(dc, line, TabColourOf(colour), std::max(UiScaled(width), 1));
    }
}

void DrawArrow(HDC dc, const RECT& place, COLORREF colour) {
    const POINT corners[] = {
        {place.left, place.top}, {place.left, place.bottom - 1}, {place.right, (place.top + place.bottom) / 2}};
    DrawTriangle(dc, corners, colour);
}

void DrawCut(HDC dc, const std::wstring& text, RECT place, COLORREF colour) {
    SetTextColor(dc, colour);
    DrawTextW(dc, text.c_str(), -1, &place, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
}

// The folder keeps half of the room, because it is what tells the tab from others.
void DrawName(HDC dc, const TabName& name, RECT place, TabColour colour) {
    SetBkMode(dc, TRANSPARENT);
    const COLORREF text = TabColourOf(colour);
    const int room = place.right - place.left, gap = name.folderWidth > 0 ? TabBarMetrics().padding / 2 : 0;
    const int folder = std::min(name.folderWidth, std::max(room - gap - name.labelWidth, room / 2 - gap));
    RECT label = place;
    label.right -= name.folderWidth > 0 ? folder + gap : 0;
    DrawCut(dc, name.label, label, text);
    if (name.folderWidth == 0 || folder <= 0) return;
    place.left = std::min(label.right, label.left + name.labelWidth) + gap;
    DrawCut(dc, name.folder, place, MixColours(text, TabColourOf(TabColour::Back), 25));
}

}  // namespace

COLORREF TabColourOf(TabColour colour) {
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

void TabDrawShapes(HDC dc, const TabLook& look) {
    for (const TabPart& part : look.parts) {
        const RECT place = ToRect(part.place);
        const COLORREF colour = TabColourOf(part.colour);
        switch (part.shape) {
            case TabShape::Area: FillArea(dc, place, colour); break;
            case TabShape::Dot: FillDot(dc, place, colour); break;
            case TabShape::Ring: DrawRing(dc, place, colour); break;
            case TabShape::Arrow: DrawArrow(dc, place, colour); break;
            case TabShape::Frame: FrameArea(dc, place, colour); break;
            case TabShape::Label: break;
        }
    }
    DrawTabStrokes(dc, look.lightStrokes, look.lightColour, 2);
    DrawTabStrokes(dc, look.strokes, look.strokeColour, 1);
}

void TabBarPaintTab(HDC dc, int index, const TabRect& rect) {
    if (!IsTabIndex(index)) return;
    const DocumentTab& tab = TabAt(index);
    const TabPointer& pointer = g_tabBar.pointer;
    const TabFacts facts = {.active = index == g_documents.activeTab,
                            .focused = index == g_documents.activeTab && GetFocus() == g_tabs.hTabCtrl,
                            .modified = tab.modified,
                            .pinned = tab.pinned,
                            .light = TabLightOf(TabStateOf(tab)),
                            .pointed = index == pointer.hoverTab,
                            .onClose = pointer.hoverClose,
                            .dragging = pointer.dragging};
    const TabLook look = TabLookOf(facts, TabBarMetrics(), rect, UiScaled(kArm));
    TabDrawShapes(dc, look);
    if (static_cast<std::size_t>(index) >= g_tabBar.names.size()) return;
    for (const TabPart& part : look.parts)
        if (part.shape == TabShape::Label)
            DrawName(dc, g_tabBar.names[static_cast<std::size_t>(index)], ToRect(part.place), part.colour);
}

static void PaintButtons(HDC dc, const TabStrip& strip) {
    const struct {
        TabButton button;
        const TabRect& area;
        bool works;
    } buttons[] = {{TabButton::Back, strip.back, strip.scroll > 0},
                   {TabButton::Forth, strip.forth, strip.scroll < strip.mostScroll},
                   {TabButton::List, strip.list, TabCount() > 0}};
    for (const auto& row : buttons) {
        if (row.area.Width() == 0) continue;
        const bool lit = g_tabBar.pointer.hoverButton == static_cast<int>(row.button);
        TabDrawShapes(dc, TabButtonLook(row.button, row.area, lit, row.works, UiScaled(kArm)));
    }
}

void TabBarPaint(HDC dc, const RECT& client) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    FillArea(dc, client, chrome.tabBack);
    FillArea(dc, {client.left, client.bottom - 1, client.right, client.bottom}, chrome.line);
    const HGDIOBJ oldFont = SelectObject(dc, UiFont());
    const TabStrip strip = TabBarStrip();
    for (std::size_t i = 0; i < strip.tabs.size(); ++i)
        if (strip.tabs[i].right > client.left && strip.tabs[i].left < strip.view)
            TabBarPaintTab(dc, static_cast<int>(i), strip.tabs[i]);
    PaintButtons(dc, strip);
    SelectObject(dc, oldFont);
}
