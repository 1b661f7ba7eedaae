#include "output/feed_course.h"

#include "output/error_places.h"
#include "output/line_colours.h"

#include <iterator>
#include <utility>
#include <vector>

namespace {

constexpr double kTakeMs = 20.0;            // a block is ended after this time, which lines that are not shown may take
constexpr double kRevealMs = 100.0;         // between two repaints
constexpr double kQuietMs = 400.0;          // lines are held back until nothing has come for so long
constexpr double kUnfinishedMs = 60.0;      // an incomplete line is shown after this time
constexpr double kRevealMsPerLine = 0.003;  // more for each line in the pane, as a repaint takes longer (kept_lines.h)

// Takes the next lines for the pane. Returns few lines or none when kTakeMs have passed.
std::vector<PaneLine> TakeBlock(OutputFeed& feed, CompilerErrors& errors, const FeedPane& pane, double started) {
    const auto timeIsUp = [&] { return pane.clock() - started > kTakeMs; };
    std::vector<PaneLine> block;
    PaneLine line;
    int chunksDone = 0;
    while (block.size() < feed.block.lines && OutputLinesNext(feed.lines, errors, timeIsUp, &line, &chunksDone))
        block.push_back(std::exchange(line, {}));
    pane.chunksDone(chunksDone);
    return block;
}

void ShowLines(OutputFeed& feed, const FeedPane& pane, const std::vector<PaneLine>& block) {
    feed.unfinishedAt = pane.append(block, feed.unfinished.empty() ? -1 : feed.unfinishedAt);
    feed.unfinished.clear();
    feed.unfinishedSince = -1;
    feed.unpainted = true;
}

// Shows an incomplete line, or what has become of it, when nothing whole has come for a while.
void ShowUnfinished(OutputFeed& feed, const FeedPane& pane, double now) {
    std::wstring wanted = OutputLinesUnfinished(feed.lines);
    if (wanted == feed.unfinished) {
        feed.unfinishedSince = -1;
        return;
    }
    if (feed.unfinishedSince < 0) feed.unfinishedSince = now;
    if (now - feed.unfinishedSince < kUnfinishedMs) return;
    if (wanted.empty())
        ShowLines(feed, pane, {});
    else
        ShowLines(feed, pane,
                  {{.text = wanted, .colour = LinesAreHeld(feed.lines.kept) ? kLineTeal : 0, .lineBreak = false}});
    feed.unfinished = std::move(wanted);
}

}  // namespace

bool FeedShowBlock(OutputFeed& feed, CompilerErrors& errors, const FeedPane& pane) {
    const double started = pane.clock();
    std::vector<PaneLine> block = TakeBlock(feed, errors, pane, started);
    const double sorted = pane.clock();
    if (block.empty()) {
        if (FeedIsEmpty(feed) && sorted - feed.streamAt >= kQuietMs) OutputLinesRelease(feed.lines);
        ShowUnfinished(feed, pane, sorted);
        return !FeedIsEmpty(feed);
    }
    ShowLines(feed, pane, block);
    BlockSizeLearn(feed.block, block.size(), pane.clock() - sorted);
    std::move(block.begin(), block.end(), std::back_inserter(feed.shown));
    return !FeedIsEmpty(feed);
}

bool FeedIsEmpty(const OutputFeed& feed) { return !OutputLinesWait(feed.lines); }

bool FeedWantsReveal(const OutputFeed& feed, double now) {
    return now - feed.revealedAt >= kRevealMs + kRevealMsPerLine * static_cast<double>(feed.shown.size());
}

void FeedRevealed(OutputFeed& feed, double now) {
    feed.unpainted = false;
    feed.revealedAt = now;
}

bool FeedIsRevealed(const OutputFeed& feed) {
    return !feed.unpainted && !LinesAreHeld(feed.lines.kept) && OutputLinesUnfinished(feed.lines) == feed.unfinished;
}

std::int32_t FeedLineOf(const OutputFeed& feed, const CompilerError& wanted, int before) {
    std::int32_t line = 0, found = -1;
    for (const PaneLine& shown : feed.shown) {
        CompilerError error = {};
        const bool told = (shown.colour == kLineRed || shown.colour == kLineYellow) &&
                          ParseErrorLine(shown.text, &error) != 0 && SameDiagnostic(error, wanted);
        if (told) found = line;
        if (told && before-- == 0) break;
        line += shown.lineBreak;
    }
    return found;
}

void FeedAddChunk(OutputFeed& feed, OutputChunk chunk) { feed.lines.queue.chunks.push_back(std::move(chunk)); }

void FeedReset(OutputFeed& feed, std::uint32_t compilerId) {
    OutputFilterReset(feed.lines.filter);
    feed.lines.counts = {};
    feed.lines.compilerId = compilerId;
    feed.lines.build = 0;
}

void FeedShowAgain(OutputFeed& feed) {
    feed.unfinished.clear();
    OutputLinesAgain(feed.lines, std::exchange(feed.shown, {}));
}
