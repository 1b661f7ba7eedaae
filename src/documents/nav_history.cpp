// Rules of the navigation history: what is recorded and where a step leads. Knows no window and no tab. Pure.
#include "documents/nav_history.h"

#include "documents/row_rules.h"

#include <cstdlib>

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
    const auto follow = [tab](std::int32_t& remembered) {
        if (remembered == tab)
            remembered = -1;
        else if (remembered > tab)
            --remembered;
    };
    for (std::int32_t& remembered : history.navTab) follow(remembered);
    follow(history.navLastTab);
}

void NavTabMoved(NavHistory& history, std::int32_t from, std::int32_t to) {
    for (std::int32_t& remembered : history.navTab) remembered = TabIndexAfterMove(remembered, from, to);
    history.navLastTab = TabIndexAfterMove(history.navLastTab, from, to);
}
