#include "output/output_feed.h"

#include "base/clock.h"
#include "base/handles.h"
#include "output/diagnostics.h"
#include "output/kept_lines.h"
#include "output/output_credits.h"
#include "output/output_filter.h"
#include "output/output_pane.h"
#include "output/output_queue.h"
#include "output/output_state.h"
#include "output/show_timer.h"
#include "ui/rich_lines.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace {

constexpr COLORREF kErrorColour = 0x0000FF;    // red
constexpr COLORREF kNoticeColour = 0x808000;   // teal
constexpr COLORREF kWarningColour = 0x00B4B4;  // dark yellow
constexpr double kSortMs = 20.0;               // spent at most on lines that are not shown at once
constexpr int kClockEvery = 256;               // lines between looks at the clock
constexpr double kShowMs = 15.0;               // no new block is begun after so long
constexpr double kRevealMs = 100.0;            // between repaints of a short pane
constexpr double kRevealMsPerLine = 0.003;     // more for each line shown: a repaint grows with them (kept_lines.h)

struct Feed {
    OutputQueue queue;
    OutputFilter filter;
    KeptLines kept;
    OutputCounts counts;
    std::uint32_t compilerId = 0;
    std::deque<PaneLine> ready;   // to be shown before anything of the queue
    std::vector<PaneLine> shown;  // in the pane, for showing again in other colours
    BlockSize block;
    bool hidden = false;    // lines were added since the last repaint
    double revealed = 0.0;  // ClockMs of that repaint
};
Feed g_feed;

void Record(const std::wstring& line) {
    CompilerErrors& errors = g_output.errors;
    if (errors.count >= kMaxCompilerErrors) return;
    if (ParseErrorLine(line, &errors.items[errors.count]) == 0) return;
    errors.items[errors.count].compilerId = g_feed.compilerId;
    ++errors.count;
}

// Colours and counts a line, and records it if it is a diagnostic. False: it is a repetition and not shown.
bool Classify(QueuedLine& line) {
    if (line.stream && !OutputFilterPasses(g_feed.filter, line.text)) return false;
    const bool error = IsErrorLine(line.text);
    const bool warning = !error && IsWarningLine(line.text);
    if (error || warning) {
        line.colour = error ? kErrorColour : kWarningColour;
        ++(error ? g_feed.counts.errors : g_feed.counts.warnings);
        Record(line.text);
    }
    g_feed.counts.lines += line.stream && !line.text.empty();
    return true;
}

void ReleaseHeld() {
    std::deque<PaneLine> held = TakeHeldLines(g_feed.kept);
    std::move(held.begin(), held.end(), std::back_inserter(g_feed.ready));
}

// Stands where the pane stops to follow the output.
PaneLine HoldingNotice() {
    return {.text = L"... more follows; its last " + std::to_wstring(kLastLinesKept) + L" lines come at the end ...",
            .colour = kNoticeColour};
}

// The next line for the pane. False: none for now, or the time for looking is up.
bool NextShown(PaneLine* shown, double started) {
    int chunksDone = 0;
    bool found = false;
    QueuedLine line;
    for (int seen = 1; !found; ++seen) {
        if (!g_feed.ready.empty()) {
            *shown = std::move(g_feed.ready.front());
            g_feed.ready.pop_front();
            found = true;
            break;
        }
        if ((seen % kClockEvery == 0 && ClockMs() - started > kSortMs) ||
            !OutputQueueNext(g_feed.queue, &line, &chunksDone))
            break;
        if (line.streamEnd) {
            ReleaseHeld();
            continue;
        }
        if (!Classify(line)) continue;
        *shown = {.text = std::move(line.text), .colour = line.colour, .lineBreak = line.lineBreak};
        found = KeepLine(g_feed.kept, *shown, line.stream);
        if (!found && g_feed.kept.held.size() == 1 && g_feed.kept.leftOut == 0) {
            *shown = HoldingNotice();
            found = true;
        }
    }
    OutputCreditsReturn(chunksDone);
    return found;
}

// The next lines as one block. False: nothing is left for another.
bool ShowBlock() {
    const double started = ClockMs();
    std::vector<PaneLine> block;
    PaneLine line;
    while (block.size() < g_feed.block.lines && NextShown(&line, started)) block.push_back(std::move(line));
    const double sorted = ClockMs();
    RichLinesAppend(g_output.hOutput, block);
    g_feed.hidden = g_feed.hidden || !block.empty();
    BlockSizeLearn(g_feed.block, block.size(), ClockMs() - sorted);
    std::move(block.begin(), block.end(), std::back_inserter(g_feed.shown));
    return !OutputFeedIsEmpty();
}

}  // namespace

void OutputFeedStream(wchar_t* heapText, COLORREF colour) {
    const HeapBlock<wchar_t> owned(heapText);
    if (owned == nullptr) return;
    g_feed.queue.chunks.push_back({.text = owned.get(), .colour = colour, .kind = ChunkKind::Stream});
    ShowTimerStart();
}

void OutputFeedStreamEnd() {
    g_feed.queue.chunks.push_back({.kind = ChunkKind::StreamEnd});
    ShowTimerStart();
}

void OutputFeedMessage(std::wstring text, COLORREF colour) {
    if (text.empty()) return;
    g_feed.queue.chunks.push_back({.text = std::move(text), .colour = colour, .kind = ChunkKind::Message});
    ShowTimerStart();
}

void OutputFeedShowNext() {
    const double started = ClockMs();
    const int errors = g_output.errors.count;
    bool more = true;
    while (more && ClockMs() - started < kShowMs) {
        more = ShowBlock();
        // Someone types, or another thread waits for an answer.
        if (HIWORD(GetQueueStatus(QS_INPUT | QS_SENDMESSAGE)) != 0) break;
    }
    const double pause = kRevealMs + kRevealMsPerLine * static_cast<double>(g_feed.kept.shown);
    if (ClockMs() - g_feed.revealed >= pause) OutputFeedReveal();
    if (g_output.errors.count != errors) ErrorListRefresh();
}

void OutputFeedReveal() {
    if (g_feed.hidden) RichLinesReveal(g_output.hOutput);
    g_feed.hidden = false;
    g_feed.revealed = ClockMs();
}

bool OutputFeedIsRevealed() { return !g_feed.hidden; }

bool OutputFeedIsEmpty() { return g_feed.queue.chunks.empty() && g_feed.ready.empty(); }

void OutputFeedReset(std::uint32_t compilerId) {
    OutputFilterReset(g_feed.filter);
    g_feed.counts = {};
    g_feed.compilerId = compilerId;
}

const OutputCounts& OutputFeedCounts() { return g_feed.counts; }

std::size_t OutputFeedLinesShown() { return g_feed.shown.size(); }

bool OutputFeedIsLong() { return g_feed.shown.size() >= kFirstLinesKept; }

void OutputFeedDropWaiting() {
    const auto chunks = std::count_if(g_feed.queue.chunks.begin(), g_feed.queue.chunks.end(),
                                      [](const OutputChunk& chunk) { return chunk.kind == ChunkKind::Stream; });
    g_feed.queue = {};
    g_feed.kept = {};
    g_feed.ready.clear();
    OutputCreditsReturn(static_cast<int>(chunks));
}

void OutputFeedForget() {
    OutputFeedDropWaiting();
    g_feed.shown.clear();
}

void OutputFeedShowAgain() {
    if (g_feed.shown.empty()) return;
    std::deque<PaneLine> all(std::make_move_iterator(g_feed.shown.begin()),
                             std::make_move_iterator(g_feed.shown.end()));
    std::move(g_feed.ready.begin(), g_feed.ready.end(), std::back_inserter(all));
    g_feed.ready = std::move(all);
    g_feed.shown.clear();
    ShowTimerStart();
}
