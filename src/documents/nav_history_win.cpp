// The navigation history applied to the open documents. UI thread.
#include "documents/nav_history.h"

#include "documents/document_row.h"
#include "documents/editor_pane.h"
#include "scintilla/sci.h"

namespace {

// Shows the place in the current slot. For a tab that is gone nothing is shown, and the step counts all the same.
void NavHistoryGoToCurrent() {
    NavHistory& history = g_documents.navigation;
    const int tab = history.navTab[history.navIndex];
    const int position = history.navPos[history.navIndex];
    if (!IsTabIndex(tab)) return;
    const HWND editor = TabAt(tab).editor;
    // The step is no visit of its own: recording it would cut off the way forward.
    const WPARAM target = static_cast<WPARAM>(position);
    history.navLastTab = tab;
    history.navLastLine = static_cast<std::int32_t>(SciSend(editor, SCI_LINEFROMPOSITION, target, 0));
    // The caret moves while the editor is still hidden, so that the switch shows the place at once, and again afterwards,
    // because only a visible editor scrolls to it.
    SciSend(editor, SCI_GOTOPOS, target, 0);
    TabBarActivate(tab);
    SciSend(editor, SCI_GOTOPOS, target, 0);
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
