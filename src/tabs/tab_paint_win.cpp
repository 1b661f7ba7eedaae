// Paints the tab strip: by theme, from the records, in one go to a memory bitmap. Changes nothing. UI thread.
#include "tabs/tab_bar_internal.h"

#include "base/handles.h"
#include "documents/document_row.h"
#include "ui/chrome.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <cwchar>

namespace {

RECT ToRect(const TabRect& rect) { return {rect.left, rect.top, rect.right, rect.bottom}; }
int Scaled(int pixels) { return MulDiv(pixels, g_ui.dpi, USER_DEFAULT_SCREEN_DPI); }

void Fill(HDC dc, const RECT& rect, COLORREF colour) {
    // The stock brush takes the colour of the device context: nothing to create or free.
    SetDCBrushColor(dc, colour);
    FillRect(dc, &rect, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

void Dot(HDC dc, const TabRect& area, COLORREF colour) {
    const HGDIOBJ oldBrush = SelectObject(dc, GetStockObject(DC_BRUSH));
    const HGDIOBJ oldPen = SelectObject(dc, GetStockObject(DC_PEN));
    SetDCBrushColor(dc, colour);
    SetDCPenColor(dc, colour);
    Ellipse(dc, area.left, area.top, area.right, area.bottom);
    SelectObject(dc, oldPen);
    SelectObject(dc, oldBrush);
}

void Strokes(HDC dc, COLORREF colour, const POINT (*lines)[2], int count) {
    const UniquePen pen(CreatePen(PS_SOLID, std::max(Scaled(1), 1), colour));
    const HGDIOBJ old = SelectObject(dc, pen.Get());
    for (int i = 0; i < count; ++i) {
        MoveToEx(dc, lines[i][0].x, lines[i][0].y, nullptr);
        LineTo(dc, lines[i][1].x, lines[i][1].y);
    }
    SelectObject(dc, old);
}

void Cross(HDC dc, const TabRect& box, COLORREF colour) {
    const int arm = Scaled(4);
    const int x = (box.left + box.right) / 2;
    const int y = (box.top + box.bottom) / 2;
    const POINT lines[][2] = {{{x - arm, y - arm}, {x + arm + 1, y + arm + 1}},
                              {{x - arm, y + arm}, {x + arm + 1, y - arm - 1}}};
    Strokes(dc, colour, lines, 2);
}

TabRect Shrunk(const TabRect& box, int size) {
    const int left = (box.left + box.right - size) / 2;
    const int top = (box.top + box.bottom - size) / 2;
    return {left, top, left + size, top + size};
}

bool HasButton(const DocumentTab& tab, int index) {
    return tab.modified || index == g_documents.activeTab || (index == g_tabBar.hoverTab && !g_tabBar.dragging);
}

// The close button, or the modified dot in its place while the pointer is elsewhere.
void PaintButton(HDC dc, const DocumentTab& tab, int index, const TabRect& rect, COLORREF textColour) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const TabMetrics metrics = TabBarMetrics();
    const TabRect box = TabCloseRect(metrics, rect);
    const bool hovered = g_tabBar.hoverTab == index && !g_tabBar.dragging;
    const bool over = hovered && g_tabBar.hoverClose;
    if (tab.modified && !over) {
        Dot(dc, Shrunk(box, metrics.markSize), chrome.modified);
        return;
    }
    if (!HasButton(tab, index)) return;
    if (over) Fill(dc, ToRect(box), chrome.line);
    Cross(dc, box, over ? chrome.tabActiveText : textColour);
}

}  // namespace

void TabBarPaintTab(HDC dc, int index, const TabRect& rect) {
    if (!IsTabIndex(index)) return;
    const DocumentTab& tab = TabAt(index);
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const TabMetrics metrics = TabBarMetrics();
    const bool active = index == g_documents.activeTab;
    const bool hovered = index == g_tabBar.hoverTab;

    RECT body = ToRect(rect);
    Fill(dc, body, active ? chrome.tabActiveBack : hovered ? chrome.hover : chrome.tabBack);
    if (active)
        Fill(dc, {rect.left, rect.top, rect.right, rect.top + metrics.accent}, chrome.accent);
    else
        Fill(dc, {rect.left, rect.bottom - 1, rect.right, rect.bottom}, chrome.line);
    // A hairline between tabs; around the active one its own edges do.
    const int inset = active ? 0 : metrics.padding * 4 / 5;
    Fill(dc, {rect.right - 1, rect.top + inset, rect.right, rect.bottom - (active ? 0 : inset)}, chrome.line);

    const bool hasMark = tab.buildMark != BuildMark::None;
    if (hasMark) Dot(dc, TabMarkRect(metrics, rect), tab.buildMark == BuildMark::Error ? chrome.error : chrome.success);
    const COLORREF textColour = active ? chrome.tabActiveText : chrome.tabText;
    RECT text = ToRect(TabTextRect(metrics, rect, hasMark, HasButton(tab, index)));
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, textColour);
    DrawTextW(dc, tab.label, static_cast<int>(std::wcslen(tab.label)), &text,
              DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    PaintButton(dc, tab, index, rect, textColour);
}

void TabBarPaint(HWND tabControl, HDC dc, const RECT& client) {
    (void)tabControl;
    const ThemeChrome& chrome = ThemeCurrentChrome();
    Fill(dc, client, chrome.tabBack);
    Fill(dc, {client.left, client.bottom - 1, client.right, client.bottom}, chrome.line);
    const HGDIOBJ oldFont = g_tabBar.font ? SelectObject(dc, g_tabBar.font) : nullptr;
    const std::vector<TabRect> rects = TabBarRects();
    for (std::size_t i = 0; i < rects.size(); ++i)
        if (rects[i].right > client.left && rects[i].left < client.right)
            TabBarPaintTab(dc, static_cast<int>(i), rects[i]);
    if (oldFont) SelectObject(dc, oldFont);
}

void TabBarPaintScroller(HDC dc, const RECT& client, bool pressedLeft, bool pressedRight) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    Fill(dc, client, chrome.tabBack);
    const int middle = (client.left + client.right) / 2;
    if (pressedLeft) Fill(dc, {client.left, client.top, middle, client.bottom}, chrome.hover);
    if (pressedRight) Fill(dc, {middle, client.top, client.right, client.bottom}, chrome.hover);
    const int arm = Scaled(4);
    const int y = (client.top + client.bottom) / 2;
    const int left = (client.left + middle) / 2;
    const int right = (middle + client.right) / 2;
    const POINT lines[][2] = {{{left + arm / 2, y - arm}, {left - arm / 2, y}},
                              {{left - arm / 2, y}, {left + arm / 2 + 1, y + arm + 1}},
                              {{right - arm / 2, y - arm}, {right + arm / 2, y}},
                              {{right + arm / 2, y}, {right - arm / 2 - 1, y + arm + 1}}};
    Strokes(dc, chrome.tabText, lines, 4);
}
