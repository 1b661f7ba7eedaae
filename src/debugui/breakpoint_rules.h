// The rules of breakpoints and of following a running program that need no window. Pure.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Why a condition (UTF-8) cannot be taken, for the dialog; empty when it can.
std::wstring ConditionProblem(std::string_view condition);
// What the user should know of a condition that can be taken but will not do what it looks like; empty: nothing.
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
// How the markers and the list come together again after edits, undo, or someone else's adding of markers.
struct MarkerMatch {
    std::vector<int> lines;         // for each known one its line now, 0: it is gone
    std::vector<int> handles;       // for each known one its handle now
    std::vector<int> surplus;       // handles of second markers on a line: to be taken away
    std::vector<MarkerPlace> news;  // markers that nobody knew: new breakpoints
};
MarkerMatch MatchMarkers(std::span<const KnownBreakpoint> known, std::span<const MarkerPlace> markers);

// Where a line is after an edit: from `first` on lines moved by `added`, or up to the line before `first` when what stood
// between was deleted.
int MovedLine(int line, int first, int added);

// How a breakpoint is drawn over its red disc.
enum class BreakpointLook : std::uint8_t { Plain, Hollow, Disabled, Conditional };
BreakpointLook LookOf(bool enabled, bool refused, bool conditional);

// First visible line after a stop: unchanged while the stop has `context` lines around it, else the stop at a third
// of the height. All lines are display lines from 0; `count` on the screen.
int ScrollForStop(int firstVisible, int count, int stop, int context);
