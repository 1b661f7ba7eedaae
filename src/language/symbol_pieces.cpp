// The pieces of a text, kept true through its edits. Pure.
#include "language/symbol_pieces.h"

#include <algorithm>

namespace {

using Entries = std::vector<PieceOfLines>;
std::ptrdiff_t Place(std::size_t index) { return static_cast<std::ptrdiff_t>(index); }

// Makes the entries from `first` up to `last` one that is not scanned.
void MergeEntries(Entries& entries, std::size_t first, std::size_t last) {
    std::uint32_t lines = 0;
    for (std::size_t i = first; i < last; ++i) lines += entries[i].lines;
    entries[first] = {lines, nullptr};
    entries.erase(entries.begin() + Place(first) + 1, entries.begin() + Place(last));
}

// The entry that holds the line, or the number of entries; `*start` gets its first line.
std::size_t EntryAt(const Entries& entries, std::uint32_t line, std::uint32_t* start) {
    std::size_t index = 0;
    for (*start = 0; index < entries.size() && *start + entries[index].lines <= line; ++index)
        *start += entries[index].lines;
    return index;
}

// The first entry that is not scanned, or whose piece was scanned below other blocks than there are now.
struct Unknown {
    std::size_t index = 0;
    std::uint32_t line = 0;
    SymbolState before = 0;
};
Unknown FirstUnknown(const Entries& entries) {
    Unknown unknown;
    for (; unknown.index < entries.size(); ++unknown.index) {
        const PieceOfLines& entry = entries[unknown.index];
        if (entry.piece == nullptr || entry.piece->before != unknown.before) break;
        unknown.line += entry.lines;
        unknown.before = entry.piece->after;
    }
    return unknown;
}

}  // namespace

void PiecesForget(SymbolPieces& pieces, std::uint32_t line, std::int64_t linesAdded) {
    Entries& entries = pieces.entries;
    std::uint32_t start = 0, endStart = 0;
    const std::size_t first = EntryAt(entries, line, &start);
    if (first == entries.size()) {
        // A statement that went on at the end of the text has got its next line.
        if (!entries.empty() && entries.back().piece != nullptr && (entries.back().piece->after & kScanContinues) != 0)
            entries.back().piece = nullptr;
        return;
    }
    const auto removed = static_cast<std::uint32_t>(linesAdded < 0 ? -linesAdded : 0);
    const std::size_t last = std::min(EntryAt(entries, line + removed, &endStart) + 1, entries.size());
    if (last > first + 1 || entries[first].piece != nullptr) MergeEntries(entries, first, last);
    const std::int64_t lines = entries[first].lines + linesAdded;
    entries[first].lines = static_cast<std::uint32_t>(std::max<std::int64_t>(lines, 0));
    if (entries[first].lines == 0) entries.erase(entries.begin() + Place(first));
}

LinesToScan PiecesNext(const SymbolPieces& pieces, std::uint32_t linesOfText) {
    const Unknown unknown = FirstUnknown(pieces.entries);
    const bool atEnd = unknown.index == pieces.entries.size();
    return {.first = unknown.line,
            .lines = atEnd ? 0 : pieces.entries[unknown.index].lines,
            .before = unknown.before,
            .done = atEnd && unknown.line >= linesOfText};
}

std::vector<std::shared_ptr<const SymbolPiece>> ScanPieces(std::string_view text, SymbolState before,
                                                           const Dialect& dialect, bool textEnds,
                                                           std::size_t pieceBytes) {
    std::vector<std::shared_ptr<const SymbolPiece>> pieces;
    while (!text.empty()) {
        const std::size_t wanted = text.size() < 2 * pieceBytes ? text.size() : pieceBytes;
        auto piece = std::make_shared<SymbolPiece>(ScanSymbols(text, before, dialect, wanted, textEnds));
        if (piece->lines == 0) break;
        before = piece->after;
        text.remove_prefix(piece->bytes);
        pieces.push_back(std::move(piece));
    }
    return pieces;
}

void PiecesLearn(SymbolPieces& pieces, const LinesToScan& wanted,
                 std::span<const std::shared_ptr<const SymbolPiece>> scanned, bool whole) {
    Entries& entries = pieces.entries;
    const Unknown unknown = FirstUnknown(entries);
    Entries fresh;
    std::uint32_t lines = 0;
    for (const auto& piece : scanned) {
        fresh.push_back({piece->lines, piece});
        lines += piece->lines;
    }
    const std::ptrdiff_t at = Place(unknown.index);
    if (wanted.lines == 0) {  // behind the last entry
        entries.insert(entries.end(), fresh.begin(), fresh.end());
        return;
    }
    // A statement that goes on behind the lines takes the next entry with it. Behind the last one is the text's end, or
    // text that is in no entry.
    const bool last = unknown.index + 1 == entries.size();
    if (lines < wanted.lines && whole && !last) MergeEntries(entries, unknown.index, unknown.index + 2);
    entries[unknown.index].lines -= lines;
    entries[unknown.index].piece = nullptr;
    if (entries[unknown.index].lines == 0 || (whole && last)) entries.erase(entries.begin() + at);
    entries.insert(entries.begin() + at, fresh.begin(), fresh.end());
}

std::vector<std::shared_ptr<const SymbolPiece>> PiecesToJoin(const SymbolPieces& pieces) {
    std::vector<std::shared_ptr<const SymbolPiece>> joined;
    joined.reserve(pieces.entries.size());
    for (const PieceOfLines& entry : pieces.entries)
        if (entry.piece != nullptr) joined.push_back(entry.piece);
    return joined;
}
