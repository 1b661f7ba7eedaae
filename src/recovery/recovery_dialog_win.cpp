// The list of recovered files: what was left, and how each differs from its file. Modal. UI thread.
#include "recovery/recovery_dialog.h"

#include "base/difference.h"
#include "base/log.h"
#include "base/path.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "base/worker.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "resources/ids.h"
#include "ui/accessible.h"
#include "ui/dialog_panes.h"
#include "ui/dialog_theme.h"
#include "ui/list_view.h"
#include "ui/message.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <utility>

namespace {

constexpr std::size_t kMostLines = 2000;         // of a difference that are shown
constexpr std::size_t kMostCompared = 32 << 20;  // bytes

constexpr std::array<ListColumn, 4> kColumns = {{{English(L"File"), 30, 14, false},
                                                 {English(L"Changed"), 20, 16, false},
                                                 {English(L"Size"), 10, 8, false},
                                                 {English(L"Folder"), 40, 10, false}}};

struct RecoveryList {
    const std::vector<Leftover>* leftovers = nullptr;
    std::vector<RecoveryWish> wishes;  // of all of them
    std::vector<std::size_t> rows;     // indices of those that are still in the list
    std::vector<bool> ticked;          // of the rows
    ListView list;
    ListContent content;
    std::wstring crash;  // what is told about one; empty: there was none
    HWND dialog = nullptr;
    HWND difference = nullptr;
    std::size_t shown = SIZE_MAX;  // whose difference is shown or being made
};
RecoveryList* g_recovery = nullptr;  // the one that is open

// --- What differs

struct ComparisonWish {
    HWND dialog = nullptr;
    std::size_t index = 0;
    Leftover leftover;
};
struct Comparison {
    std::size_t index = 0;
    std::wstring what;
    std::vector<DifferenceLine> lines;
};

void CompareWork(ComparisonWish& wish, const WorkerCancel&) {
    auto done = std::make_unique<Comparison>();
    done->index = wish.index;
    const std::wstring& path = wish.leftover.note.path;
    std::string kept, onDisk;
    if (wish.leftover.size > kMostCompared || !LeftoverRead(wish.leftover, &kept)) {
        done->what = wish.leftover.size > kMostCompared ? Text(L"The text is too large to be shown here.")
                                                        : Text(L"The text cannot be read at the moment.");
    } else if (path.empty() || !PathAnswers(path.c_str()) || !FileExists(path.c_str())) {
        done->what =
            path.empty() ? Text(L"It has no file. Its text:") : Text(L"Its file is not there any more. Its text:");
        done->lines = DifferenceOf({}, kept, kMostLines);
    } else {
        std::size_t length = 0;
        const HeapBlock<char> text{ReadSourceFileForEditor(path.c_str(), &length, nullptr, nullptr)};
        if (text) done->lines = DifferenceOf({text.get(), length}, kept, kMostLines);
        done->what = !text                 ? Text(L"Its file cannot be read at the moment.")
                     : done->lines.empty() ? Text(L"It is the same as its file.")
                                           : Text(L"What differs from its file:");
    }
    WorkerPost(wish.dialog, MSG_RECOVERY_COMPARED, std::move(done));
}

void ShowComparison(RecoveryList& recovery, const Comparison& comparison) {
    if (comparison.index != recovery.shown) return;
    SetDlgItemTextW(recovery.dialog, IDC_RECOVERY_DIFFERENCE_LABEL, comparison.what.c_str());
    DifferencePaneShow(recovery.difference, comparison.lines);
}

// Compares the text of the selected row, on a worker, because its file may be large or far away.
void CompareSelected(RecoveryList& recovery) {
    const int row = ListViewSelected(recovery.list);
    if (row < 0 || row >= static_cast<int>(recovery.rows.size())) return;
    const std::size_t index = recovery.rows[static_cast<std::size_t>(row)];
    if (index == recovery.shown) return;
    recovery.shown = index;
    SetWindowTextW(recovery.difference, L"");
    SetDlgItemTextW(recovery.dialog, IDC_RECOVERY_DIFFERENCE_LABEL, Text(L"Comparing..."));
    if (!WorkerStart<CompareWork>(ComparisonWish{recovery.dialog, index, (*recovery.leftovers)[index]}))
        SetDlgItemTextW(recovery.dialog, IDC_RECOVERY_DIFFERENCE_LABEL, L"");
}

// --- The list

std::wstring TimeText(const FILETIME& time) {
    FILETIME local = {};
    SYSTEMTIME parts = {};
    wchar_t date[64] = {}, clock[64] = {};
    if (FileTimeToLocalFileTime(&time, &local) == FALSE || FileTimeToSystemTime(&local, &parts) == FALSE) return {};
    GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &parts, nullptr, date, static_cast<int>(std::size(date)));
    GetTimeFormatW(LOCALE_USER_DEFAULT, 0, &parts, nullptr, clock, static_cast<int>(std::size(clock)));
    return FormatW(L"%s %s", date, clock);
}

std::wstring SizeText(std::uint64_t size) {
    if (size < 1024) return TextWith(size == 1 ? L"{1} byte" : L"{1} bytes", {std::to_wstring(size)});
    if (size < (1 << 20)) return FormatW(Text(L"%llu kB"), (size + 512) >> 10U);
    return FormatW(Text(L"%llu MB"), (size + (1 << 19)) >> 20U);
}

void ShowRows(RecoveryList& recovery) {
    recovery.content.rows.clear();
    bool any = false;
    for (std::size_t i = 0; i < recovery.rows.size(); ++i) {
        const Leftover& leftover = (*recovery.leftovers)[recovery.rows[i]];
        any = any || recovery.ticked[i];
        recovery.content.rows.push_back(
            {.cells = {leftover.note.label, TimeText(leftover.time), SizeText(leftover.size),
                       leftover.note.path.empty() ? Text(L"(never saved)") : FolderOf(leftover.note.path)},
             .mark = recovery.ticked[i] ? ListMark::Checked : ListMark::Unchecked});
    }
    ListViewUpdate(recovery.list, recovery.content);
    for (const int button : {IDC_RECOVERY_RESTORE, IDC_RECOVERY_BESIDE, IDC_RECOVERY_DISCARD})
        EnableWindow(GetDlgItem(recovery.dialog, button), any);
    CompareSelected(recovery);
}

void TickRow(int row) {
    std::vector<bool>::reference ticked = g_recovery->ticked[static_cast<std::size_t>(row)];
    ticked = !ticked;
    ShowRows(*g_recovery);
}

constexpr ListKind kRecoveryList = {.columns = kColumns, .hasMarks = true, .check = TickRow};

// The user wants this of all ticked rows.
void TakeWish(RecoveryList& recovery, RecoveryWish wish) {
    std::vector<std::size_t> left;
    for (std::size_t i = 0; i < recovery.rows.size(); ++i)
        if (recovery.ticked[i])
            recovery.wishes[recovery.rows[i]] = wish;
        else
            left.push_back(recovery.rows[i]);
    recovery.rows = std::move(left);
    recovery.ticked.assign(recovery.rows.size(), true);
    if (recovery.rows.empty()) {
        EndDialog(recovery.dialog, IDOK);
        return;
    }
    recovery.shown = SIZE_MAX;
    ShowRows(recovery);
    SetFocus(recovery.list.window);
}

bool MayDiscard(const RecoveryList& recovery) {
    const auto count = std::count(recovery.ticked.begin(), recovery.ticked.end(), true);
    const std::wstring question =
        count == 1 ? std::wstring(Text(L"Discard this text? It cannot be brought back."))
                   : FormatW(Text(L"Discard these %d texts? They cannot be brought back."), static_cast<int>(count));
    return AskUser({.caption = Text(L"Discard"),
                    .text = question.c_str(),
                    .buttons = AskButtons::OkCancel,
                    .icon = AskIcon::Warning,
                    .inSelftest = Answer::No,
                    .enterIsNo = true,
                    .yes = Text(L"&Discard"),
                    .loses = Answer::Yes}) == Answer::Yes;
}

// --- The dialog

// Without a crash its room is the difference's.
void TellOfCrash(const RecoveryList& recovery) {
    const HWND line = GetDlgItem(recovery.dialog, IDC_RECOVERY_CRASH);
    SetWindowTextW(line, recovery.crash.c_str());
    if (!recovery.crash.empty()) return;
    ShowWindow(line, SW_HIDE);
    RECT difference = {}, room = {};
    GetWindowRect(recovery.difference, &difference);
    GetWindowRect(line, &room);
    SetWindowPos(recovery.difference, nullptr, 0, 0, difference.right - difference.left, room.bottom - difference.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void FillRecoveryDialog(HWND dialog, RecoveryList& recovery) {
    recovery.dialog = dialog;
    SetDlgItemTextW(
        dialog, IDC_RECOVERY_WHAT,
        Text(L"These texts were not saved when the editor ended, or a save of them failed. Restored texts are "
             L"opened as unsaved documents; no file is changed before you save it."));
    recovery.difference = DifferencePaneMake(dialog, IDC_RECOVERY_DIFFERENCE);
    TellOfCrash(recovery);
    recovery.list.inDialog = true;
    if (!ListViewCreate(recovery.list, dialog, IDC_RECOVERY_LIST)) return;
    DialogPutInPlace(dialog, IDC_RECOVERY_LIST, recovery.list.window);
    AccessibleNameSet(recovery.list.window, Text(L"Files"));
    ListViewApplyTheme(recovery.list);
    ListViewShow(recovery.list, kRecoveryList);
    ShowRows(recovery);
    ListViewSelect(recovery.list, 0);
    CompareSelected(recovery);
    SetFocus(recovery.list.window);
}

void OnRecoveryCommand(RecoveryList& recovery, int control) {
    switch (control) {
        case IDOK:
        case IDC_RECOVERY_RESTORE:
            if (IsWindowEnabled(GetDlgItem(recovery.dialog, IDC_RECOVERY_RESTORE)) != FALSE)
                TakeWish(recovery, RecoveryWish::Restore);
            break;
        case IDC_RECOVERY_BESIDE: TakeWish(recovery, RecoveryWish::Beside); break;
        case IDC_RECOVERY_DISCARD:
            if (MayDiscard(recovery)) TakeWish(recovery, RecoveryWish::Discard);
            break;
        case IDCANCEL: EndDialog(recovery.dialog, IDCANCEL); break;
        default: break;
    }
}

INT_PTR OnRecoveryNotify(HWND dialog, const NMHDR& header) {
    if (header.code == LVN_ITEMCHANGED && header.idFrom == IDC_RECOVERY_LIST) CompareSelected(*g_recovery);
    return ListViewHandleDialogNotify(dialog, g_recovery->list, header);
}

INT_PTR CALLBACK RecoveryDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            DialogApplyTheme(dialog);
            FillRecoveryDialog(dialog, *g_recovery);
            return FALSE;  // the focus is set already
        case WM_COMMAND: OnRecoveryCommand(*g_recovery, LOWORD(wParam)); return TRUE;
        case WM_NOTIFY: return OnRecoveryNotify(dialog, *reinterpret_cast<const NMHDR*>(lParam));
        case MSG_RECOVERY_COMPARED:
            ShowComparison(*g_recovery, *WorkerTake<std::unique_ptr<Comparison>>(wParam));
            return TRUE;
        case WM_DESTROY: WorkerDropPosts<std::unique_ptr<Comparison>>(dialog, MSG_RECOVERY_COMPARED); return FALSE;
        default: return FALSE;
    }
}

}  // namespace

std::vector<RecoveryWish> RecoveryDialogShow(const std::vector<Leftover>& leftovers, const std::wstring& crash) {
    RecoveryList recovery;
    recovery.crash = crash;
    recovery.leftovers = &leftovers;
    recovery.wishes.assign(leftovers.size(), RecoveryWish::Later);
    for (std::size_t i = 0; i < leftovers.size(); ++i) recovery.rows.push_back(i);
    recovery.ticked.assign(leftovers.size(), true);
    RecoveryList* const outer = std::exchange(g_recovery, &recovery);
    if (outer == nullptr &&
        DialogBoxParamW(g_ui.hInstance, MAKEINTRESOURCEW(IDD_RECOVERY), g_ui.hMainWnd, RecoveryDlgProc, 0) == -1)
        AppLogMsg(L"FAIL: RecoveryDialogShow error=%lu", GetLastError());
    g_recovery = outer;
    return recovery.wishes;
}
