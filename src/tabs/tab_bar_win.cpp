// The documents and their tabs: adding, selecting, moving, removing, naming. The look and the pointer are in
// tab_paint_win.cpp and tab_input_win.cpp. UI thread.
#include "tabs/tab_bar.h"

#include "app/app_state.h"
#include "app/log.h"
#include "app/shell.h"
#include "compilers/compiler_table.h"
#include "editor/editor_pane.h"
#include "files/path.h"
#include "language/lexer_table.h"
#include "language/theme.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "tabs/tab_bar_internal.h"

#include <commctrl.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

int g_nextEditorId = IDC_EDITOR_FIRST;

DocumentTab& TabAt(int index) { return g_app.tabs[static_cast<std::size_t>(index)]; }

constexpr int ScintillaEol(LineEnding ending) {
    switch (ending) {
        case LineEnding::Lf: return SC_EOL_LF;
        case LineEnding::Cr: return SC_EOL_CR;
        case LineEnding::CrLf: break;
    }
    return SC_EOL_CRLF;
}

void InsertItem(int index) {
    TCITEMW item = {};
    item.mask = TCIF_TEXT;
    item.pszText = TabAt(index).label;
    if (SendMessageW(g_app.hTabCtrl, TCM_INSERTITEMW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item)) < 0)
        AppLogMsg(L"FAIL: TabBarAdd: no tab for %s", TabAt(index).label);
}

void SetItemText(int index) {
    TCITEMW item = {};
    item.mask = TCIF_TEXT;
    item.pszText = TabAt(index).label;
    SendMessageW(g_app.hTabCtrl, TCM_SETITEMW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
}

void ApplyFont() {
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof metrics;
    if (!SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0)) return;
    const int systemDpi = static_cast<int>(GetDpiForSystem());
    LOGFONTW font = metrics.lfMessageFont;
    font.lfHeight = MulDiv(font.lfHeight, g_app.dpi, systemDpi > 0 ? systemDpi : USER_DEFAULT_SCREEN_DPI);
    const HFONT made = CreateFontIndirectW(&font);
    if (!made) return;
    const HFONT old = g_tabBar.font;
    g_tabBar.font = made;
    SendMessageW(g_app.hTabCtrl, WM_SETFONT, reinterpret_cast<WPARAM>(made), FALSE);
    if (old) DeleteObject(old);
}

// A renamed document may be of another language: the shell is asked to set its editor up again.
void CheckLanguage(int index) {
    const DocumentTab& tab = TabAt(index);
    if (!tab.hasFile || !g_app.scintilla.createLexer) return;
    const LanguageLexer& wanted = LexerOf(LexerFromExtension(tab.path));
    char current[64] = "";
    if (SciSend(tab.editor, SCI_GETLEXER) != 0 && SciSend(tab.editor, SCI_GETLEXERLANGUAGE) < 64) {
        SciSend(tab.editor, SCI_GETLEXERLANGUAGE, 0, reinterpret_cast<LPARAM>(current));
    }
    if (std::strcmp(current, wanted.name ? wanted.name : "") == 0) return;
    PostMessageW(g_app.hMainWnd, MSG_REINIT_EDITOR, static_cast<WPARAM>(index), 0);
}

void ActivateForHistory(int tab) { TabBarActivate(tab); }

}  // namespace

TabMetrics TabBarMetrics() { return TabMetricsForDpi(g_app.dpi); }

int TabBarHeight() { return TabBarMetrics().height; }

std::vector<TabRect> TabBarRects() {
    std::vector<TabRect> rects;
    rects.reserve(g_app.tabs.size());
    const int height = TabBarHeight();
    for (int i = 0; i < TabCount(); ++i) {
        RECT rect = {};
        SendMessageW(g_app.hTabCtrl, TCM_GETITEMRECT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&rect));
        // The control leaves a few pixels above and below its items; ours fill the strip.
        rects.push_back({static_cast<int>(rect.left), 0, static_cast<int>(rect.right), height});
    }
    return rects;
}

void TabBarUpdateWidths() {
    RECT client = {};
    if (!g_app.hTabCtrl || !GetClientRect(g_app.hTabCtrl, &client)) return;
    const TabMetrics metrics = TabBarMetrics();
    const int width = TabWidthFor(metrics, client.right - metrics.padding / 2, TabCount());
    static int lastWidth = 0;
    static int lastHeight = 0;
    if (width != lastWidth || metrics.height != lastHeight) {
        lastWidth = width;
        lastHeight = metrics.height;
        SendMessageW(g_app.hTabCtrl, TCM_SETITEMSIZE, 0, MAKELPARAM(width, metrics.height));
    }
    TabBarPlaceScroller(g_app.hTabCtrl);
    InvalidateRect(g_app.hTabCtrl, nullptr, FALSE);
}

void TabBarInit(HWND tabControl) {
    if (!tabControl) return;
    g_app.hTabCtrl = tabControl;
    const LONG_PTR style = GetWindowLongPtrW(tabControl, GWL_STYLE);
    SetWindowLongPtrW(tabControl, GWL_STYLE,
                      style | TCS_OWNERDRAWFIXED | TCS_FIXEDWIDTH | TCS_FOCUSNEVER | WS_CLIPCHILDREN);
    if (!TabBarInstallSubclass(tabControl)) AppLogMsg(L"FAIL: TabBarInit: no subclass");
    ApplyFont();
    TabBarUpdateWidths();
    NavHistorySetActivator(ActivateForHistory);
}

int TabBarAdd(const wchar_t* path, const wchar_t* label) {
    DocumentTab tab;
    tab.hasFile = path && path[0];
    if (tab.hasFile) SafeCopyW(tab.path, path);
    SafeCopyW(tab.label, label ? label : L"");
    tab.compilerId =
        tab.hasFile ? CompilerDefaultForFile(tab.path) : static_cast<std::uint32_t>(g_app.settings.activeCompiler);
    tab.editor = EditorPaneCreate(g_app.hInstance, g_app.hMainWnd, g_nextEditorId);
    if (!tab.editor) return -1;
    ++g_nextEditorId;
    if (tab.hasFile && !TabLoadFile(tab)) {
        DestroyWindow(tab.editor);
        return -1;
    }

    g_app.tabs.push_back(tab);
    const int index = TabCount() - 1;
    TabBarUpdateLineEnding(index);
    EditorPaneInit(tab.editor, tab.compilerId);
    EditorPaneApplySettings(tab.editor);
    InsertItem(index);
    TabBarUpdateWidths();
    MainWindow_OnTextArrived(tab.editor);
    return index;
}

void TabBarSyncActiveEditor() {
    const HWND previous = g_app.hEditor;
    g_app.hEditor = IsTabIndex(g_app.activeTab) ? TabAt(g_app.activeTab).editor : nullptr;
    SendMessageW(g_app.hTabCtrl, TCM_SETCURSEL, static_cast<WPARAM>(g_app.activeTab), 0);
    // The new editor covers the old one before that goes, so that nothing shows through in between.
    if (g_app.hEditor) {
        SetWindowPos(g_app.hEditor, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
        MainWindow_Layout();
        ShowWindow(g_app.hEditor, SW_SHOWNA);
    }
    const bool hadFocus = previous && previous != g_app.hEditor && GetFocus() == previous;
    if (hadFocus) SetFocus(g_app.hEditor ? g_app.hEditor : g_app.hMainWnd);
    for (const DocumentTab& tab : g_app.tabs) {
        if (tab.editor != g_app.hEditor && (GetWindowLongPtrW(tab.editor, GWL_STYLE) & WS_VISIBLE)) {
            ShowWindow(tab.editor, SW_HIDE);
        }
    }
    MainWindow_UpdateTitle();
    StatusBarUpdatePosition();
    if (g_app.hEditor) {
        UpdateStickyHeader(g_app.hEditor, g_app.hStickyHeader);
        NavHistoryMaybeAdd();
    } else if (g_app.hStickyHeader) {
        SetWindowTextW(g_app.hStickyHeader, L"");
    }
    MenuUpdateState();
    TabBarRefresh();
}

int TabBarSelect(int index) {
    if (!IsTabIndex(index)) return 0;
    g_app.activeTab = index;
    TabBarSyncActiveEditor();
    return 1;
}

int TabBarActivate(int index) {
    if (!TabBarSelect(index)) return 0;
    FocusCurrentEditor();
    return 1;
}

int TabBarRemove(int index) {
    if (!IsTabIndex(index)) return 0;
    const bool wasActive = index == g_app.activeTab;
    const HWND editor = TabAt(index).editor;
    const HWND returnTo = std::exchange(g_tabBar.returnTo, nullptr);
    const bool hadFocus = GetFocus() == editor;
    MainWindow_OnTextLeaving(editor);
    g_app.activeTab = TabIndexAfterRemoval(g_app.activeTab, index, TabCount());
    g_app.tabs.erase(g_app.tabs.begin() + index);
    SendMessageW(g_app.hTabCtrl, TCM_DELETEITEM, static_cast<WPARAM>(index), 0);
    g_tabBar.hoverTab = -1;
    TabBarUpdateWidths();

    if (wasActive) {
        const int back = TabBarFindEditor(returnTo);
        if (back >= 0) g_app.activeTab = back;
        g_app.hEditor = nullptr;  // about to be destroyed: nobody may send to it any more
    }
    TabBarSyncActiveEditor();
    if (hadFocus) SetFocus(g_app.hEditor ? g_app.hEditor : g_app.hMainWnd);
    DestroyWindow(editor);
    return 1;
}

void TabBarCloseRefused() { g_tabBar.returnTo = nullptr; }

int TabBarMove(int from, int to) {
    if (!IsTabIndex(from) || !IsTabIndex(to)) return 0;
    if (from == to) return 1;
    const auto first = g_app.tabs.begin();
    if (from < to) {
        std::rotate(first + from, first + from + 1, first + to + 1);
    } else {
        std::rotate(first + to, first + from, first + from + 1);
    }
    for (int i = std::min(from, to); i <= std::max(from, to); ++i) SetItemText(i);
    g_app.activeTab = TabIndexAfterMove(g_app.activeTab, from, to);
    SendMessageW(g_app.hTabCtrl, TCM_SETCURSEL, static_cast<WPARAM>(g_app.activeTab), 0);
    TabBarRefresh();
    return 1;
}

void TabBarUpdateLineEnding(int index) {
    if (!IsTabIndex(index)) return;
    const DocumentTab& tab = TabAt(index);
    SciSend(tab.editor, SCI_SETEOLMODE, static_cast<WPARAM>(ScintillaEol(tab.lineEnding)));
}

void TabBarUpdateTitle(int index) {
    if (!IsTabIndex(index)) return;
    SetItemText(index);
    CheckLanguage(index);
    TabBarRefresh();
    if (index == g_app.activeTab) MainWindow_UpdateTitle();
}

void TabBarRefresh() {
    if (g_app.hTabCtrl) InvalidateRect(g_app.hTabCtrl, nullptr, FALSE);
}

int TabBarFindEditor(HWND editor) {
    if (!editor) return -1;
    const auto found = std::find_if(g_app.tabs.begin(), g_app.tabs.end(),
                                    [editor](const DocumentTab& tab) { return tab.editor == editor; });
    return found == g_app.tabs.end() ? -1 : static_cast<int>(found - g_app.tabs.begin());
}

int TabBarFindPath(const wchar_t* path) {
    if (!path || !path[0]) return -1;
    const auto found = std::find_if(g_app.tabs.begin(), g_app.tabs.end(), [path](const DocumentTab& tab) {
        return tab.hasFile && PathEqualsIgnoreCase(tab.path, path);
    });
    return found == g_app.tabs.end() ? -1 : static_cast<int>(found - g_app.tabs.begin());
}

bool TabBarHandleDrawItem(const DRAWITEMSTRUCT& item) {
    if (!g_app.hTabCtrl || item.hwndItem != g_app.hTabCtrl) return false;
    const int index = static_cast<int>(item.itemID);
    const std::vector<TabRect> rects = TabBarRects();
    if (index < 0 || index >= static_cast<int>(rects.size())) return true;
    const HGDIOBJ old = g_tabBar.font ? SelectObject(item.hDC, g_tabBar.font) : nullptr;
    TabBarPaintTab(item.hDC, index, rects[static_cast<std::size_t>(index)]);
    if (old) SelectObject(item.hDC, old);
    return true;
}

bool TabBarHandleNotify(const NMHDR& header) {
    if (!g_app.hTabCtrl || header.hwndFrom != g_app.hTabCtrl) return false;
    if (header.code == TCN_SELCHANGE) {
        TabBarActivate(static_cast<int>(SendMessageW(g_app.hTabCtrl, TCM_GETCURSEL, 0, 0)));
    }
    return true;
}

void TabBarApplyTheme() {
    ApplyFont();
    TabBarUpdateWidths();
}
