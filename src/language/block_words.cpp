// The words that belong to one block. Pure.
#include "language/block_words.h"

namespace {

constexpr std::uint32_t kConditionBit = 1u << 31;  // as BlockEvent::id has it

}  // namespace

std::vector<BlockWords> BlockWordsOfLine(BlockTable& table, const Dialect& dialect, std::string_view line,
                                         LineState before) {
    std::vector<Token> tokens;
    BlockLine blocks;
    const ScannedLine scanned = ScanLine(line, 0, before & kScanStateMask, dialect, tokens);
    ScanBlocks(table, line, tokens, before, scanned.state, dialect, blocks);
    std::vector<BlockWords> words;
    for (const BlockEvent& event : blocks.events) {
        // IF and a procedure's name say that a block is open, but only the first word is its own.
        const bool first = event.kind == BlockEvent::Kind::Open;
        std::uint32_t last = first ? event.first : event.last;
        while (first && last < event.last &&
               LookUpWord(TokenName(line, tokens[last]), dialect).word != BlockRowOf(event.block).opener &&
               tokens[last].kind == TokenKind::Word)
            ++last;
        words.push_back({event.kind, tokens[first ? last : event.first].start, tokens[last].End(), event.id});
    }
    return words;
}

BlockWords BlockWordsAt(std::span<const BlockWords> words, std::size_t place) {
    for (const BlockWords& each : words)
        if (each.id != 0 && place >= each.start && place <= each.end) return each;
    return {};
}

bool IsBlockOpen(const BlockTable& table, LineState state, std::uint32_t id) {
    const BlockTable::Set* set = &table.sets[state >> kSetShift];
    if ((id & kConditionBit) != 0) {
        std::uint32_t outer = set->outer;
        while (outer != 0 && outer != (id & ~kConditionBit)) outer = table.sets[outer - 1].outer;
        return outer != 0;
    }
    std::uint32_t nest = set->nest;
    while (nest != 0 && nest != id) nest = table.nests[nest].parent;
    return nest != 0;
}

BlockSearch FindBlockWords(BlockTable& table, const Dialect& dialect, std::string_view text, LineState before,
                           std::uint32_t id) {
    BlockSearch search;
    LineReader reader{.text = text, .dialect = &dialect, .state = before & kScanStateMask};
    BlockLine blocks;
    for (LineState state = before; ReadLine(reader);) {
        const LineState start = state;
        state = ScanBlocks(table, reader.line, reader.tokens, start, reader.state, dialect, blocks);
        const bool first = reader.start == 0;
        for (const BlockEvent& event : blocks.events) {
            if (event.id != id) continue;
            for (BlockWords words : BlockWordsOfLine(table, dialect, reader.line, start)) {
                if (words.id != id) continue;
                words.start += reader.start;
                words.end += reader.start;
                // The first line may close a block like this one before it opens it. Below, the next one of its kind
                // ends it: a procedure without its end.
                if (words.kind == BlockEvent::Kind::Open && !first) return search;
                if (words.kind == BlockEvent::Kind::Open) search.words.clear();
                search.words.push_back(words);
                search.closed = words.kind == BlockEvent::Kind::Close;
                if (search.closed && !first) return search;
            }
            break;
        }
        if (!IsBlockOpen(table, state, id)) return search;
    }
    return search;
}
