// The pieces of a text that is edited (symbols.h). An edit makes the pieces with changed lines unknown, and others behind
// them when the blocks around these change with it, as after END SUB was typed. Pure.
#pragma once

#include "language/symbols.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

// Lines in a row, with the piece that holds their symbols; null: not scanned yet, or changed since.
struct PieceOfLines {
    std::uint32_t lines = 0;
    std::shared_ptr<const SymbolPiece> piece;
};
// All lines of a text. Those that are in no entry, at the end, are not scanned.
struct SymbolPieces {
    std::vector<PieceOfLines> entries;
};

// After a change that begins on `line` (from 0) and adds that many lines (negative: removes them). Takes less than 10 us
// in a text of 10 MB.
void PiecesForget(SymbolPieces& pieces, std::uint32_t line, std::int64_t linesAdded);

// The lines to scan next. `linesOfText` counts those that begin before the end of the text.
struct LinesToScan {
    std::uint32_t first = 0;
    std::uint32_t lines = 0;  // 0: to the end of the text
    SymbolState before = 0;
    bool done = false;  // all is scanned
};
LinesToScan PiecesNext(const SymbolPieces& pieces, std::uint32_t linesOfText);

// Scans text that begins with the lines to scan, as ScanSymbols takes it, into pieces of a size at which an edit costs
// little. No pieces: more text is needed.
inline constexpr std::size_t kSymbolPieceBytes = 16 << 10;
std::vector<std::shared_ptr<const SymbolPiece>> ScanPieces(std::string_view text, SymbolState before,
                                                           const Dialect& dialect, bool textEnds,
                                                           std::size_t pieceBytes = kSymbolPieceBytes);
// Takes over what was scanned of the lines that PiecesNext() gave; no edit came in between. `whole`: the text held all
// of these lines.
void PiecesLearn(SymbolPieces& pieces, const LinesToScan& wanted,
                 std::span<const std::shared_ptr<const SymbolPiece>> scanned, bool whole);

// The pieces for JoinSymbols.
std::vector<std::shared_ptr<const SymbolPiece>> PiecesToJoin(const SymbolPieces& pieces);
