// When a file that does not look as it was known to is reported: once it stands still. Pure; times are tick counts in ms.
#pragma once

#include "files/disk_file.h"

inline constexpr std::uint64_t kSettleMs = 200;     // a change is reported when it stands that long
inline constexpr std::uint64_t kRestlessMs = 2000;  // a file that changes all the time is reported after this

struct Settling {
    FileState last;               // at the last look
    std::uint64_t began = 0;      // when the first difference was seen; 0: there is none
    std::uint64_t lastMoved = 0;  // when `last` was another
};
// Takes a look that differs from what is known. True: it is to be reported.
bool SettlingTake(Settling& settling, const FileState& now, std::uint64_t time);
