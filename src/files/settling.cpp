// Waits until a changed file stands still. Pure.
#include "files/settling.h"

bool SettlingTake(Settling& settling, const FileState& now, std::uint64_t time) {
    if (settling.began == 0) settling = {.last = now, .began = time, .lastMoved = time};
    if (!FileLooksSame(settling.last, now)) {
        settling.last = now;
        settling.lastMoved = time;
    }
    return time - settling.lastMoved >= kSettleMs || time - settling.began >= kRestlessMs;
}
