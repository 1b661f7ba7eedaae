// The way of text into the output pane: queued as it comes, filtered, coloured and searched for diagnostics line by
// line, shown in blocks on a timer of the main window. UI thread only.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <string>

// What the lines since the last reset were.
struct OutputCounts {
    int lines = 0;  // of processes, not blank
    int errors = 0;
    int warnings = 0;
};

// One posted chunk of a process's output; takes over the heap block.
void OutputFeedStream(wchar_t* heapText, COLORREF colour);
// The process has ended: what it left without a line break is a line, and lines held back are shown.
void OutputFeedStreamEnd();
// A text of our own, behind everything that waits.
void OutputFeedMessage(std::wstring text, COLORREF colour);

// The next blocks. Called on TIMER_OUTPUT, which runs while something waits. Repaints, but not every time.
void OutputFeedShowNext();
bool OutputFeedIsEmpty();     // everything given so far is in the pane
void OutputFeedReveal();      // scrolls to the end and repaints now
bool OutputFeedIsRevealed();  // and nothing of it waits for a repaint

// Before a build: filter, counts and the compiler that diagnostics are put down to.
void OutputFeedReset(std::uint32_t compilerId);
const OutputCounts& OutputFeedCounts();
std::size_t OutputFeedLinesShown();  // in the pane
// More lines shown than a pane should collect over several commands.
bool OutputFeedIsLong();

// Forgets what waits to be shown.
void OutputFeedDropWaiting();
// Forgets everything that waits or is shown, without touching the pane; and shows again what was shown.
void OutputFeedForget();
void OutputFeedShowAgain();
