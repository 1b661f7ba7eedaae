// Back and forward through places visited, across tabs: the record and its rules. Pure.
#pragma once

#include <cstdint>

inline constexpr int kNavCapacity = 64;

// An add never writes slot 0: the first place lands in slot 1, and going back from it leads to slot 0, the start of the
// first tab.
struct NavHistory {
    std::int32_t navPos[kNavCapacity] = {};  // document position, bytes
    std::int32_t navTab[kNavCapacity] = {};  // tab index, -1: the tab is gone
    std::int32_t navIndex = 0;               // slot of the current place
    std::int32_t navCount = 0;               // end mark: one past the last slot in use
    std::int32_t navLastLine = -1;           // last place recorded by NavHistoryMaybeAdd
    std::int32_t navLastTab = -1;
};

// Places closer than this many lines to the last recorded one, in the same tab, are not worth a step back.
inline constexpr std::int32_t kNavMinimumJump = 6;

// Records a place after the current one and drops what was ahead of it. A full history takes nothing more.
void NavRecord(NavHistory& history, std::int32_t position, std::int32_t tab);

// Whether the caret at `line` of `tab` is worth recording; remembers it as the last recorded place when it is.
bool NavShouldRecord(NavHistory& history, std::int32_t line, std::int32_t tab);

// Steps one place back or forward. False at the end of the history; else `navIndex` is the slot to go to.
bool NavStepBack(NavHistory& history);
bool NavStepForward(NavHistory& history);

// The row of tabs has changed: recorded places stay with their documents, and those of a removed one lead nowhere.
void NavTabRemoved(NavHistory& history, std::int32_t tab);
void NavTabMoved(NavHistory& history, std::int32_t from, std::int32_t to);
