// What a BASIC text declares: procedures, types with their members, constants, variables, labels, included files. A scan
// of the text gives pieces that do not change any more; the pieces together give the table, which is what others read.
// After an edit only the pieces with changed lines are scanned again (symbol_pieces.h). Pure; any thread.
//
//     const SymbolTable table = SymbolsOfText(text, DialectOf(compilerId));
//     for (const std::uint32_t found : SymbolsNamed(table, "Print"))
//         Use(table.symbols[found].line, SymbolDetail(table, table.symbols[found]));
#pragma once

#include "language/scanner.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

enum class SymbolKind : std::uint8_t {
    Sub,
    Function,
    Method,
    Property,     // PROPERTY GET
    PropertySet,  // PROPERTY SET
    FastProc,
    Macro,
    Type,
    Union,
    Enum,
    Class,
    Interface,
    Namespace,
    Member,     // of a TYPE, UNION or CLASS
    EnumValue,  // of an ENUM
    Constant,   // %NAME, $NAME, CONST, #DEFINE
    Global,     // a variable outside procedures
    Local,      // a variable of the procedure that contains it
    Parameter,  // of the procedure or the macro that contains it
    Label,
    Include,  // #INCLUDE; its name is the path as it is written
    Count,
};
constexpr bool IsProcedure(SymbolKind kind) { return kind <= SymbolKind::FastProc; }
constexpr bool IsVariable(SymbolKind kind) { return kind >= SymbolKind::Global && kind <= SymbolKind::Parameter; }

enum SymbolFlags : std::uint8_t {
    kSymbolDeclare = 1,    // a procedure without a body: DECLARE, or a method of an INTERFACE outside a CLASS
    kSymbolByVal = 2,      // Parameter: BYVAL
    kSymbolByRef = 4,      // Parameter: BYREF is written; without a word it is passed in this way too
    kSymbolOptional = 8,   // Parameter
    kSymbolArray = 16,     // variable, member: parentheses follow its name
    kSymbolStatic = 32,    // Local: keeps its value between calls
    kSymbolCallback = 64,  // Function: CALLBACK
    kSymbolAssembly = 128  // Label: in inline assembly
};

inline constexpr std::uint32_t kNoSymbol = 0xFFFFFFFF;

// One declaration. Its texts are in the table's arena: SymbolName(), SymbolType(), SymbolDetail().
struct Symbol {
    std::uint32_t line = 0;       // of its name, from 0
    std::uint32_t column = 0;     // of its name, in bytes from the start of the line
    std::uint32_t endLine = 0;    // last line of the body; `line` when there is none
    std::uint32_t container = 0;  // index of the symbol around it, or kNoSymbol
    std::uint32_t next = 0;       // index after the last symbol inside: those from its own index + 1 on are inside
    std::uint32_t texts = 0;      // where its texts begin in the arena
    std::uint16_t nameLength = 0;
    std::uint16_t typeLength = 0;
    std::uint16_t detailLength = 0;
    SymbolKind kind = SymbolKind::Sub;
    std::uint8_t flags = 0;

    bool Is(std::uint8_t flag) const { return (flags & flag) != 0; }
};

// The symbols of one text, in the order of their places. Never changed once it is made.
struct SymbolTable {
    std::vector<Symbol> symbols;
    std::string arena;
    std::vector<std::uint32_t> byName;   // all symbols, sorted by CompareNames, then by place
    std::vector<std::uint32_t> outside;  // of each name that has a meaning outside procedures the first, sorted by name
    std::uint32_t lines = 0;             // of the text
};

// The name as it is written, without a type suffix: "Print", "%LIMIT" with its mark, "win32.inc" without quotes.
std::string_view SymbolName(const SymbolTable& table, const Symbol& symbol);
// What stands after AS ("LONG", "STRING * 20"), or the type suffix ("$"); empty when neither is there. The result type
// of a procedure.
std::string_view SymbolType(const SymbolTable& table, const Symbol& symbol);
// Procedure, macro: its parameters with their parentheses, in one line, empty when it has none. Constant, EnumValue: its
// value as it is written, empty when it has none. Macro of one line: " = " and its text follow the parameters.
std::string_view SymbolDetail(const SymbolTable& table, const Symbol& symbol);

// Names are compared without regard to the case of ASCII letters. Negative, 0 or positive.
int CompareNames(std::string_view a, std::string_view b);

// The symbols of that name, in the order of their places. "%A" and "A" are different names.
std::span<const std::uint32_t> SymbolsNamed(const SymbolTable& table, std::string_view name);
// The symbols whose names begin so, sorted by name.
std::span<const std::uint32_t> SymbolsWithPrefix(const SymbolTable& table, std::string_view prefix);
// Those of SymbolTable::outside: each name once.
std::span<const std::uint32_t> OutsideWithPrefix(const SymbolTable& table, std::string_view prefix);

// The innermost procedure or macro with a body that contains the line; kNoSymbol: none.
std::uint32_t ProcedureAtLine(const SymbolTable& table, std::uint32_t line);
// The symbol on the line, else the innermost one whose body holds the line, variables of procedures not counted;
// kNoSymbol: none.
std::uint32_t SymbolAtLine(const SymbolTable& table, std::uint32_t line);
// The innermost symbol around another, or itself, of which the predicate is true; kNoSymbol: none.
template <typename Predicate>
std::uint32_t SymbolAround(const SymbolTable& table, std::uint32_t index, Predicate predicate) {
    while (index != kNoSymbol && !predicate(table.symbols[index])) index = table.symbols[index].container;
    return index;
}

// What a name means at a line: a variable or parameter or label of the procedure around it, else what is declared
// outside procedures; the declarations with a body before those without one. Members of types are not among them,
// because only a dot leads to them. Empty when the text does not declare it.
std::vector<std::uint32_t> SymbolsMeantAt(const SymbolTable& table, std::uint32_t line, std::string_view name);

// --- Making a table

// What the lines above tell a line: its ScanState in the lowest kScanStateBits, and above it the blocks that are open, four
// bits each, the innermost lowest. 0 at the start of a text.
using SymbolState = std::uint64_t;

// The symbols of some lines, which begin and end between two statements. Lines count from the first of them.
struct SymbolPiece {
    std::uint32_t lines = 0;
    std::uint32_t bytes = 0;      // of the lines, with their breaks
    SymbolState before = 0;       // of the first line
    SymbolState after = 0;        // of the line after the last
    std::vector<Symbol> symbols;  // without container, next and endLine; among them the ends of bodies
    std::string arena;
};

// Scans the lines from the start of `text` on, up to `wanted` bytes or, where a statement goes on there, to its end. The
// text is at least one line long and ends with a line break or with the document. When a statement goes on at its end
// and `textEnds` is false, the piece may have no lines: more text is needed.
SymbolPiece ScanSymbols(std::string_view text, SymbolState before, const Dialect& dialect, std::size_t wanted,
                        bool textEnds);

// The table of the pieces of a text, in their order. Each begins with the state after the one before it.
SymbolTable JoinSymbols(std::span<const std::shared_ptr<const SymbolPiece>> pieces);

SymbolTable SymbolsOfText(std::string_view text, const Dialect& dialect);
