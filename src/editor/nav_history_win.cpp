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
    const NavHistory& history = g_app.navigation;
    const int tab = history.navTab[history.navIndex];
    const int position = history.navPos[history.navIndex];
    if (!IsTabIndex(tab)) return;
    if (g_activateTab) g_activateTab(tab);
    SciSend(g_app.tabs[static_cast<std::size_t>(tab)].editor, SCI_GOTOPOS, static_cast<WPARAM>(position), 0);
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
