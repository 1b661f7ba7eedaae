// The question about files that other programs have changed: small at first; the list and the difference come when there
// is something to see in them. Modal. UI thread.
#include "documents/outside.h"

#include "base/difference.h"
#include "base/log.h"
#include "base/path.h"
#include "base/texts.h"
#include "base/worker.h"
#include "documents/document_row.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "files/source_text.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "ui/accessible.h"
#include "ui/dialog_panes.h"
#include "ui/dialog_theme.h"
#include "ui/guarded_button.h"
#include "ui/list_view.h"
#include "ui/message.h"
#include "ui/monitor.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

namespace {

constexpr std::size_t kMostLines = 2000;         // of a difference that are shown
constexpr std::size_t kMostCompared = 32 << 20;  // bytes of either text
constexpr int kListUnits = 96;                   // height of the list with its gap, in dialog units
constexpr int kDifferenceUnits = 126;            // the same of the difference with its label
constexpr int kShorterTextUnits = 18;            // what the text above a list does not need

constexpr std::array<ListColumn, 4> kColumns = {{{English(L"File"), 30, 14, false},
                                                 {English(L"What"), 22, 9, false},
                                                 {English(L"Unsaved changes"), 16, 8, false},
                                                 {English(L"Folder"), 30, 10, false}}};

struct OutsideDialog {
    OutsideQuestion* question = nullptr;
    OutsideAnswer answer = OutsideAnswer::Later;
    HWND dialog = nullptr;
    HWND difference = nullptr;  // null until it is shown
    DocumentId shown = 0;       // whose difference it is
    ListView list;
    ListContent content;
};
OutsideDialog* g_dialog = nullptr;  // the one that is open

bool IsList(const OutsideDialog& outside) { return outside.question->rows.size() > 1; }

// --- What differs

struct FileComparisonWish {
    HWND dialog = nullptr;
    DocumentId document = 0;
    std::wstring path;
    std::string text;
};
struct FileComparison {
    DocumentId document = 0;
    std::wstring what;
    std::vector<DifferenceLine> lines;
};

// False when the file cannot be read now.
bool ReadFileText(const std::wstring& path, std::string* text) {
    std::string bytes;
    SourceText source;
    if (!PathAnswers(path.c_str()) || !ReadSharedFile(path, kMostCompared, &bytes)) return false;
    const auto ansi = [](std::string_view from, std::string* utf8, bool* exact) {
        return DecodeCodePage(CP_ACP, from, utf8, exact);
    };
    if (!DecodeSource(bytes, ansi, &source)) return false;
    *text = source.asItIs ? std::move(bytes) : std::move(source.utf8);
    return true;
}

void CompareWithFile(FileComparisonWish& wish, const WorkerCancel&) {
    auto done = std::make_unique<FileComparison>();
    done->document = wish.document;
    std::string onDisk;
    if (!ReadFileText(wish.path, &onDisk)) {
        done->what = Text(L"The file is not there, or cannot be read at the moment.");
    } else {
        done->lines = DifferenceOf(onDisk, wish.text, kMostLines);
        done->what = done->lines.empty() ? Text(L"The lines of the file and of the document are the same.")
                                         : Text(L"- only in the file, + only in the document:");
    }
    WorkerPost(wish.dialog, MSG_OUTSIDE_COMPARED, std::move(done));
}

void ShowFileComparison(OutsideDialog& outside, const FileComparison& comparison) {
    if (comparison.document != outside.shown) return;
    SetDlgItemTextW(outside.dialog, IDC_OUTSIDE_DIFFERENCE_LABEL, comparison.what.c_str());
    DifferencePaneShow(outside.difference, comparison.lines);
}

DocumentId ChosenDocument(const OutsideDialog& outside) {
    const int row = IsList(outside) ? ListViewSelected(outside.list) : 0;
    const auto& rows = outside.question->rows;
    return row >= 0 && row < static_cast<int>(rows.size()) ? rows[static_cast<std::size_t>(row)].document : 0;
}

// Compares the chosen document with its file, on a worker, because the file may be large or far away.
void CompareChosen(OutsideDialog& outside) {
    const int tab = TabBarFindDocument(ChosenDocument(outside));
    if (outside.difference == nullptr || tab < 0 || TabAt(tab).id == outside.shown) return;
    outside.shown = TabAt(tab).id;
    SetWindowTextW(outside.difference, L"");
    const HWND editor = TabAt(tab).editor;
    const auto length = static_cast<std::size_t>(SciSend(editor, SCI_GETLENGTH));
    const wchar_t* what = Text(L"Comparing...");
    if (length > kMostCompared) {
        what = Text(L"The text is too large to be compared here.");
    } else {
        const auto* text = reinterpret_cast<const char*>(SciSend(editor, SCI_GETCHARACTERPOINTER));
        const OutsideChange& change = TabAt(tab).outside;
        const std::wstring file = change.kind == OutsideKind::Moved ? change.movedTo : std::wstring(TabAt(tab).path);
        if (!WorkerStart<CompareWithFile>(
                FileComparisonWish{outside.dialog, outside.shown, file, std::string(text, length)}))
            what = L"";
    }
    SetDlgItemTextW(outside.dialog, IDC_OUTSIDE_DIFFERENCE_LABEL, what);
}

// --- The list

void ShowOutsideRows(OutsideDialog& outside) {
    outside.content.rows.clear();
    for (const OutsideRow& row : outside.question->rows)
        outside.content.rows.push_back(
            {.cells = {row.label, row.what, row.modified ? Text(L"yes") : L"", FolderOf(row.path)},
             .mark = !row.mayTick ? ListMark::None
                     : row.ticked ? ListMark::Checked
                                  : ListMark::Unchecked});
    ListViewUpdate(outside.list, outside.content);
    const bool any = std::ranges::any_of(outside.question->rows, &OutsideRow::ticked);
    EnableWindow(GetDlgItem(outside.dialog, IDC_OUTSIDE_FIRST), any);
    SendMessageW(outside.dialog, DM_SETDEFID, any ? IDC_OUTSIDE_FIRST : IDC_OUTSIDE_SECOND, 0);
}

void TickOutsideRow(int index) {
    OutsideRow& row = g_dialog->question->rows[static_cast<std::size_t>(index)];
    row.ticked = row.mayTick && !row.ticked;
    ShowOutsideRows(*g_dialog);
}

constexpr ListKind kOutsideList = {.columns = kColumns, .hasMarks = true, .check = TickOutsideRow};

// --- The dialog

// Makes the dialog higher, or with a negative number lower; the buttons stay at its foot, and its middle where it is as
// far as the screen allows.
void GrowDialog(HWND dialog, int by) {
    RECT place = {};
    GetWindowRect(dialog, &place);
    const RECT work = WorkAreaOf(dialog);
    const LONG height = place.bottom - place.top + by;
    const LONG top = std::max(work.top, std::min(place.top - by / 2, work.bottom - height));
    SetWindowPos(dialog, nullptr, place.left, top, place.right - place.left, height, SWP_NOZORDER | SWP_NOACTIVATE);
    for (const int button : {IDC_OUTSIDE_FIRST, IDC_OUTSIDE_SECOND, IDC_OUTSIDE_COMPARE, IDCANCEL})
        DialogMoveControl(dialog, button, by);
}

void ShowDifferencePart(OutsideDialog& outside) {
    const HWND dialog = outside.dialog;
    if (outside.difference != nullptr) return;
    outside.difference = DifferencePaneMake(dialog, IDC_OUTSIDE_DIFFERENCE);
    if (outside.difference == nullptr) return;
    ShowWindow(GetDlgItem(dialog, IDC_OUTSIDE_DIFFERENCE_LABEL), SW_SHOWNA);
    // On a low screen the difference takes the room that is left.
    RECT place = {}, shown = {};
    GetWindowRect(dialog, &place);
    GetWindowRect(outside.difference, &shown);
    const RECT work = WorkAreaOf(dialog);
    const int wanted = DialogUnits(dialog, kDifferenceUnits);
    const int room = static_cast<int>((work.bottom - work.top) - (place.bottom - place.top));
    const int by = std::clamp(room, wanted / 3, wanted);
    SetWindowPos(outside.difference, nullptr, 0, 0, shown.right - shown.left, shown.bottom - shown.top - (wanted - by),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    GrowDialog(dialog, by);
    // The buttons have come from under the new window, where nothing of them could be copied from.
    RedrawWindow(dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
    CompareChosen(outside);
    EnableWindow(GetDlgItem(dialog, IDC_OUTSIDE_COMPARE), FALSE);
    SetFocus(IsList(outside) ? outside.list.window : outside.difference);
}

void ShowListPart(OutsideDialog& outside) {
    outside.list.inDialog = true;
    if (!ListViewCreate(outside.list, outside.dialog, IDC_OUTSIDE_LIST)) return;
    DialogPutInPlace(outside.dialog, IDC_OUTSIDE_LIST, outside.list.window);
    AccessibleNameSet(outside.list.window, Text(L"Files"));
    ListViewApplyTheme(outside.list);
    ListViewShow(outside.list, kOutsideList);
    ShowOutsideRows(outside);
    ListViewSelect(outside.list, 0);
}

void FillOutsideDialog(HWND dialog, OutsideDialog& outside) {
    const OutsideQuestion& question = *outside.question;
    outside.dialog = dialog;
    SetWindowTextW(dialog, question.caption);
    SetDlgItemTextW(dialog, IDC_OUTSIDE_WHAT, question.text.c_str());
    SetDlgItemTextW(dialog, IDC_OUTSIDE_FIRST, question.first);
    SetDlgItemTextW(dialog, IDC_OUTSIDE_SECOND, question.second);
    SetDlgItemTextW(dialog, IDCANCEL, question.later);
    // Each gives up what was written here, or by the other program.
    for (const int button : {IDC_OUTSIDE_FIRST, IDC_OUTSIDE_SECOND}) ButtonNeedsAlt(dialog, button);
    ShowWindow(GetDlgItem(dialog, IDC_OUTSIDE_DIFFERENCE_LABEL), SW_HIDE);
    ShowWindow(GetDlgItem(dialog, IDC_OUTSIDE_DIFFERENCE), SW_HIDE);
    const int less = DialogUnits(dialog, kDifferenceUnits);
    const int higher = DialogUnits(dialog, IsList(outside) ? kShorterTextUnits : kListUnits);
    for (const int control : {IDC_OUTSIDE_LIST, IDC_OUTSIDE_DIFFERENCE_LABEL, IDC_OUTSIDE_DIFFERENCE})
        DialogMoveControl(dialog, control, -higher);
    GrowDialog(dialog, -less - higher);
    if (IsList(outside)) {
        RECT text = {};
        GetClientRect(GetDlgItem(dialog, IDC_OUTSIDE_WHAT), &text);
        SetWindowPos(GetDlgItem(dialog, IDC_OUTSIDE_WHAT), nullptr, 0, 0, text.right, text.bottom - higher,
                     SWP_NOMOVE | SWP_NOZORDER);
        ShowListPart(outside);
        SetFocus(outside.list.window);
        return;
    }
    ShowWindow(GetDlgItem(dialog, IDC_OUTSIDE_LIST), SW_HIDE);
    const HWND first = GetDlgItem(dialog, question.enterIsLater ? IDCANCEL : IDC_OUTSIDE_FIRST);
    SendMessageW(dialog, DM_SETDEFID, static_cast<WPARAM>(GetDlgCtrlID(first)), 0);
    SetFocus(first);
}

void OnOutsideCommand(OutsideDialog& outside, int control) {
    switch (control) {
        case IDC_OUTSIDE_FIRST: outside.answer = OutsideAnswer::First; break;
        case IDC_OUTSIDE_SECOND: outside.answer = OutsideAnswer::Second; break;
        case IDC_OUTSIDE_COMPARE: ShowDifferencePart(outside); return;
        case IDCANCEL: break;
        default: return;
    }
    EndDialog(outside.dialog, control);
}

INT_PTR OnOutsideNotify(HWND dialog, const NMHDR& header) {
    if (header.code == LVN_ITEMCHANGED && header.idFrom == IDC_OUTSIDE_LIST) CompareChosen(*g_dialog);
    return ListViewHandleDialogNotify(dialog, g_dialog->list, header);
}

INT_PTR CALLBACK OutsideDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            DialogApplyTheme(dialog);
            FillOutsideDialog(dialog, *g_dialog);
            return FALSE;  // the focus is set already
        case WM_COMMAND: OnOutsideCommand(*g_dialog, LOWORD(wParam)); return TRUE;
        case WM_NOTIFY: return OnOutsideNotify(dialog, *reinterpret_cast<const NMHDR*>(lParam));
        case MSG_OUTSIDE_COMPARED:
            ShowFileComparison(*g_dialog, *WorkerTake<std::unique_ptr<FileComparison>>(wParam));
            return TRUE;
        case WM_DESTROY: WorkerDropPosts<std::unique_ptr<FileComparison>>(dialog, MSG_OUTSIDE_COMPARED); return FALSE;
        default: return FALSE;
    }
}

// A test, or a self-test run, answers in the user's place: Yes is the first button, No the second.
bool AnsweredInstead(const OutsideQuestion& question, OutsideAnswer* answer) {
    if (g_answerInstead == nullptr && !g_selftestTabsMode) return false;
    const auto plain = [](OutsideAnswer of) {
        return of == OutsideAnswer::First ? Answer::Yes : of == OutsideAnswer::Second ? Answer::No : Answer::Cancel;
    };
    const Answer given = AskUser({.caption = question.caption,
                                  .text = question.text.c_str(),
                                  .buttons = AskButtons::YesNoCancel,
                                  .icon = AskIcon::Warning,
                                  .inSelftest = plain(question.inSelftest)});
    *answer = given == Answer::Yes  ? OutsideAnswer::First
              : given == Answer::No ? OutsideAnswer::Second
                                    : OutsideAnswer::Later;
    return true;
}

}  // namespace

OutsideAnswer OutsideDialogShow(OutsideQuestion& question) {
    OutsideDialog outside;
    outside.question = &question;
    if (AnsweredInstead(question, &outside.answer)) return outside.answer;
    OutsideDialog* const outer = std::exchange(g_dialog, &outside);
    if (outer == nullptr &&
        DialogBoxParamW(g_ui.hInstance, MAKEINTRESOURCEW(IDD_OUTSIDE), g_ui.hMainWnd, OutsideDlgProc, 0) == -1)
        AppLogMsg(L"FAIL: OutsideDialogShow error=%lu", GetLastError());
    g_dialog = outer;
    return outside.answer;
}
