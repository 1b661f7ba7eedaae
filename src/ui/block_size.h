// How many lines go into a pane at a time, so that none of the blocks holds up the user interface. Pure.
#pragma once

#include <cstddef>

// The number of lines of the next block. BlockSizeLearn adapts it to the time that a full block has taken.
struct BlockSize {
    std::size_t lines = 400;
};
// A block of `inserted` lines took that long. One that was not full says nothing.
void BlockSizeLearn(BlockSize& size, std::size_t inserted, double milliseconds);
