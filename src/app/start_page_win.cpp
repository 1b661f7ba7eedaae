#include "app/start_page.h"

#include "app/app_state.h"
#include "app/main_window.h"
#include "app/start_rows.h"
#include "base/log.h"
#include "base/texts.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "project/new_project.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "session/session.h"
#include "ui/accessible.h"
#include "ui/chrome.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/list_view.h"
#include "ui/paint.h"
#include "ui/window_class.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr wchar_t kStartClass[] = L"KVXEStartPage";
constexpr int kEditorLines = 6;  // that stay of the empty document of the start

constexpr struct {
    int id;
    const wchar_t* text;
    int command;
} kButtons[] = {
    {IDC_START_NEW, English(L"New File (Ctrl+N)"), IDM_FILE_NEW},
    {IDC_START_OPEN, English(L"Open File... (Ctrl+O)"), IDM_FILE_OPEN},
    {IDC_START_PROJECT, English(L"New Project..."), IDM_PROJECT_NEW},
    {IDC_START_SESSION, English(L"Open Session..."), IDM_SESSION_OPEN},
};

struct StartPage {
    bool begun = false;       // start-up is complete
    DocumentId document = 0;  // the empty one of the start; 0: there is none, or it was changed
    ListView list;
    ListContent content;
    std::vector<StartRow> rows;
};
StartPage g_start;

void PostStartCommand(int command) { PostMessageW(g_app.hMainWnd, WM_COMMAND, static_cast<WPARAM>(command), 0); }

void OpenStartRow(int row, int) {
    if (row >= 0 && row < static_cast<int>(g_start.rows.size()))
        PostStartCommand(g_start.rows[static_cast<std::size_t>(row)].command);
}

void OpenRowOfKey(int, wchar_t key) {
    const auto row = std::ranges::find(g_start.rows, key, &StartRow::key);
    if (row != g_start.rows.end()) PostStartCommand(row->command);
}

constexpr ListColumn kColumns[] = {{L"", 3, 3, false},
                                   {English(L"Name"), 26, 12, false},
                                   {English(L"Opens"), 9, 7, false},
                                   {English(L"Folder"), 40, 8, false}};
constexpr ListKind kStartList = {.columns = kColumns, .activate = OpenStartRow, .typed = OpenRowOfKey};

std::vector<std::wstring> SamplePaths() {
    std::vector<std::wstring> paths;
    for (const ProjectSample& sample : ProjectSamples(static_cast<std::uint32_t>(g_app.settings.activeCompiler)))
        if (!sample.path.empty() && !sample.isFolder) paths.push_back(sample.path);
    return paths;
}

void FillStartList() {
    wchar_t ownSession[kPathCapacity] = {};
    SessionAutoSavePath(ownSession, kPathCapacity);
    g_start.rows = StartRows(g_app.settings, ownSession, SamplePaths());
    g_start.content = {};
    for (const StartRow& row : g_start.rows)
        g_start.content.rows.push_back(
            {.cells = {row.key != 0 ? std::wstring(1, row.key) : L"", row.name, row.kind, row.folder}});
    g_start.content.reveal = g_start.rows.empty() ? -1 : 0;
    ListViewUpdate(g_start.list, g_start.content);
}

HWND StartControl(int id) { return GetDlgItem(g_app.hStartPage, id); }

// The buttons in rows as wide as the page, the hint below them, then the list.
void PlaceStartControls(int width, int height) {
    const int margin = UiScaled(12), gap = UiScaled(6), buttonHeight = UiSizes().textHeight + UiScaled(10);
    int x = margin, y = margin;
    for (const auto& button : kButtons) {
        const std::wstring text = Text(button.text);
        const int wide = UiTextWidth(text.c_str(), static_cast<int>(text.size())) + UiScaled(24);
        if (x > margin && x + wide > width - margin) {
            x = margin;
            y += buttonHeight + gap;
        }
        MoveWindow(StartControl(button.id), x, y, wide, buttonHeight, TRUE);
        x += wide + gap;
    }
    y += buttonHeight + gap;
    const int lineHeight = UiSizes().textHeight + UiScaled(4), listWidth = std::max(0, width - 2 * margin);
    MoveWindow(StartControl(IDC_START_HINT), margin, y, listWidth, lineHeight, TRUE);
    y += lineHeight + UiScaled(2);
    const int wanted = (static_cast<int>(g_start.rows.size()) + 2) * (UiSizes().textHeight + UiScaled(8));
    MoveWindow(g_start.list.window, margin, y, listWidth, std::clamp(height - margin - y, 0, std::max(wanted, 80)),
               TRUE);
}

void OnStartCommand(int id) {
    const auto* const button = std::ranges::find(kButtons, id, [](const auto& row) { return row.id; });
    if (button != std::end(kButtons)) PostStartCommand(button->command);
}

bool OnStartNotify(const NMHDR& header, LRESULT* result) {
    if (header.code == NM_CLICK && header.hwndFrom == g_start.list.window)
        OpenStartRow(reinterpret_cast<const NMITEMACTIVATE&>(header).iItem, 0);
    return header.code != NM_DBLCLK && ListViewHandleNotify(g_start.list, header, result);
}

LRESULT CALLBACK StartPageProc(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    switch (message) {
        case WM_SIZE: PlaceStartControls(LOWORD(lParam), HIWORD(lParam)); return 0;
        case WM_SETFOCUS: SetFocus(g_start.list.window); return 0;
        case WM_COMMAND: OnStartCommand(LOWORD(wParam)); return 0;
        case WM_NOTIFY: OnStartNotify(*reinterpret_cast<const NMHDR*>(lParam), &result); return result;
        case WM_CTLCOLORSTATIC:
            return ControlColours(reinterpret_cast<HDC>(wParam), ThemeQuietText(), ThemeCurrentChrome().paneBack);
        case WM_CTLCOLORBTN:
            return ControlColours(reinterpret_cast<HDC>(wParam), ThemeCurrentChrome().paneText,
                                  ThemeCurrentChrome().paneBack);
        case WM_ERASEBKGND: {
            RECT area = {};
            GetClientRect(page, &area);
            FillArea(reinterpret_cast<HDC>(wParam), area, ThemeCurrentChrome().paneBack);
            area.bottom = area.top + 1;
            FillArea(reinterpret_cast<HDC>(wParam), area, ThemeCurrentChrome().line);
            return 1;
        }
        default: return DefWindowProcW(page, message, wParam, lParam);
    }
}

bool CreateStartPage() {
    static const bool registered = WindowClassRegister({.name = kStartClass, .procedure = StartPageProc});
    const auto child = [](const wchar_t* className, const wchar_t* text, DWORD style, HWND parent, int id) {
        return CreateWindowExW(0, className, text, WS_CHILD | WS_CLIPSIBLINGS | style, 0, 0, 0, 0, parent,
                               reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), g_app.hInstance, nullptr);
    };
    if (registered)
        g_app.hStartPage = child(kStartClass, Text(L"Start Page"), WS_CLIPCHILDREN, g_app.hMainWnd, IDC_START_PAGE);
    if (g_app.hStartPage == nullptr) {
        AppLogMsg(L"FAIL: StartPage error=%lu", GetLastError());
        return false;
    }
    for (const auto& button : kButtons)
        child(WC_BUTTONW, Text(button.text), WS_VISIBLE | WS_TABSTOP | BS_PUSHBUTTON, g_app.hStartPage, button.id);
    child(WC_STATICW,
          Text(L"Recent files, sessions and samples - Enter or a click opens one, the digits open recent files"),
          WS_VISIBLE | SS_ENDELLIPSIS | SS_NOPREFIX, g_app.hStartPage, IDC_START_HINT);
    if (!ListViewCreate(g_start.list, g_app.hStartPage, IDC_START_LIST)) return false;
    AccessibleNameSet(g_start.list.window, Text(L"Recent files, sessions and samples"));
    ShowWindow(g_start.list.window, SW_SHOWNA);
    StartPageApplyTheme();
    return true;
}

// An empty document that nobody has touched.
bool IsUntouched(const DocumentTab& tab) {
    return tab.id == g_start.document && !tab.hasFile && !tab.modified && SciSend(tab.editor, SCI_GETLENGTH) == 0;
}

bool PageIsWanted() {
    if (!g_start.begun) return false;
    if (TabCount() == 0) return true;
    return TabCount() == 1 && IsUntouched(TabAt(0));
}

void HideStartPage() {
    const HWND page = std::exchange(g_app.hStartPage, nullptr);
    const HWND focus = GetFocus();
    const bool hadFocus = focus != nullptr && IsChild(page, focus) != FALSE;
    ShowWindow(page, SW_HIDE);
    DestroyWindow(page);
    g_events.layoutWanted();
    if (hadFocus) FocusCurrentEditor();
}

}  // namespace

void StartPageBegin() {
    g_start.begun = true;
    if (TabCount() == 1 && !TabAt(0).hasFile) g_start.document = TabAt(0).id;
    StartPageUpdate();
}

void StartPageUpdate() {
    const bool wanted = PageIsWanted();
    if (!wanted) g_start.document = 0;
    if (wanted == (g_app.hStartPage != nullptr)) return;
    if (!wanted) return HideStartPage();
    if (!CreateStartPage()) return;
    g_events.layoutWanted();
    if (TabCount() == 0 && GetFocus() == g_app.hMainWnd) StartPageTakeFocus();
}

int StartPageBelow() {
    if (g_app.hStartPage == nullptr) return -1;
    return TabCount() == 0 ? 0 : kEditorLines * static_cast<int>(SciSend(g_app.hEditor, SCI_TEXTHEIGHT));
}

void StartPageApplyTheme() {
    if (g_app.hStartPage == nullptr) return;
    for (const auto& button : kButtons) {
        SendMessageW(StartControl(button.id), WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), FALSE);
        ControlApplyTheme(StartControl(button.id));
    }
    SendMessageW(StartControl(IDC_START_HINT), WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), FALSE);
    ListViewApplyTheme(g_start.list);
    ListViewShow(g_start.list, kStartList);
    FillStartList();
    RECT area = {};
    GetClientRect(g_app.hStartPage, &area);
    PlaceStartControls(static_cast<int>(area.right), static_cast<int>(area.bottom));
    InvalidateRect(g_app.hStartPage, nullptr, TRUE);
}

bool StartPageTakeFocus() {
    if (g_app.hStartPage == nullptr || TabCount() > 0) return false;
    SetFocus(g_app.hStartPage);
    return true;
}

bool StartPageIsMessage(const MSG& message) {
    if (g_app.hStartPage == nullptr || message.message != WM_KEYDOWN || !IsChild(g_app.hStartPage, message.hwnd))
        return false;
    const bool onButton = message.hwnd != g_start.list.window;
    switch (message.wParam) {
        case VK_TAB:
            SetFocus(GetNextDlgTabItem(g_app.hStartPage, message.hwnd, GetKeyState(VK_SHIFT) < 0));
            return true;
        case VK_RETURN:
            if (onButton) SendMessageW(message.hwnd, BM_CLICK, 0, 0);
            return onButton;
        case VK_ESCAPE: FocusCurrentEditor(); return true;
        default: return false;
    }
}

void OpenSample(int command) {
    const auto row = static_cast<std::size_t>(command - IDM_SAMPLE_FIRST);
    if (const std::vector<std::wstring> samples = SamplePaths(); row < samples.size()) FileOpen(samples[row].c_str());
}
