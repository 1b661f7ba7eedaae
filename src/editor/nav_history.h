// Back and forward through places visited, across tabs: the record and its rules. Pure.
#pragma once

#include <cstdint>

inline constexpr int kNavCapacity = 64;

// Slot 0 is never written by an add: the first place lands in slot 1, so that going back from it ends at the
// start of the first tab.
struct NavHistory {
    std::int32_t navPos[kNavCapacity] = {};  // document position, bytes
    std::int32_t navTab[kNavCapacity] = {};  // tab index
    std::int32_t navIndex = 0;               // slot of the current place
    std::int32_t navCount = 0;               // end mark: one past the last slot in use
    std::int32_t navLastLine = -1;           // last place recorded by NavHistoryMaybeAdd
    std::int32_t navLastTab = -1;
};
