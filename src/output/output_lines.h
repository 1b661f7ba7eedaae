// What becomes of the lines that come for the output pane: repetitions go, each line gets its colour, diagnostics are
// counted and recorded, and of a flood the first and the last lines are kept. Pure.
#pragma once

#include "output/diagnostics.h"
#include "output/kept_lines.h"
#include "output/output_filter.h"
#include "output/output_queue.h"
#include "ui/rtf_block.h"

#include <cstdint>
#include <deque>
#include <functional>

// What the lines since the last reset were.
struct OutputCounts {
    int lines = 0;  // of processes, not blank
    int errors = 0;
    int warnings = 0;
};

struct OutputLines {
    OutputQueue queue;  // as it came
    OutputFilter filter;
    KeptLines kept;
    OutputCounts counts;
    std::uint32_t compilerId = 0;  // that diagnostics are put down to
    std::deque<PaneLine> ready;    // to be shown before anything of the queue
};

// Colours and counts a line, and records it if it is a diagnostic and there is room. False: it is a repetition.
bool OutputLineSort(OutputLines& lines, CompilerErrors& errors, QueuedLine& line);

// The next line for the pane. False: none for now. `timeIsUp` is asked now and then, because of a flood most lines are not
// shown; `chunksDone` counts up by each chunk of a process that is used up.
bool OutputLinesNext(OutputLines& lines, CompilerErrors& errors, const std::function<bool()>& timeIsUp, PaneLine* shown,
                     int* chunksDone);

bool OutputLinesWait(const OutputLines& lines);  // some are still to be shown
// Forgets what waits; the chunks of processes among it.
int OutputLinesDrop(OutputLines& lines);
// What was shown comes again, before what waits.
void OutputLinesAgain(OutputLines& lines, std::deque<PaneLine> shown);
