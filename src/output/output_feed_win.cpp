#include "output/output_feed.h"

#include "base/clock.h"
#include "base/handles.h"
#include "output/line_colours.h"
#include "output/output_credits.h"
#include "output/output_pane.h"
#include "output/output_state.h"
#include "output/show_timer.h"
#include "ui/rich_lines.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace {

constexpr double kTakeMs = 20.0;            // a block is ended after this time, which lines that are not shown may take
constexpr double kShowMs = 15.0;            // no new block is begun after this time
constexpr double kRevealMs = 100.0;         // between two repaints
constexpr double kQuietMs = 400.0;          // lines are held back until nothing has come for so long
constexpr double kUnfinishedMs = 60.0;      // an incomplete line is shown after this time
constexpr double kRevealMsPerLine = 0.003;  // more for each line in the pane, as a repaint takes longer (kept_lines.h)

struct OutputFeed {
    OutputLines lines;           // not shown yet
    std::deque<PaneLine> shown;  // in the pane; needed to show them again in other colours
    BlockSize block;
    double streamAt = 0.0;        // ClockMs() of the last chunk of a process
    std::wstring unfinished;      // the incomplete last line in the pane; empty: none
    LONG unfinishedAt = 0;        // its first character in the pane
    double unfinishedSince = -1;  // ClockMs() since when it differs from the one that has come; negative: it does not
    bool unpainted = false;       // lines were added since the last repaint
    double revealedAt = 0.0;      // ClockMs() of that repaint
};
OutputFeed g_feed;

// Takes the next lines for the pane. Returns few lines or none when kTakeMs have passed.
std::vector<PaneLine> TakeBlock(double started) {
    const auto timeIsUp = [started] { return ClockMs() - started > kTakeMs; };
    std::vector<PaneLine> block;
    PaneLine line;
    int chunksDone = 0;
    while (block.size() < g_feed.block.lines &&
           OutputLinesNext(g_feed.lines, g_output.errors, timeIsUp, &line, &chunksDone))
        block.push_back(std::move(line));
    OutputCreditsReturn(chunksDone);
    return block;
}

void ShowLines(const std::vector<PaneLine>& block) {
    const LONG from = g_feed.unfinished.empty() ? -1 : g_feed.unfinishedAt;
    g_feed.unfinishedAt = RichLinesAppend(g_output.hOutput, block, from);
    g_feed.unfinished.clear();
    g_feed.unfinishedSince = -1;
    g_feed.unpainted = true;
}

// Shows an incomplete line, or what has become of it, when nothing whole has come for a while.
void ShowUnfinished(double now) {
    std::wstring wanted = OutputLinesUnfinished(g_feed.lines);
    if (wanted == g_feed.unfinished) {
        g_feed.unfinishedSince = -1;
        return;
    }
    if (g_feed.unfinishedSince < 0) g_feed.unfinishedSince = now;
    if (now - g_feed.unfinishedSince < kUnfinishedMs) return;
    if (wanted.empty())
        ShowLines({});
    else
        ShowLines({{.text = wanted, .colour = LinesAreHeld(g_feed.lines.kept) ? kLineTeal : 0, .lineBreak = false}});
    g_feed.unfinished = std::move(wanted);
}

// Shows the next lines as one block. Returns false when no line is left.
bool ShowBlock() {
    const double started = ClockMs();
    std::vector<PaneLine> block = TakeBlock(started);
    const double sorted = ClockMs();
    if (block.empty()) {
        if (OutputFeedIsEmpty() && sorted - g_feed.streamAt >= kQuietMs) OutputLinesRelease(g_feed.lines);
        ShowUnfinished(sorted);
        return !OutputFeedIsEmpty();
    }
    ShowLines(block);
    BlockSizeLearn(g_feed.block, block.size(), ClockMs() - sorted);
    std::move(block.begin(), block.end(), std::back_inserter(g_feed.shown));
    return !OutputFeedIsEmpty();
}

}  // namespace

void OutputFeedBegin(OutputSource source) { OutputLinesBegin(g_feed.lines, std::move(source)); }

void OutputFeedStream(wchar_t* heapText, COLORREF colour) {
    const HeapBlock<wchar_t> owned(heapText);
    if (owned == nullptr) return;
    g_feed.streamAt = ClockMs();
    g_feed.lines.queue.chunks.push_back({.text = owned.get(), .colour = colour, .kind = ChunkKind::Stream});
    ShowTimerStart();
}

void OutputFeedStreamEnd() {
    g_feed.lines.queue.chunks.push_back({.kind = ChunkKind::StreamEnd});
    ShowTimerStart();
}

void OutputFeedMessage(std::wstring text, COLORREF colour) {
    if (text.empty()) return;
    g_feed.lines.queue.chunks.push_back({.text = std::move(text), .colour = colour, .kind = ChunkKind::Message});
    ShowTimerStart();
}

void OutputFeedShowNext() {
    const double started = ClockMs();
    const int errors = g_output.errors.count;
    bool more = true;
    while (more && ClockMs() - started < kShowMs) {
        more = ShowBlock();
        // The loop ends early when the user types or another thread waits for an answer.
        if (HIWORD(GetQueueStatus(QS_INPUT | QS_SENDMESSAGE)) != 0) break;
    }
    const double pause = kRevealMs + kRevealMsPerLine * static_cast<double>(g_feed.shown.size());
    if (ClockMs() - g_feed.revealedAt >= pause) OutputFeedReveal();
    if (g_output.errors.count != errors) ErrorListRefresh();
}

void OutputFeedReveal() {
    if (g_feed.unpainted) RichLinesReveal(g_output.hOutput);
    g_feed.unpainted = false;
    g_feed.revealedAt = ClockMs();
}

bool OutputFeedIsRevealed() {
    return !g_feed.unpainted && !LinesAreHeld(g_feed.lines.kept) &&
           OutputLinesUnfinished(g_feed.lines) == g_feed.unfinished;
}

bool OutputFeedIsEmpty() { return !OutputLinesWait(g_feed.lines); }

void OutputFeedReset(std::uint32_t compilerId) {
    OutputFilterReset(g_feed.lines.filter);
    g_feed.lines.counts = {};
    g_feed.lines.compilerId = compilerId;
    g_feed.lines.build = 0;
}

void OutputFeedBeginBuild(const BuildRecord& build) {
    g_output.errors.builds.push_back(build);
    g_feed.lines.build = static_cast<std::int32_t>(g_output.errors.builds.size());
}

const OutputCounts& OutputFeedCounts() { return g_feed.lines.counts; }

std::size_t OutputFeedLinesShown() { return g_feed.shown.size(); }

bool OutputFeedLeftLinesOut() { return g_feed.lines.leftOut; }

bool OutputFeedTrim() { return TrimPaneLines(g_feed.shown); }

void OutputFeedDropWaiting() { OutputCreditsReturn(OutputLinesDrop(g_feed.lines)); }

void OutputFeedForget() {
    OutputFeedDropWaiting();
    g_feed.shown.clear();
    g_feed.unfinished.clear();
}

void OutputFeedShowAgain() {
    g_feed.unfinished.clear();
    ShowTimerStart();
    OutputLinesAgain(g_feed.lines, std::exchange(g_feed.shown, {}));
}
