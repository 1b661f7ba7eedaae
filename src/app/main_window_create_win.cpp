// Creates the main window's content in a fixed order, and applies theme and DPI to it. UI thread.
#include "app/main_window.h"

#include "ai/ai_replace.h"
#include "app/app_state.h"
#include "app/layout.h"
#include "app/panes.h"
#include "app/splitters.h"
#include "app/start_page.h"
#include "base/texts.h"
#include "commands/command_state.h"
#include "commands/status_bar.h"
#include "commands/toolbar.h"
#include "compile/build.h"
#include "completion/completion.h"
#include "debugui/breakpoint_list.h"
#include "debugui/debug_commands.h"
#include "debugui/location.h"
#include "disasm/asm_renderer.h"
#include "documents/document_row.h"
#include "documents/document_themes.h"
#include "editor/editor_pane.h"
#include "editor/theme.h"
#include "files/file_io.h"
#include "output/mark_view.h"
#include "project/project_tree.h"
#include "resources/ids.h"
#include "search/find_bar.h"
#include "settings/compiler_table.h"
#include "settings/file_types.h"
#include "settings/language.h"
#include "settings/settings_store.h"
#include "symbols/peek_window.h"
#include "tabs/tab_bar.h"
#include "ui/chrome.h"
#include "ui/dialog_theme.h"
#include "ui/fonts.h"
#include "ui/menu.h"
#include "ui/menu_draw.h"
#include "ui/panes.h"
#include "ui/small_icon.h"

#include <commctrl.h>

namespace {

HMENU ChildId(int id) { return reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)); }

HWND CreateChild(const wchar_t* className, const wchar_t* text, DWORD exStyle, DWORD style, int id) {
    return CreateWindowExW(exStyle, className, text, WS_CHILD | WS_CLIPSIBLINGS | style, 0, 0, 0, 0, g_app.hMainWnd,
                           ChildId(id), g_app.hInstance, nullptr);
}

void CreateChildren(HWND window) {
    g_app.hToolbar = ToolbarCreate(window, IDC_TOOLBAR);
    g_app.hTabCtrl = CreateChild(WC_TABCONTROLW, Text(L"Documents"), 0,
                                 WS_VISIBLE | TCS_OWNERDRAWFIXED | TCS_FIXEDWIDTH | TCS_FOCUSNEVER, IDC_TABS);
    TabBarInit(g_app.hTabCtrl);
    ConnectPanes();
    SplitterWindow(Splitter::Output, true);
    CreatePaneOf(PaneId::Output);
    SplitterWindow(Splitter::Side, true);
    CreatePaneOf(PaneId::Asm);
    CreatePaneOf(PaneId::Ai);
    g_app.hStickyHeader = CreateChild(WC_STATICW, nullptr, 0, WS_VISIBLE | SS_OWNERDRAW, IDC_STICKY_HEADER);
    CreatePaneOf(PaneId::Terminal);
    CreatePaneOf(PaneId::Tree);
    g_app.hStatusBar = StatusBarCreate(window, IDC_STATUS_BAR);
}

void ApplyLoadedSettings() {
    PanesRestore();
    SettingsTellLockedKeys();
    wchar_t ini[kPathCapacity] = {};
    GetIniPath(nullptr, ini, kPathCapacity);  // after the load, which may choose another folder
    SettingsAutoDetectCompilers();
    if (!FileExists(ini)) SettingsSave(nullptr);
    RegisterFileExtensions();
    MainWindow_UpdateCompilerSelection();
    if (g_app.settings.projectRoot[0] != L'\0') ProjectTreePopulate();
}

}  // namespace

void MainWnd_ApplyTheme() {
    UiFontsRenew();
    ToolbarApplyTheme();
    TabBarApplyTheme();
    StatusBarApplyTheme();
    ThemePanes();
    FindBarApplyTheme();
    StartPageApplyTheme();
    FrameApplyTheme(g_app.hMainWnd);
    MenuBarApplyTheme(g_app.hMainWnd);
    DialogsRenewTheme();
    RedrawWindow(g_app.hMainWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
}

bool MainWnd_OnCreate(HWND window, const CREATESTRUCTW& create) {
    g_app.hInstance = create.hInstance;
    g_app.hMainWnd = window;
    g_app.dpi = static_cast<int>(GetDpiForWindow(window));
    SmallIconShow(window);
    MainWnd_ConnectEvents();
    InitCommonControls();
    SettingsLoad(nullptr);
    LanguageUse(g_app.settings.language);  // before anything has a text
    MenuTranslate(GetMenu(window));
    CreateChildren(window);
    ApplyLoadedSettings();
    MainWnd_RestorePlace(window);
    for (const DocumentTab& tab : g_app.tabs)
        if (tab.editor != nullptr) EditorPaneApplySettings(tab.editor);
    MainWnd_ApplyTheme();  // sets the fonts of the panes
    ToolbarUpdateAi();
    MainWnd_ApplyTimers(window);
    DebugUiInit();
    BuildRecover();
    PostMessageW(window, MSG_STARTUP, 0, 0);
    RestoreSplitterRatio();
    MainWindow_Layout();  // hides the panes and bars that the settings switch off
    MainWindow_UpdateTitle();
    ToolbarApplyState(CurrentCommandView());  // a box of the start may come before the message loop does it
    return true;
}

void MainWnd_OnDpiChanged(HWND window, int dpi, const RECT& suggested) {
    g_app.dpi = dpi;
    SetWindowPos(window, nullptr, suggested.left, suggested.top, suggested.right - suggested.left,
                 suggested.bottom - suggested.top, SWP_NOZORDER | SWP_NOACTIVATE);
    SmallIconShow(window);
    MainWnd_RenewColours();  // the fonts come with them
    SourceMarksRenew();
    RECT client = {};
    GetClientRect(g_app.hMainWnd, &client);
    ApplyLayoutRatios(static_cast<int>(client.right), static_cast<int>(client.bottom));  // the bars have other heights
    MainWindow_Layout();
}

void MainWnd_OnSystemColours(HWND window, UINT message) {
    // The system sends this message to top-level windows only, and the common controls keep the colours.
    if (message == WM_SYSCOLORCHANGE)
        EnumChildWindows(
            window,
            [](HWND child, LPARAM) -> BOOL {
                SendMessageW(child, WM_SYSCOLORCHANGE, 0, 0);
                return TRUE;
            },
            0);
    const SystemLook look = ThemeReadSystem();
    if (look == ThemeUsedSystem()) return;
    const bool seen = look.highContrast || SystemHighContrast();
    ThemeUseSystem(look);
    if (seen) MainWnd_RenewColours();
}

void MainWnd_RenewColours() {
    CompletionClose();  // its colours are those of before
    SyntaxThemeApplyAll();
    AiRenewMarks();
    PeekApplySettings();
    MainWnd_ApplyTheme();
}

void MainWindow_UpdateCompilerSelection() {
    ToolbarUpdateCompiler();
    StatusBarUpdateCompiler();
    MainWindow_RequestStateRefresh();
}
