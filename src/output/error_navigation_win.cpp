// Goes from a diagnostic to its place in the source. UI thread only.
#include "output/output_pane.h"

#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "files/file_io.h"
#include "output/diagnostics.h"
#include "output/error_places.h"
#include "output/last_build.h"
#include "output/output_state.h"
#include "scintilla/sci.h"

#include <commctrl.h>
#include <richedit.h>

#include <string>
#include <vector>

namespace {

std::wstring WholePath(const std::wstring& path) {
    wchar_t full[kPathCapacity] = {};
    const DWORD length = GetFullPathNameW(path.c_str(), kPathCapacity, full, nullptr);
    return length == 0 || length >= kPathCapacity ? path : std::wstring(full);
}

// The file name as printed, without the blanks of an indented line.
std::wstring PrintedName(const CompilerError& error) {
    const std::wstring_view name = error.file;
    const std::size_t first = name.find_first_not_of(L" \t");
    return first == std::wstring_view::npos ? std::wstring() : std::wstring(name.substr(first));
}

// Selects or opens the document that a diagnostic names. Returns false when it could not be opened.
bool ShowFileOfError(const CompilerError& error) {
    const std::wstring printed = PrintedName(error);
    if (printed.empty()) return false;
    const std::vector<std::wstring> names = ErrorPlaces(printed, LastBuild(), WholePath);
    int tab = TabBarFindPath(printed.c_str());
    for (std::size_t i = 0; tab < 0 && i < names.size(); ++i) tab = TabBarFindPath(names[i].c_str());
    if (tab >= 0) return TabBarSelect(tab) != 0;
    for (const std::wstring& name : names)
        if (FileExists(name.c_str())) return FileShow(name.c_str(), false) != 0;
    return FileShow(printed.c_str(), false) != 0;
}

void GoToDiagnostic(const CompilerError& error) {
    if (!ShowFileOfError(error)) return;
    HWND editor = g_documents.hEditor;
    const int line = error.line > 0 ? error.line - 1 : 0;
    SciSend(editor, SCI_GOTOLINE, static_cast<WPARAM>(line));
    if (error.column >= 1) {
        const LRESULT start = SciSend(editor, SCI_POSITIONFROMLINE, static_cast<WPARAM>(line));
        if (start >= 0) SciSend(editor, SCI_GOTOPOS, static_cast<WPARAM>(start + error.column - 1));
    }
    FocusCurrentEditor();
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

}  // namespace

void CompilerClearErrors() {
    g_output.errors = {};
    ErrorListRefresh();
}

void CompilerNavigateToError(int index) {
    if (index < 0 || index >= g_output.errors.count) return;
    g_output.errors.current = index;
    ErrorListShowCurrent();
    // The record is copied because opening a file may clear the list.
    const CompilerError error = g_output.errors.items[index];
    GoToDiagnostic(error);
}

void CompilerNextError() { CompilerNavigateToError(NextErrorIndex(g_output.errors)); }

void CompilerPrevError() { CompilerNavigateToError(PreviousErrorIndex(g_output.errors)); }

void OutputPaneNavigateError() {
    if (g_output.hOutput == nullptr) return;
    CompilerError error = {};
    if (ParseErrorLine(LineAtPaneCaret(g_output.hOutput), &error) == 0) return;
    if (const int index = FindDiagnostic(g_output.errors, error); index >= 0)
        CompilerNavigateToError(index);
    else
        GoToDiagnostic(error);  // the list was full when this diagnostic came
}
