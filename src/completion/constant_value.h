// The value of a constant, when it is a whole number that the program's text tells. Pure.
#pragma once

#include "symbols/definitions.h"

#include <cstdint>
#include <optional>
#include <string>

// Of a constant or a value of an ENUM; follows the constants that it is made of. Nothing for other values, circles, and
// what does not fit into 64 bits.
std::optional<std::int64_t> ConstantValue(SymbolTables tables, const SymbolPlace& constant, const Dialect& dialect);
// "255 (&HFF)".
std::string WithHex(std::int64_t value);
