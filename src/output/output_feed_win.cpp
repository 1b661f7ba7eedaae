#include "output/output_feed.h"

#include "base/clock.h"
#include "base/handles.h"
#include "output/error_places.h"
#include "output/feed_course.h"
#include "output/mark_view.h"
#include "output/output_credits.h"
#include "output/output_pane.h"
#include "output/output_state.h"
#include "output/show_timer.h"
#include "ui/rich_lines.h"

#include <span>
#include <utility>

namespace {

OutputFeed g_feed;

const FeedPane& PaneOfFeed() {
    static const FeedPane kPane = {
        .clock = ClockMs,
        .append =
            [](std::span<const PaneLine> lines, std::int32_t from) {
                return static_cast<std::int32_t>(RichLinesAppend(g_output.hOutput, lines, from));
            },
        .chunksDone = OutputCreditsReturn,
    };
    return kPane;
}

// Queues text for the pane.
void AddChunk(OutputChunk chunk) {
    FeedAddChunk(g_feed, std::move(chunk));
    ShowTimerStart();
}

}  // namespace

void OutputFeedBegin(OutputSource source) { OutputLinesBegin(g_feed.lines, std::move(source)); }

void OutputFeedStream(wchar_t* heapText, COLORREF colour) {
    const HeapBlock<wchar_t> owned(heapText);
    if (owned == nullptr) return;
    g_feed.streamAt = ClockMs();
    AddChunk({.text = owned.get(), .colour = colour, .kind = ChunkKind::Stream});
}

void OutputFeedStreamEnd() { AddChunk({.kind = ChunkKind::StreamEnd}); }

void OutputFeedMessage(std::wstring text, COLORREF colour) {
    if (!text.empty()) AddChunk({.text = std::move(text), .colour = colour, .kind = ChunkKind::Message});
}

void OutputFeedShowNext() {
    const double started = ClockMs();
    const int errors = ErrorCount(g_output.errors);
    const int diagnostics = g_feed.lines.counts.errors + g_feed.lines.counts.warnings;
    bool more = true;
    while (more && ClockMs() - started < kFeedShowMs) {
        more = FeedShowBlock(g_feed, g_output.errors, PaneOfFeed());
        // The loop ends early when the user types or another thread waits for an answer.
        if (HIWORD(GetQueueStatus(QS_INPUT | QS_SENDMESSAGE)) != 0) break;
    }
    if (FeedWantsReveal(g_feed, ClockMs())) OutputFeedReveal();
    if (ErrorCount(g_output.errors) != errors) ErrorListRefresh();
    if (g_feed.lines.counts.errors + g_feed.lines.counts.warnings != diagnostics) SourceMarksWanted();
}

void OutputFeedReveal() {
    if (g_feed.unpainted) RichLinesReveal(g_output.hOutput);
    FeedRevealed(g_feed, ClockMs());
}

bool OutputFeedIsRevealed() { return FeedIsRevealed(g_feed); }

bool OutputFeedIsEmpty() { return FeedIsEmpty(g_feed); }

void OutputFeedReset(std::uint32_t compilerId) { FeedReset(g_feed, compilerId); }

void OutputFeedBeginBuild(const BuildRecord& build) {
    g_output.errors.builds.push_back(build);
    g_feed.lines.build = static_cast<std::int32_t>(g_output.errors.builds.size());
}

const OutputCounts& OutputFeedCounts() { return g_feed.lines.counts; }

std::int32_t OutputFeedLineOfRecord(int index) {
    return FeedLineOf(g_feed, g_output.errors.items[static_cast<std::size_t>(index)],
                      EqualDiagnosticsBefore(g_output.errors, index));
}

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
    FeedShowAgain(g_feed);
    ShowTimerStart();
}
