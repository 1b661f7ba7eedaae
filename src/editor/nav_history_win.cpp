// The navigation history applied to the open tabs. Switching tabs is done through a procedure that the tab bar hands
// in, since it lies above this folder. UI thread.
#include "editor/nav_history.h"
#include "app/app_state.h"
#include "editor/editor_pane.h"
#include "scintilla/sci.h"

namespace {

void (*g_activateTab)(int tab) = nullptr;

// Shows the place in the current slot. A tab that is gone leaves the history where it stepped to.
void NavHistoryGoToCurrent() {
    NavHistory& history = g_app.navigation;
    const int tab = history.navTab[history.navIndex];
    const int position = history.navPos[history.navIndex];
    if (!IsTabIndex(tab)) return;
    const HWND editor = g_app.tabs[static_cast<std::size_t>(tab)].editor;
    // The step is no visit of its own: recording it would cut off the way forward.
    const WPARAM target = static_cast<WPARAM>(position);
    history.navLastTab = tab;
    history.navLastLine = static_cast<std::int32_t>(SciSend(editor, SCI_LINEFROMPOSITION, target, 0));
    // Moved while still hidden, so that the switch shows the place at once; and again, now that there is a view to
    // scroll to it.
    SciSend(editor, SCI_GOTOPOS, target, 0);
    if (g_activateTab) g_activateTab(tab);
    SciSend(editor, SCI_GOTOPOS, target, 0);
}

}  // namespace

void NavHistorySetActivator(void (*activate)(int tab)) { g_activateTab = activate; }

void NavHistoryAdd(int position, int tab) { NavRecord(g_app.navigation, position, tab); }

void NavHistoryBack() {
    if (NavStepBack(g_app.navigation)) NavHistoryGoToCurrent();
}

void NavHistoryForward() {
    if (NavStepForward(g_app.navigation)) NavHistoryGoToCurrent();
}

void NavHistoryMaybeAdd() {
    if (!g_app.hEditor || !IsTabIndex(g_app.activeTab)) return;
    const LRESULT position = SciSend(g_app.hEditor, SCI_GETCURRENTPOS, 0, 0);
    const LRESULT line = SciSend(g_app.hEditor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(position), 0);
    if (!NavShouldRecord(g_app.navigation, static_cast<std::int32_t>(line), g_app.activeTab)) return;
    NavHistoryAdd(static_cast<int>(position), g_app.activeTab);
}
