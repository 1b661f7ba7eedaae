// The line to go to in the active document, in the window of the file finder. UI thread only.
#include "commands/quick_source.h"

#include "base/texts.h"
#include "base/wide_format.h"
#include "documents/document_place.h"
#include "documents/document_row.h"
#include "editor/caret_place.h"
#include "scintilla/sci.h"

#include <algorithm>
#include <memory>

namespace {

LRESULT LinesOfActive() { return SciSend(g_documents.hEditor, SCI_GETLINECOUNT); }

std::wstring TextOfLine(const QuickQuery& query) {
    if (!IsTabIndex(g_documents.activeTab)) return Text(L"There is no document");
    const auto last = static_cast<int>(LinesOfActive());
    const auto caret = static_cast<WPARAM>(SciSend(g_documents.hEditor, SCI_GETCURRENTPOS));
    const auto now = static_cast<int>(SciSend(g_documents.hEditor, SCI_LINEFROMPOSITION, caret)) + 1;
    if (query.line == 0) return FormatW(Text(L"Type a line from 1 to %d; the caret is in line %d"), last, now);
    const int line = std::min(query.line, last);
    if (query.column > 0) return FormatW(Text(L"Go to line %d of %d, column %d"), line, last, query.column);
    return FormatW(Text(L"Go to line %d of %d"), line, last);
}

const FuzzyIndices& LineTexts(const QuickQuery& query) {
    static FuzzyIndices texts;
    auto index = std::make_shared<FuzzyIndex>();
    FuzzyAdd(index.get(), TextOfLine(query), 0);
    texts = {index};
    return texts;
}

void GoToTypedLine(const QuickItem&, const QuickQuery& query) {
    if (!IsTabIndex(g_documents.activeTab) || query.line == 0) return;
    const DocumentTab& document = TabAt(g_documents.activeTab);
    const LRESULT line = std::min<LRESULT>(query.line, LinesOfActive()) - 1;
    CaretGoTo(document.editor, CaretPositionOfFileColumn(document, line, std::max(query.column - 1, 0)));
    CaretShowInMiddle(document.editor);
    FocusCurrentEditor();
}

QuickPreview PreviewOfLine(const QuickItem&, const QuickQuery& query) {
    return {.document = query.line > 0 ? ActiveDocumentId() : 0, .path = {}, .line = query.line};
}

}  // namespace

const QuickSource kQuickLine = {
    .prefix = L':',
    .title = English(L"line"),
    .filters = false,
    .texts = LineTexts,
    .extra = [](const QuickItem&) { return QuickExtra{.enabled = IsTabIndex(g_documents.activeTab)}; },
    .preview = PreviewOfLine,
    .accept = GoToTypedLine,
};
