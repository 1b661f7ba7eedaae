// The searching of the search bar: the match that is shown, the marks in sight and the count, in pieces between which the
// user goes on typing. Knows no window but the editor. Only for this folder. UI thread only.
#pragma once

#include "search/find_bar_rules.h"
#include "search/find_engine.h"

#include <windows.h>

#include <vector>

struct FindBarWalk {
    HWND editor = nullptr;
    FindQuery query;
    RegexResult end = RegexResult::NoMatch;  // TooComplex: nothing more is found
    // The match that is looked for, from where the bar was opened on and then from the start.
    bool finding = false, wrapped = false;
    std::ptrdiff_t findAt = 0, findEnd = 0;
    // All matches, from the start.
    bool counting = false, capped = false;
    std::ptrdiff_t countAt = 0, lastEnd = -1;
    std::vector<std::ptrdiff_t> starts;
    FindSpan marked;  // the part of the text that has marks
};

void WalkForget(FindBarWalk& walk);                         // takes away the marks
void WalkFindFrom(FindBarWalk& walk, std::ptrdiff_t from);  // looks for the first match from there on, and counts
void WalkCountAgain(FindBarWalk& walk);                     // the text has changed
// Goes on for about that time. True while there is more to do. `found` gets the match that was looked for.
bool WalkStep(FindBarWalk& walk, double milliseconds, std::optional<FindSpan>& found);
void WalkMarkVisible(FindBarWalk& walk);
FindBarCount WalkCount(const FindBarWalk& walk, FindSpan shown);
