// Coloured lines at the end of a Rich Edit pane, in blocks sized so that none holds up the user interface. UI thread.
#pragma once

#include "ui/rtf_block.h"

#include <windows.h>

#include <cstddef>
#include <span>

// A read-only pane without a size, hidden; null when it cannot be made. `wrap` folds long lines at the pane's width instead
// of scrolling sideways.
HWND RichPaneCreate(HWND parent, int controlId, const wchar_t* text, bool wrap);

// Adds the lines as one block: one insertion, nothing painted. A selection that the user made stays.
void RichLinesAppend(HWND pane, std::span<const PaneLine> lines);
// Down to the last line, at its start.
void RichScrollToEnd(HWND pane);
// Back to the start of the lines: a pane that has no size yet scrolls its caret into a view of no width.
void RichScrollToLeft(HWND pane);
// Scrolls to the end and repaints. Painting takes longer the more lines a pane holds, so after several blocks once.
void RichLinesReveal(HWND pane);

// Empties a pane that holds about `lines` lines. Returns the pane to use from now on: deleting many lines takes time
// that grows with their square (4,000: 1 s under Wine 8, 20,000: minutes), so a long pane is replaced by a new window,
// which has everything of the old one but its text, format and subclass. The old one is only hidden: it may be answering
// a message now, and its end takes long (100,000 lines: half a second). The caller sees to it that TIMER_OUTPUT runs.
HWND RichPaneEmptied(HWND pane, std::size_t lines);
bool RichPaneIsReplaced();  // one waits to be destroyed
void RichPaneDestroyReplaced();

// How many lines the next block should have, learnt from how long the last full ones took.
struct BlockSize {
    std::size_t lines = 400;
};
void BlockSizeLearn(BlockSize& size, std::size_t inserted, double milliseconds);
