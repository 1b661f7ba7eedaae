// The window of the outline: field, button and list. UI thread.
#include "symbols/outline_pane.h"

#include "base/log.h"
#include "base/texts.h"
#include "documents/document_row.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "symbols/outline.h"
#include "symbols/symbol_place.h"
#include "ui/accessible.h"
#include "ui/chrome.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/list_view.h"
#include "ui/paint.h"
#include "ui/panes.h"
#include "ui/redraw.h"
#include "ui/subclass.h"
#include "ui/ui_state.h"
#include "ui/window_class.h"

#include <commctrl.h>

#include <iterator>

namespace {

constexpr wchar_t kClass[] = L"KVXEOutlinePane";
constexpr int kBarHeight = 30, kFieldRoom = 8, kGap = 4, kButtonWidth = 40;  // at 96 dpi
constexpr int kFilterCapacity = 128;

struct OutlinePane {
    HWND pane = nullptr, field = nullptr, button = nullptr;
    ListView list;
    OutlineWish wish;
    DocumentId document = 0;
    SymbolTablePtr table;  // that of `outline`
    Outline outline;
};
OutlinePane g_outline;

bool IsPaneVisible() { return g_outline.pane != nullptr && PaneIsShown(PaneId::Outline); }

// --- Rows

std::uint32_t CaretLine() {
    const auto caret = static_cast<WPARAM>(SciSend(g_documents.hEditor, SCI_GETCURRENTPOS));
    return static_cast<std::uint32_t>(SciSend(g_documents.hEditor, SCI_LINEFROMPOSITION, caret));
}

int RowOfCaret() {
    if (g_documents.hEditor == nullptr || g_outline.table == nullptr) return -1;
    return OutlineRowAtLine(*g_outline.table, g_outline.outline, CaretLine());
}

// The rows of the present table; the row of the caret is selected and, when the list does not have the keyboard, shown.
void ShowRows() {
    g_outline.document = ActiveDocumentId();
    g_outline.table = SymbolsOfDocument(g_outline.document);
    // An edit that changes no symbol leaves the rows as they are, and nothing is painted.
    Outline outline = OutlineOf(*g_outline.table, g_outline.wish);
    const bool same =
        outline.symbols == g_outline.outline.symbols && outline.content.rows == g_outline.outline.content.rows;
    const int caret = OutlineRowAtLine(*g_outline.table, outline, g_documents.hEditor != nullptr ? CaretLine() : 0);
    if (same && g_outline.list.content != nullptr) return;
    g_outline.outline = std::move(outline);
    if (GetFocus() != g_outline.list.window) g_outline.outline.content.reveal = caret;
    const RedrawPause pause(g_outline.list.window);
    ListViewUpdate(g_outline.list, g_outline.outline.content);
}

void GoToRow(int row, int) {
    if (row < 0 || static_cast<std::size_t>(row) >= g_outline.outline.symbols.size()) return;
    const Symbol& symbol = g_outline.table->symbols[g_outline.outline.symbols[static_cast<std::size_t>(row)]];
    SymbolGoTo({.document = g_outline.document, .path = {}, .line = symbol.line, .column = symbol.column});
}

constexpr ListColumn kColumns[] = {
    {.title = L"", .characters = 2, .least = 2, .fixedPitch = true},
    {.title = English(L"Name"), .characters = 26, .least = 8, .fixedPitch = false},
    {.title = English(L"Type or value"), .characters = 10, .least = 2, .fixedPitch = false},
};
constexpr ListKind kOutlineList = {.columns = kColumns, .activate = GoToRow};

// --- The field and the button

void MoveInList(int rows) {
    const auto count = static_cast<int>(g_outline.outline.content.rows.size());
    const int row = std::clamp(ListViewSelected(g_outline.list) + rows, 0, std::max(count - 1, 0));
    ListViewSelect(g_outline.list, row);
    SendMessageW(g_outline.list.window, LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
}

void TakeFilter() {
    wchar_t text[kFilterCapacity] = {};
    GetWindowTextW(g_outline.field, text, kFilterCapacity);
    if (g_outline.wish.filter == text) return;
    g_outline.wish.filter = text;
    ShowRows();
    const int row = g_outline.wish.filter.empty()
                        ? RowOfCaret()
                        : OutlineBestRow(*g_outline.table, g_outline.outline, g_outline.wish.filter);
    ListViewSelect(g_outline.list, std::max(row, 0));
    MoveInList(0);
}

// Esc empties the field first, then gives the keyboard back.
void OnEscape() {
    if (GetWindowTextLengthW(g_outline.field) > 0)
        SetWindowTextW(g_outline.field, L"");
    else
        FocusEditorFromPane();
}

bool OnListKey(HWND, WPARAM key) {
    if (key == VK_ESCAPE) FocusEditorFromPane();
    if (key == VK_TAB) SetFocus(GetKeyState(VK_SHIFT) < 0 ? g_outline.button : g_outline.field);
    return key == VK_ESCAPE || key == VK_TAB;
}

LRESULT CALLBACK FieldProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    if (message == WM_GETDLGCODE) return SubclassNext(window, message, wParam, lParam) | DLGC_WANTALLKEYS;
    if (message == WM_CHAR && (wParam == VK_RETURN || wParam == VK_ESCAPE || wParam == VK_TAB)) return 0;  // no beep
    if (message != WM_KEYDOWN) return SubclassNext(window, message, wParam, lParam);
    switch (wParam) {
        case VK_ESCAPE: OnEscape(); return 0;
        case VK_RETURN: GoToRow(ListViewSelected(g_outline.list), 0); return 0;
        case VK_DOWN: MoveInList(1); return 0;
        case VK_UP: MoveInList(-1); return 0;
        case VK_NEXT: MoveInList(10); return 0;
        case VK_PRIOR: MoveInList(-10); return 0;
        case VK_TAB: SetFocus(GetKeyState(VK_SHIFT) < 0 ? g_outline.list.window : g_outline.button); return 0;
        default: return SubclassNext(window, message, wParam, lParam);
    }
}

LRESULT CALLBACK ButtonProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    if (message == WM_KEYDOWN && wParam == VK_ESCAPE) {
        FocusEditorFromPane();
        return 0;
    }
    if (message == WM_KEYDOWN && wParam == VK_TAB) {
        SetFocus(GetKeyState(VK_SHIFT) < 0 ? g_outline.field : g_outline.list.window);
        return 0;
    }
    return SubclassNext(window, message, wParam, lParam);
}

void ToggleOrder() {
    g_outline.wish.byName = !g_outline.wish.byName;
    SetWindowTextW(g_outline.button, g_outline.wish.byName ? L"1-9" : L"A-Z");
    ShowRows();
    const int caret = RowOfCaret();
    if (caret >= 0) ListViewSelect(g_outline.list, caret);
}

// --- The window

void LayOut() {
    RECT client = {};
    GetClientRect(g_outline.pane, &client);
    const int bar = UiScaled(kBarHeight), gap = UiScaled(kGap);
    const int height = UiSizes().textHeight + UiScaled(kFieldRoom);  // a field shows its text at the top of its room
    const int button = UiScaled(kButtonWidth), right = static_cast<int>(client.right);
    const int top = (bar - height) / 2;
    const UINT flags = SWP_NOZORDER | SWP_NOACTIVATE | SWP_DEFERERASE;
    SetWindowPos(g_outline.field, nullptr, gap, top, std::max(right - button - 3 * gap, 0), height, flags);
    SetWindowPos(g_outline.button, nullptr, right - button - gap, top, button, height, flags);
    SetWindowPos(g_outline.list.window, nullptr, 0, bar, right, std::max<int>(client.bottom - bar, 0), flags);
    InvalidateRect(g_outline.pane, nullptr, FALSE);
}

void PaintOutlineBar(HWND window) {
    const BufferedPaint paint(window);
    FillArea(paint.Dc(), paint.Client(), ThemeCurrentChrome().paneBack);
}

LRESULT CALLBACK OutlineProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    switch (message) {
        case WM_SIZE:
            if (g_outline.list.window != nullptr) LayOut();
            return 0;
        case WM_SETFOCUS: OutlinePaneFocus(); return 0;
        case WM_NOTIFY:
            ListViewHandleNotify(g_outline.list, *reinterpret_cast<const NMHDR*>(lParam), &result);
            return result;
        case WM_COMMAND:
            if (HIWORD(wParam) == EN_CHANGE) TakeFilter();
            if (LOWORD(wParam) == IDC_OUTLINE_ORDER && HIWORD(wParam) == BN_CLICKED) ToggleOrder();
            return 0;
        case WM_CTLCOLOREDIT:
        case WM_CTLCOLORBTN:
            return ControlColours(reinterpret_cast<HDC>(wParam), ThemeCurrentChrome().paneText,
                                  ThemeCurrentChrome().paneBack);
        case WM_ERASEBKGND: return 1;
        case WM_PAINT: PaintOutlineBar(window); return 0;
        case WM_NCDESTROY: g_outline = {}; break;
        default: break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

HWND MakeChild(const wchar_t* windowClass, const wchar_t* text, DWORD exStyle, DWORD style, int id) {
    return CreateWindowExW(exStyle, windowClass, text, WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_TABSTOP | style, 0,
                           0, 0, 0, g_outline.pane, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), g_ui.hInstance,
                           nullptr);
}

bool MakeChildren() {
    g_outline.field = MakeChild(WC_EDITW, L"", WS_EX_CLIENTEDGE, ES_AUTOHSCROLL, IDC_OUTLINE_FILTER);
    g_outline.button = MakeChild(WC_BUTTONW, L"A-Z", 0, BS_PUSHBUTTON, IDC_OUTLINE_ORDER);
    if (g_outline.field == nullptr || g_outline.button == nullptr) return false;
    SendMessageW(g_outline.field, EM_LIMITTEXT, kFilterCapacity - 1, 0);
    SendMessageW(g_outline.field, EM_SETCUEBANNER, TRUE, reinterpret_cast<LPARAM>(Text(L"Filter")));
    SubclassAdd(g_outline.field, FieldProc);
    SubclassAdd(g_outline.button, ButtonProc);
    AccessibleNameSet(g_outline.field, Text(L"Filter"));
    g_outline.list.handleKey = OnListKey;
    if (!ListViewCreate(g_outline.list, g_outline.pane, IDC_OUTLINE_LIST)) return false;
    AccessibleNameSet(g_outline.list.window, Text(L"Declarations"));
    ShowWindow(g_outline.list.window, SW_SHOWNA);
    return true;
}

}  // namespace

HWND OutlinePaneCreate(HWND parent, int controlId) {
    if (!WindowClassRegister({.name = kClass, .procedure = OutlineProc})) return nullptr;
    g_outline.pane =
        CreateWindowExW(WS_EX_CONTROLPARENT, kClass, L"", WS_CHILD | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0, 0, 0, 0,
                        parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(controlId)), g_ui.hInstance, nullptr);
    if (g_outline.pane == nullptr || !MakeChildren()) {
        AppLogMsg(L"FAIL: OutlinePaneCreate error=%lu", GetLastError());
        if (g_outline.pane != nullptr) DestroyWindow(g_outline.pane);
        return nullptr;
    }
    SymbolsListen(OutlineOnSymbols);
    OutlinePaneApplyTheme();
    return g_outline.pane;
}

void OutlinePaneApplyTheme() {
    if (g_outline.pane == nullptr) return;
    for (const HWND control : {g_outline.field, g_outline.button}) {
        SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), TRUE);
        ControlApplyTheme(control);
    }
    ListViewApplyTheme(g_outline.list);
    ListViewShow(g_outline.list, kOutlineList);
    LayOut();
    ShowRows();
}

void OutlinePaneFocus() {
    ShowRows();
    SetFocus(g_outline.field);
}

void OutlineOnSymbols(DocumentId document) {
    if (IsPaneVisible() && document == ActiveDocumentId()) ShowRows();
}

void OutlineOnActivated(DocumentId) {
    if (IsPaneVisible()) ShowRows();
}

void OutlineOnCaret() {
    if (!IsPaneVisible() || g_outline.document != ActiveDocumentId() || GetFocus() == g_outline.list.window) return;
    const int row = RowOfCaret();
    if (row < 0 || row == ListViewSelected(g_outline.list)) return;
    ListViewSelect(g_outline.list, row);
    SendMessageW(g_outline.list.window, LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
}
