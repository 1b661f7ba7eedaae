// Decides which lines of a very long output are kept: the first ones are shown as they come, the last ones are held
// back until the output ends. The cost of a Rich Edit control grows with its lines. Measured under Wine 8, each line
// takes 7.5 to 9 KB and adds 0.1 us to every later insertion, 0.3 us to every repaint, and 4 us to the destruction of
// the control. The log of the process has the lines that are left out here, up to its own limit; the pane says where.
// Pure.
#pragma once

#include "ui/rtf_block.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

inline constexpr std::size_t kFirstLinesKept = 10000;  // of one process
inline constexpr std::size_t kLastLinesKept = 5000;
inline constexpr std::size_t kFirstCharactersKept = 4 * 1024 * 1024;  // reached by very long lines
inline constexpr std::size_t kLastCharactersKept = 2 * 1024 * 1024;
// The pane's limits over all processes: beyond the first, it is emptied down to the second.
inline constexpr std::size_t kMostPaneLines = 20000;
inline constexpr std::size_t kPaneLinesKept = 8000;

struct HeldLine {
    PaneLine line;
    std::uint64_t logLine = 0;  // its line in the log, from 1; 0: it is not of the process
};

struct KeptLines {
    std::size_t shown = 0;  // lines of the present process, and of the editor since it began, that were shown
    std::size_t shownCharacters = 0;
    std::deque<HeldLine> held;  // the last lines so far
    std::size_t heldCharacters = 0;
    std::uint64_t leftOut = 0;    // lines that were dropped from `held`
    std::uint64_t leftOutAt = 0;  // line in the log of the first of them; 0: unknown
};

// Returns true when `line` is to be shown now; it is then unchanged. Returns false when `line` was moved into `held`.
// Holding back begins with a line of a process (`logLine` is not 0) after the first lines or characters have reached
// their limit. From then on every line is held back, so that the order stays.
bool KeepLine(KeptLines& kept, PaneLine& line, std::uint64_t logLine);

bool LinesAreHeld(const KeptLines& kept);
// What the pane shows in place of the lines that are held back.
std::wstring HeldLinesText(const KeptLines& kept);

// Called at the end of the output. Returns the lines held back; a first line says how many were left out, if any were,
// and where they are (`log`; empty: nowhere).
std::deque<PaneLine> TakeHeldLines(KeptLines& kept, const std::wstring& log);

// A place in a log that a line of the pane names.
struct LogPlace {
    std::wstring path;  // empty: the line names none
    int line = 0;       // from 1
};
LogPlace LogPlaceOf(std::wstring_view paneLine);

// Drops the oldest of the lines in the pane when there are too many. A first line then says so. Returns whether it did.
bool TrimPaneLines(std::deque<PaneLine>& shown);
