// The navigation history: visited places in all tabs, with steps back and forward. Pure but for the last four procedures.
#pragma once

#include <cstdint>

inline constexpr int kNavCapacity = 64;

// Slot 0 is the start of the first tab and is never written. The first recorded place goes to slot 1.
struct NavHistory {
    std::int32_t navPos[kNavCapacity] = {};  // document position, bytes
    std::int32_t navTab[kNavCapacity] = {};  // tab index, -1: the tab is gone
    std::int32_t navIndex = 0;               // slot of the current place
    std::int32_t navCount = 0;               // one past the last slot in use
    std::int32_t navLastLine = -1;           // 0-based line and tab of the last place recorded or stepped to
    std::int32_t navLastTab = -1;
};

// A place in the same tab that is fewer lines away from the last one than this is not recorded.
inline constexpr std::int32_t kNavMinimumJump = 6;

// Records a place after the current one and drops the places that were ahead of it. A full history records nothing.
void NavRecord(NavHistory& history, std::int32_t position, std::int32_t tab);

// Whether the caret at `line` (0-based) of `tab` is to be recorded. When it is, makes it the last recorded place.
bool NavShouldRecord(NavHistory& history, std::int32_t line, std::int32_t tab);

// Steps one place back or forward; then `navIndex` is the slot to go to. False at the end of the history.
bool NavStepBack(NavHistory& history);
bool NavStepForward(NavHistory& history);

// Called after the row of tabs has changed. Recorded places follow their documents; those of a removed tab get tab -1.
void NavTabRemoved(NavHistory& history, std::int32_t tab);
void NavTabMoved(NavHistory& history, std::int32_t from, std::int32_t to);

// --- The history of the open documents. UI thread only.
void NavHistoryAdd(int position, int tab);  // byte position, tab index
void NavHistoryMaybeAdd();                  // adds the caret's place unless it is close to the last one
void NavHistoryBack();
void NavHistoryForward();
