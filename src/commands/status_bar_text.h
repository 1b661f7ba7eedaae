// The texts of the status bar's parts. Pure.
#pragma once

#include "commands/status_bar_fit.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Both from 1.
std::wstring PositionText(std::ptrdiff_t line, std::ptrdiff_t column);

struct SelectionFacts {
    std::ptrdiff_t selections = 1;
    std::ptrdiff_t lines = 1;       // on which the selection lies
    std::ptrdiff_t characters = 0;  // of all selections; 0: nothing is selected
    bool inBytes = false;           // there are too many to count: `characters` are bytes
    std::ptrdiff_t length = 0;      // bytes of the document
};
// "3 selections, 120 characters", "2 lines, 40 characters", "7 characters"; without a selection the document's length.
std::wstring SelectionText(const SelectionFacts& facts);
std::wstring GroupedNumber(std::ptrdiff_t number);  // "1,234,567"

std::wstring TabText(int width, bool insertsTab);
// In percent of the font's size (points); `zoom` is what Scintilla adds to it.
std::wstring ZoomText(int fontSize, int zoom);

// `lineEnding` as in DocumentTab.
const wchar_t* LineEndingName(int lineEnding, bool mixed);

std::wstring ProjectPartText(std::wstring_view name);  // empty: no project is open

// Long texts that the parts usually show. The parts are as wide, so that nothing moves when another document is shown.
std::vector<std::pair<StatusPart, std::wstring>> StatusSamples();
