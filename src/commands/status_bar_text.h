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
    std::ptrdiff_t characters = 0;  // 0: nothing is selected
};
std::wstring SelectionText(const SelectionFacts& facts);

// `lineEnding` as in DocumentTab.
const wchar_t* LineEndingName(int lineEnding);

std::wstring ProjectPartText(std::wstring_view name);  // empty: no project is open

// Long texts that the parts usually show. The parts are as wide, so that nothing moves when another document is shown.
std::vector<std::pair<StatusPart, std::wstring>> StatusSamples();
