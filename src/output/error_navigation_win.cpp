// Goes from a diagnostic to its place in the source. UI thread only.
#include "output/output_pane.h"

#include "documents/document_place.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "editor/caret_place.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "output/diagnostics.h"
#include "output/error_places.h"
#include "output/kept_lines.h"
#include "output/output_state.h"

#include <commctrl.h>
#include <commdlg.h>
#include <richedit.h>

#include <string>
#include <vector>

namespace {

std::wstring WholePath(const std::wstring& path) {
    wchar_t full[kPathCapacity] = {};
    const DWORD length = GetFullPathNameW(path.c_str(), kPathCapacity, full, nullptr);
    if (length == 0 || length >= kPathCapacity) return path;
    // A compiler that was started in a folder by its short name (8.3) may print that.
    wchar_t entire[kPathCapacity] = {};
    const bool isShort = std::wstring_view(full).find(L'~') != std::wstring_view::npos;
    const DWORD size = isShort ? GetLongPathNameW(PathForSystem(full).c_str(), entire, kPathCapacity) : 0;
    if (size == 0 || size >= kPathCapacity) return full;
    const std::wstring_view found(entire);
    return std::wstring(found.starts_with(L"\\\\?\\") && !found.starts_with(L"\\\\?\\UNC") ? found.substr(4) : found);
}

// Selects or opens the document that a diagnostic names. Returns false when it could not be opened. FileShow leaves the
// active compiler as it is.
bool ShowFileOfError(const CompilerError& error) {
    const std::vector<std::wstring> places = PlacesOfDiagnostic(g_output.errors, error, WholePath);
    if (places.empty()) return false;
    for (const std::wstring& place : places) {
        if (const int tab = TabBarFindPath(place.c_str()); tab >= 0) return TabBarSelect(tab) != 0;
        if (PathAnswers(place.c_str()) && FileExists(place.c_str())) return FileShow(place.c_str(), false) != 0;
    }
    return FileShow(places.front().c_str(), false) != 0;  // says that there is no such file
}

// Line and column of the active document's file, from 1.
void GoToPlace(LRESULT line, LRESULT column) {
    const DocumentTab& document = TabAt(g_documents.activeTab);
    CaretGoTo(document.editor, CaretPositionOfFileColumn(document, line - 1, column - 1));
    FocusCurrentEditor();
}

bool GoToDiagnostic(const CompilerError& error) {
    if (!ShowFileOfError(error)) return false;
    GoToPlace(error.line, error.column);
    return true;
}

bool GoToRecord(int index) {
    g_output.errors.current = index;
    g_output.errors.visited = true;
    ErrorListShowCurrent();
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

// The record that the keyboard is on, in the list or in the pane; else the current one. -1: none.
int ChosenRecord() {
    const int count = ErrorCount(g_output.errors);
    int chosen = -1;
    if (const HWND focus = GetFocus(); focus != nullptr && focus == g_output.hErrorList) {
        chosen = ErrorListSelected();
    } else if (focus != nullptr && focus == g_output.hOutput) {
        const std::wstring text = LineAtPaneCaret(focus);
        CompilerError error = {};
        if (ParseErrorLine(text, &error) != 0) chosen = IndexOfPaneLine(text, error);
    }
    if (chosen < 0 || chosen >= count) chosen = g_output.errors.current;
    return chosen < count ? chosen : -1;
}

}  // namespace

void CompilerClearErrors() {
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
    CompilerError error = {};
    if (ParseErrorLine(text, &error) == 0) return;
    if (const int index = IndexOfPaneLine(text, error); index >= 0)
        CompilerNavigateToError(index);
    else
        GoToDiagnostic(error);  // the list was full when this diagnostic came
}

bool CompilerShowChosenError(CompilerError* error) {
    const int chosen = ChosenRecord();
    if (chosen < 0) return false;
    *error = g_output.errors.items[static_cast<std::size_t>(chosen)];
    return GoToRecord(chosen);
}
