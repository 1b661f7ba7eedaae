#include "session/closed_tabs.h"

#include "base/handles.h"
#include "base/path.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "editor/editor_pane.h"
#include "scintilla/sci.h"
#include "session/session.h"

#include <algorithm>
#include <optional>

namespace {

struct ClosedState {
    std::vector<ClosedTab> tabs;
    bool ended = false;
};
ClosedState g_closed;

// Nothing for a document that nobody misses, and for one whose text there is no memory for.
std::optional<ClosedTab> ClosedTabOf(int index) {
    const DocumentTab& tab = TabAt(index);
    ClosedTab closed = {.path = tab.hasFile ? tab.path : L"",
                        .label = tab.label,
                        .index = index,
                        .pinned = tab.pinned,
                        .place = SessionPlaceOf(tab),
                        .lineEnding = tab.lineEnding};
    if (tab.hasFile) return closed;
    const auto length = static_cast<std::size_t>(SciSend(tab.editor, SCI_GETLENGTH));
    if (length == 0 || length > kMostClosedText) return std::nullopt;
    std::size_t read = 0;
    const HeapBlock<char> text{EditorPaneGetText(tab.editor, &read)};
    if (!text) return std::nullopt;
    closed.text.assign(text.get(), read);
    return closed;
}

// The index of the new document, which is not saved. -1: there could be none.
int NewDocumentOf(const ClosedTab& closed) {
    const int index = TabBarAdd(L"", LabelWithoutFile(closed.label).c_str());
    if (index < 0) return -1;
    DocumentTab& tab = TabAt(index);
    tab.mustSave = true;  // before the text comes: the end of an undo is no saved state either
    tab.lineEnding = closed.lineEnding;
    SciSend(tab.editor, SCI_ADDTEXT, closed.text.size(), reinterpret_cast<LPARAM>(closed.text.data()));
    SciSend(tab.editor, SCI_EMPTYUNDOBUFFER);
    TabAt(index).modified = true;
    TabBarUpdateLineEnding(index);
    TabBarUpdateTitle(index);
    return index;
}

int OpenAgain(const ClosedTab& closed) {
    if (closed.path.empty()) return NewDocumentOf(closed);
    const wchar_t* path = closed.path.c_str();
    // The compiler stays: the user wants this text back, and no other build of the rest.
    return FileShow(path, false) != 0 ? TabBarFindPath(path) : -1;
}

bool IsOpen(const ClosedTab& closed) { return !closed.path.empty() && TabBarFindPath(closed.path.c_str()) >= 0; }

}  // namespace

void ClosedTabsOnClosing(DocumentId document) {
    const int index = TabBarFindDocument(document);
    if (g_closed.ended || index < 0) return;
    if (std::optional<ClosedTab> closed = ClosedTabOf(index)) ClosedTabsAdd(g_closed.tabs, std::move(*closed));
}

bool ClosedTabsAny() { return !g_closed.tabs.empty(); }

bool ClosedTabsReopen() {
    while (!g_closed.tabs.empty()) {
        const ClosedTab closed = std::move(g_closed.tabs.back());
        g_closed.tabs.pop_back();
        if (IsOpen(closed)) continue;
        const int index = OpenAgain(closed);
        if (index < 0) return false;  // the user was told why
        const DocumentId document = TabAt(index).id;
        TabBarMove(index, std::min(closed.index, TabCount() - 1));
        TabBarPin(TabBarFindDocument(document), closed.pinned);
        TabBarMove(TabBarFindDocument(document), std::min(closed.index, TabCount() - 1));
        TabBarActivate(TabBarFindDocument(document));
        SessionApplyPlace(TabBarFindDocument(document), closed.place);
        return true;
    }
    return false;
}

void ClosedTabsEnd() {
    g_closed.ended = true;
    g_closed.tabs.clear();
}
