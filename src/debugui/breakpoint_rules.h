// Rules of conditions, of matching breakpoints with markers, and of scrolling to a stop. Pure.
#pragma once

#include "debugger/named_places.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// For the dialog: why a condition (UTF-8) is refused; empty when it is accepted.
std::wstring ConditionProblem(std::string_view condition);
// For a hit count that was typed: why it is refused, else empty and the count; an empty text is 0.
std::wstring StopFromProblem(std::string_view text, std::uint32_t* count);
// Warning about an accepted condition that does not do what it seems to say; empty: none. `names`: of the procedure of
// the breakpoint.
std::wstring ConditionNotice(std::string_view condition, std::span<const NamedPlace> names = {});

// A marker of an open file, as the editor has it.
struct MarkerPlace {
    int handle = -1;
    int line = 0;  // from 1
};
// A breakpoint of that file, as the list has it; handle -1: no marker yet, because the file was closed.
struct KnownBreakpoint {
    int handle = -1;
    int line = 0;  // from 1
};
// Which marker belongs to which breakpoint after edits, after an undo, or after someone else added markers.
struct MarkerMatch {
    std::vector<int> lines;         // the new line of each known breakpoint, 0: it is gone
    std::vector<int> handles;       // the new handle of each known breakpoint
    std::vector<int> surplus;       // handles of second markers on a line, to be deleted
    std::vector<MarkerPlace> news;  // markers of new breakpoints
};
MarkerMatch MatchMarkers(std::span<const KnownBreakpoint> known, std::span<const MarkerPlace> markers);

// Line number after an edit that moved the lines from `first` on by `added`. A deleted line becomes the line before
// `first`.
int MovedLine(int line, int first, int added);

// How a breakpoint is drawn over its red disc.
enum class BreakpointLook : std::uint8_t { Plain, Hollow, Disabled, Conditional };

// First visible line after a stop. It is unchanged while `context` lines above and below the stop are on the screen;
// else the stop is put at a third of the height. All lines are display lines from 0; `count` of them fit on the screen.
int ScrollForStop(int firstVisible, int count, int stop, int context);
