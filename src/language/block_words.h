// The words that belong to one block: IF, ELSE and END IF. Pure.
#pragma once

#include "language/blocks.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

// A word or words (END IF) of a block, by bytes from the start of the text.
struct BlockWords {
    BlockEvent::Kind kind = BlockEvent::Kind::Open;
    std::size_t start = 0;
    std::size_t end = 0;
    std::uint32_t id = 0;  // BlockEvent::id
};
// Those of one line, which has `before` as its state. Of several at one place the first comes first.
std::vector<BlockWords> BlockWordsOfLine(BlockTable& table, const Dialect& dialect, std::string_view line,
                                         LineState before);
// Those at a place of the line, also just behind them; id 0: none that belongs to a block.
BlockWords BlockWordsAt(std::span<const BlockWords> words, std::size_t place);
// Whether the block `id` is open in that state.
bool IsBlockOpen(const BlockTable& table, LineState state, std::uint32_t id);

struct BlockSearch {
    std::vector<BlockWords> words;  // in order; the last one closes the block when `closed`
    bool closed = false;
};
// The words of the block `id` in `text`, whose first line opens it. Ends with the block, or with the text.
BlockSearch FindBlockWords(BlockTable& table, const Dialect& dialect, std::string_view text, LineState before,
                           std::uint32_t id);
