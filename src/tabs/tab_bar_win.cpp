// Keeps the items of the tab control like the row of documents, with their names. The control has the items, the
// selection and what a screen reader asks for; where the tabs stand is decided here, because all its own tabs have one
// width. Painting is in tab_paint_win.cpp, the pointer and the keys in tab_input_win.cpp. UI thread.
#include "tabs/tab_bar.h"

#include "base/log.h"
#include "documents/document_row.h"
#include "tabs/tab_bar_internal.h"
#include "tabs/tab_names.h"
#include "tabs/tab_text.h"
#include "tabs/tabs_state.h"
#include "ui/control_theme.h"
#include "ui/fonts.h"
#include "ui/redraw.h"
#include "ui/ui_state.h"

#include <commctrl.h>

#include <algorithm>
#include <optional>

TabBarState g_tabBar;

namespace {

void InsertTabItem(int index) {
    TCITEMW item = {};
    item.mask = TCIF_TEXT;
    item.pszText = TabAt(index).label;
    if (SendMessageW(g_tabs.hTabCtrl, TCM_INSERTITEMW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item)) < 0)
        AppLogMsg(L"FAIL: TabBarAdd: no tab for %s", TabAt(index).label);
}

void SetTabItemText(int index) {
    std::wstring name = TabBarNameOf(index);
    TCITEMW item = {};
    item.mask = TCIF_TEXT;
    item.pszText = name.data();
    SendMessageW(g_tabs.hTabCtrl, TCM_SETITEMW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
}

// The widths of the names, of which only new ones are measured.
void MeasureNames() {
    constexpr std::size_t kMostWidths = 4096;  // names that are gone are not kept for ever
    if (g_tabBar.widths.size() > kMostWidths) g_tabBar.widths.clear();
    std::vector<std::wstring> texts;
    for (const TabName& name : g_tabBar.names)
        for (const std::wstring& text : {name.label, name.folder})
            if (!text.empty() && g_tabBar.widths.try_emplace(text, 0).second) texts.push_back(text);
    const std::vector<int> widths = UiTextWidths(texts);
    for (std::size_t i = 0; i < texts.size(); ++i) g_tabBar.widths[texts[i]] = widths[i];
    for (TabName& name : g_tabBar.names) {
        name.labelWidth = name.label.empty() ? 0 : g_tabBar.widths[name.label];
        name.folderWidth = name.folder.empty() ? 0 : g_tabBar.widths[name.folder];
    }
}

std::vector<std::wstring> FoldersOfRow() {
    std::vector<std::wstring_view> paths;
    for (const DocumentTab& tab : g_documents.tabs)
        paths.emplace_back(tab.hasFile ? std::wstring_view(tab.path) : std::wstring_view());
    return DistinguishingFolders(paths);
}

bool IsNameOf(const TabName& name, const DocumentTab& tab) {
    return name.label == tab.label && name.path == (tab.hasFile ? tab.path : L"");
}

// Makes the names anew. A document that has come, gone or got another name can change those of others.
void RenewNames() {
    if (g_tabBar.manyComing) return;
    const std::vector<std::wstring> folders = FoldersOfRow();
    std::vector<TabName> before = std::move(g_tabBar.names);
    g_tabBar.names.clear();
    for (int i = 0; i < TabCount(); ++i) {
        const DocumentTab& tab = TabAt(i);
        g_tabBar.names.push_back(
            {.path = tab.hasFile ? tab.path : L"", .label = tab.label, .folder = folders[static_cast<std::size_t>(i)]});
    }
    MeasureNames();
    for (std::size_t i = 0; i < g_tabBar.names.size(); ++i) {
        const TabName& name = g_tabBar.names[i];
        // A new item has the label.
        const bool same =
            i < before.size() ? before[i].label == name.label && before[i].folder == name.folder : name.folder.empty();
        if (!same) SetTabItemText(static_cast<int>(i));
    }
    TabBarRefresh();
}

int StripWidth() {
    RECT client = {};
    GetClientRect(g_tabs.hTabCtrl, &client);
    return client.right;
}

}  // namespace

TabMetrics TabBarMetrics() { return TabMetricsForDpi(g_ui.dpi); }

int TabBarHeight() { return TabBarMetrics().height; }

TabStrip TabBarStrip() {
    const TabMetrics metrics = TabBarMetrics();
    std::vector<TabWish> wishes(g_documents.tabs.size());
    for (std::size_t i = 0; i < wishes.size(); ++i) {
        wishes[i].pinned = g_documents.tabs[i].pinned;
        if (i >= g_tabBar.names.size()) continue;
        const TabName& name = g_tabBar.names[i];
        wishes[i].text = name.labelWidth + (name.folderWidth > 0 ? metrics.padding / 2 + name.folderWidth : 0) + 2;
    }
    return TabStripOf(metrics, StripWidth(), wishes, g_documents.activeTab, g_tabBar.scroll);
}

std::wstring TabBarNameOf(int index) {
    const auto at = static_cast<std::size_t>(index);
    return TabFullName(TabAt(index).label, at < g_tabBar.names.size() ? g_tabBar.names[at].folder : std::wstring());
}

TabState TabStateOf(const DocumentTab& tab) {
    using enum OutsideKind;
    return {.hasFile = tab.hasFile,
            .modified = tab.modified,
            .readOnly = tab.onDisk.readOnly,
            .changed = tab.outside.kind == Changed || tab.outside.kind == Replaced,
            .gone = tab.outside.kind == Gone || tab.outside.kind == Moved,
            .building = tab.building,
            .debugged = tab.debugged,
            .failed = tab.buildMark == BuildMark::Error,
            .built = tab.buildMark == BuildMark::Ok};
}

void TabBarShowTab(int index) {
    g_tabBar.scroll = TabScrollToShow(TabBarStrip(), index);
    TabBarRefresh();
}

void TabBarScrollBy(int pixels) {
    const TabStrip strip = TabBarStrip();
    g_tabBar.scroll = std::clamp(strip.scroll + pixels, 0, strip.mostScroll);
    if (g_tabBar.scroll != strip.scroll) TabBarRefresh();
}

void TabBarInit(HWND tabControl) {
    if (tabControl == nullptr) return;
    g_tabs.hTabCtrl = tabControl;
    const LONG_PTR style = GetWindowLongPtrW(tabControl, GWL_STYLE);
    SetWindowLongPtrW(tabControl, GWL_STYLE,
                      style | TCS_OWNERDRAWFIXED | TCS_FIXEDWIDTH | TCS_FOCUSNEVER | WS_CLIPCHILDREN);
    if (!TabBarInstallSubclass(tabControl)) AppLogMsg(L"FAIL: TabBarInit: no subclass");
    // So narrow that all fit, because the control otherwise shows a scroller of its own.
    SendMessageW(tabControl, TCM_SETITEMSIZE, 0, MAKELPARAM(1, TabBarHeight()));
}

// Between the two the tabs are not painted, and their names are not made.
void TabBarOnComing(bool coming) {
    static std::optional<RedrawPause> pause;
    pause.reset();
    g_tabBar.manyComing = coming;
    if (coming)
        pause.emplace(g_tabs.hTabCtrl);
    else
        RenewNames();
}

void TabBarOnOpened(DocumentId document) {
    InsertTabItem(TabBarFindDocument(document));
    RenewNames();
}

void TabBarOnActivated() {
    SendMessageW(g_tabs.hTabCtrl, TCM_SETCURSEL, static_cast<WPARAM>(g_documents.activeTab), 0);
    TabBarShowTab(g_documents.activeTab);
}

void TabBarOnChanged(DocumentId document) {
    const int index = TabBarFindDocument(document);
    const auto at = static_cast<std::size_t>(index);
    if (index >= 0 && at < g_tabBar.names.size() && !IsNameOf(g_tabBar.names[at], TabAt(index))) RenewNames();
    TabBarRefresh();
}

void TabBarOnMoved(int, int) {
    RenewNames();
    TabBarOnActivated();
}

void TabBarOnClosed(int index) {
    SendMessageW(g_tabs.hTabCtrl, TCM_DELETEITEM, static_cast<WPARAM>(index), 0);
    g_tabBar.pointer.hoverTab = -1;
    if (index < static_cast<int>(g_tabBar.names.size())) g_tabBar.names.erase(g_tabBar.names.begin() + index);
    RenewNames();
}

void TabBarRefresh() {
    if (g_tabs.hTabCtrl != nullptr) InvalidateRect(g_tabs.hTabCtrl, nullptr, FALSE);
}

bool TabBarHandleDrawItem(const DRAWITEMSTRUCT& item) {
    // The subclass paints all of the strip.
    return g_tabs.hTabCtrl != nullptr && item.hwndItem == g_tabs.hTabCtrl;
}

bool TabBarHandleNotify(const NMHDR& header) {
    if (g_tabs.hTabCtrl == nullptr || header.hwndFrom != g_tabs.hTabCtrl) return false;
    if (header.code == TCN_SELCHANGE)
        TabBarActivate(static_cast<int>(SendMessageW(g_tabs.hTabCtrl, TCM_GETCURSEL, 0, 0)));
    return true;
}

void TabBarApplyTheme() {
    SendMessageW(g_tabs.hTabCtrl, TCM_SETITEMSIZE, 0, MAKELPARAM(1, TabBarHeight()));
    g_tabBar.widths.clear();
    MeasureNames();
    TabBarShowTab(g_documents.activeTab);
    TooltipApplyTheme(g_tabBar.tooltip);
}
