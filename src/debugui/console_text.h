// The rows of a console as text for the output pane. Pure.
#pragma once

#include <string>
#include <string_view>
#include <vector>

inline constexpr int kMostConsoleRows = 200;

// Each row without the blanks at its end, and a line feed after it; no empty rows at the end.
std::wstring ConsoleText(const std::vector<std::wstring>& rows);
