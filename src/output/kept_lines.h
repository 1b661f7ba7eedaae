// Decides which lines of a very long output are kept: the first ones are shown as they come, the last ones are held
// back until the output ends. The cost of a Rich Edit control grows with its lines. Measured under Wine 8, each line
// takes 7.5 KB and adds 0.1 us to every later insertion, 0.3 us to every repaint, and 4 us to the destruction of the
// control. The build log has the lines that are left out here, up to its own limit of 16 MB.
// Pure.
#pragma once

#include "ui/rtf_block.h"

#include <cstddef>
#include <cstdint>
#include <deque>

inline constexpr std::size_t kFirstLinesKept = 100000;
inline constexpr std::size_t kLastLinesKept = 10000;
inline constexpr std::size_t kFirstCharactersKept = 24 * 1024 * 1024;  // reached by very long lines
inline constexpr std::size_t kLastCharactersKept = 4 * 1024 * 1024;

struct KeptLines {
    std::size_t shown = 0;  // lines that were shown
    std::size_t shownCharacters = 0;
    std::deque<PaneLine> held;  // the last lines so far
    std::size_t heldCharacters = 0;
    std::uint64_t leftOut = 0;  // lines that were dropped from `held`
};

// Returns true when `line` is to be shown now; it is then unchanged. Returns false when `line` was moved into `held`.
// Holding back begins with a line of a process (`stream`) after the first lines or characters have reached their limit.
// From then on every line is held back, so that the order stays.
bool KeepLine(KeptLines& kept, PaneLine& line, bool stream);

// Called at the end of the output. Returns the lines held back; a first line says how many were left out, if any were.
std::deque<PaneLine> TakeHeldLines(KeptLines& kept);
