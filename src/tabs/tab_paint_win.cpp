// Paints the tab strip in the colours of the theme. UI thread.
#include "tabs/tab_bar_internal.h"

#include "documents/document_row.h"
#include "ui/chrome.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/paint.h"

#include <algorithm>
#include <cwchar>

namespace {

RECT ToRect(const TabRect& rect) { return {rect.left, rect.top, rect.right, rect.bottom}; }

int StrokeWidth() { return std::max(UiScaled(1), 1); }

void DrawCross(HDC dc, const TabRect& box, COLORREF colour) {
    const int arm = UiScaled(4);
    const int x = (box.left + box.right) / 2;
    const int y = (box.top + box.bottom) / 2;
    const POINT lines[][2] = {{{x - arm, y - arm}, {x + arm + 1, y + arm + 1}},
                              {{x - arm, y + arm}, {x + arm + 1, y - arm - 1}}};
    DrawStrokes(dc, lines, colour, StrokeWidth());
}

TabRect ShrunkTo(const TabRect& box, int size) {
    const int left = (box.left + box.right - size) / 2;
    const int top = (box.top + box.bottom - size) / 2;
    return {left, top, left + size, top + size};
}

bool HasCloseButton(const DocumentTab& tab, int index) {
    return tab.modified || index == g_documents.activeTab ||
           (index == g_tabBar.pointer.hoverTab && !g_tabBar.pointer.dragging);
}

// Paints the close button. A modified document has a dot there while the pointer is not on it.
void PaintCloseButton(HDC dc, const DocumentTab& tab, int index, const TabRect& rect, COLORREF textColour) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const TabMetrics metrics = TabBarMetrics();
    const TabRect box = TabCloseRect(metrics, rect);
    const bool hovered = g_tabBar.pointer.hoverTab == index && !g_tabBar.pointer.dragging;
    const bool over = hovered && g_tabBar.pointer.hoverClose;
    if (tab.modified && !over) {
        FillDot(dc, ToRect(ShrunkTo(box, metrics.markSize)), chrome.modified);
        return;
    }
    if (!HasCloseButton(tab, index)) return;
    if (over) FillArea(dc, ToRect(box), chrome.line);
    DrawCross(dc, box, over ? chrome.tabActiveText : textColour);
}

}  // namespace

void TabBarPaintTab(HDC dc, int index, const TabRect& rect) {
    if (!IsTabIndex(index)) return;
    const DocumentTab& tab = TabAt(index);
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const TabMetrics metrics = TabBarMetrics();
    const bool active = index == g_documents.activeTab;
    const bool hovered = index == g_tabBar.pointer.hoverTab;

    RECT body = ToRect(rect);
    FillArea(dc, body, active ? chrome.tabActiveBack : hovered ? chrome.hover : chrome.tabBack);
    if (active)
        FillArea(dc, {rect.left, rect.top, rect.right, rect.top + metrics.accent}, chrome.accent);
    else
        FillArea(dc, {rect.left, rect.bottom - 1, rect.right, rect.bottom}, chrome.line);
    // A thin line between tabs. At the active tab it has the full height.
    const int inset = active ? 0 : metrics.padding * 4 / 5;
    FillArea(dc, {rect.right - 1, rect.top + inset, rect.right, rect.bottom - (active ? 0 : inset)}, chrome.line);

    const bool hasMark = tab.buildMark != BuildMark::None;
    if (hasMark)
        FillDot(dc, ToRect(TabMarkRect(metrics, rect)),
                tab.buildMark == BuildMark::Error ? chrome.error : chrome.success);
    const COLORREF textColour = active ? chrome.tabActiveText : chrome.tabText;
    RECT text = ToRect(TabTextRect(metrics, rect, hasMark, HasCloseButton(tab, index)));
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, textColour);
    DrawTextW(dc, tab.label, static_cast<int>(std::wcslen(tab.label)), &text,
              DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    PaintCloseButton(dc, tab, index, rect, textColour);
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
    const ThemeChrome& chrome = ThemeCurrentChrome();
    FillArea(dc, client, chrome.tabBack);
    const int middle = (client.left + client.right) / 2;
    if (pressedLeft) FillArea(dc, {client.left, client.top, middle, client.bottom}, chrome.hover);
    if (pressedRight) FillArea(dc, {middle, client.top, client.right, client.bottom}, chrome.hover);
    const int arm = UiScaled(4);
    const int y = (client.top + client.bottom) / 2;
    const int left = (client.left + middle) / 2;
    const int right = (middle + client.right) / 2;
    const POINT lines[][2] = {{{left + arm / 2, y - arm}, {left - arm / 2, y}},
                              {{left - arm / 2, y}, {left + arm / 2 + 1, y + arm + 1}},
                              {{right - arm / 2, y - arm}, {right + arm / 2, y}},
                              {{right + arm / 2, y}, {right - arm / 2 - 1, y + arm + 1}}};
    DrawStrokes(dc, lines, chrome.tabText, StrokeWidth());
}
