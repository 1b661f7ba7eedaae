// Rules of breakpoints and of scrolling to a stop: values in, values out. Pure.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Why a condition (UTF-8) cannot be taken, for the dialog; empty when it can.
std::wstring ConditionProblem(std::string_view condition);
// What the user should know about a condition that is accepted but does not do what it seems to say; empty: nothing.
std::wstring ConditionNotice(std::string_view condition);

// A marker of an open file, as the editor has it.
struct MarkerPlace {
    int handle = -1;
    int line = 0;  // from 1
};
// What is known of one breakpoint of that file; handle -1: no marker yet (the file was closed).
struct KnownBreakpoint {
    int handle = -1;
    int line = 0;  // from 1
};
// Which marker belongs to which breakpoint, after edits, undo, or markers that someone else added.
struct MarkerMatch {
    std::vector<int> lines;         // for each known one its line now, 0: it is gone
    std::vector<int> handles;       // for each known one its handle now
    std::vector<int> surplus;       // handles of second markers on a line, which are to be deleted
    std::vector<MarkerPlace> news;  // markers of no known breakpoint: they are new ones
};
MarkerMatch MatchMarkers(std::span<const KnownBreakpoint> known, std::span<const MarkerPlace> markers);

// Where a line is after an edit that moved the lines from `first` on by `added`. A line that was deleted ends on the line
// before `first`.
int MovedLine(int line, int first, int added);

// How a breakpoint is drawn over its red disc.
enum class BreakpointLook : std::uint8_t { Plain, Hollow, Disabled, Conditional };

// First visible line after a stop: unchanged while the stop has `context` lines above and below it on the screen, else
// such that the stop stands at a third of the height. All lines are display lines from 0; `count` of them are on the screen.
int ScrollForStop(int firstVisible, int count, int stop, int context);
