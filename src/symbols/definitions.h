// What a word at a place of a program means: the search through the tables of the document, of its includes and of the
// project. Pure.
#pragma once

#include "language/symbol_word.h"
#include "language/symbols.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

// A symbol of one of several tables.
struct SymbolPlace {
    std::size_t text = 0;      // which table
    std::uint32_t symbol = 0;  // which symbol in it
    bool operator==(const SymbolPlace&) const = default;
};
using SymbolTables = std::span<const std::shared_ptr<const SymbolTable>>;

// The declarations that the word at a line of the first text may mean, likeliest first; those in its own procedure hide
// all others, and those with a body hide those without. A word after a dot means a member of the type that stands before
// it, or, when that is not known, all members of that name.
std::vector<SymbolPlace> DefinitionsOf(const SymbolWord& word, std::uint32_t line, SymbolTables tables);

// The TYPE, UNION, CLASS or INTERFACE that "LONG PTR", "Point", "STRING * 20" names. Empty: none of them.
std::vector<SymbolPlace> TypesNamed(std::string_view type, SymbolTables tables);
// The type of what the names give, each a member of the one before: that of "a.b". Nothing when it is not known.
std::vector<SymbolPlace> TypesOfQualifier(std::span<const std::string> names, std::uint32_t line, SymbolTables tables);

// --- References: where a name means the same declaration

// What of a name's places is meant.
enum class ReferenceScope : std::uint8_t {
    Procedure,  // the places in one procedure of the first text, or in all of it that is in none
    Outside,    // all places but those where a procedure has an own meaning for the name
    Member,     // the places after a dot, and the declarations
};
struct ReferenceTarget {
    ReferenceScope scope = ReferenceScope::Outside;
    std::uint32_t firstLine = 0, lastLine = 0;  // Procedure: its lines
    bool betweenProcedures = false;             // Procedure: the lines of these are left out
    bool afterDot = false;                      // Outside: also places after a dot
};
ReferenceTarget TargetOf(const SymbolTable& table, std::uint32_t symbol);
// Keeps the places that mean the target. `table` is that of the text with the places.
std::vector<NamePlace> PlacesOfTarget(const ReferenceTarget& target, std::string_view name,
                                      std::span<const NamePlace> places, const SymbolTable& table);
