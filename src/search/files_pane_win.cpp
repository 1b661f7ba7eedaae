// The pane with the results of a search over files: a line that says how it stands, its buttons, and the list. UI thread
// only.
#include "search/files_pane.h"
#include "base/log.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "base/wide_format.h"
#include "documents/document_row.h"
#include "resources/ids.h"
#include "search/files_internal.h"
#include "ui/accessible.h"
#include "ui/chrome.h"
#include "ui/clipboard.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/list_view.h"
#include "ui/menu.h"
#include "ui/message.h"
#include "ui/paint.h"
#include "ui/progress.h"
#include "ui/redraw.h"
#include "ui/subclass.h"
#include "ui/window_class.h"

#include <commctrl.h>
#include <windowsx.h>

#include <algorithm>
#include <array>
#include <iterator>

FilesPane g_filesPane;

namespace {

constexpr wchar_t kClass[] = L"KVXEFilesPane";
constexpr UINT_PTR kTakeTimer = 1, kRepaintTimer = 2;
constexpr UINT kFirstTakeMs = 40, kTakeMs = 100, kRepaintMs = 150;
constexpr int kBarHeight = 30, kButtonHeight = 24, kGap = 6;  // at 96 dpi
constexpr std::size_t kMostCopied = 20'000;                   // rows
constexpr std::size_t kMostTold = 25;                         // unreadable files

LRESULT ListSend(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
    return SendMessageW(g_filesPane.list, message, wParam, lParam);
}

int SelectedIndex() { return static_cast<int>(ListSend(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED)); }

std::optional<ResultRow> SelectedRow() {
    const int index = SelectedIndex();
    if (index < 0 || static_cast<std::size_t>(index) >= g_files.results.RowCount()) return std::nullopt;
    return g_files.results.RowAt(static_cast<std::size_t>(index));
}

void SelectIndex(std::size_t index) {
    LVITEMW state = {};
    state.state = state.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    ListSend(LVM_SETITEMSTATE, index, reinterpret_cast<LPARAM>(&state));
}

// --- Layout

std::size_t TickedCount() {
    if (!g_files.options.replacing) return 0;
    std::size_t count = 0;
    for (const ResultFile& file : g_files.results.files)
        count += static_cast<std::size_t>(std::ranges::count(file.ticked, true));
    return count;
}

bool AnyToReplace() {
    const auto isOpen = [](const FileHit& hit) { return !hit.replaced; };
    return std::ranges::any_of(g_files.results.files,
                               [&](const ResultFile& file) { return std::ranges::any_of(file.hits, isOpen); });
}

// The text of a button; empty: it is not shown.
std::wstring ButtonText(int id) {
    switch (id) {
        case IDC_FILES_AGAIN:
            return !g_files.byUser                          ? L""
                   : g_files.running || g_files.replaceRuns ? Text(L"Stop")
                                                            : Text(L"Search Again");
        case IDC_FILES_UNREADABLE:
            return g_files.tally.unreadable == 0
                       ? L""
                       : TextWith(L"{1} Unreadable...", {std::to_wstring(g_files.tally.unreadable)});
        default:
            if (!g_files.options.replacing || g_files.running || !AnyToReplace()) return {};
            return TextWith(L"Replace {1}...", {std::to_wstring(TickedCount())});
    }
}

void PlaceButtons() {
    RECT client = {};
    GetClientRect(g_filesPane.pane, &client);
    const int height = UiScaled(kButtonHeight), top = (UiScaled(kBarHeight) - height) / 2;
    int right = static_cast<int>(client.right) - UiScaled(kGap);
    for (const int id : kFilesButtons) {
        const HWND button = GetDlgItem(g_filesPane.pane, id);
        const std::wstring text = ButtonText(id);
        wchar_t old[64] = {};
        GetWindowTextW(button, old, static_cast<int>(std::size(old)));
        if (text != old) SetWindowTextW(button, text.c_str());
        if (text.empty()) {
            if (GetFocus() == button) SetFocus(g_filesPane.list);
            ShowWindow(button, SW_HIDE);
            continue;
        }
        const int width = UiTextWidth(text.c_str(), static_cast<int>(text.size())) + UiScaled(20);
        SetWindowPos(button, nullptr, right - width, top, width, height,
                     SWP_NOZORDER | SWP_NOACTIVATE | SWP_SHOWWINDOW);
        right -= width + UiScaled(kGap);
    }
    g_filesPane.summaryRight = right;
    EnableWindow(GetDlgItem(g_filesPane.pane, IDC_FILES_REPLACE_NOW), !g_files.replaceRuns && TickedCount() > 0);
}

void LayOutFilesPane() {
    RECT client = {};
    GetClientRect(g_filesPane.pane, &client);
    const int bar = std::min<int>(UiScaled(kBarHeight), client.bottom);
    SetWindowPos(g_filesPane.list, nullptr, 0, bar, client.right, client.bottom - bar,
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_DEFERERASE);
    // The width without the scroll bar, which comes with the rows: a wider column would bring a second bar.
    ListSend(LVM_SETCOLUMNWIDTH, 0, MAKELPARAM(std::max<int>(client.right - UiMetric(SM_CXVSCROLL) - 1, 1), 0));
    PlaceButtons();
    InvalidateRect(g_filesPane.pane, nullptr, FALSE);
    InvalidateRect(g_filesPane.list, nullptr, FALSE);  // what a row shows around its hit depends on the width
}

std::wstring SummaryNow() {
    if (!g_files.note.empty()) return g_files.note;
    if (g_files.number == 0) return Text(L"Search > Find in Files searches the project");
    return FilesSummaryText({.hits = g_files.results.HitCount(),
                             .files = g_files.results.files.size(),
                             .searched = g_files.tally.files,
                             .binary = g_files.tally.binary,
                             .unreadable = g_files.tally.unreadable,
                             .running = g_files.running,
                             .stopped = g_files.stopped,
                             .limited = g_files.tally.limited});
}

void PaintBar(HWND window) {
    const BufferedPaint paint(window);
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const RECT bar = {0, 0, paint.Client().right, UiScaled(kBarHeight)};
    FillArea(paint.Dc(), paint.Client(), chrome.paneBack);
    FillArea(paint.Dc(), {0, bar.bottom - 1, bar.right, bar.bottom}, chrome.line);
    const HGDIOBJ oldFont = SelectObject(paint.Dc(), UiFont());
    SetBkMode(paint.Dc(), TRANSPARENT);
    SetTextColor(paint.Dc(), chrome.paneText);
    RECT area = {UiScaled(8), 0, g_filesPane.summaryRight, bar.bottom};
    const std::wstring text = SummaryNow();
    DrawTextW(paint.Dc(), text.c_str(), -1, &area, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    SelectObject(paint.Dc(), oldFont);
}

// --- What the user does

void FoldFile(std::size_t file, bool folded) {
    ResultFile& result = g_files.results.files[file];
    if (result.folded == folded) return;
    result.folded = folded;
    g_files.results.Recount();
    FilesPaneUpdate();
    SelectIndex(g_files.results.IndexOf({file, std::nullopt}));
}

void FoldAll(bool folded) {
    for (ResultFile& file : g_files.results.files) file.folded = folded;
    g_files.results.Recount();
    FilesPaneUpdate();
}

void ToggleTick(ResultRow row) {
    if (!g_files.options.replacing) return;
    ResultFile& file = g_files.results.files[row.file];
    const std::size_t first = row.hit.value_or(0), end = row.hit ? first + 1 : file.hits.size();
    bool ticks = false;  // one of them has no tick
    for (std::size_t i = first; i < end; ++i) ticks = ticks || (!file.hits[i].replaced && !file.ticked[i]);
    for (std::size_t i = first; i < end; ++i) file.ticked[i] = ticks && !file.hits[i].replaced;
    PlaceButtons();
    InvalidateRect(g_filesPane.list, nullptr, FALSE);
}

void RemoveRow(ResultRow row) {
    const int index = SelectedIndex();
    g_files.current.reset();
    const ResultFile& file = g_files.results.files[row.file];
    if (file.document != 0 && (!row.hit || file.hits.size() == 1)) g_files.linked.erase(file.document);
    g_files.results.Remove(row);
    FilesPaneUpdate();
    if (g_files.results.RowCount() > 0)
        SelectIndex(std::min(static_cast<std::size_t>(std::max(index, 0)), g_files.results.RowCount() - 1));
}

std::wstring CopiedText(ResultRow row) {
    const ResultFile& file = g_files.results.files[row.file];
    std::wstring path = file.path.empty() ? file.label : file.path;
    if (!row.hit) return path;
    bool gone = false;
    const FileHit hit = FilesHitNow(file, *row.hit, &gone);
    return path + FormatW(L"(%u): ", hit.line + 1) + Utf8ToWideText(hit.shown);
}

void CopyRows(std::optional<ResultRow> only) {
    std::wstring text;
    const std::size_t rows = std::min(g_files.results.RowCount(), kMostCopied);
    if (only) text = CopiedText(*only);
    for (std::size_t i = 0; !only && i < rows; ++i)
        if (const ResultRow row = g_files.results.RowAt(i); row.hit) text += CopiedText(row) + L"\r\n";
    if (!only && rows < g_files.results.RowCount()) text += L"...\r\n";
    ClipboardPutText(g_filesPane.pane, text);
}

void TellUnreadable() {
    std::wstring text;
    const std::vector<std::wstring>& names = g_files.tally.unreadableNames;
    for (std::size_t i = 0; i < std::min(names.size(), kMostTold); ++i) text += names[i] + L"\n";
    if (g_files.tally.unreadable > kMostTold)
        text += TextWith(L"... and {1} more", {std::to_wstring(g_files.tally.unreadable - kMostTold)});
    TellUser(Text(L"Files that could not be searched"), text.c_str(), AskIcon::Warning);
}

void StopOrSearchAgain() {
    if (g_files.replaceRuns) return FilesReplaceStop();
    if (g_files.running) return FilesSearchEnd();
    const std::wstring fault = FilesSearchBegin(FilesOptions{g_files.options});
    if (!fault.empty()) g_events.statusText(fault.c_str());
}

enum MenuId : UINT { kGo = 1, kCopy, kCopyAll, kRemove, kFold, kUnfold, kAgain, kEdit, kUnreadable };

void ShowResultsMenu(POINT at) {
    const std::optional<ResultRow> row = SelectedRow();
    if (at.x == -1 && at.y == -1) {  // from the keyboard
        RECT place = {.left = LVIR_BOUNDS};
        ListSend(LVM_GETITEMRECT, static_cast<WPARAM>(std::max(SelectedIndex(), 0)), reinterpret_cast<LPARAM>(&place));
        at = {place.left + UiScaled(20), place.bottom};
        ClientToScreen(g_filesPane.list, &at);
    }
    const bool any = g_files.results.RowCount() > 0;
    const MenuItem items[] = {
        {.id = kGo, .text = Text(L"&Go to Result\tEnter"), .enabled = row.has_value()},
        {.id = kRemove, .text = Text(L"E&xclude from Results\tDel"), .enabled = row.has_value()},
        {},
        {.id = kCopy, .text = Text(L"&Copy\tCtrl+C"), .enabled = row.has_value()},
        {.id = kCopyAll, .text = Text(L"Copy &All"), .enabled = any},
        {},
        {.id = kFold, .text = Text(L"&Fold All"), .enabled = any},
        {.id = kUnfold, .text = Text(L"&Unfold All"), .enabled = any},
        {},
        {.id = kAgain, .text = g_files.running ? Text(L"&Stop") : Text(L"&Search Again"), .enabled = g_files.byUser},
        {.id = kEdit, .text = Text(L"&Edit Search...")},
        {.id = kUnreadable, .text = Text(L"U&nreadable Files..."), .enabled = g_files.tally.unreadable > 0}};
    switch (ShowPopupMenu(g_filesPane.list, items, at)) {
        case kGo: FilesGoTo(*row); break;
        case kRemove: RemoveRow(*row); break;
        case kCopy: CopyRows(row); break;
        case kCopyAll: CopyRows(std::nullopt); break;
        case kFold: FoldAll(true); break;
        case kUnfold: FoldAll(false); break;
        case kAgain: StopOrSearchAgain(); break;
        case kEdit: FilesDialogShow(g_ui.hMainWnd, g_files.options.replacing); break;
        case kUnreadable: TellUnreadable(); break;
        default: break;
    }
}

// Moves the focus between the list and the buttons that are shown.
void FocusBeside(HWND from, bool back) {
    std::vector<HWND> order = {g_filesPane.list};
    for (auto id = std::rbegin(kFilesButtons); id != std::rend(kFilesButtons); ++id)
        if (const HWND button = GetDlgItem(g_filesPane.pane, *id);
            IsWindowVisible(button) != FALSE && IsWindowEnabled(button) != FALSE)
            order.push_back(button);
    const auto at = static_cast<std::size_t>(std::ranges::find(order, from) - order.begin());
    SetFocus(order[(at + (back ? order.size() - 1 : 1)) % order.size()]);
}

bool HandlePaneKey(HWND from, WPARAM key) {
    if (key == VK_ESCAPE)
        FocusEditorFromPane();
    else if (key == VK_TAB && GetKeyState(VK_CONTROL) >= 0)
        FocusBeside(from, GetKeyState(VK_SHIFT) < 0);
    else
        return false;
    return true;
}

bool HandleRowKey(ResultRow row, WPARAM key) {
    switch (key) {
        case VK_RETURN: FilesGoTo(row); return true;
        case VK_SPACE: ToggleTick(row); return true;
        case VK_DELETE: RemoveRow(row); return true;
        case VK_LEFT: FoldFile(row.file, true); return true;
        case VK_RIGHT: FoldFile(row.file, false); return true;
        case 'C':
            if (GetKeyState(VK_CONTROL) >= 0) return false;
            CopyRows(row);
            return true;
        default: return false;
    }
}

void OnRowClick(POINT at, bool twice) {
    LVHITTESTINFO hit = {.pt = at};
    const int index = static_cast<int>(ListSend(LVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
    if (index < 0 || static_cast<std::size_t>(index) >= g_files.results.RowCount()) return;
    const ResultRow row = g_files.results.RowAt(static_cast<std::size_t>(index));
    const FilesRowPlaces places = FilesRowPlacesOf(row);
    if (at.x >= places.tick && at.x < places.text && places.tick < places.text)
        ToggleTick(row);
    else if (!row.hit && (twice || at.x < places.tick))
        FoldFile(row.file, !g_files.results.files[row.file].folded);
    else if (twice)
        FilesGoTo(row);
}

// --- Messages

void FillDisplay(LVITEMW& item) {
    if ((item.mask & LVIF_TEXT) == 0 || item.cchTextMax <= 0) return;
    const auto index = static_cast<std::size_t>(item.iItem);
    const std::wstring text = index < g_files.results.RowCount() ? FilesRowText(g_files.results.RowAt(index)) : L"";
    lstrcpynW(item.pszText, text.c_str(), item.cchTextMax);
}

LRESULT OnListNotify(const NMHDR& header) {
    switch (header.code) {
        case LVN_GETDISPINFOW:
            // The list reads the answer from the record that it has sent.
            FillDisplay(reinterpret_cast<NMLVDISPINFOW*>(const_cast<NMHDR*>(&header))->item);
            return 0;
        case NM_CUSTOMDRAW: return FilesDrawItem(reinterpret_cast<const NMLVCUSTOMDRAW&>(header));
        case LVN_ITEMCHANGED: ListRowRepaint(reinterpret_cast<const NMLISTVIEW&>(header)); return 0;
        case NM_CLICK: OnRowClick(reinterpret_cast<const NMITEMACTIVATE&>(header).ptAction, false); return 0;
        case NM_DBLCLK: OnRowClick(reinterpret_cast<const NMITEMACTIVATE&>(header).ptAction, true); return 0;
        default: return 0;
    }
}

void OnFilesButton(int id) {
    if (id == IDC_FILES_AGAIN) StopOrSearchAgain();
    if (id == IDC_FILES_REPLACE_NOW) FilesReplaceTicked();
    if (id == IDC_FILES_UNREADABLE) TellUnreadable();
}

void OnFilesTimer(UINT_PTR id) {
    if (id == kRepaintTimer) {
        KillTimer(g_filesPane.pane, kRepaintTimer);
        InvalidateRect(g_filesPane.list, nullptr, FALSE);
        return;
    }
    SetTimer(g_filesPane.pane, kTakeTimer, kTakeMs, nullptr);
    FilesSearchTakeMore();
    if (!g_files.running) KillTimer(g_filesPane.pane, kTakeTimer);
}

bool IsTouch(UINT message) {
    return message == WM_KEYDOWN || message == WM_LBUTTONDOWN || message == WM_MOUSEWHEEL || message == WM_VSCROLL;
}

LRESULT CALLBACK FilesListProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    g_filesPane.touched = g_filesPane.touched || IsTouch(message);
    switch (message) {
        case WM_KEYDOWN: {
            const std::optional<ResultRow> row = SelectedRow();
            if (HandlePaneKey(window, wParam) || (row && HandleRowKey(*row, wParam))) return 0;
            break;
        }
        case WM_CHAR: return 0;  // no type-ahead search
        case WM_CONTEXTMENU: ShowResultsMenu({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}); return 0;
        case WM_SETFOCUS:
        case WM_KILLFOCUS: InvalidateRect(window, nullptr, FALSE); break;
        default: break;
    }
    return SubclassNext(window, message, wParam, lParam);
}

LRESULT CALLBACK FilesButtonProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    if (message == WM_KEYDOWN && HandlePaneKey(window, wParam)) return 0;
    if (message == WM_KEYDOWN && wParam == VK_RETURN) {
        SendMessageW(window, BM_CLICK, 0, 0);
        return 0;
    }
    return SubclassNext(window, message, wParam, lParam);
}

void OnFilesPaneDestroyed() {
    if (g_filesPane.heightOnly != nullptr) ImageList_Destroy(g_filesPane.heightOnly);
    FilesSearchStop(g_files.search);
    FilesReplaceFinish();
    g_filesPane = {};
}

LRESULT CALLBACK FilesPaneProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SIZE:
            if (g_filesPane.list != nullptr) LayOutFilesPane();
            return 0;
        case WM_SETFOCUS: FilesPaneFocus(); return 0;
        case WM_NOTIFY:
            if (reinterpret_cast<const NMHDR*>(lParam)->hwndFrom != g_filesPane.list) return 0;
            return OnListNotify(*reinterpret_cast<const NMHDR*>(lParam));
        case WM_COMMAND:
            if (HIWORD(wParam) == BN_CLICKED) OnFilesButton(LOWORD(wParam));
            return 0;
        case WM_TIMER: OnFilesTimer(wParam); return 0;
        case MSG_FILES_ENDED: FilesSearchOnEnded(wParam); return 0;
        case MSG_FILES_TEXTS: FilesTextsGoOn(); return 0;
        case MSG_FILES_REPLACED: FilesOnReplaced(wParam); return 0;
        case WM_CTLCOLORBTN:
            return ControlColours(reinterpret_cast<HDC>(wParam), ThemeCurrentChrome().paneText,
                                  ThemeCurrentChrome().paneBack);
        case WM_ERASEBKGND: return 1;
        case WM_PAINT: PaintBar(window); return 0;
        case WM_NCDESTROY: OnFilesPaneDestroyed(); break;
        default: break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

HWND MakeChild(const wchar_t* windowClass, DWORD style, int id) {
    return CreateWindowExW(0, windowClass, L"", WS_CHILD | WS_CLIPSIBLINGS | WS_TABSTOP | style, 0, 0, 0, 0,
                           g_filesPane.pane, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), g_ui.hInstance,
                           nullptr);
}

bool MakeChildren() {
    g_filesPane.list = MakeChild(WC_LISTVIEWW,
                                 WS_VISIBLE | LVS_REPORT | LVS_OWNERDATA | LVS_SINGLESEL | LVS_SHOWSELALWAYS |
                                     LVS_NOCOLUMNHEADER | LVS_SHAREIMAGELISTS,
                                 IDC_FILES_LIST);
    if (g_filesPane.list == nullptr) return false;
    ListSend(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
    LVCOLUMNW column = {};
    column.mask = LVCF_WIDTH;
    ListSend(LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
    SubclassAdd(g_filesPane.list, FilesListProc);
    AccessibleNameSet(g_filesPane.list, Text(L"Hits"));
    for (const int id : kFilesButtons) {
        const HWND button = MakeChild(WC_BUTTONW, BS_PUSHBUTTON, id);
        if (button == nullptr) return false;
        SubclassAdd(button, FilesButtonProc);
    }
    return true;
}

}  // namespace

HWND FilesPaneCreate(HWND parent, int controlId) {
    if (!WindowClassRegister({.name = kClass, .procedure = FilesPaneProc})) return nullptr;
    g_filesPane.pane =
        CreateWindowExW(WS_EX_CONTROLPARENT, kClass, L"", WS_CHILD | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0, 0, 0, 0,
                        parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(controlId)), g_ui.hInstance, nullptr);
    if (g_filesPane.pane == nullptr || !MakeChildren()) {
        AppLogMsg(L"FAIL: FilesPaneCreate error=%lu", GetLastError());
        if (g_filesPane.pane != nullptr) DestroyWindow(g_filesPane.pane);
        return nullptr;
    }
    FilesPaneApplyTheme();
    return g_filesPane.pane;
}

void FilesPaneApplyTheme() {
    if (g_filesPane.pane == nullptr) return;
    const ThemeChrome& chrome = ThemeCurrentChrome();
    ListSend(LVM_SETBKCOLOR, 0, static_cast<LPARAM>(chrome.paneBack));
    ListSend(LVM_SETTEXTBKCOLOR, 0, static_cast<LPARAM>(chrome.paneBack));
    ListSend(LVM_SETTEXTCOLOR, 0, static_cast<LPARAM>(chrome.paneText));
    ListSend(WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), FALSE);
    ScrollBarsApplyTheme(g_filesPane.list);
    const int line = std::max(UiSizes().textHeight, UiSizes().fixedHeight) + UiScaled(4);
    if (const HIMAGELIST height = ImageList_Create(1, line, ILC_COLOR, 1, 1); height != nullptr) {
        ListSend(LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(height));
        if (g_filesPane.heightOnly != nullptr) ImageList_Destroy(g_filesPane.heightOnly);
        g_filesPane.heightOnly = height;
    }
    for (const int id : kFilesButtons) {
        const HWND button = GetDlgItem(g_filesPane.pane, id);
        SendMessageW(button, WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), FALSE);
        ControlApplyTheme(button);
    }
    LayOutFilesPane();
}

void FilesPaneFocus() { SetFocus(g_filesPane.list); }
HWND FilesPaneWindow() { return g_filesPane.pane; }

void FilesPaneStarted() {
    g_filesPane.touched = false;
    FilesPaneUpdate();
    FilesPaneFocus();
    SetTimer(g_filesPane.pane, kTakeTimer, kFirstTakeMs, nullptr);
}

// Rows come in between those that are there, so that the selection and the scroll position follow their rows once the
// user has chosen them.
void FilesPaneAdd(std::vector<ResultFile> files) {
    const std::optional<ResultRow> selected = g_filesPane.touched ? SelectedRow() : std::nullopt;
    const std::wstring key = selected ? g_files.results.files[selected->file].key : L"";
    const int index = SelectedIndex();
    g_files.results.Add(std::move(files));
    const RedrawPause pause(g_filesPane.list);
    FilesPaneUpdate();
    if (!selected) return;
    const std::size_t file = g_files.results.FindFile(key);
    const auto now = static_cast<int>(g_files.results.IndexOf({file, selected->hit}));
    RECT row = {.left = LVIR_BOUNDS};
    ListSend(LVM_GETITEMRECT, static_cast<WPARAM>(now), reinterpret_cast<LPARAM>(&row));
    SelectIndex(static_cast<std::size_t>(now));
    ListSend(LVM_SCROLL, 0, (now - index) * (row.bottom - row.top));
}

void FilesPaneUpdate() {
    ProgressShow(ProgressOf::Search,
                 g_files.running ? TextWith(L"Searching {1}", {std::to_wstring(g_files.tally.files)}) : L"");
    if (g_filesPane.pane == nullptr) return;
    const RedrawPause pause(g_filesPane.list);
    const std::size_t rows = g_files.results.RowCount();
    const auto before = static_cast<std::size_t>(ListSend(LVM_GETITEMCOUNT));
    if (before != rows) ListSend(LVM_SETITEMCOUNT, rows, LVSICF_NOINVALIDATEALL | LVSICF_NOSCROLL);
    if (before == 0 && rows > 1) SelectIndex(1);  // the first hit
    PlaceButtons();
    InvalidateRect(g_filesPane.pane, nullptr, FALSE);
    InvalidateRect(g_filesPane.list, nullptr, FALSE);
}

void FilesPaneSelect(ResultRow row) {
    if (g_filesPane.pane == nullptr) return;
    if (g_files.results.files[row.file].folded) FoldFile(row.file, false);
    const std::size_t index = g_files.results.IndexOf(row);
    SelectIndex(index);
    ListSend(LVM_ENSUREVISIBLE, index, FALSE);
}

void FilesPaneRepaintSoon() {
    if (g_filesPane.pane != nullptr && IsWindowVisible(g_filesPane.pane) != FALSE)
        SetTimer(g_filesPane.pane, kRepaintTimer, kRepaintMs, nullptr);
}
