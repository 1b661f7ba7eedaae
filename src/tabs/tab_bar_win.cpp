// Keeps the items of the tab control like the row of documents. Painting is in tab_paint_win.cpp, the pointer in
// tab_input_win.cpp. UI thread.
#include "tabs/tab_bar.h"

#include "base/log.h"
#include "documents/document_row.h"
#include "tabs/tab_bar_internal.h"
#include "tabs/tabs_state.h"
#include "ui/control_theme.h"
#include "ui/fonts.h"
#include "ui/redraw.h"
#include "ui/ui_state.h"

#include <commctrl.h>

#include <algorithm>
#include <optional>

namespace {

void InsertTabItem(int index) {
    TCITEMW item = {};
    item.mask = TCIF_TEXT;
    item.pszText = TabAt(index).label;
    if (SendMessageW(g_tabs.hTabCtrl, TCM_INSERTITEMW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item)) < 0)
        AppLogMsg(L"FAIL: TabBarAdd: no tab for %s", TabAt(index).label);
}

void SetTabItemText(int index) {
    TCITEMW item = {};
    item.mask = TCIF_TEXT;
    item.pszText = TabAt(index).label;
    SendMessageW(g_tabs.hTabCtrl, TCM_SETITEMW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
}

void SetTabSize(int width, int height) {
    static int lastWidth = 0;
    static int lastHeight = 0;
    if (width == lastWidth && height == lastHeight) return;
    lastWidth = width;
    lastHeight = height;
    SendMessageW(g_tabs.hTabCtrl, TCM_SETITEMSIZE, 0, MAKELPARAM(width, height));
}

void ApplyTabFont() { SendMessageW(g_tabs.hTabCtrl, WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), FALSE); }

}  // namespace

TabMetrics TabBarMetrics() { return TabMetricsForDpi(g_ui.dpi); }

int TabBarHeight() { return TabBarMetrics().height; }

std::vector<TabRect> TabBarRects() {
    std::vector<TabRect> rects;
    rects.reserve(g_documents.tabs.size());
    const int height = TabBarHeight();
    for (int i = 0; i < TabCount(); ++i) {
        RECT rect = {};
        SendMessageW(g_tabs.hTabCtrl, TCM_GETITEMRECT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&rect));
        // The control leaves a few pixels above and below its items; the painted tabs fill the strip.
        rects.push_back({static_cast<int>(rect.left), 0, static_cast<int>(rect.right), height});
    }
    return rects;
}

void TabBarUpdateWidths() {
    RECT client = {};
    if (g_tabs.hTabCtrl == nullptr || !GetClientRect(g_tabs.hTabCtrl, &client)) return;
    const TabMetrics metrics = TabBarMetrics();
    const int width = TabWidthFor(metrics, client.right - metrics.padding / 2, TabCount());
    SetTabSize(width, metrics.height);
    TabBarPlaceScroller(g_tabs.hTabCtrl);
    InvalidateRect(g_tabs.hTabCtrl, nullptr, FALSE);
}

void TabBarInit(HWND tabControl) {
    if (tabControl == nullptr) return;
    g_tabs.hTabCtrl = tabControl;
    const LONG_PTR style = GetWindowLongPtrW(tabControl, GWL_STYLE);
    SetWindowLongPtrW(tabControl, GWL_STYLE,
                      style | TCS_OWNERDRAWFIXED | TCS_FIXEDWIDTH | TCS_FOCUSNEVER | WS_CLIPCHILDREN);
    if (!TabBarInstallSubclass(tabControl)) AppLogMsg(L"FAIL: TabBarInit: no subclass");
    ApplyTabFont();
    TabBarUpdateWidths();
}

// Between the two the tabs are neither painted nor made to fit. They are so narrow that all fit, because the control places
// its scroller at each new tab otherwise.
void TabBarOnComing(bool coming) {
    static std::optional<RedrawPause> pause;
    pause.reset();
    g_tabBar.manyComing = coming;
    if (!coming) return TabBarUpdateWidths();
    pause.emplace(g_tabs.hTabCtrl);
    SetTabSize(1, TabBarHeight());
}

void TabBarOnOpened(DocumentId document) {
    InsertTabItem(TabBarFindDocument(document));
    if (!g_tabBar.manyComing) TabBarUpdateWidths();
}

void TabBarOnActivated() {
    SendMessageW(g_tabs.hTabCtrl, TCM_SETCURSEL, static_cast<WPARAM>(g_documents.activeTab), 0);
    TabBarRefresh();
}

void TabBarOnChanged(DocumentId document) {
    const int index = TabBarFindDocument(document);
    if (index >= 0) SetTabItemText(index);
    TabBarRefresh();
}

void TabBarOnMoved(int from, int to) {
    for (int i = std::min(from, to); i <= std::max(from, to); ++i) SetTabItemText(i);
    TabBarOnActivated();
}

void TabBarOnClosed(int index) {
    SendMessageW(g_tabs.hTabCtrl, TCM_DELETEITEM, static_cast<WPARAM>(index), 0);
    g_tabBar.pointer.hoverTab = -1;
    TabBarUpdateWidths();
}

void TabBarRefresh() {
    if (g_tabs.hTabCtrl != nullptr) InvalidateRect(g_tabs.hTabCtrl, nullptr, FALSE);
}

bool TabBarHandleDrawItem(const DRAWITEMSTRUCT& item) {
    if (g_tabs.hTabCtrl == nullptr || item.hwndItem != g_tabs.hTabCtrl) return false;
    const int index = static_cast<int>(item.itemID);
    const std::vector<TabRect> rects = TabBarRects();
    if (index < 0 || index >= static_cast<int>(rects.size())) return true;
    const HGDIOBJ old = SelectObject(item.hDC, UiFont());
    TabBarPaintTab(item.hDC, index, rects[static_cast<std::size_t>(index)]);
    SelectObject(item.hDC, old);
    return true;
}

bool TabBarHandleNotify(const NMHDR& header) {
    if (g_tabs.hTabCtrl == nullptr || header.hwndFrom != g_tabs.hTabCtrl) return false;
    if (header.code == TCN_SELCHANGE)
        TabBarActivate(static_cast<int>(SendMessageW(g_tabs.hTabCtrl, TCM_GETCURSEL, 0, 0)));
    return true;
}

void TabBarApplyTheme() {
    ApplyTabFont();
    TabBarUpdateWidths();
    TooltipApplyTheme(g_tabBar.tooltip);
}
