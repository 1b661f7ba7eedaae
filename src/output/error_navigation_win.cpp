// Goes from a diagnostic to its place in the source. UI thread only.
#include "output/output_pane.h"

#include "documents/document_place.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "editor/caret_place.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "output/diagnostics.h"
#include "output/error_path.h"
#include "output/error_places.h"
#include "output/kept_lines.h"
#include "output/mark_view.h"
#include "output/output_feed.h"
#include "output/output_state.h"
#include "ui/clipboard.h"
#include "ui/ui_state.h"

#include <commctrl.h>
#include <commdlg.h>
#include <richedit.h>

#include <string>
#include <vector>

namespace {

// Selects or opens the document that a diagnostic names. Returns false when it could not be opened. FileShow leaves the
// active compiler as it is.
bool ShowFileOfError(const CompilerError& error) {
    const std::vector<std::wstring> places = PlacesOfDiagnostic(g_output.errors, error, ErrorPathWhole);
    if (places.empty()) return false;
    for (const std::wstring& place : places) {
        if (const int tab = TabBarFindPath(place.c_str()); tab >= 0) return TabBarSelect(tab) != 0;
        if (PathAnswers(place.c_str()) && FileExists(place.c_str())) return FileShow(place.c_str(), false) != 0;
    }
    return FileShow(places.front().c_str(), false) != 0;  // says that there is no such file
}

void GoToPosition(HWND editor, LRESULT position) {
    CaretGoTo(editor, position);
    CaretShowInMiddle(editor);
    FocusCurrentEditor();
    SourceMarksOnJump();
}

// Line and column of the active document's file, from 1.
void GoToPlace(LRESULT line, LRESULT column) {
    const DocumentTab& document = TabAt(g_documents.activeTab);
    GoToPosition(document.editor, CaretPositionOfFileColumn(document, line - 1, column - 1));
}

// To the place where the text of the diagnostic is now, when it has moved since.
bool GoToDiagnostic(const CompilerError& error) {
    if (!ShowFileOfError(error)) return false;
    const DocumentTab& document = TabAt(g_documents.activeTab);
    if (const LRESULT position = SourceMarkPositionOf(document.id, error); position >= 0)
        GoToPosition(document.editor, position);
    else
        GoToPlace(error.line, error.column);
    return true;
}

bool GoToRecord(int index) {
    g_output.errors.current = index;
    g_output.errors.visited = true;
    ErrorListShowCurrent();
    OutputPaneShowRecord(index);
    // The record is copied because opening a file may clear the list.
    const CompilerError error = g_output.errors.items[static_cast<std::size_t>(index)];
    return GoToDiagnostic(error);
}

void GoToLog(const LogPlace& place) {
    // A log that is open already may be an earlier build's.
    const int open = TabBarFindPath(place.path.c_str());
    if (open >= 0 && !TabAt(open).modified) FileReload(open);
    if (FileShow(place.path.c_str(), false) != 0) GoToPlace(static_cast<LRESULT>(place.line), 1);
}

// The line of the pane that holds the start of the selection or the caret.
std::wstring LineAtPaneCaret(HWND pane) {
    CHARRANGE selection = {};
    SendMessageW(pane, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&selection));
    const auto line = static_cast<WPARAM>(SendMessageW(pane, EM_EXLINEFROMCHAR, 0, selection.cpMin));
    const LRESULT start = SendMessageW(pane, EM_LINEINDEX, line, 0);
    const LRESULT length = start < 0 ? 0 : SendMessageW(pane, EM_LINELENGTH, static_cast<WPARAM>(start), 0);
    if (length <= 0) return {};
    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    TEXTRANGEW range = {.chrg = {static_cast<LONG>(start), static_cast<LONG>(start + length)},
                        .lpstrText = text.data()};
    const LRESULT copied = SendMessageW(pane, EM_GETTEXTRANGE, 0, reinterpret_cast<LPARAM>(&range));
    text.resize(static_cast<std::size_t>(copied));
    while (!text.empty() && (text.back() == L'\r' || text.back() == L'\n')) text.pop_back();
    return text;
}

// Counts how often the text stands in the pane above the selection.
int CountAbove(HWND pane, const std::wstring& text) {
    CHARRANGE selection = {};
    SendMessageW(pane, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&selection));
    FINDTEXTEXW find = {.chrg = {0, selection.cpMin}, .lpstrText = text.c_str(), .chrgText = {}};
    int count = 0;
    while (SendMessageW(pane, EM_FINDTEXTEXW, FR_DOWN | FR_MATCHCASE, reinterpret_cast<LPARAM>(&find)) >= 0 &&
           find.chrgText.cpMax <= selection.cpMin) {
        ++count;
        find.chrg.cpMin = find.chrgText.cpMax;
    }
    return count;
}

// The record of a diagnostic that the pane's current line, `text`, tells; -1: the list was full when it came.
int IndexOfPaneLine(const std::wstring& text, const CompilerError& error) {
    const bool several = CountDiagnostic(g_output.errors, error) > 1;
    return FindDiagnostic(g_output.errors, error, several ? CountAbove(g_output.hOutput, text) : 0);
}

// The diagnostic of the pane's line on which the keyboard is. False: it tells none.
bool DiagnosticOfPane(CompilerError* error, std::wstring* text) {
    if (g_output.hOutput == nullptr || GetFocus() != g_output.hOutput) return false;
    *text = LineAtPaneCaret(g_output.hOutput);
    *error = {};
    return ParseErrorLine(*text, error) != 0;
}

bool ListHasKeyboard() { return g_output.hErrorList != nullptr && GetFocus() == g_output.hErrorList; }

// The record that the keyboard is on in the list; else the current one. -1: none.
int ChosenRecord() {
    const int count = ErrorCount(g_output.errors);
    const int chosen = ListHasKeyboard() ? ErrorListSelected() : -1;
    if (chosen >= 0 && chosen < count) return chosen;
    return g_output.errors.current < count ? g_output.errors.current : -1;
}

// Of a diagnostic of the pane that the list has no room for.
std::uint32_t CompilerOfLastBuild() {
    return g_output.errors.builds.empty() ? 0 : g_output.errors.builds.back().compilerId;
}

}  // namespace

void CompilerClearErrors() {
    SourceMarksForget();
    g_output.errors = {};
    ErrorListRefresh();
}

void CompilerNavigateToError(int index) {
    if (index >= 0 && index < ErrorCount(g_output.errors)) GoToRecord(index);
}

void CompilerNextError() { CompilerNavigateToError(NextErrorIndex(g_output.errors)); }

void CompilerVisitNextError() { CompilerNavigateToError(NextErrorToVisit(g_output.errors)); }

void CompilerPrevError() { CompilerNavigateToError(PreviousErrorIndex(g_output.errors)); }

void OutputPaneNavigateError() {
    if (g_output.hOutput == nullptr) return;
    const std::wstring text = LineAtPaneCaret(g_output.hOutput);
    if (const LogPlace log = LogPlaceOf(text); !log.path.empty()) {
        GoToLog(log);
        return;
    }
    if (const int index = RecordOfFirstErrorText(g_output.errors, text); index >= 0)
        return CompilerNavigateToError(index);
    CompilerError error = {};
    if (ParseErrorLine(text, &error) == 0) return;
    if (const int index = IndexOfPaneLine(text, error); index >= 0)
        CompilerNavigateToError(index);
    else
        GoToDiagnostic(error);  // the list was full when this diagnostic came
}

bool CompilerShowChosenError(CompilerError* error) {
    // The keyboard is in the text, on a line with a diagnostic, which may be none of the list.
    if (GetFocus() == g_documents.hEditor && SourceMarkAtCaret(error)) return true;
    int chosen = ChosenRecord();
    std::wstring text;
    if (CompilerError told = {}; DiagnosticOfPane(&told, &text)) {
        chosen = IndexOfPaneLine(text, told);
        told.compilerId = CompilerOfLastBuild();
        *error = told;
        if (chosen < 0) return GoToDiagnostic(told);
    }
    if (chosen < 0) return false;
    *error = g_output.errors.items[static_cast<std::size_t>(chosen)];
    return GoToRecord(chosen);
}

bool CompilerIsOnDiagnostic() {
    CompilerError error = {};
    std::wstring text;
    if (ListHasKeyboard()) return ErrorListSelected() >= 0;
    if (GetFocus() == g_documents.hEditor) return SourceMarkAtCaret(&error);
    return DiagnosticOfPane(&error, &text) || !LogPlaceOf(text).path.empty() ||
           RecordOfFirstErrorText(g_output.errors, text) >= 0;
}

void OutputGoToSource() {
    if (ListHasKeyboard())
        CompilerNavigateToError(ErrorListSelected());
    else
        OutputPaneNavigateError();
}

void OutputCopyAll() {
    if (ListHasKeyboard()) return ErrorListCopyAll();
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(g_output.hOutput)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(g_output.hOutput, text.data(), static_cast<int>(text.size()))));
    ClipboardPutText(g_ui.hMainWnd, text);
}
