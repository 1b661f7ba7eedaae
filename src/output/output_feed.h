// Brings text into the output pane. Text is queued as it comes; each line is filtered, coloured and searched for a
// diagnostic. TIMER_OUTPUT of the main window shows the lines in blocks. A line without its line break is shown after
// a short time as it is, and replaced when more of it has come. UI thread only.
#pragma once

#include "output/output_lines.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <string>

// Called before a process is started, and after its end with an empty source.
void OutputFeedBegin(OutputSource source);
// Queues one posted chunk of a process's output. Takes ownership of the heap block.
void OutputFeedStream(wchar_t* heapText, COLORREF colour);
// Tells that the process has ended: a last line without a line break is complete, and the lines held back are shown.
void OutputFeedStreamEnd();
// Queues a text of the editor after everything that waits.
void OutputFeedMessage(std::wstring text, COLORREF colour);

// Adds the next lines to the pane for about 15 ms. Called on TIMER_OUTPUT, which runs while something waits. The pane
// is repainted only every 100 ms or less often.
void OutputFeedShowNext();
bool OutputFeedIsEmpty();     // every line given so far is in the pane
void OutputFeedReveal();      // scrolls to the end and repaints now
bool OutputFeedIsRevealed();  // nothing waits for a repaint, and no line is held back or incomplete and not shown

// Called before a build: resets the filter and the counts. Later diagnostics are recorded for this compiler.
void OutputFeedReset(std::uint32_t compilerId);
// Later diagnostics belong to this build: their file names are relative to its folders.
void OutputFeedBeginBuild(const BuildRecord& build);
const OutputCounts& OutputFeedCounts();
// The line of the pane that tells a record of `g_output.errors`; -1: it is not in the pane.
std::int32_t OutputFeedLineOfRecord(int index);
std::size_t OutputFeedLinesShown();  // number of lines in the pane
bool OutputFeedLeftLinesOut();       // some lines of the present source are only in its log
// Forgets the oldest lines when the pane has too many. Returns true when it must be emptied and shown again.
bool OutputFeedTrim();

// Drops the lines that wait to be shown.
void OutputFeedDropWaiting();
// Drops the lines that wait and the record of the lines shown. The pane itself is unchanged.
void OutputFeedForget();
// Shows the lines shown before in a pane that was emptied, ahead of the lines that wait.
void OutputFeedShowAgain();
