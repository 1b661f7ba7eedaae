// The way of text into the output pane: queued as it comes, filtered, coloured and searched for diagnostics line by
// line, shown in blocks on a timer of the main window. UI thread only.
#pragma once

#include "output/output_lines.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <string>

// One posted chunk of a process's output; takes over the heap block.
void OutputFeedStream(wchar_t* heapText, COLORREF colour);
// The process has ended: what it left without a line break is a line, and lines held back are shown.
void OutputFeedStreamEnd();
// A text of our own, after everything that waits.
void OutputFeedMessage(std::wstring text, COLORREF colour);

// Adds the next lines to the pane, for some milliseconds. Called on TIMER_OUTPUT, which runs while something waits. The pane
// is repainted now and then only.
void OutputFeedShowNext();
bool OutputFeedIsEmpty();     // everything given so far is in the pane
void OutputFeedReveal();      // scrolls to the end and repaints now
bool OutputFeedIsRevealed();  // and nothing of it waits for a repaint

// Before a build: forgets repetitions and counts, and puts diagnostics down to this compiler from now on.
void OutputFeedReset(std::uint32_t compilerId);
const OutputCounts& OutputFeedCounts();
std::size_t OutputFeedLinesShown();  // in the pane
// More lines shown than a pane should collect over several commands.
bool OutputFeedIsLong();

// Forgets what waits to be shown.
void OutputFeedDropWaiting();
// Forgets everything that waits or is shown; the pane is left as it is.
void OutputFeedForget();
// Shows in an empty pane what was shown before, ahead of what waits.
void OutputFeedShowAgain();
