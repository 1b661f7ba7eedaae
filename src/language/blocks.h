// The blocks of BASIC: which statement opens, divides or closes which block. Works on the tokens of one line after the
// other; which blocks are open between two lines is part of the line's state, so this too can begin at any line. Pure.
#pragma once

#include "language/scanner.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

enum class BlockKind : std::uint8_t {
    If,
    Select,
    Case,  // from one CASE to the next, inside Select
    For,
    Do,
    While,
    Try,
    With,
    Type,
    Union,
    Enum,
    Macro,
    Class,
    Interface,
    Namespace,
    Sub,
    Function,
    Method,
    Property,
    FastProc,
    Asm,
    Condition,  // #IF
    Count,
};
struct BlockRow {
    BlockKind kind;
    BasicWord opener;  // after prefixes such as STATIC
    BasicWord closer;  // NEXT, LOOP, WEND; None: END and the opener
    BasicWord joined;  // ENDIF and the like; None: there is no such word
    std::string_view
        closing;  // how the block is closed, in capitals; empty: by the next of its kind or what is around it
    enum Role : std::uint8_t {
        Inner,
        Procedure,  // inside no other; what is open when it begins was left open by mistake
        Container,  // holds procedures
    } role = Inner;
};
const BlockRow& BlockRowOf(BlockKind kind);

// --- The state of a line: that of the scanner, with what is known of an unfinished statement and the open blocks.
using LineState = std::uint32_t;
inline constexpr LineState kScanStateMask = (1u << kScanStateBits) - 1;
inline constexpr int kStepBits = 6;                           // of the unfinished statement
inline constexpr int kSetShift = kScanStateBits + kStepBits;  // of the number of the set

// The sets of open blocks that a text has had between two lines. A LineState holds the number of one; equal sets have
// equal numbers. It only grows; when it is full, further blocks are not counted.
struct BlockTable {
    struct Nest {
        std::uint32_t parent = 0;
        BlockKind kind = BlockKind::Count;
        std::uint16_t depth = 0;
    };
    struct Set {
        std::uint32_t nest = 0;        // the innermost open block
        std::uint32_t outer = 0;       // 1 + the set in which the innermost #IF began; 0: there is none
        std::uint32_t conditions = 0;  // #IFs that are open
    };
    std::vector<Nest> nests{{}};  // [0]: nothing is open
    std::vector<Set> sets{{}};
    std::unordered_map<std::uint64_t, std::uint32_t> nestNumbers;  // by parent and kind; a second one for a twin
    std::unordered_map<std::uint64_t, std::uint32_t> setNumbers;   // by nest and outer
};
int DepthOf(const BlockTable& table, LineState state);            // blocks that are open, conditions not counted
int ConditionsOf(const BlockTable& table, LineState state);       // #IFs that are open
BlockKind InnermostOf(const BlockTable& table, LineState state);  // Count: none is open
// The open blocks from the outermost to the innermost, conditions not counted.
std::vector<BlockKind> OpenBlocks(const BlockTable& table, LineState state);

// --- Lines
struct BlockEvent {
    enum class Kind : std::uint8_t { Open, Middle, Close } kind;
    BlockKind block;
    std::uint32_t first = 0;  // tokens of the line that say so, such as END and IF
    std::uint32_t last = 0;
    std::uint32_t id = 0;  // equal for the events of one block, different for blocks open at once. 0: none is open
};
struct BlockLine {
    int depth = 0;   // blocks by which the line is indented, conditions not counted
    int lowest = 0;  // the fewest that were open at a place of the line, conditions counted
    std::vector<BlockEvent> events;
};
// Takes a line into account that was scanned from `before`. `scanned`: the state that ScanLine returned. Returns the
// state of the next line. The names that a TYPE, a UNION or an ENUM lists become kTokenName, because they may read as
// keywords ("next AS Node PTR").
LineState ScanBlocks(BlockTable& table, std::string_view line, std::span<Token> tokens, LineState before,
                     ScanState scanned, const Dialect& dialect, BlockLine& out);

// Scintilla's fold level of a line: its number, and whether it begins a fold.
struct FoldLevel {
    int level = 0;  // from 0
    bool header = false;
};
FoldLevel FoldLevelOf(const BlockTable& table, LineState before, LineState after, const BlockLine& line);
