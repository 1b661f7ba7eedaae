// The main window's class, its procedure, which routes messages to their handlers, and its caption. UI thread.
#include "app/main_window.h"

#include "ai/ai_commands.h"
#include "ai/ai_replace.h"
#include "ai/ai_requests.h"
#include "app/app_state.h"
#include "app/handover.h"
#include "app/jump_list.h"
#include "app/pane_titles.h"
#include "app/start_page.h"
#include "base/wide_format.h"
#include "commands/command_state.h"
#include "commands/context_menus.h"
#include "commands/quick_symbols.h"
#include "commands/toolbar.h"
#include "compile/build.h"
#include "completion/completion.h"
#include "debugui/debug_commands.h"
#include "debugui/debug_run.h"
#include "disasm/asm_pane.h"
#include "documents/document_row.h"
#include "documents/outside.h"
#include "documents/sticky_label.h"
#include "editor/editor_pane.h"
#include "output/mark_view.h"
#include "project/project.h"
#include "recovery/snapshots.h"
#include "resources/ids.h"
#include "search/find_bar.h"
#include "session/session.h"
#include "session/session_owner.h"
#include "settings/compiler_presence.h"
#include "symbols/references.h"
#include "tabs/tab_bar.h"
#include "tabs/tab_switcher.h"
#include "ui/chrome.h"
#include "ui/menu_draw.h"
#include "ui/mouse_drag.h"
#include "ui/paint.h"

#include <commctrl.h>
#include <windowsx.h>

#include <iterator>
#include <utility>

namespace {

constexpr wchar_t kCaption[] = L"KVXE - Unified Compiler Editor";
constexpr COLORREF kBackground = RGB(235, 239, 250);

// False when the message is not one of the program's own.
bool RouteOwnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case MSG_BUILD_OUTPUT:
            BuildOnOutput(reinterpret_cast<wchar_t*>(wParam), static_cast<COLORREF>(lParam));
            return true;
        case MSG_BUILD_FINISHED:
            BuildOnFinished(static_cast<DWORD>(wParam));
            MainWindow_RequestStateRefresh();
            return true;
        case MSG_COMPILERS_SEEN:
            if (CompilersOnLooked(wParam)) MainWindow_UpdateCompilerSelection();
            return true;
        case MSG_AI_REPLY: AiOnReply(wParam, lParam); return true;
        case MSG_AI_PIECES: AiOnPieces(); return true;
        case MSG_AI_TEXT_BACK: AiOnTextBack(wParam != 0); return true;
        case MSG_AI_ENDED: AiOnRequestEnded(WorkerTake<AiRequestEndPtr>(wParam)); return true;
        case MSG_DEBUG_LAUNCH: DebugOnBuilt(); return true;
        case MSG_OUTSIDE_SEEN: OutsideOnSeen(wParam); return true;
        case MSG_PROJECT_SEEN: ProjectOnSeen(wParam); return true;
        case MSG_SNAPSHOT_WRITTEN: SnapshotsOnWritten(wParam); return true;
        case MSG_SYMBOLS_SCANNED: SymbolsOnScanned(wParam); return true;
        case MSG_SYMBOLS_FILES: SymbolsOnFilesScanned(wParam); return true;
        case MSG_SYMBOLS_PLACES:
            lParam == kSymbolNamesBuilt ? QuickSymbolsOnBuilt(wParam) : ReferencesOnFound(wParam);
            return true;
        case MSG_LATE_KEY: MainWnd_OnLateKey(static_cast<std::uint32_t>(wParam), lParam); return true;
        case MSG_STARTUP: MainWnd_OnStartup(); return true;
        case MSG_REINIT_EDITOR:
            MainWnd_OnReinitEditor(static_cast<int>(wParam), static_cast<DocumentId>(lParam));
            return true;
        case MSG_FOCUS_EDITOR: FocusCurrentEditor(); return true;
        default: return false;
    }
}

void RouteTimer(HWND window, UINT_PTR id) {
    switch (id) {
        case TIMER_AUTO_SAVE: MainWnd_OnAutoSaveTimer(); break;
        case TIMER_SESSION:
            SessionTakePlace();  // the copy that had it may have ended
            SessionAutoSave(window);
            MainWnd_WaitForSession(window);
            break;
        case TIMER_DEBUG: DebugOnTimer(); break;
        case TIMER_DEBUG_ALIVE: DebugOnAliveTimer(); break;
        case TIMER_DEBUG_CONSOLE: DebugOnConsoleTimer(); break;
        case TIMER_FOCUS: FocusOnTimer(); break;
        case TIMER_OUTPUT: MainWnd_OnOutputTimer(); break;
        case TIMER_SOURCE_MARKS: SourceMarksOnTimer(); break;
        case TIMER_BUILD: BuildOnTimer(); break;
        case TIMER_AI: AiOnTimer(); break;
        case TIMER_AI_MARKS: AiOnMarksTimer(); break;
        case TIMER_AI_PIECES: AiOnPiecesTimer(); break;
        case TIMER_FIND: FindBarOnTimer(); break;
        case TIMER_TAB_SWITCH: TabSwitchOnTimer(); break;
        case TIMER_OUTSIDE: OutsideOnTimer(); break;
        case TIMER_SNAPSHOTS: SnapshotsOnTimer(); break;
        case TIMER_SYMBOLS: SymbolsOnTimer(); break;
        case TIMER_PANES: AsmPaneOnPanesTimer(); break;
        case TIMER_POSITION: MainWnd_OnPositionTimer(); break;
        default: break;
    }
}

// The field in which the user was typing when another window came to the front; null: none.
HWND g_fieldLeft = nullptr;

HWND FocusedField(HWND window) {
    const HWND focus = GetFocus();
    wchar_t name[8] = {};
    if (focus == nullptr || IsChild(window, focus) == FALSE) return nullptr;
    GetClassNameW(focus, name, static_cast<int>(std::size(name)));
    return lstrcmpiW(name, WC_EDITW) == 0 ? focus : nullptr;
}

// What the user types on after a message box or another program is meant for the same field, not for the document.
void MainWnd_OnActivate(HWND window, bool active) {
    if (!active) {
        MouseDragCancel();
        g_fieldLeft = FocusedField(window);
        return FindBarOnLeft();
    }
    HWND field = std::exchange(g_fieldLeft, nullptr);
    if (field == nullptr) field = FocusedField(window);  // the message can come twice
    if (IsChild(window, field) != FALSE && IsWindowVisible(field) != FALSE)
        SetFocus(field);
    else
        FocusCurrentEditor();
    FindBarOnEntered();
    CompilersLook(window, MSG_COMPILERS_SEEN);  // the user may have installed or removed one meanwhile
}

LRESULT ChildColours(HDC dc) {
    return ControlColours(dc, ThemeCurrentChrome().paneText, ThemeCurrentChrome().paneBack);
}

LRESULT EraseFrame(HWND window, HDC dc) {
    RECT area = {};
    GetClientRect(window, &area);
    FillArea(dc, area, ThemeCurrentChrome().windowBack);
    if (g_app.settings.showToolbar != 0) {
        area.bottom = area.top + ToolbarInset();
        FillArea(dc, area, ThemeCurrentChrome().statusBack);
    }
    return 1;
}

LRESULT DrawChild(const DRAWITEMSTRUCT& item) {
    return TabBarHandleDrawItem(item) || StickyHeaderDraw(item) || PaneTitleDraw(item) ? TRUE : FALSE;
}

}  // namespace

static LRESULT CALLBACK RouteMainMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_CREATE: return MainWnd_OnCreate(window, *reinterpret_cast<const CREATESTRUCTW*>(lParam)) ? 0 : -1;
        case WM_SIZE: MainWnd_OnSize(wParam, LOWORD(lParam), HIWORD(lParam)); return 0;
        case WM_MOVE:
            CompletionClose();  // the list would stay behind
            MainWnd_NotePlace(window);
            return 0;
        case WM_GETMINMAXINFO: MainWnd_OnMinMaxInfo(*reinterpret_cast<MINMAXINFO*>(lParam)); return 0;
        case WM_DPICHANGED:
            MainWnd_OnDpiChanged(window, HIWORD(wParam), *reinterpret_cast<const RECT*>(lParam));
            return 0;
        case WM_SETTINGCHANGE:
        case WM_SYSCOLORCHANGE:
        case WM_THEMECHANGED: MainWnd_OnSystemColours(window, message); return 0;
        case WM_ACTIVATE: MainWnd_OnActivate(window, LOWORD(wParam) != WA_INACTIVE); return 0;
        case WM_ACTIVATEAPP:  // unlike WM_ACTIVATE it does not come when a box of this program closes
            if (wParam == FALSE)
                JumpListOnInactive();
            else
                OutsideOnProgramActive();
            return 0;
        case WM_SETFOCUS:
            if (!StartPageTakeFocus()) FocusCurrentEditor();
            return 0;
        case WM_COMMAND: MainWnd_OnCommand(LOWORD(wParam), HIWORD(wParam), reinterpret_cast<HWND>(lParam)); return 0;
        case WM_NOTIFY: return MainWnd_OnNotify(*reinterpret_cast<const NMHDR*>(lParam));
        case WM_CONTEXTMENU:
            MainWnd_RunPendingRefresh();  // nothing is refreshed while the menu is open
            if (ContextMenuShow(reinterpret_cast<HWND>(wParam), {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)})) return 0;
            return DefWindowProcW(window, message, wParam, lParam);
        case WM_INITMENUPOPUP: MainWnd_OnInitMenuPopup(reinterpret_cast<HMENU>(wParam)); return 0;
        case WM_DRAWITEM: return DrawChild(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
        case WM_CTLCOLORSTATIC:
        case WM_CTLCOLOREDIT: return ChildColours(reinterpret_cast<HDC>(wParam));
        case WM_ERASEBKGND: return EraseFrame(window, reinterpret_cast<HDC>(wParam));
        case WM_COPYDATA: return HandoverTake(*reinterpret_cast<const COPYDATASTRUCT*>(lParam)) ? TRUE : FALSE;
        case WM_DROPFILES: MainWnd_OnDropFiles(reinterpret_cast<HDROP>(wParam)); return 0;
        case WM_TIMER: RouteTimer(window, wParam); return 0;
        case WM_CLOSE: MainWnd_OnClose(window); return 0;
        case WM_QUERYENDSESSION: return MainWnd_OnQueryEndSession() ? TRUE : FALSE;
        case WM_ENDSESSION: MainWnd_OnEndSession(wParam != 0); return 0;
        case WM_DESTROY: MainWnd_OnDestroy(window); return 0;
        default: return RouteOwnMessage(message, wParam, lParam) ? 0 : DefWindowProcW(window, message, wParam, lParam);
    }
}

LRESULT CALLBACK MainWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return MenuDrawAround(window, message, wParam, lParam, RouteMainMessage);
}

HWND MainWindow_Init(HINSTANCE instance, int showCommand) {
    WNDCLASSEXW description = {};
    description.cbSize = sizeof(description);
    // Without CS_HREDRAW and CS_VREDRAW, with which each step of a resize would paint all panes three times. The small
    // icon comes with the DPI of the window.
    description.lpfnWndProc = MainWndProc;
    description.hInstance = instance;
    description.hIcon = LoadIconW(instance, MAKEINTRESOURCEW(IDI_APP));
    description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    description.hbrBackground = CreateSolidBrush(kBackground);
    description.lpszMenuName = MAKEINTRESOURCEW(IDR_MENU);
    description.lpszClassName = kMainClass;
    if (RegisterClassExW(&description) == 0) return nullptr;
    HWND window = CreateWindowExW(WS_EX_ACCEPTFILES, kMainClass, kCaption, WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN,
                                  CW_USEDEFAULT, CW_USEDEFAULT, 1200, 800, nullptr, nullptr, instance, nullptr);
    if (window == nullptr) return nullptr;
    DragAcceptFiles(window, TRUE);
    const bool ordinary = showCommand == SW_SHOWNORMAL || showCommand == SW_SHOWDEFAULT;
    ShowWindow(window, MainWnd_StartsMaximised() && ordinary ? SW_SHOWMAXIMIZED : showCommand);
    return window;
}

void MainWindow_UpdateTitle() {
    std::wstring title = L"Untitled - KVXE Editor";
    if (IsTabIndex(g_app.activeTab)) {
        const DocumentTab& tab = TabAt(g_app.activeTab);
        title = FormatW(L"%s - KVXE Editor", tab.hasFile ? tab.path : tab.label);
    }
    wchar_t shown[kPathCapacity + 32] = {};
    GetWindowTextW(g_app.hMainWnd, shown, static_cast<int>(std::size(shown)));
    if (title != shown) SetWindowTextW(g_app.hMainWnd, title.c_str());
}
