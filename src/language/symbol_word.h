// The word at a place of a line, as a symbol's name, and all places of a name in a text. Pure.
#pragma once

#include "language/symbols.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct SymbolWord {
    std::string name;         // without its type suffix; of an included file its path as it is written
    std::uint32_t start = 0;  // bytes from the start of the line
    bool isInclude = false;
    bool isMember = false;               // a dot stands before it
    std::vector<std::string> qualifier;  // "a(1).b.": a, b; empty when nothing with a name stands before the dot
    std::uint32_t End() const { return start + static_cast<std::uint32_t>(name.size()); }
};
// The word that holds the byte or ends there. Nothing in comments, strings and numbers, and for keywords.
std::optional<SymbolWord> SymbolWordAt(std::string_view line, std::size_t column, const Dialect& dialect);

struct NamePlace {
    std::uint32_t line = 0;    // from 0
    std::uint32_t column = 0;  // bytes from the start of the line
    bool isMember = false;     // a dot stands before it
    bool operator==(const NamePlace&) const = default;
};
// Where the name stands outside comments and strings, as a whole word without regard to case, inline assembly included.
// Ends at `most` places.
std::vector<NamePlace> PlacesOfName(std::string_view text, std::string_view name, const Dialect& dialect,
                                    std::size_t most);

// Whether it can be the name of what `kind` is: letters, digits and underscores, no keyword; a constant with the mark
// that the old name has.
bool IsNewName(std::string_view name, std::string_view oldName, const Dialect& dialect);
