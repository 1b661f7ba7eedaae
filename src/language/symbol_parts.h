// The parts of one statement, the blocks that are open around it, and the making of a symbol: what reading declarations
// is built on (symbol_statements.cpp). Pure.
#pragma once

#include "language/symbols.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

// A token of a statement, which may stand on several lines.
struct StatementPart {
    Token token;
    std::string_view text;
    std::uint32_t line = 0;
};
using Parts = std::span<const StatementPart>;

// Where the declarations go, and the blocks that are open, as in SymbolState without the state of the scanner.
struct DeclarationReader {
    SymbolPiece& piece;
    const Dialect& dialect;
    std::uint64_t blocks = 0;
};

// The end of bodies among the symbols of a piece: `next` is their number. With `column` 1 they end on the line above.
inline constexpr SymbolKind kBodyEnds = SymbolKind::Count;
// Symbol.next of one in a piece: whether it has a body, which an end closes.
inline constexpr std::uint32_t kHasBody = 1;

// --- The open blocks: four bits each, the innermost lowest

enum class Block : std::uint8_t {
    None,
    Procedure,
    Macro,
    Type,     // or UNION
    Unnamed,  // TYPE or UNION without a name, inside one: its members belong to the block around it
    Enum,
    UnnamedEnum,  // its values belong to the block around it
    Class,
    Interface,       // of its own: its methods have no bodies
    ClassInterface,  // inside a CLASS
    Namespace,
};
constexpr std::uint32_t Bit(Block block) { return 1u << static_cast<unsigned>(block); }
// Whether the innermost block is one of these.
constexpr bool IsIn(std::uint64_t blocks, std::uint32_t kinds) {
    return (Bit(static_cast<Block>(blocks & 15)) & kinds) != 0;
}

void OpenBlock(DeclarationReader& reader, Block block);
// Closes the blocks up to the innermost one of these kinds, and that one too. Does nothing when none is open.
void CloseBlocksUpTo(DeclarationReader& reader, std::uint32_t kinds, std::uint32_t line);
// Closes the blocks in which no procedure may stand. Their bodies end on the line above.
void CloseBlocksBeforeProcedure(DeclarationReader& reader, std::uint32_t line);

// --- Parts

// BasicWord::None for a name, and past the end.
BasicWord WordOf(const DeclarationReader& reader, const StatementPart& part);
BasicWord WordAt(const DeclarationReader& reader, Parts parts, std::size_t at);
bool IsName(Parts parts, std::size_t at);
bool IsMark(Parts parts, std::size_t at, std::string_view mark);
bool OpensParentheses(const StatementPart& part);
bool ClosesParentheses(const StatementPart& part);

// The first part from `at` on, outside parentheses that open there, for which this is true; else the end, or the one
// that closes parentheses around `at`.
template <typename Predicate>
std::size_t FindOutside(Parts parts, std::size_t at, Predicate predicate) {
    for (int depth = 0; at < parts.size(); ++at) {
        if (depth == 0 && predicate(at)) break;
        if (OpensParentheses(parts[at])) ++depth;
        if (ClosesParentheses(parts[at])) --depth;
        if (depth < 0) break;
    }
    return at;
}

// Calls `use(item)` for each item of a list with commas.
template <typename Use>
void ForEachItem(Parts list, Use use) {
    for (std::size_t from = 0; from < list.size();) {
        const std::size_t comma = FindOutside(list, from, [list](std::size_t i) { return list[i].text == ","; });
        if (comma > from) use(list.subspan(from, comma - from));
        from = comma + 1;
    }
}

// --- Symbols

// What a symbol gets besides its name.
struct Declared {
    SymbolKind kind = SymbolKind::Sub;
    std::uint8_t flags = 0;
    Parts type;
    Parts detail;
    Parts definition;  // follows the detail after " = "
};
// Adds a symbol of that name to the piece; `cut` bytes at both ends of the name do not belong to it.
Symbol& AddSymbol(DeclarationReader& reader, const StatementPart& name, const Declared& declared, std::size_t cut = 0);
// The same for one with a body, which CloseBlocks... ends.
void AddWithBody(DeclarationReader& reader, const StatementPart& name, const Declared& declared, Block block);
