// The window of the search bar. Its searching is in find_bar_walk. UI thread.
#include "search/find_bar.h"

#include "base/log.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "documents/document_row.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "search/find.h"
#include "search/find_bar_walk.h"
#include "search/find_editor.h"
#include "search/find_internal.h"
#include "search/search_state.h"
#include "ui/accessible.h"
#include "ui/chrome.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/paint.h"
#include "ui/ui_state.h"
#include "ui/window_class.h"
#include "ui/window_text.h"

#include <commctrl.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace {

constexpr wchar_t kBarClass[] = L"KVXEFindBar";
constexpr UINT kStepEveryMs = 10;
constexpr double kFirstStepMs = 60, kStepMs = 25;  // at a key, and between keys

constexpr struct {
    int id;
    const wchar_t* className;
    const wchar_t* text;
    DWORD style;
    DWORD exStyle;
    int leastWidth;  // at 96 dpi, beside its text; of the field and the count without text
} kControls[] = {
    {IDC_BAR_FIELD, WC_EDITW, L"", ES_AUTOHSCROLL | WS_TABSTOP, WS_EX_CLIENTEDGE, 150},
    {IDC_BAR_CASE, WC_BUTTONW, English(L"&Case"), BS_AUTOCHECKBOX | WS_TABSTOP, 0, 24},
    {IDC_BAR_WORD, WC_BUTTONW, English(L"&Word"), BS_AUTOCHECKBOX | WS_TABSTOP, 0, 24},
    {IDC_BAR_REGEX, WC_BUTTONW, English(L"Rege&x"), BS_AUTOCHECKBOX | WS_TABSTOP, 0, 24},
    {IDC_BAR_COUNT, WC_STATICW, L"", SS_LEFT | SS_CENTERIMAGE | SS_NOPREFIX | SS_ENDELLIPSIS, 0, 110},
    {IDC_BAR_PREVIOUS, WC_BUTTONW, English(L"&Previous"), BS_PUSHBUTTON | WS_TABSTOP, 0, 16},
    {IDC_BAR_NEXT, WC_BUTTONW, English(L"&Next"), BS_PUSHBUTTON | WS_TABSTOP, 0, 16},
    {IDC_BAR_CLOSE, WC_BUTTONW, English(L"Close"), BS_PUSHBUTTON | WS_TABSTOP, 0, 16},
};
static_assert(std::size(kControls) == kFindBarParts);

struct FindBarState {
    bool filling = false;  // the field is filled by the program
    bool fault = false;    // the count shows why there is nothing
    bool left = false;     // it had the keyboard when the main window was left
    FindBarWalk walk;
    // Where the bar was opened.
    DocumentId document = 0;
    FindSpan selection;  // anchor and caret
    LRESULT topLine = 0, xOffset = 0;
};
FindBarState g_bar;

HWND Control(int id) { return GetDlgItem(g_search.hFindBar, id); }

void ShowBarText(const std::wstring& text, bool fault) {
    g_bar.fault = fault;
    if (WindowText(Control(IDC_BAR_COUNT)) != text) SetWindowTextW(Control(IDC_BAR_COUNT), text.c_str());
    InvalidateRect(Control(IDC_BAR_COUNT), nullptr, TRUE);
}

void ShowBarCount() {
    if (g_bar.walk.query.code == nullptr) return;
    if (g_bar.walk.end == RegexResult::TooComplex)
        ShowBarText(EndOfSearchText(g_bar.walk.end), true);
    else
        ShowBarText(FindBarCountText(WalkCount(g_bar.walk, FindCurrentMatch())), false);
}

void BarGoBack() {
    const HWND editor = g_documents.hEditor;
    SciSend(editor, SCI_SETSEL, static_cast<WPARAM>(g_bar.selection.start), g_bar.selection.end);
    SciSend(editor, SCI_SETFIRSTVISIBLELINE, static_cast<WPARAM>(g_bar.topLine));
    SciSend(editor, SCI_SETXOFFSET, static_cast<WPARAM>(g_bar.xOffset));
}

void BarStep(double milliseconds) {
    std::optional<FindSpan> found;
    const bool wasFinding = g_bar.walk.finding;
    const bool more = WalkStep(g_bar.walk, milliseconds, found);
    if (found) FindShowMatch(*found);
    if (wasFinding && !g_bar.walk.finding && !found) BarGoBack();
    if (found) WalkMarkVisible(g_bar.walk);
    if (more)
        SetTimer(g_ui.hMainWnd, TIMER_FIND, kStepEveryMs, nullptr);
    else
        KillTimer(g_ui.hMainWnd, TIMER_FIND);
    ShowBarCount();
}

void BarTakePlace() {
    const HWND editor = g_documents.hEditor;
    g_bar.walk.editor = editor;
    g_bar.document = ActiveDocumentId();
    g_bar.selection = {SciSend(editor, SCI_GETANCHOR), SciSend(editor, SCI_GETCURRENTPOS)};
    g_bar.topLine = SciSend(editor, SCI_GETFIRSTVISIBLELINE);
    g_bar.xOffset = SciSend(editor, SCI_GETXOFFSET);
    FindMarksPrepare(editor, FindMarks::Bar);
}

// The text or an option has changed: searches again from where the bar was opened.
void BarSearch() {
    if (g_bar.document == 0) return;
    g_find.what = WindowText(Control(IDC_BAR_FIELD));
    const auto ticked = [](int id) { return SendMessageW(Control(id), BM_GETCHECK, 0, 0) == BST_CHECKED; };
    g_find.options = {ticked(IDC_BAR_CASE), ticked(IDC_BAR_WORD), ticked(IDC_BAR_REGEX)};
    WalkForget(g_bar.walk);
    RegexFault fault;
    if (!PrepareQuery(ToUtf8(g_find.what), g_find.options, g_bar.walk.query, fault)) {
        KillTimer(g_ui.hMainWnd, TIMER_FIND);
        if (g_find.what.empty()) BarGoBack();
        ShowBarText(g_find.what.empty() ? L"" : fault.text, !g_find.what.empty());
        return;
    }
    WalkFindFrom(g_bar.walk, std::min(g_bar.selection.start, g_bar.selection.end));
    BarStep(kFirstStepMs);
    WalkMarkVisible(g_bar.walk);
}

void BarGo(bool forward) {
    FindRemember();
    if (g_bar.walk.query.code == nullptr) return MessageBeep(MB_OK), void();
    FindStep(g_bar.walk.query, forward);
    ShowBarCount();
}

// The field gets the selection, or keeps its last text, all selected.
void FillBar() {
    const std::wstring selected = FindSelectedText();
    g_bar.filling = true;
    SetWindowTextW(Control(IDC_BAR_FIELD), (selected.empty() ? g_find.what : selected).c_str());
    const auto tick = [](int id, bool on) {
        SendMessageW(Control(id), BM_SETCHECK, on ? BST_CHECKED : BST_UNCHECKED, 0);
    };
    tick(IDC_BAR_CASE, g_find.options.matchCase);
    tick(IDC_BAR_WORD, g_find.options.wholeWord);
    tick(IDC_BAR_REGEX, g_find.options.regex);
    g_bar.filling = false;
    SendMessageW(Control(IDC_BAR_FIELD), EM_SETSEL, 0, -1);
}

void PlaceBarControls(int width) {
    FindBarSizes sizes{
        .height = FindBarHeight() - 1, .gap = UiScaled(6), .controlHeight = UiSizes().textHeight + UiScaled(8)};
    for (int i = 0; i < kFindBarParts; ++i) {
        const std::wstring text = Text(kControls[i].text);
        const bool fixed = i != static_cast<int>(FindBarPart::Field) && i != static_cast<int>(FindBarPart::Count);
        sizes.widths[i] =
            UiScaled(kControls[i].leastWidth) + (fixed ? UiTextWidth(text.c_str(), static_cast<int>(text.size())) : 0);
    }
    FindBarPlace places[kFindBarParts];
    PlaceFindBar(sizes, width, places);
    for (int i = 0; i < kFindBarParts; ++i) {
        const FindBarPlace& place = places[i];
        const HWND control = Control(kControls[i].id);
        MoveWindow(control, place.left, place.top, place.width, place.height, TRUE);
        ShowWindow(control, place.width > 0 ? SW_SHOWNA : SW_HIDE);
    }
}

void OnBarCommand(int id, int notification) {
    switch (id) {
        case IDC_BAR_FIELD:
            if (notification == EN_CHANGE && !g_bar.filling) BarSearch();
            break;
        case IDC_BAR_CASE:
        case IDC_BAR_WORD:
        case IDC_BAR_REGEX:
            BarSearch();
            SetFocus(Control(IDC_BAR_FIELD));  // to go on typing
            break;
        case IDOK:
        case IDC_BAR_NEXT: BarGo(true); break;
        case IDC_BAR_PREVIOUS: BarGo(false); break;
        case IDCANCEL: FindBarClose(true); break;
        case IDC_BAR_CLOSE: FindBarClose(false); break;
        default: break;
    }
}

LRESULT BarColours(HDC dc, HWND control) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const bool isField = GetDlgCtrlID(control) == IDC_BAR_FIELD;
    const bool fault = GetDlgCtrlID(control) == IDC_BAR_COUNT && g_bar.fault;
    return ControlColours(dc, fault ? chrome.error : chrome.paneText, isField ? chrome.paneBack : chrome.tabActiveBack);
}

LRESULT EraseBar(HWND bar, HDC dc) {
    RECT area = {};
    GetClientRect(bar, &area);
    FillArea(dc, area, ThemeCurrentChrome().tabActiveBack);
    area.top = area.bottom - 1;
    FillArea(dc, area, ThemeCurrentChrome().line);
    return 1;
}

LRESULT CALLBACK FindBarProc(HWND bar, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SIZE: PlaceBarControls(LOWORD(lParam)); return 0;
        case WM_COMMAND: OnBarCommand(LOWORD(wParam), HIWORD(wParam)); return 0;
        case WM_CTLCOLORSTATIC:
        case WM_CTLCOLORBTN:
        case WM_CTLCOLOREDIT: return BarColours(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam));
        case WM_ERASEBKGND: return EraseBar(bar, reinterpret_cast<HDC>(wParam));
        default: return DefWindowProcW(bar, message, wParam, lParam);
    }
}

bool CreateBar() {
    static const bool registered = WindowClassRegister({.name = kBarClass, .procedure = FindBarProc});
    g_search.hFindBar =
        CreateWindowExW(WS_EX_CONTROLPARENT, kBarClass, Text(L"Search"), WS_CHILD | WS_CLIPCHILDREN | WS_CLIPSIBLINGS,
                        0, 0, 0, 0, g_ui.hMainWnd, reinterpret_cast<HMENU>(IDC_FIND_BAR), g_ui.hInstance, nullptr);
    if (!registered || g_search.hFindBar == nullptr) {
        AppLogMsg(L"FAIL: FindBarShow error=%lu", GetLastError());
        return false;
    }
    for (const auto& row : kControls)
        CreateWindowExW(row.exStyle, row.className, Text(row.text), WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | row.style,
                        0, 0, 0, 0, g_search.hFindBar, reinterpret_cast<HMENU>(static_cast<INT_PTR>(row.id)),
                        g_ui.hInstance, nullptr);
    AccessibleNameSet(Control(IDC_BAR_FIELD), Text(L"Text to find"));
    SendMessageW(Control(IDC_BAR_FIELD), EM_LIMITTEXT, kFindFieldLimit, 0);
    return true;
}

bool IsInBar(HWND window) { return window == g_search.hFindBar || IsChild(g_search.hFindBar, window) != FALSE; }

bool IsDown(int key) { return GetKeyState(key) < 0; }

}  // namespace

void FindBarShow() {
    if (g_documents.hEditor == nullptr) return;
    const bool isNew = g_search.hFindBar == nullptr;
    if (isNew && !CreateBar()) return;
    const bool begins = isNew || !IsInBar(GetFocus());
    if (begins) BarTakePlace();
    if (isNew) {
        FindBarApplyTheme();
        g_events.layoutWanted();
    }
    if (begins) FillBar();  // a field without its width would show the end of its text
    SendMessageW(Control(IDC_BAR_FIELD), EM_SETSEL, 0, -1);
    SetFocus(Control(IDC_BAR_FIELD));
    BarSearch();
}

void FindBarClose(bool back) {
    if (g_search.hFindBar == nullptr) return;
    KillTimer(g_ui.hMainWnd, TIMER_FIND);
    FindRemember();
    WalkForget(g_bar.walk);
    if (back && g_bar.document == ActiveDocumentId()) BarGoBack();
    const HWND bar = std::exchange(g_search.hFindBar, nullptr);
    FocusCurrentEditor();
    g_bar = {};
    DestroyWindow(bar);
    g_events.layoutWanted();
}

HWND FindBarWindow() { return g_search.hFindBar; }

int FindBarHeight() { return g_search.hFindBar != nullptr ? UiSizes().textHeight + UiScaled(18) : 0; }

void FindBarApplyTheme() {
    if (g_search.hFindBar == nullptr) return;
    for (const auto& row : kControls) {
        SendMessageW(Control(row.id), WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), FALSE);
        ControlApplyTheme(Control(row.id));
    }
    if (g_bar.walk.editor != nullptr) FindMarksPrepare(g_bar.walk.editor, FindMarks::Bar);
    RECT area = {};
    GetClientRect(g_search.hFindBar, &area);
    PlaceBarControls(static_cast<int>(area.right));
    InvalidateRect(g_search.hFindBar, nullptr, TRUE);
}

bool FindBarIsMessage(MSG* message) {
    if (g_search.hFindBar == nullptr) return false;
    const bool isKey = message->message == WM_KEYDOWN;
    if (isKey && message->wParam == VK_ESCAPE && message->hwnd == g_documents.hEditor && !g_documents.wordListOpen &&
        SciSend(message->hwnd, SCI_CALLTIPACTIVE) == 0) {
        FindBarClose(false);
        return true;
    }
    if (!IsInBar(message->hwnd)) return false;
    if (isKey && message->wParam == VK_RETURN && message->hwnd == Control(IDC_BAR_FIELD)) {
        if (IsDown(VK_CONTROL))
            FindBarClose(false);
        else
            BarGo(!IsDown(VK_SHIFT));
        return true;
    }
    return IsDialogMessageW(g_search.hFindBar, message) != FALSE;
}

void FindBarOnLeft() { g_bar.left = g_search.hFindBar != nullptr && IsInBar(GetFocus()); }

void FindBarOnEntered() {
    if (std::exchange(g_bar.left, false)) SetFocus(Control(IDC_BAR_FIELD));
}

void FindBarOnActivated(DocumentId document) {
    if (g_search.hFindBar == nullptr || document == g_bar.document) return;
    WalkForget(g_bar.walk);
    g_bar.walk.editor = nullptr;
    if (document == 0) return FindBarClose(false);
    // The caret stays where it is in the other document; its matches are marked and counted.
    BarTakePlace();
    RegexFault fault;
    if (!PrepareQuery(ToUtf8(g_find.what), g_find.options, g_bar.walk.query, fault)) return;
    WalkCountAgain(g_bar.walk);
    BarStep(0);
    WalkMarkVisible(g_bar.walk);
}

void FindBarOnView(HWND editor, int updated) {
    if (g_search.hFindBar == nullptr || editor != g_bar.walk.editor) return;
    if ((updated & (SC_UPDATE_V_SCROLL | SC_UPDATE_H_SCROLL | SC_UPDATE_CONTENT)) != 0) WalkMarkVisible(g_bar.walk);
    if ((updated & SC_UPDATE_SELECTION) != 0 && !g_bar.walk.finding && !g_bar.fault) ShowBarCount();
}

void FindBarOnModified(HWND editor, int modified) {
    if (g_search.hFindBar == nullptr || editor != g_bar.walk.editor) return;
    if ((modified & (SC_MOD_INSERTTEXT | SC_MOD_DELETETEXT)) == 0) return;
    WalkCountAgain(g_bar.walk);
    SetTimer(g_ui.hMainWnd, TIMER_FIND, 4 * kStepEveryMs, nullptr);
}

void FindBarOnTimer() {
    if (g_search.hFindBar == nullptr)
        KillTimer(g_ui.hMainWnd, TIMER_FIND);
    else
        BarStep(kStepMs);
}
