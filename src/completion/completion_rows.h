// The rows of the completion list: which names and words fit at a place, the likeliest first. Pure.
#pragma once

#include "language/blocks.h"
#include "language/completion.h"
#include "language/snippets.h"
#include "language/symbols.h"
#include "symbols/definitions.h"

#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <vector>

enum class RowKind : std::uint8_t {
    Keyword,
    Function,  // built in
    BasicType,
    Snippet,
    Procedure,
    Macro,
    Type,
    Member,
    Constant,
    Variable,
    Local,
    Label,
    Instruction,
    Register,
    Name,  // stands in the text, but nothing is known of it
    Count,
};

struct CompletionRow {
    std::string text;  // as it is written when it is accepted; of a snippet its name
    RowKind kind = RowKind::Keyword;
    std::uint8_t nearness = 0;  // smaller: more likely
    NameFit fit = NameFit::Prefix;
    const Snippet* snippet = nullptr;
    const SymbolTable* table = nullptr;  // of the symbol, if it is one
    std::uint32_t symbol = 0;
};

struct CompletionSources {
    SymbolTables tables;  // the likeliest first: what stands around the caret, the document, its includes
    std::span<const std::uint32_t> lines;  // of the caret, for the first of them; the others are included
    std::span<const std::string> names;    // that stand in the text near the caret
    std::span<const Snippet> snippets;     // the user's, then the program's
    const Dialect* dialect = nullptr;
    BlockKind innermost = BlockKind::Count;             // block around the caret, for what follows END
    const std::deque<std::string>* accepted = nullptr;  // the last ones first
    bool capitals = false;                              // keywords go to capitals
};

// More rows help nobody, and each costs time.
inline constexpr std::size_t kMostCompletionRows = 500;

// What is shown beside a row: parameters, a type, a value. May be empty.
std::string CompletionDetail(const CompletionRow& row, const Dialect& dialect);

std::vector<CompletionRow> CompletionRowsOf(const CompletionContext& context, const CompletionSources& sources);
