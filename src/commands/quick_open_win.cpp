// The window of the file finder and the command palette. UI thread only.
#include "commands/quick_open.h"

#include "base/log.h"
#include "base/texts.h"
#include "commands/quick_layout.h"
#include "commands/quick_list.h"
#include "commands/quick_preview.h"
#include "commands/quick_search.h"
#include "debugui/debug_commands.h"
#include "documents/document_row.h"
#include "documents/file_work.h"
#include "resources/ids.h"
#include "search/project_files.h"
#include "ui/accessible.h"
#include "ui/chrome.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/long_work.h"
#include "ui/paint.h"
#include "ui/subclass.h"
#include "ui/window_class.h"
#include "ui/window_text.h"

#include <commctrl.h>

#include <algorithm>
#include <string>

namespace {

constexpr wchar_t kClass[] = L"KVXEQuickOpen";
constexpr int kMostTyped = 1024;  // characters

struct QuickWindow {
    HWND window = nullptr;
    HWND field = nullptr;
    HWND list = nullptr;
    HWND focusBefore = nullptr;
    HFONT font = nullptr;  // in use; another one after a change of theme or DPI
    QuickLayout layout;
    bool open = false;
    bool acceptWhenFound = false;  // Enter was pressed while a worker searched
};
QuickWindow g_quick;

RECT RectOfArea(const QuickArea& area) { return {area.left, area.top, area.right, area.bottom}; }

// ---------------------------------------------------------------------------------------------------------- place

QuickArea AreaInMain(HWND child) {
    RECT area = {};
    if (child == nullptr || IsWindowVisible(child) == FALSE || GetWindowRect(child, &area) == FALSE) return {};
    MapWindowPoints(nullptr, g_ui.hMainWnd, reinterpret_cast<POINT*>(&area), 2);
    return {area.left, area.top, area.right, area.bottom};
}

QuickSizes SizesNow() {
    RECT client = {};
    GetClientRect(g_ui.hMainWnd, &client);
    const QuickArea status = AreaInMain(GetDlgItem(g_ui.hMainWnd, IDC_STATUS_BAR));
    const QuickArea tabs = AreaInMain(GetDlgItem(g_ui.hMainWnd, IDC_TABS));
    const QuickSearch& search = QuickSearchNow();
    return {.room = {client.left, tabs.bottom, client.right, status.Width() > 0 ? status.top : client.bottom},
            .editor = AreaInMain(g_documents.hEditor),
            .dpi = g_ui.dpi,
            .textHeight = UiSizes().textHeight,
            .rowHeight = QuickListRowHeight(),
            .preview = search.source != nullptr && search.source->preview != nullptr};
}

void PlaceChild(HWND child, const QuickArea& area) {
    SetWindowPos(child, nullptr, area.left, area.top, area.Width(), area.bottom - area.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void RenewLooks() {
    g_quick.font = UiFont();
    SendMessageW(g_quick.field, WM_SETFONT, reinterpret_cast<WPARAM>(g_quick.font), FALSE);
    QuickListApplyTheme();
}

void PlaceQuick() {
    if (g_quick.font != UiFont()) RenewLooks();
    g_quick.layout = QuickLayoutOf(SizesNow());
    const QuickArea& area = g_quick.layout.window;
    SetWindowPos(g_quick.window, HWND_TOP, area.left, area.top, area.Width(), area.bottom - area.top, SWP_NOACTIVATE);
    PlaceChild(g_quick.field, g_quick.layout.field);
    PlaceChild(g_quick.list, g_quick.layout.list);
    InvalidateRect(g_quick.window, nullptr, FALSE);
}

// ----------------------------------------------------------------------------------------------------------- rows

void InvalidatePreviewAndStatus() {
    const RECT preview = RectOfArea(g_quick.layout.preview);
    const RECT status = RectOfArea(g_quick.layout.status);
    InvalidateRect(g_quick.window, &preview, FALSE);
    InvalidateRect(g_quick.window, &status, FALSE);
}

void ShowPreviewOfSelected() {
    const QuickSearch& search = QuickSearchNow();
    const int row = QuickListSelected();
    const bool shown = row >= 0 && search.source->preview != nullptr && g_quick.layout.preview.Width() > 0;
    QuickPreviewSelect(
        g_quick.window,
        shown ? search.source->preview(QuickSearchItem(static_cast<std::size_t>(row)), search.query) : QuickPreview{});
    InvalidatePreviewAndStatus();
}

std::wstring SelectedText() {
    const int row = QuickListSelected();
    const bool any = row >= 0 && row < static_cast<int>(QuickSearchNow().rows.size());
    return any ? std::wstring(QuickSearchItem(static_cast<std::size_t>(row)).text.text) : std::wstring{};
}

// The row with that text, or the first one.
int RowOfText(const std::wstring& text) {
    const auto count = static_cast<int>(QuickSearchNow().rows.size());
    for (int row = 0; row < count; ++row)
        if (QuickSearchItem(static_cast<std::size_t>(row)).text.text == text) return row;
    return count > 0 ? 0 : -1;
}

// `kept`: the text of the row that stays selected; empty: the first one is.
void ShowRows(const std::wstring& kept) {
    QuickListShow(static_cast<int>(QuickSearchNow().rows.size()), RowOfText(kept));
    ShowPreviewOfSelected();
}

QuickListRow RowOfList(int row) {
    const QuickSearch& search = QuickSearchNow();
    if (row < 0 || row >= static_cast<int>(search.rows.size())) return {};
    const QuickItem item = QuickSearchItem(static_cast<std::size_t>(row));
    return {item.text, FuzzyPositions(search.letters, item.text), search.source->extra(item)};
}

// ---------------------------------------------------------------------------------------------------------- acts

// Focus has left, or is about to: nothing is given back.
void HideQuick() {
    if (!g_quick.open) return;
    g_quick.open = false;
    g_quick.acceptWhenFound = false;
    ShowWindow(g_quick.window, SW_HIDE);
    QuickListShow(0, -1);
    QuickPreviewForget(g_quick.window);
    QuickSearchForget();
}

bool MayAccept() { return !DebugIsWaiting() && !LongWorkRuns() && !FileWorkRuns(); }

void AcceptSelected() {
    const QuickSearch& search = QuickSearchNow();
    g_quick.acceptWhenFound = search.running;
    if (search.running) return;
    const int row = QuickListSelected();
    if (row < 0 || row >= static_cast<int>(search.rows.size()) || !MayAccept() ||
        !search.source->extra(QuickSearchItem(static_cast<std::size_t>(row))).enabled) {
        MessageBeep(MB_ICONWARNING);
        return;
    }
    // The text of the row belongs to the search, which is forgotten when the window closes.
    const QuickSource& source = *search.source;
    const QuickQuery query = search.query;
    const FuzzyIndices texts = search.texts;
    const QuickItem item = QuickSearchItem(static_cast<std::size_t>(row));
    QuickOpenClose();
    source.accept(item, query);
}

void OnTyped() {
    const QuickSource* before = QuickSearchNow().source;
    g_quick.acceptWhenFound = false;
    const bool found = QuickSearchType(g_quick.window, WindowText(g_quick.field));
    if (QuickSearchNow().source != before) PlaceQuick();
    if (found) ShowRows({});
}

// A worker has found rows, or the files of the project have become more.
void OnNewRows(bool found) {
    if (!found) return;
    ShowRows(QuickListSelected() > 0 ? SelectedText() : std::wstring{});
    if (g_quick.acceptWhenFound) AcceptSelected();
}

// The texts of the list have become others.
void SearchAgain() {
    const bool wanted = g_quick.acceptWhenFound;
    const std::wstring kept = QuickListSelected() > 0 ? SelectedText() : std::wstring{};
    if (QuickSearchType(g_quick.window, WindowText(g_quick.field))) ShowRows(kept);
    g_quick.acceptWhenFound = wanted && QuickSearchNow().running;
}

void OnProjectFiles(WPARAM block) {
    if (ProjectFilesOnBlock(block) && g_quick.open && QuickSearchNow().source == &kQuickFiles) SearchAgain();
}

void SetTyped(const wchar_t* text) {
    SetWindowTextW(g_quick.field, text);  // the field tells of it by EN_CHANGE
    const int length = GetWindowTextLengthW(g_quick.field);
    SendMessageW(g_quick.field, EM_SETSEL, static_cast<WPARAM>(length), length);
}

// ------------------------------------------------------------------------------------------------------- the field

// Removes the word before the caret.
void DeleteWordBefore() {
    DWORD from = 0, to = 0;
    SendMessageW(g_quick.field, EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
    if (from == to) {
        const std::wstring text = WindowText(g_quick.field);
        while (from > 0 && text[from - 1] == L' ') --from;
        while (from > 0 && text[from - 1] != L' ') --from;
        SendMessageW(g_quick.field, EM_SETSEL, from, static_cast<LPARAM>(to));
    }
    SendMessageW(g_quick.field, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(L""));
}

bool OnControlKey(WPARAM key) {
    switch (key) {
        case 'A': SendMessageW(g_quick.field, EM_SETSEL, 0, -1); return true;
        case 'P':  // again: the next row, or the other list
            if (const bool palette = GetKeyState(VK_SHIFT) < 0; palette != (QuickSearchNow().source == &kQuickCommands))
                SetTyped(palette ? L">" : L"");
            else
                QuickListMove(VK_DOWN);
            ShowPreviewOfSelected();
            return true;
        case VK_BACK: DeleteWordBefore(); return true;
        default: return false;
    }
}

// True when the key was handled.
bool OnFieldKey(WPARAM key) {
    const bool shift = GetKeyState(VK_SHIFT) < 0;
    if (GetKeyState(VK_CONTROL) < 0 && GetKeyState(VK_MENU) >= 0 && OnControlKey(key)) return true;
    if (key == VK_RETURN) {
        AcceptSelected();
        return true;
    }
    if (key == VK_ESCAPE) {
        QuickOpenClose();
        return true;
    }
    if (shift || !QuickListMove(key)) return false;  // with Shift, Home and End select in the field
    ShowPreviewOfSelected();
    return true;
}

// Control characters that the field would beep at or insert.
bool IsOwnCharacter(WPARAM character) {
    constexpr WPARAM kControlBackspace = 0x7F;
    const bool edits = character == VK_BACK || character == 'C' - '@' || character == 'V' - '@' ||
                       character == 'X' - '@' || character == 'Z' - '@';
    return character == kControlBackspace || (character < L' ' && !edits);
}

LRESULT CALLBACK QuickFieldProc(HWND field, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    switch (message) {
        case WM_KEYDOWN:
            if (OnFieldKey(wParam)) return 0;
            break;
        case WM_CHAR:
            if (IsOwnCharacter(wParam)) return 0;
            break;
        case WM_MOUSEWHEEL: return SendMessageW(g_quick.list, message, wParam, lParam);
        case WM_GETDLGCODE: return DLGC_WANTALLKEYS;
        case WM_KILLFOCUS: {
            const LRESULT result = SubclassNext(field, message, wParam, lParam);
            const HWND to = reinterpret_cast<HWND>(wParam);
            if (to == nullptr || !IsChild(g_quick.window, to)) HideQuick();
            return result;
        }
        default: break;
    }
    return SubclassNext(field, message, wParam, lParam);
}

// ------------------------------------------------------------------------------------------------------ the window

std::wstring HintText() {
    std::wstring hint;
    for (const QuickSource* source : QuickSources()) {
        if (source->prefix == L'\0' || source == QuickSearchNow().source) continue;
        hint += (hint.empty() ? L"" : L"    ") + std::wstring(1, source->prefix) + L" " + Text(source->title);
    }
    return hint;
}

void PaintQuick() {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const BufferedPaint paint(g_quick.window);
    const QuickLayout& layout = g_quick.layout;
    FillArea(paint.Dc(), paint.Client(), chrome.statusBack);
    FrameArea(paint.Dc(), paint.Client(), chrome.line);
    FillArea(paint.Dc(), RectOfArea(layout.box), chrome.tabActiveBack);
    FrameArea(paint.Dc(), RectOfArea(layout.box), chrome.accent);
    if (layout.preview.Width() > 0) QuickPreviewDraw(paint.Dc(), RectOfArea(layout.preview));
    const HGDIOBJ font = SelectObject(paint.Dc(), UiFont());
    SetBkMode(paint.Dc(), TRANSPARENT);
    RECT status = RectOfArea(layout.status);
    constexpr UINT kFormat = DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX;
    const std::wstring hint = HintText();
    SetTextColor(paint.Dc(), ThemeQuietText());
    DrawTextW(paint.Dc(), hint.c_str(), -1, &status, kFormat | DT_RIGHT);
    status.right -= UiTextWidth(hint.c_str(), static_cast<int>(hint.size())) + UiScaled(12);
    SetTextColor(paint.Dc(), chrome.statusText);
    DrawTextW(paint.Dc(), QuickSearchStatus().c_str(), -1, &status, kFormat | DT_END_ELLIPSIS);
    SelectObject(paint.Dc(), font);
}

LRESULT OnQuickNotify(const NMHDR& header) {
    LRESULT result = 0;
    int chosen = -1;
    if (!QuickListHandleNotify(header, &result, &chosen)) return 0;
    if (header.code == NM_CLICK) {
        SetFocus(g_quick.field);
        if (chosen >= 0) AcceptSelected();
    } else if (header.code == NM_KILLFOCUS && GetFocus() != g_quick.field && GetFocus() != g_quick.list) {
        HideQuick();
    }
    return result;
}

void OnQuickDestroyed() {
    QuickSearchDrop(g_quick.window);
    QuickPreviewDrop(g_quick.window);
    ProjectFilesEnd(g_quick.window, MSG_QUICK_FILES);
    g_quick = {};
}

LRESULT CALLBACK QuickWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_COMMAND:
            if (wParam == MAKEWPARAM(IDC_QUICK_FIELD, EN_CHANGE)) OnTyped();
            return 0;
        case WM_NOTIFY: return OnQuickNotify(*reinterpret_cast<const NMHDR*>(lParam));
        case WM_CTLCOLOREDIT:
            return ControlColours(reinterpret_cast<HDC>(wParam), ThemeCurrentChrome().paneText,
                                  ThemeCurrentChrome().tabActiveBack);
        case WM_TIMER: QuickPreviewOnTimer(window); return 0;
        case MSG_QUICK_FILES: OnProjectFiles(wParam); return 0;
        case MSG_QUICK_FOUND: OnNewRows(QuickSearchOnFound(window, wParam)); return 0;
        case MSG_QUICK_PREVIEW:
            if (QuickPreviewOnText(wParam)) InvalidatePreviewAndStatus();
            return 0;
        case WM_ERASEBKGND: return 1;
        case WM_PAINT: PaintQuick(); return 0;
        case WM_DESTROY: OnQuickDestroyed(); return 0;
        default: return DefWindowProcW(window, message, wParam, lParam);
    }
}

bool CreateQuickChildren() {
    g_quick.field =
        CreateWindowExW(0, WC_EDITW, L"", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | ES_AUTOHSCROLL, 0, 0, 0, 0,
                        g_quick.window, reinterpret_cast<HMENU>(INT_PTR{IDC_QUICK_FIELD}), g_ui.hInstance, nullptr);
    g_quick.list = QuickListCreate(g_quick.window, IDC_QUICK_LIST, RowOfList);
    if (g_quick.field == nullptr || g_quick.list == nullptr) return false;
    AccessibleNameSet(g_quick.field, Text(L"File, command, symbol or line"));
    AccessibleNameSet(g_quick.list, Text(L"Found"));
    SendMessageW(g_quick.field, EM_SETLIMITTEXT, kMostTyped, 0);
    return SubclassAdd(g_quick.field, QuickFieldProc);
}

bool CreateQuickWindow() {
    if (g_quick.window != nullptr) return true;
    if (!WindowClassRegister({.name = kClass, .procedure = QuickWindowProc})) return false;
    g_quick.window = CreateWindowExW(WS_EX_CONTROLPARENT, kClass, Text(L"Go to File"),
                                     WS_CHILD | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0, 0, 0, 0, g_ui.hMainWnd,
                                     reinterpret_cast<HMENU>(INT_PTR{IDC_QUICK_OPEN}), g_ui.hInstance, nullptr);
    if (g_quick.window != nullptr && CreateQuickChildren()) return true;
    AppLogMsg(L"FAIL: CreateQuickWindow error=%lu", GetLastError());
    if (g_quick.window != nullptr) DestroyWindow(g_quick.window);
    return false;
}

void ShowQuick(const wchar_t* typed) {
    if (!CreateQuickWindow()) return;
    if (!g_quick.open) {
        g_quick.focusBefore = GetFocus();
        for (const QuickSource* source : QuickSources())
            if (source->opening != nullptr) source->opening();
        RenewLooks();
        QuickSearchForget();
        g_quick.open = true;
    }
    SetTyped(typed);
    if (QuickSearchNow().source == nullptr) OnTyped();  // the field was empty before
    PlaceQuick();
    ShowWindow(g_quick.window, SW_SHOWNA);
    FocusRetryEnd();  // it would take the keyboard from the field, and so close the window
    SetFocus(g_quick.field);
}

constexpr CommandHandler kQuickOpenHandlers[] = {
    {IDM_QUICK_OPEN, [](int) { ShowQuick(L""); }},          {IDM_COMMAND_PALETTE, [](int) { ShowQuick(L">"); }},
    {IDM_SYMBOL_IN_DOCUMENT, [](int) { ShowQuick(L"@"); }}, {IDM_SYMBOL_IN_PROJECT, [](int) { ShowQuick(L"#"); }},
    {IDM_TAB_LIST, [](int) { ShowQuick(L"<"); }},
};

}  // namespace

std::span<const CommandHandler> QuickOpenCommandHandlers() { return kQuickOpenHandlers; }

bool QuickOpenIsMessage(const MSG& message) {
    if (!g_quick.open || message.message < WM_KEYFIRST || message.message > WM_KEYLAST) return false;
    if (message.hwnd != g_quick.field && message.hwnd != g_quick.list) return false;
    TranslateMessage(&message);
    DispatchMessageW(&message);
    return true;
}

void QuickOpenRenew() {
    if (!g_quick.open) return;
    SearchAgain();
    PlaceQuick();  // the list has as many rows as there are
}

void QuickOpenPlace() {
    if (g_quick.open) PlaceQuick();
}

void QuickOpenClose() {
    if (!g_quick.open) return;
    const HWND before = g_quick.focusBefore;
    HideQuick();  // the system takes the keyboard from a window that is hidden
    if (before != nullptr && IsWindowVisible(before) != FALSE && IsChild(g_ui.hMainWnd, before))
        SetFocus(before);
    else
        FocusCurrentEditor();
    if (GetFocus() == nullptr) SetFocus(g_ui.hMainWnd);
}
