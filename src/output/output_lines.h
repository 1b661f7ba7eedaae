// Prepares the lines for the output pane: repetitions are dropped, each line gets its colour, and diagnostics are
// counted and recorded. Of a very long output only the first and the last lines are kept. Pure.
#pragma once

#include "output/diagnostics.h"
#include "output/kept_lines.h"
#include "output/output_filter.h"
#include "output/output_queue.h"
#include "ui/rtf_block.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <string_view>

// Counts of the lines since the last reset.
struct OutputCounts {
    int lines = 0;  // lines of processes that are not empty
    int errors = 0;
    int warnings = 0;
};

struct OutputLines {
    OutputQueue queue;  // as it came
    OutputFilter filter;
    KeptLines kept;
    OutputCounts counts;
    std::uint32_t compilerId = 0;  // stored in each recorded diagnostic
    std::int32_t build = 0;        // the same
    bool recording = true;         // diagnostics are counted and recorded, and not only coloured
    std::deque<PaneLine> ready;    // shown before anything of the queue
};

// Colours and counts a line, and records it if it is a diagnostic and `errors` has room. Returns false for a
// repetition.
bool OutputLineSort(OutputLines& lines, CompilerErrors& errors, QueuedLine& line);

// The text of a process after its last line break: a prompt, or a line that is still printed. Empty: none.
std::wstring_view OutputLinesUnfinished(const OutputLines& lines);

// Takes the next line for the pane. Returns false when there is none now, or when `timeIsUp` answered true; it is asked
// every few hundred lines, because most lines of a very long output are not shown. `chunksDone` is increased by the
// number of process chunks that were used up.
bool OutputLinesNext(OutputLines& lines, CompilerErrors& errors, const std::function<bool()>& timeIsUp, PaneLine* shown,
                     int* chunksDone);

bool OutputLinesWait(const OutputLines& lines);  // lines are still to be shown
// Drops the lines that wait. Returns the number of process chunks among them.
int OutputLinesDrop(OutputLines& lines);
// Puts lines that were shown before in front of the lines that wait.
void OutputLinesAgain(OutputLines& lines, std::deque<PaneLine> shown);
