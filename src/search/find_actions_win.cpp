// Searching, replacing, counting and marking in the active document, by the commands and the find dialog. UI thread.
#include "base/events.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "documents/document_row.h"
#include "documents/recent_files.h"
#include "editor/caret_place.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "search/find.h"
#include "search/find_editor.h"
#include "search/find_internal.h"
#include "search/search_state.h"
#include "settings/settings_state.h"
#include "ui/long_work.h"
#include "ui/ui_state.h"

#include <optional>
#include <string>

FindState g_find;

namespace {

constexpr std::size_t kMostMarksOfLine = 1000;  // Scintilla draws all marks of a line, however few of them are in sight

FindSpan WholeDocument() { return {0, SciSend(g_documents.hEditor, SCI_GETLENGTH)}; }

// The range to search: the scope when "in selection" is ticked for this document, else the whole document.
FindSpan CurrentScope() {
    const bool inSelection = FindInSelection() && g_find.scopeDocument == ActiveDocumentId();
    return ScopeWithin(inSelection ? std::optional{g_find.scope} : std::nullopt, WholeDocument().end);
}

// Whether the search may begin: "in selection" means what is selected now, unless that is a match or within one line.
bool ScopeIsKnown() {
    if (!FindInSelection() || g_documents.hEditor == nullptr) return true;
    const FindSpan now = EditorSelection(g_documents.hEditor);
    const bool same = g_find.scopeDocument == ActiveDocumentId();
    if (same && (!FindSelectionSpansLines() || now == g_find.scopeSelection || now == g_find.shownSelection))
        return true;
    FindTakeScope();
    return FindInSelection();
}

// Makes the query. False when it cannot be searched for; then the status says why. Also false without a document.
bool PrepareFind(FindQuery& query) {
    ReadFindDialog();
    RegexFault fault;
    if (!PrepareQuery(ToUtf8(g_find.what), g_find.options, query, fault)) {
        ShowFindFault(IDC_FIND_WHAT, g_find.what, fault);
        return false;
    }
    FindRemember();
    return g_documents.hEditor != nullptr && ScopeIsKnown();
}

void RememberReplacement() {
    if (g_find.with.empty() || (g_settings.replaceHistoryCount > 0 && g_find.with == g_settings.replaceHistory[0]))
        return;
    SettingsChange([](Settings& settings) {
        settings.replaceHistoryCount =
            RecentListAdd(settings.replaceHistory, settings.replaceHistoryCount, g_find.with, RecentMatch::Exact);
    });
    FillFindHistories();
}

// PrepareFind, and the replacement. False for a read-only document; then the status says so.
bool PrepareReplacing(FindQuery& query, ReplaceForm& form) {
    if (!PrepareFind(query)) return false;
    if (SciSend(g_documents.hEditor, SCI_GETREADONLY) != 0) {
        ShowFindStatus(Text(L"The document is read-only"));
        return false;
    }
    RegexFault fault;
    const ReplaceOptions options{.preserveCase = g_find.preserveCase,
                                 .lineBreak = EditorLineBreak(g_documents.hEditor)};
    if (!ReplaceParse(ToUtf8(g_find.with), *query.code, query.options, options, form, fault)) {
        ShowFindFault(IDC_FIND_WITH, g_find.with, fault);
        return false;
    }
    RememberReplacement();
    return true;
}

// Walks over all matches with the progress of a long command. The status gets `text` of their number, or why it ended.
template <typename Found, typename Text>
void WalkMatches(const wchar_t* work, const Found& found, const Text& text) {
    FindQuery query;
    if (!PrepareFind(query)) return;
    LongWork progress(work, ShowFindStatus);
    std::size_t count = 0;
    const auto each = [&](const RegexSearch& search) {
        ++count;
        found(search.Match());
        return true;
    };
    const RegexResult end = ForEachMatch(EditorTextOf(g_documents.hEditor), query, CurrentScope(), each,
                                         [&progress](double share) { return progress.GoesOn(share); });
    ShowFindStatus(end == RegexResult::NoMatch ? text(count).c_str() : EndOfSearchText(end));
}

}  // namespace

void FindStep(const FindQuery& query, bool forward) {
    LongWork work(Text(L"Searching"), ShowFindStatus);
    const HWND editor = g_documents.hEditor;
    const FindResult result =
        FindInScope(EditorTextOf(editor), query, FindCurrentMatch(), CurrentScope(),
                    {.forward = forward, .wrap = g_find.wrap}, [&work](double share) { return work.GoesOn(share); });
    if (result.match)
        FindShowMatch(*result.match);
    else
        MessageBeep(MB_OK);
    ShowFindStatus(FindStatusOf(result, forward).c_str());
}

FindSpan FindCurrentMatch() {
    const FindSpan selection = EditorSelection(g_documents.hEditor);
    const bool shown = g_find.shownDocument == ActiveDocumentId() && g_find.shownSelection == selection;
    return shown ? g_find.shown : selection;
}

void FindShowMatch(FindSpan match) {
    CaretSelect(g_documents.hEditor, match.start, match.end);
    SciSend(g_documents.hEditor, SCI_CHOOSECARETX);
    g_find.shownDocument = ActiveDocumentId();
    g_find.shown = match;
    g_find.shownSelection = EditorSelection(g_documents.hEditor);
    UncoverMatch(match);
}

void FindRemember() {
    if (g_find.what.empty()) return;
    if (g_settings.searchHistoryCount > 0 && g_find.what == g_settings.searchHistory[0]) return;
    SettingsChange([](Settings& settings) {
        settings.searchHistoryCount =
            RecentListAdd(settings.searchHistory, settings.searchHistoryCount, g_find.what, RecentMatch::Exact);
    });
    FillFindHistories();
}

// When nothing is selected, unticks "in selection" and says so.
void FindTakeScope() {
    g_find.scopeDocument = ActiveDocumentId();
    g_find.scope = EditorSelection(g_documents.hEditor);
    g_find.scopeSelection = g_find.scope;
    if (g_find.scope.start != g_find.scope.end) return;
    g_find.scopeDocument = 0;
    FindLeaveSelection();
    ShowFindStatus(Text(L"Select the text to search in first"));
}

bool FindSelectionSpansLines() {
    const auto line = [](UINT message) {
        return SciSend(g_documents.hEditor, SCI_LINEFROMPOSITION,
                       static_cast<WPARAM>(SciSend(g_documents.hEditor, message)));
    };
    return line(SCI_GETSELECTIONSTART) != line(SCI_GETSELECTIONEND);
}

void FindOnEdit(DocumentId document, std::ptrdiff_t position, std::ptrdiff_t inserted, std::ptrdiff_t removed) {
    if (document == 0 || document != g_find.scopeDocument) return;
    const std::optional<FindSpan> scope = ScopeAfterEdit(g_find.scope, position, inserted, removed);
    g_find.scope = scope.value_or(FindSpan{});
    if (!scope) g_find.scopeDocument = 0;  // the next search asks for a selection
}

void FindReplaceNext() {
    FindQuery query;
    ReplaceForm form;
    if (!PrepareReplacing(query, form)) return;
    ReplaceMatch(g_documents.hEditor, query, form, FindCurrentMatch(), CurrentScope());
    FindStep(query, true);
}

void FindReplaceAll() {
    FindQuery query;
    ReplaceForm form;
    if (!PrepareReplacing(query, form)) return;
    const HCURSOR before = SetCursor(LoadCursorW(nullptr, MAKEINTRESOURCEW(32514)));  // IDC_WAIT
    LongWork work(Text(L"Replacing"), ShowFindStatus);
    const ReplaceAllResult result = ReplaceAllInScope(g_documents.hEditor, query, form, CurrentScope(),
                                                      [&work](double share) { return work.GoesOn(share); });
    SetCursor(before);
    g_find.scopeSelection = EditorSelection(g_documents.hEditor);
    ShowFindStatus(ReplaceStatusOf(result.end, result.count).c_str());
}

void FindCount() {
    WalkMatches(
        Text(L"Counting"), [](FindSpan) {}, MatchCountText);
}

void FindMarkAll() {
    const HWND editor = g_documents.hEditor;
    FindMarksClear();
    FindMarksPrepare(editor, FindMarks::All);
    std::ptrdiff_t lineEnd = -1;
    std::size_t inLine = 0, unmarked = 0;
    const auto mark = [&](FindSpan match) {
        if (match.start > lineEnd) {
            const LRESULT line = SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(match.start));
            lineEnd = SciSend(editor, SCI_GETLINEENDPOSITION, static_cast<WPARAM>(line));
            inLine = 0;
        }
        if (++inLine <= kMostMarksOfLine)
            FindMark(editor, FindMarks::All, match);
        else
            ++unmarked;
    };
    WalkMatches(Text(L"Marking"), mark, [&](std::size_t count) {
        const std::wstring most = std::to_wstring(kMostMarksOfLine);
        const std::wstring text = MatchCountText(count);
        return unmarked > 0 ? TextWith(L"{1}; the first {2} of each line are marked", {text, most}) : text;
    });
}

void FindMarksClear() { FindUnmark(g_documents.hEditor, FindMarks::All, WholeDocument()); }

// The selection of the active editor when it can be a search text, else empty.
std::wstring FindSelectedText() {
    const LRESULT start = SciSend(g_documents.hEditor, SCI_GETSELECTIONSTART);
    const LRESULT end = SciSend(g_documents.hEditor, SCI_GETSELECTIONEND);
    if (end - start < 1 || end - start > kFindFieldLimit) return {};
    std::string text(static_cast<std::size_t>(end - start), '\0');
    SciSend(g_documents.hEditor, SCI_SETTARGETRANGE, static_cast<WPARAM>(start), end);
    SciSend(g_documents.hEditor, SCI_GETTARGETTEXT, 0, reinterpret_cast<LPARAM>(text.data()));
    return Utf8ToWideText(SearchTextFromSelection(text));
}

void FindNext(bool forward) {
    if (g_search.hFindDialog == nullptr && g_find.what.empty()) {
        const std::wstring newest = g_settings.searchHistoryCount > 0 ? g_settings.searchHistory[0] : L"";
        g_find.what = TextToFindNext(g_find.what, FindSelectedText(), newest);
        if (g_find.what.empty()) {
            FindDialogShow(g_ui.hMainWnd, false);
            return;
        }
    }
    FindQuery query;
    if (PrepareFind(query)) FindStep(query, forward);
}
