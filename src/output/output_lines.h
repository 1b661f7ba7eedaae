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
#include <string>

// Counts of the lines since the last reset.
struct OutputCounts {
    int lines = 0;  // lines of processes that are not empty
    int errors = 0;
    int warnings = 0;
};

// The process whose output comes as a stream.
struct OutputSource {
    bool diagnostics = true;     // errors and warnings are counted and recorded, and not only coloured
    std::wstring log = {};       // path of the file that has the whole stream; empty: none
    std::uint64_t logLines = 0;  // lines of the log so far
};

struct OutputLines {
    OutputQueue queue;  // as it came
    OutputFilter filter;
    KeptLines kept;
    OutputCounts counts;
    std::uint32_t compilerId = 0;  // stored in each recorded diagnostic
    std::int32_t build = 0;        // the same
    OutputSource source;           // of the stream; its `logLines` grows with the lines that are taken
    std::deque<PaneLine> ready;    // shown before anything of the queue
    bool leftOut = false;          // lines of the source were left out
};

// Colours and counts a line, and records it if it is a diagnostic and `errors` has room. Returns false for a
// repetition.
bool OutputLineSort(OutputLines& lines, CompilerErrors& errors, QueuedLine& line);

// Called before a stream begins, when no line waits.
void OutputLinesBegin(OutputLines& lines, OutputSource source);

// Called when a process has printed nothing for a while: shows the last of the lines that are held back, because it may
// wait for an answer to them. Later lines are shown as those of a new process are.
void OutputLinesRelease(OutputLines& lines);

// What the pane shows after the last whole line: the text of a process after its last line break (a prompt, or a line
// that is still printed), or how many lines are held back. Empty: nothing.
std::wstring OutputLinesUnfinished(const OutputLines& lines);

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
