// The columns of the error list and the texts of its cells. Pure.
#pragma once

#include "output/diagnostics.h"

#include <array>
#include <string>

struct ErrorColumn {
    const wchar_t* title;
    int width;        // pixels at 96 dpi
    bool alignRight;  // numbers
};
inline constexpr std::array<ErrorColumn, 5> kErrorColumns = {{
    {L"Severity", 80, false},
    {L"Message", 420, false},
    {L"File", 320, false},
    {L"Line", 60, true},
    {L"Column", 60, true},
}};
// `column` is an index into kErrorColumns; empty for any other, and for a column that the diagnostic does not have.
std::wstring ErrorCellText(const CompilerError& error, int column);
