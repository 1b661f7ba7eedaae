// The navigation history applied to the open documents. UI thread.
#include "documents/nav_history.h"

#include "documents/document_row.h"
#include "editor/caret_place.h"
#include "editor/editor_pane.h"
#include "scintilla/sci.h"

namespace {

// Shows the place in the current slot. When its tab is gone, nothing is shown but the step is still taken.
void NavHistoryGoToCurrent() {
    NavHistory& history = g_documents.navigation;
    const int tab = history.navTab[history.navIndex];
    const int position = history.navPos[history.navIndex];
    if (!IsTabIndex(tab)) return;
    const HWND editor = TabAt(tab).editor;
    // The place counts as recorded, because recording it again would drop the places ahead.
    const LRESULT target = CaretPositionAt(editor, position);
    history.navLastTab = tab;
    history.navLastLine = static_cast<std::int32_t>(SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(target)));
    // The caret moves before the editor is shown, so that the editor comes up at the place. It moves again afterwards,
    // because only a visible editor scrolls to the caret.
    CaretGoToMiddle(editor, target);
    const DocumentId document = TabAt(tab).id;
    TabBarActivate(tab);
    const int shown = TabBarFindDocument(document);  // the file of a tab that was never shown has been read now
    if (shown >= 0) CaretGoTo(TabAt(shown).editor, CaretPositionAt(TabAt(shown).editor, position));
}

}  // namespace

void NavHistoryAdd(int position, int tab) { NavRecord(g_documents.navigation, position, tab); }

void NavHistoryBack() {
    if (NavStepBack(g_documents.navigation)) NavHistoryGoToCurrent();
}

void NavHistoryForward() {
    if (NavStepForward(g_documents.navigation)) NavHistoryGoToCurrent();
}

void NavHistoryMaybeAdd() {
    if (g_documents.hEditor == nullptr || !IsTabIndex(g_documents.activeTab)) return;
    const LRESULT position = SciSend(g_documents.hEditor, SCI_GETCURRENTPOS, 0, 0);
    const LRESULT line = SciSend(g_documents.hEditor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(position), 0);
    if (!NavShouldRecord(g_documents.navigation, static_cast<std::int32_t>(line), g_documents.activeTab)) return;
    NavHistoryAdd(static_cast<int>(position), g_documents.activeTab);
}
