// Rules of the navigation history: which places are recorded and where a step leads. Pure.
#include "documents/nav_history.h"

#include "documents/row_rules.h"

#include <cstdlib>

namespace {

// Slot 0 always means the first tab, so it does not follow a document.
template <typename Follow>
void FollowTabs(NavHistory& history, Follow follow) {
    for (std::int32_t slot = 1; slot < history.navCount; ++slot) history.navTab[slot] = follow(history.navTab[slot]);
    history.navLastTab = follow(history.navLastTab);
}

}  // namespace

void NavRecord(NavHistory& history, std::int32_t position, std::int32_t tab) {
    if (history.navIndex < 0) history.navIndex = 0;
    if (history.navIndex >= kNavCapacity - 1) return;
    ++history.navIndex;
    history.navPos[history.navIndex] = position;
    history.navTab[history.navIndex] = tab;
    history.navCount = history.navIndex + 1;
}

bool NavShouldRecord(NavHistory& history, std::int32_t line, std::int32_t tab) {
    if (tab == history.navLastTab && std::abs(line - history.navLastLine) < kNavMinimumJump) return false;
    history.navLastLine = line;
    history.navLastTab = tab;
    return true;
}

bool NavStepBack(NavHistory& history) {
    if (history.navIndex < 1) return false;
    --history.navIndex;
    return true;
}

bool NavStepForward(NavHistory& history) {
    if (history.navIndex >= history.navCount - 1) return false;
    ++history.navIndex;
    return true;
}

void NavTabRemoved(NavHistory& history, std::int32_t tab) {
    FollowTabs(
        history, [tab](std::int32_t place) { return TabIndexAfterRemoval(place, tab); });
}

void NavTabMoved(NavHistory& history, std::int32_t from, std::int32_t to) {
    FollowTabs(
        history, [from, to](std::int32_t place) { return TabIndexAfterMove(place, from, to); });
}
