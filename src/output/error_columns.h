// The columns of the error list and the texts of its cells. Pure.
#pragma once

#include "output/diagnostics.h"

#include <string>

inline constexpr int kErrorColumnCount = 5;  // severity, message, file, line, column
// `column` is an index of a column; empty for any other, and for a column that the diagnostic does not have.
std::wstring ErrorCellText(const CompilerError& error, int column);
