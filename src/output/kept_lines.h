// Which lines of a very long output are kept: the first ones, shown as they come, and the last ones, held back until
// the output ends. Nearly everything a Rich Edit control does grows with the lines it holds: measured under Wine 8, each
// takes 7.5 KB, adds 0.1 us to every later insertion and 0.3 us to every repaint, and 4 us to the end of the control.
// The build log has what is left out here, up to its own limit of 16 MB.
// Pure.
#pragma once

#include "ui/rtf_block.h"

#include <cstddef>
#include <cstdint>
#include <deque>

inline constexpr std::size_t kFirstLinesKept = 100000;
inline constexpr std::size_t kLastLinesKept = 10000;
inline constexpr std::size_t kFirstCharactersKept = 24 * 1024 * 1024;  // for very long lines
inline constexpr std::size_t kLastCharactersKept = 4 * 1024 * 1024;

struct KeptLines {
    std::size_t shown = 0;  // lines and characters let through
    std::size_t shownCharacters = 0;
    std::deque<PaneLine> held;  // the latest of those held back
    std::size_t heldCharacters = 0;
    std::uint64_t leftOut = 0;  // lines that are gone
};

// True: show `line` now, it is left in place. False: it was taken and is held back or will be left out. Only a
// process's lines are held back for want of room, and whatever comes after them, so that the order stays.
bool KeepLine(KeptLines& kept, PaneLine& line, bool stream);

// At the end of the output: what was held back, led by a line that says how many were left out, if any were.
std::deque<PaneLine> TakeHeldLines(KeptLines& kept);
