// The window of a peek: a read-only editor with a copy of the text, a list when there are several places, a line above
// them. UI thread, but for the worker that reads a file.
#include "symbols/peek_window.h"

#include "base/log.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "base/worker.h"
#include "documents/document_row.h"
#include "editor/editor_pane.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "resources/ids.h"
#include "ui/accessible.h"
#include "ui/chrome.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/list_view.h"
#include "ui/paint.h"
#include "ui/subclass.h"
#include "ui/window_class.h"

#include <windowsx.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

namespace {

constexpr wchar_t kClass[] = L"KVXEPeek";
constexpr int kIndicator = 25;  // of Scintilla: the name that is peeked at
constexpr int kRows = 14;       // of the text, when there is room

struct PeekFileText {
    std::uint64_t number = 0;
    bool read = false;
    std::string text;
};
struct PeekFileRequest {
    HWND window = nullptr;
    std::uint64_t number = 0;
    std::wstring path;
    std::uint32_t line = 0;
};

struct PeekWindow {
    HWND window = nullptr;
    HWND editor = nullptr;  // that shows the text
    ListView list;
    ListContent content;
    PeekPages pages;
    HWND over = nullptr;  // the document's editor; null: closed
    DocumentId under = 0;
    std::uint64_t number = 0;  // of the text that was asked for last
    Worker worker;
    bool filling = false;  // the list gets its rows
    RECT back = {}, forward = {}, close = {};
};
PeekWindow g_peek;

LRESULT Ask(HWND editor, UINT message, LRESULT wParam = 0, LPARAM lParam = 0) {
    return SciSend(editor, message, static_cast<WPARAM>(wParam), lParam);
}

PeekPage& Page() { return g_peek.pages.pages[g_peek.pages.at]; }
const PeekPlace& Place() { return Page().places[Page().selected]; }
bool IsOpen() { return g_peek.over != nullptr; }

// ----------------------------------------------------------------------------------------------------------- text

// The worker: the file may be on a share that is gone.
void ReadPeekFile(PeekFileRequest& request, const WorkerCancel&) {
    auto result = std::make_unique<PeekFileText>();
    result->number = request.number;
    std::size_t length = 0;
    if (PathAnswers(request.path.c_str())) {
        const HeapBlock<char> text(ReadSourceFileForEditor(request.path.c_str(), &length, nullptr, nullptr));
        result->read = text != nullptr;
        if (text) result->text = PeekText({text.get(), length}, request.line);
    }
    WorkerPost(request.window, MSG_PEEK_TEXT, std::move(result));
}

void MarkName(const PeekPlace& place) {
    const HWND editor = g_peek.editor;
    const UINT from = place.indented ? SCI_GETLINEINDENTPOSITION : SCI_POSITIONFROMLINE;
    const LRESULT start = std::min(Ask(editor, from, place.line) + static_cast<LRESULT>(place.column),
                                   Ask(editor, SCI_GETLINEENDPOSITION, place.line));
    Ask(editor, SCI_INDICSETSTYLE, kIndicator, INDIC_ROUNDBOX);
    Ask(editor, SCI_INDICSETFORE, kIndicator, static_cast<LPARAM>(ThemeCurrentChrome().accent));
    Ask(editor, SCI_SETINDICATORCURRENT, kIndicator);
    Ask(editor, SCI_INDICATORFILLRANGE, start, static_cast<LPARAM>(place.length));
    Ask(editor, SCI_GOTOPOS, start);
    Ask(editor, SCI_SETXOFFSET, 0);
    Ask(editor, SCI_SETFIRSTVISIBLELINE, Ask(editor, SCI_VISIBLEFROMDOCLINE, place.line) - 1);
}

void ShowText(const std::string& text) {
    const HWND editor = g_peek.editor;
    const int tab = TabBarFindDocument(g_peek.under);
    if (tab < 0) return;
    Ask(editor, SCI_SETREADONLY, FALSE);
    EditorPaneSetBytes(editor, text);
    EditorPaneInit(editor, TabAt(tab).compilerId);
    EditorPaneApplySettings(editor);
    Ask(editor, SCI_SETREADONLY, TRUE);
    Ask(editor, SCI_SETMOUSEDWELLTIME, static_cast<LRESULT>(SC_TIME_FOREVER));
    Ask(editor, SCI_SETSCROLLWIDTH, 1);  // it follows the lines that are seen
    MarkName(Place());
}

void ShowPlaceText() {
    ++g_peek.number;
    const PeekPlace& place = Place();
    const int tab = TabBarFindDocument(place.document);
    if (tab < 0) {
        ShowText("");
        g_peek.worker =
            WorkerStart<ReadPeekFile>(PeekFileRequest{g_peek.window, g_peek.number, place.path, place.line});
        return;
    }
    const HWND from = TabAt(tab).editor;
    const auto* text = reinterpret_cast<const char*>(Ask(from, SCI_GETCHARACTERPOINTER));
    const auto length = static_cast<std::size_t>(Ask(from, SCI_GETLENGTH));
    ShowText(text != nullptr ? PeekText({text, length}, place.line) : std::string());
}

void OnPeekText(WPARAM posted) {
    const auto text = WorkerTake<std::unique_ptr<PeekFileText>>(posted);
    if (!IsOpen() || text->number != g_peek.number) return;
    ShowText(text->read ? text->text : "' The file cannot be read.");
}

// ---------------------------------------------------------------------------------------------------------- place

int HeaderHeight() { return UiSizes().textHeight + UiScaled(10); }

void PlacePeek() {
    RECT editor = {};
    GetClientRect(g_peek.over, &editor);
    const LRESULT caret = Ask(g_peek.over, SCI_GETCURRENTPOS);
    const auto rowTop = static_cast<int>(Ask(g_peek.over, SCI_POINTYFROMPOSITION, 0, caret));
    const LRESULT line = Ask(g_peek.over, SCI_LINEFROMPOSITION, caret);
    const auto rowHeight = static_cast<int>(Ask(g_peek.over, SCI_TEXTHEIGHT, line));
    const int wanted = std::min(HeaderHeight() + kRows * rowHeight, static_cast<int>(editor.bottom) * 46 / 100);
    const PeekSpan span = PeekSpanOf(editor.bottom, rowTop, rowTop + rowHeight, wanted);
    POINT corner = {UiScaled(12), span.top};
    MapWindowPoints(g_peek.over, g_ui.hMainWnd, &corner, 1);
    const int width = std::max(static_cast<int>(editor.right) - UiScaled(24), UiScaled(60));
    SetWindowPos(g_peek.window, HWND_TOP, corner.x, corner.y, width, span.height, SWP_NOACTIVATE);
}

void LayOutPeek() {
    RECT client = {};
    GetClientRect(g_peek.window, &client);
    const int edge = UiScaled(1), header = HeaderHeight();
    const bool several = IsOpen() && Page().places.size() > 1;
    const int listWidth = several ? std::min<int>(client.right * 2 / 5, UiScaled(420)) : 0;
    const int height = std::max<int>(client.bottom - header - edge, 0);
    SetWindowPos(g_peek.editor, nullptr, edge, header, std::max<int>(client.right - listWidth - 2 * edge, 0), height,
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_SHOWWINDOW);
    SetWindowPos(g_peek.list.window, nullptr, client.right - listWidth - edge, header, listWidth, height,
                 SWP_NOZORDER | SWP_NOACTIVATE | (several ? SWP_SHOWWINDOW : SWP_HIDEWINDOW));
    const LONG box = header - UiScaled(2);
    g_peek.back = {edge, edge, edge + box, header};
    g_peek.forward = {g_peek.back.right, edge, g_peek.back.right + box, header};
    g_peek.close = {client.right - edge - box, edge, client.right - edge, header};
    InvalidateRect(g_peek.window, nullptr, FALSE);
}

void DrawArrow(HDC dc, const RECT& box, bool toLeft, bool works) {
    const LONG x = (box.left + box.right) / 2, y = (box.top + box.bottom) / 2, size = UiScaled(4);
    const LONG tip = toLeft ? x - size : x + size, base = toLeft ? x + size / 2 : x - size / 2;
    const POINT corners[3] = {{tip, y}, {base, y - size}, {base, y + size}};
    DrawTriangle(dc, corners, works ? ThemeCurrentChrome().accent : ThemeCurrentChrome().line);
}

void PaintPeek() {
    const BufferedPaint paint(g_peek.window);
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const HDC dc = paint.Dc();
    FillArea(dc, paint.Client(), chrome.statusBack);
    FrameArea(dc, paint.Client(), chrome.accent);
    if (!IsOpen()) return;
    DrawArrow(dc, g_peek.back, true, g_peek.pages.at > 0);
    DrawArrow(dc, g_peek.forward, false, g_peek.pages.at + 1 < g_peek.pages.pages.size());
    const LONG x = (g_peek.close.left + g_peek.close.right) / 2, y = (g_peek.close.top + g_peek.close.bottom) / 2;
    const LONG size = UiScaled(4);
    const POINT cross[2][2] = {{{x - size, y - size}, {x + size, y + size}},
                               {{x - size, y + size}, {x + size, y - size}}};
    DrawStrokes(dc, cross, chrome.statusText, UiScaled(1));
    const HGDIOBJ font = SelectObject(dc, UiBoldFont());
    SetBkMode(dc, TRANSPARENT);
    RECT text = {g_peek.forward.right + UiScaled(4), 0, g_peek.close.left - UiScaled(8), HeaderHeight()};
    constexpr UINT kFormat = DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS;
    RECT measured = text;
    DrawTextW(dc, Page().title.c_str(), -1, &measured, kFormat | DT_CALCRECT);
    SetTextColor(dc, chrome.statusText);
    DrawTextW(dc, Page().title.c_str(), -1, &text, kFormat);
    SelectObject(dc, UiFont());
    SetTextColor(dc, ThemeQuietText());
    text.left = std::min<LONG>(measured.right + UiScaled(12), text.right);
    DrawTextW(dc, Place().where.c_str(), -1, &text, kFormat);
    RECT rest = text;
    DrawTextW(dc, Place().where.c_str(), -1, &rest, kFormat | DT_CALCRECT);
    const std::wstring hint = Text(L"Enter: go there    Alt+Left: back    Esc: close");
    text.left = rest.right + UiScaled(24);
    if (text.right - text.left > UiTextWidth(hint.c_str(), static_cast<int>(hint.size())))
        DrawTextW(dc, hint.c_str(), -1, &text, kFormat | DT_RIGHT);
    SelectObject(dc, font);
}

// ----------------------------------------------------------------------------------------------------------- acts

void GoToPeeked(int = 0, int = 0) {
    const PeekPlace place = Place();
    const LRESULT caret = Ask(g_peek.editor, SCI_GETCURRENTPOS);
    SymbolSpot spot{place.document, place.path, place.line, place.column};
    if (Ask(g_peek.editor, SCI_GETLENGTH) > 0) {
        spot.line = static_cast<std::uint32_t>(Ask(g_peek.editor, SCI_LINEFROMPOSITION, caret));
        spot.column = static_cast<std::uint32_t>(caret - Ask(g_peek.editor, SCI_POSITIONFROMLINE, spot.line));
    }
    PeekClose();
    SymbolGoTo(spot);
}

constexpr ListColumn kColumns[] = {
    {.title = English(L"Place"), .characters = 20, .least = 8, .fixedPitch = false},
    {.title = English(L"Text"), .characters = 20, .least = 4, .fixedPitch = false},
};
constexpr ListKind kPeekList = {.columns = kColumns, .activate = GoToPeeked};

void ShowPage() {
    g_peek.filling = true;
    g_peek.content = {};
    for (const PeekPlace& place : Page().places) g_peek.content.rows.push_back({.cells = {place.where, place.text}});
    g_peek.content.reveal = static_cast<int>(Page().selected);
    ListViewUpdate(g_peek.list, g_peek.content);
    g_peek.filling = false;
    const bool several = Page().places.size() > 1;
    if (!several) SetFocus(g_peek.editor);  // before the list, which may have the keyboard, is hidden
    LayOutPeek();
    ShowPlaceText();
    if (several) SetFocus(g_peek.list.window);
}

void StepPage(int step) {
    if (PeekStep(g_peek.pages, step)) ShowPage();
}

void OnListSelected() {
    const int row = ListViewSelected(g_peek.list);
    if (!IsOpen() || g_peek.filling || row < 0 || row >= static_cast<int>(Page().places.size())) return;
    if (static_cast<std::size_t>(row) == Page().selected) return;
    Page().selected = static_cast<std::size_t>(row);
    InvalidateRect(g_peek.window, nullptr, FALSE);
    // The control redraws the rows, but not the mark at the left edge.
    InvalidateRect(g_peek.list.window, nullptr, FALSE);
    ShowPlaceText();
}

// Closes with the editor below it, and follows its size.
LRESULT CALLBACK EditorBelow(HWND editor, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    const LRESULT result = SubclassNext(editor, message, wParam, lParam);
    if (g_peek.over != editor) return result;
    if (message == WM_SIZE) PlacePeek();
    if (message == WM_DESTROY || (message == WM_SHOWWINDOW && wParam == FALSE)) PeekClose();
    return result;
}

// The keyboard went to a window outside.
LRESULT CALLBACK PeekChild(HWND child, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    const LRESULT result = SubclassNext(child, message, wParam, lParam);
    const HWND to = reinterpret_cast<HWND>(wParam);
    if (message == WM_KILLFOCUS && to != g_peek.window && (to == nullptr || IsChild(g_peek.window, to) == FALSE))
        PeekClose();
    return result;
}

LRESULT OnPeekNotify(const NMHDR& header) {
    LRESULT result = 0;
    ListViewHandleNotify(g_peek.list, header, &result);
    if (header.hwndFrom == g_peek.list.window && header.code == LVN_ITEMCHANGED) OnListSelected();
    return result;
}

void OnPeekClick(POINT at) {
    if (PtInRect(&g_peek.close, at) != FALSE) {
        PeekClose();
        FocusCurrentEditor();
    } else if (PtInRect(&g_peek.back, at) != FALSE) {
        StepPage(-1);
    } else if (PtInRect(&g_peek.forward, at) != FALSE) {
        StepPage(1);
    }
}

LRESULT CALLBACK PeekProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_NOTIFY: return OnPeekNotify(*reinterpret_cast<const NMHDR*>(lParam));
        case WM_SIZE: LayOutPeek(); return 0;
        case WM_LBUTTONDOWN: OnPeekClick({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}); return 0;
        case WM_ERASEBKGND: return 1;
        case WM_PAINT: PaintPeek(); return 0;
        case MSG_PEEK_TEXT: OnPeekText(wParam); return 0;
        case WM_DESTROY: WorkerDropPosts<std::unique_ptr<PeekFileText>>(window, MSG_PEEK_TEXT); break;
        case WM_NCDESTROY: g_peek = {}; break;
        default: break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

bool MakePeekChildren() {
    g_peek.editor = EditorPaneCreate(g_ui.hInstance, g_peek.window, IDC_PEEK_TEXT);
    if (g_peek.editor == nullptr || !ListViewCreate(g_peek.list, g_peek.window, IDC_PEEK_LIST)) return false;
    SubclassAdd(g_peek.editor, PeekChild);
    SubclassAdd(g_peek.list.window, PeekChild);
    AccessibleNameSet(g_peek.list.window, Text(L"Places"));
    PeekApplySettings();
    return true;
}

bool MakePeek() {
    if (g_peek.window != nullptr) return true;
    if (!WindowClassRegister({.name = kClass, .procedure = PeekProc})) return false;
    g_peek.window =
        CreateWindowExW(WS_EX_CONTROLPARENT, kClass, Text(L"Peek"), WS_CHILD | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0, 0,
                        0, 0, g_ui.hMainWnd, reinterpret_cast<HMENU>(INT_PTR{IDC_PEEK}), g_ui.hInstance, nullptr);
    if (g_peek.window != nullptr && MakePeekChildren()) return true;
    AppLogMsg(L"FAIL: MakePeek error=%lu", GetLastError());
    if (g_peek.window != nullptr) DestroyWindow(g_peek.window);
    return false;
}

// Keys that mean something else here than in a text or a list.
bool OnPeekKey(WPARAM key) {
    const bool control = GetKeyState(VK_CONTROL) < 0, shift = GetKeyState(VK_SHIFT) < 0, alt = GetKeyState(VK_MENU) < 0;
    if (control) return key == VK_F4 ? PeekClose(), true : false;
    switch (key) {
        case VK_ESCAPE:
            PeekClose();
            FocusCurrentEditor();
            return true;
        case VK_RETURN: GoToPeeked(); return true;
        case VK_TAB:
            if (Page().places.size() > 1) SetFocus(GetFocus() == g_peek.editor ? g_peek.list.window : g_peek.editor);
            return true;
        case VK_LEFT:
        case VK_RIGHT:
            if (alt) StepPage(key == VK_LEFT ? -1 : 1);
            return alt;
        case VK_F12:
            SendMessageW(g_ui.hMainWnd, WM_COMMAND, alt && shift ? IDM_PEEK_CALLERS : IDM_PEEK_DEFINITION, 0);
            return true;
        default: return false;
    }
}

}  // namespace

void PeekShowPage(PeekPage page) {
    if (g_documents.hEditor == nullptr || page.places.empty() || !MakePeek()) return;
    const bool fresh = !IsOpen();
    if (fresh) {
        g_peek.pages = {};
        g_peek.over = g_documents.hEditor;
        g_peek.under = ActiveDocumentId();
        SubclassAdd(g_peek.over, EditorBelow);
        PeekApplySettings();
    }
    PeekPush(g_peek.pages, std::move(page));
    PlacePeek();
    ShowWindow(g_peek.window, SW_SHOWNA);
    FocusRetryEnd();
    ShowPage();
}

void PeekClose() {
    if (!IsOpen()) return;
    SubclassRemove(g_peek.over, EditorBelow);
    g_peek.over = nullptr;
    ++g_peek.number;
    ShowWindow(g_peek.window, SW_HIDE);
    // The copy may be large.
    Ask(g_peek.editor, SCI_SETREADONLY, FALSE);
    EditorPaneSetText(g_peek.editor, "");
    g_peek.pages = {};
}

void PeekApplySettings() {
    if (g_peek.window == nullptr) return;
    ListViewApplyTheme(g_peek.list);
    ListViewShow(g_peek.list, kPeekList);
    if (!IsOpen() || g_peek.pages.pages.empty()) return;
    PlacePeek();
    ShowPage();
}

bool PeekIsMessage(const MSG& message) {
    if (!IsOpen() || message.message < WM_KEYFIRST || message.message > WM_KEYLAST) return false;
    if (message.hwnd != g_peek.editor && message.hwnd != g_peek.list.window) return false;
    // The program's keys would change the document below.
    const bool down = message.message == WM_KEYDOWN || message.message == WM_SYSKEYDOWN;
    if (down && OnPeekKey(message.wParam)) return true;
    // The end of Alt+F12, which opened the window, would open the menu.
    if (!down && message.wParam == VK_MENU) return true;
    TranslateMessage(&message);
    DispatchMessageW(&message);
    return true;
}

std::optional<PeekCaret> PeekCaretNow() {
    const HWND focus = GetFocus();
    if (!IsOpen() || focus == nullptr || IsChild(g_peek.window, focus) == FALSE) return std::nullopt;
    PeekCaret caret{.under = g_peek.under, .place = Place()};
    const LRESULT position = Ask(g_peek.editor, SCI_GETCURRENTPOS);
    const LRESULT line = Ask(g_peek.editor, SCI_LINEFROMPOSITION, position);
    caret.line = static_cast<std::uint32_t>(line);
    const LRESULT start = Ask(g_peek.editor, SCI_POSITIONFROMLINE, line);
    constexpr LRESULT kLongestLine = 16 << 10;
    const LRESULT length = Ask(g_peek.editor, SCI_GETLINEENDPOSITION, line) - start;
    const int tab = TabBarFindDocument(g_peek.under);
    if (length <= 0 || length > kLongestLine || tab < 0) return caret;
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    Sci_TextRangeFull range = {{start, start + length}, text.data()};
    SciSend(g_peek.editor, SCI_GETTEXTRANGEFULL, 0, reinterpret_cast<LPARAM>(&range));
    text.pop_back();
    caret.word = SymbolWordAt(text, static_cast<std::size_t>(position - start), DialectOf(TabAt(tab).compilerId));
    return caret;
}
