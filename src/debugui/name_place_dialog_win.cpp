// The dialog that gives a name to a place: what is wrong stands below the fields while the user types, and what the place
// holds now beside them. Modal, UI thread only.
#include "debugui/name_place_dialog.h"

#include "base/events.h"
#include "base/log.h"
#include "base/path.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_state.h"
#include "debugui/pane_internal.h"
#include "documents/document_row.h"
#include "editor/editor_pane.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "ui/chrome.h"
#include "ui/dialog_theme.h"
#include "ui/ui_state.h"
#include "ui/window_text.h"

#include <algorithm>
#include <utility>

namespace {

struct NameQuestion {
    std::wstring file;
    std::string procedure;
    NamedPlace named;    // as the fields begin
    std::string before;  // the name that it has already; empty: it is new
};

NameQuestion& QuestionOf(HWND dialog) { return *reinterpret_cast<NameQuestion*>(GetWindowLongPtrW(dialog, DWLP_USER)); }

// The frame of the stopped program, when it is in the procedure that is asked about; else null.
const PaneFrame* FrameOfQuestion(const NameQuestion& question) {
    const PaneFrame* const frame = PaneFrameNow();
    const bool here = frame != nullptr && PathEqualsIgnoreCase(frame->scope.file, question.file) &&
                      CompareNames(frame->scope.Name(), question.procedure) == 0;
    return here ? frame : nullptr;
}

NamedInput ReadFields(HWND dialog) {
    const auto text = [dialog](int field) { return ToUtf8(WindowText(GetDlgItem(dialog, field))); };
    const auto kind = static_cast<WatchKind>(SendDlgItemMessageW(dialog, IDC_NAME_PLACE_KIND, CB_GETCURSEL, 0, 0));
    const std::optional<bool> x64 =
        g_debugger.active != 0 ? std::optional(g_debugger.isX64 != 0) : std::optional<bool>();
    NamedInput input = NamedPlaceOf(text(IDC_NAME_PLACE_NAME) + "=" + text(IDC_NAME_PLACE_PLACE), kind, x64);
    if (!input.problem.empty()) return input;
    const NameQuestion& question = QuestionOf(dialog);
    NamedPlaces names = NamesOfProcedure(question.file, question.procedure);
    input.problem = PutName(&names, input.named, question.before);
    if (!input.problem.empty()) input.field = NamedField::Name;
    return input;
}

std::wstring ValueNow(const NamedInput& input, const NameQuestion& question) {
    const PaneFrame* const frame = FrameOfQuestion(question);
    if (frame == nullptr || !input.problem.empty()) return {};
    const Evaluation address = AddressOfName(input.named, frame->Names());
    if (!address.value) return address.problem;
    const std::wstring value = DebugShownValue(&g_debugger, *address.value, input.named.kind);
    return value.empty() ? value : TextWith(L"Now: {1}", {value});
}

// An empty field is no fault before OK is pressed.
void ShowState(HWND dialog, bool accepts) {
    const NamedInput input = ReadFields(dialog);
    const bool untouched = !accepts && (GetWindowTextLengthW(GetDlgItem(dialog, IDC_NAME_PLACE_PLACE)) == 0 ||
                                        GetWindowTextLengthW(GetDlgItem(dialog, IDC_NAME_PLACE_NAME)) == 0);
    const std::wstring said = input.problem.empty() ? PlaceNotice(input.named.place) : input.problem;
    SetDlgItemTextW(dialog, IDC_NAME_PLACE_PROBLEM, untouched ? L"" : said.c_str());
    SetDlgItemTextW(dialog, IDC_NAME_PLACE_VALUE, ValueNow(input, QuestionOf(dialog)).c_str());
}

void FillNameDialog(HWND dialog, const NameQuestion& question) {
    const std::wstring file(FileNameOf(question.file));
    const std::wstring where = question.procedure.empty() ? TextWith(L"Outside procedures, {1}", {file})
                                                          : Utf8ToWideText(question.procedure) + L", " + file;
    SetDlgItemTextW(dialog, IDC_NAME_PLACE_WHERE, where.c_str());
    const HWND kinds = GetDlgItem(dialog, IDC_NAME_PLACE_KIND);
    for (int i = 0; i < kWatchKinds; ++i)
        SendMessageW(kinds, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(WatchKindName(static_cast<WatchKind>(i))));
    SendMessageW(kinds, CB_SETCURSEL, static_cast<WPARAM>(question.named.kind), 0);
    SetDlgItemTextW(dialog, IDC_NAME_PLACE_NAME, Utf8ToWideText(question.named.name).c_str());
    SetDlgItemTextW(dialog, IDC_NAME_PLACE_PLACE, Utf8ToWideText(question.named.place).c_str());
    EnableWindow(GetDlgItem(dialog, IDC_NAME_PLACE_REMOVE), !question.before.empty());
    const HWND first = GetDlgItem(dialog, question.named.name.empty() ? IDC_NAME_PLACE_NAME : IDC_NAME_PLACE_PLACE);
    SendMessageW(first, EM_SETSEL, 0, -1);
    SetFocus(first);
    ShowState(dialog, false);
}

void KeepOfQuestion(const NameQuestion& question, NamedPlaces names) {
    PaneTellNames(KeepNames(question.file, question.procedure, std::move(names)));
    DebugPaneInvalidate();
}

void AcceptName(HWND dialog) {
    const NamedInput input = ReadFields(dialog);
    if (!input.problem.empty()) {
        ShowState(dialog, true);
        const HWND field =
            GetDlgItem(dialog, input.field == NamedField::Name ? IDC_NAME_PLACE_NAME : IDC_NAME_PLACE_PLACE);
        SendMessageW(field, EM_SETSEL, 0, -1);
        SetFocus(field);
        MessageBeep(MB_ICONWARNING);
        return;
    }
    const NameQuestion& question = QuestionOf(dialog);
    NamedPlaces names = NamesOfProcedure(question.file, question.procedure);
    PutName(&names, input.named, question.before);
    KeepOfQuestion(question, std::move(names));
    g_events.statusText(Utf8ToWideText(NamedPlaceText(input.named)).c_str());
    EndDialog(dialog, IDOK);
}

void RemoveName(HWND dialog) {
    const NameQuestion& question = QuestionOf(dialog);
    NamedPlaces names = NamesOfProcedure(question.file, question.procedure);
    if (const NamedPlace* old = FindNamedPlace(names, question.before); old != nullptr)
        names.erase(names.begin() + (old - names.data()));
    KeepOfQuestion(question, std::move(names));
    g_events.statusText(TextWith(L"{1} has no place any more", {Utf8ToWideText(question.before)}).c_str());
    EndDialog(dialog, IDOK);
}

void OnNameCommand(HWND dialog, int control, int notification) {
    switch (control) {
        case IDOK: AcceptName(dialog); break;
        case IDCANCEL: EndDialog(dialog, IDCANCEL); break;
        case IDC_NAME_PLACE_REMOVE: RemoveName(dialog); break;
        case IDC_NAME_PLACE_NAME:
        case IDC_NAME_PLACE_PLACE:
            if (notification == EN_CHANGE) ShowState(dialog, false);
            break;
        case IDC_NAME_PLACE_KIND:
            if (notification == CBN_SELCHANGE) ShowState(dialog, false);
            break;
        default: break;
    }
}

INT_PTR CALLBACK NamePlaceDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            SetWindowLongPtrW(dialog, DWLP_USER, lParam);
            FillNameDialog(dialog, QuestionOf(dialog));
            DialogApplyTheme(dialog);
            return FALSE;  // the focus is set already
        case WM_CTLCOLORSTATIC:
            return DialogColourOfProblem(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam),
                                         IDC_NAME_PLACE_PROBLEM);
        case WM_COMMAND:
            if (lParam != 0 || LOWORD(wParam) == IDCANCEL || LOWORD(wParam) == IDOK)
                OnNameCommand(dialog, LOWORD(wParam), HIWORD(wParam));
            return TRUE;
        default: return FALSE;
    }
}

constexpr LRESULT kLongestLine = 2000;  // bytes of the line that are looked at

// The name at the caret; empty for a number or a blank.
std::string NameAtCaret(HWND editor) {
    const LRESULT caret = SciSend(editor, SCI_GETCURRENTPOS);
    const LRESULT start = SciSend(editor, SCI_WORDSTARTPOSITION, static_cast<WPARAM>(caret), TRUE);
    std::string name;
    for (LRESULT at = start; at < start + 64; ++at) {
        const auto c = static_cast<char>(SciSend(editor, SCI_GETCHARAT, static_cast<WPARAM>(at)));
        if (c == '\0' || NameAtStart(name + c) != name + c) break;
        name += c;
    }
    return PlaceNameProblem(name).empty() ? name : std::string();
}

NameQuestion QuestionAtCaret(const DocumentTab& document) {
    const std::vector<SourceProcedure> procedures = ProceduresOfDocument(document.id);
    const LRESULT caret = SciSend(document.editor, SCI_GETCURRENTPOS);
    const auto line =
        static_cast<std::uint32_t>(SciSend(document.editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(caret))) + 1;
    const SourceProcedure* const procedure = ProcedureOfLine(procedures, line);
    std::string name = NameAtCaret(document.editor);
    if (name.empty() && procedure != nullptr) {  // the caret is beside all words
        const LRESULT start = SciSend(document.editor, SCI_POSITIONFROMLINE, line - 1);
        const LRESULT end = SciSend(document.editor, SCI_GETLINEENDPOSITION, line - 1);
        const std::string text = EditorPaneTextBetween(document.editor, start, std::min(end, start + kLongestLine));
        name = VariableOfLine(*procedure, text);
    }
    NameQuestion question = {.file = document.path,
                             .procedure = procedure != nullptr ? procedure->name : "",
                             .named = {.name = std::move(name), .place = {}},
                             .before = {}};
    const NamedPlaces& names = NamesOfProcedure(question.file, question.procedure);
    if (const NamedPlace* known = FindNamedPlace(names, question.named.name); known != nullptr) {
        question.named = *known;
        question.before = known->name;
    } else if (procedure != nullptr) {
        if (const DeclaredVariable* const variable = FindVariable(*procedure, question.named.name); variable != nullptr)
            question.named.kind = WatchKindOfType(variable->type).value_or(WatchKind::Long);
    }
    return question;
}

void ShowNameDialog(HWND owner, NameQuestion question) {
    if (DialogBoxParamW(g_ui.hInstance, MAKEINTRESOURCEW(IDD_NAME_PLACE), owner, NamePlaceDlgProc,
                        reinterpret_cast<LPARAM>(&question)) == -1)
        AppLogMsg(L"FAIL: AskNameOfPlace error=%lu", GetLastError());
}

}  // namespace

void AskNameOfPlace(HWND owner) {
    const int tab = TabBarFindDocument(ActiveDocumentId());
    if (tab < 0 || TabAt(tab).editor == nullptr) return;
    if (!TabAt(tab).hasFile) {
        g_events.statusText(Text(L"Save the file first: names are kept by its path"));
        return;
    }
    PaneProgramRead();  // the pane may be hidden: it reads nothing then
    ShowNameDialog(owner, QuestionAtCaret(TabAt(tab)));
}

void AskNameOfPlaceAt(HWND owner, std::uint32_t fileId, std::uint32_t line, const std::string& place) {
    const SourceScope scope = ScopeOfLine(fileId, line);
    if (scope.file.empty()) return g_events.statusText(Text(L"There is no source here that a name could belong to"));
    NameQuestion question = {
        .file = scope.file, .procedure = scope.Name(), .named = {.name = {}, .place = place}, .before = {}};
    for (const NamedPlace& known : NamesOfProcedure(question.file, question.procedure))
        if (CompareNames(known.place, place) == 0) question = {question.file, question.procedure, known, known.name};
    ShowNameDialog(owner, std::move(question));
}
