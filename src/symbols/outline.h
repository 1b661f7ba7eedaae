// The rows of the outline: which symbols of a text it shows, in which order, with which texts. Pure.
#pragma once

#include "language/symbols.h"
#include "ui/list_rows.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct OutlineWish {
    bool byName = false;  // else by place, each below what contains it
    std::wstring filter;  // empty: all
};
struct Outline {
    ListContent content;
    std::vector<std::uint32_t> symbols;  // of each row, but not of a last row that tells how many are left out
};
// More rows are not shown, because nobody reads them and they cost time at each edit; the filter looks at all symbols.
inline constexpr std::size_t kMostOutlineRows = 5000;

Outline OutlineOf(const SymbolTable& table, const OutlineWish& wish);
// The row that Enter is to go to after the filter was typed: a name that begins with it before one that holds it, the
// whole name before a longer one, a body before its DECLARE. 0 without rows.
int OutlineBestRow(const SymbolTable& table, const Outline& outline, std::wstring_view filter);
// The row of the symbol at a line (from 0), or the last one before it that is around that line; -1: none.
int OutlineRowAtLine(const SymbolTable& table, const Outline& outline, std::uint32_t line);

// One or two letters for the kind: "S" a SUB, "F" a FUNCTION, "=" a constant.
std::wstring_view OutlineMark(SymbolKind kind);
