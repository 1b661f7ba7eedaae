// What is told about a word: its declaration, the value of a constant, the members of a TYPE. Pure.
#pragma once

#include "language/builtins.h"
#include "symbols/definitions.h"

#include <span>
#include <string>

// A declaration in lines. `where`: "types.inc:12", empty when it is in the document itself.
std::string HoverTextOf(SymbolTables tables, const SymbolPlace& place, std::string_view where, const Dialect& dialect);
// Built-in functions or statements of one name; empty for none.
std::string HoverTextOfBuiltins(std::span<const Builtin* const> builtins);
