// Appends coloured lines to a Rich Edit pane, in blocks that are small enough to keep the user interface responsive. UI
// thread only.
#pragma once

#include "ui/block_size.h"
#include "ui/rtf_block.h"

#include <windows.h>

#include <cstddef>
#include <span>
#include <string_view>

// Creates a read-only pane, hidden and without a size. Returns null on failure. With `wrap`, long lines are folded at
// the width of the pane; without it, the pane scrolls sideways.
HWND RichPaneCreate(HWND parent, int controlId, const wchar_t* text, bool wrap);

// Appends the lines with one insertion and without painting, in place of the text from the character `from` on. A
// negative `from`: nothing is replaced. Returns the character at which the lines begin. A selection of the user stays.
LONG RichLinesAppend(HWND pane, std::span<const PaneLine> lines, LONG from = -1);
// Puts a block of RTF in place of the characters from `from` to `to`, without painting. `lineBreak`: the block ends with
// one. Returns how many characters stand there now. Selection and caret of the user stay where they are in the text.
LONG RichRtfReplace(HWND pane, LONG from, LONG to, std::string_view rtf, bool lineBreak);
LONG RichLength(HWND pane);   // characters
bool RichIsAtEnd(HWND pane);  // whether the end of the text can be seen
// Scrolls to the start of the last line.
void RichScrollToEnd(HWND pane);
// Scrolls to the start of the lines. A pane that has no size yet scrolls sideways to its caret, because its view has no
// width.
void RichScrollToLeft(HWND pane);
// Selects a line (from 0) of a pane that does not wrap, which is seen without the keyboard, too, and scrolls to it.
void RichSelectLine(HWND pane, LONG line);
// Scrolls to the end and repaints. Painting takes longer the more lines a pane holds, so it is called once after
// several blocks.
void RichLinesReveal(HWND pane);

// Empties a pane that holds about `lines` lines, and returns the pane to use from now on. A long pane is replaced by a
// new window, because the time for deleting lines grows with the square of their number (4,000 lines: 1 s under Wine 8;
// 20,000: minutes). The new window has everything of the old one except text, format and subclass. The old one is only
// hidden, because it may be handling a message now, and because destroying it takes long (100,000 lines: half a
// second). The caller starts TIMER_OUTPUT, which destroys it.
HWND RichPaneEmptied(HWND pane, std::size_t lines);
bool RichPaneIsReplaced();  // whether a replaced pane waits to be destroyed
void RichPaneDestroyReplaced();
