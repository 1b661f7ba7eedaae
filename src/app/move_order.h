// In which order the windows of a layout are moved. Pure.
#pragma once

#include "ui/pane_id.h"

#include <cstddef>
#include <span>
#include <vector>

struct PaneMove {
    PaneRect from;  // empty for a window that is not shown yet
    PaneRect to;    // empty for one that is hidden
    bool covered = false;
};

// Wine moves the windows one after the other, and each takes along what is on the screen at its old place. So a window
// leaves its place before another one comes there: that one would cover its picture, or it would draw its scroll bars over
// that one. Where windows change places no order can do that: `covered` is set for those whose picture is lost. Returns the
// indexes of all moves.
std::vector<std::size_t> OrderMoves(std::span<PaneMove> moves);
