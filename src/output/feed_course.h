// The course of the output into the pane: when a block of lines is shown, when an incomplete line, when the pane is
// repainted. The feed (output_feed.h) supplies the pane and the clock. Pure.
#pragma once

#include "output/output_lines.h"
#include "ui/block_size.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <span>
#include <string>

struct OutputFeed {
    OutputLines lines;           // not shown yet
    std::deque<PaneLine> shown;  // in the pane; needed to show them again in other colours
    BlockSize block;
    double streamAt = 0.0;          // clock at the last chunk of a process
    std::wstring unfinished;        // the incomplete last line in the pane; empty: none
    std::int32_t unfinishedAt = 0;  // its first character in the pane
    double unfinishedSince = -1;    // clock since when it differs from the one that has come; negative: it does not
    bool unpainted = false;         // lines were added since the last repaint
    double revealedAt = 0.0;        // clock at that repaint
};

struct FeedPane {
    std::function<double()> clock;  // milliseconds
    // Adds lines to the pane in place of the text from the character `from` on; negative: at the end. Returns the first
    // character of the new lines.
    std::function<std::int32_t(std::span<const PaneLine> lines, std::int32_t from)> append;
    std::function<void(int chunks)> chunksDone;  // that many chunks of a process are used up
};

inline constexpr double kFeedShowMs = 15.0;  // no new block is begun after this time

// Shows the next lines as one block. Returns false when no line is left.
bool FeedShowBlock(OutputFeed& feed, CompilerErrors& errors, const FeedPane& pane);
bool FeedIsEmpty(const OutputFeed& feed);
// Whether the pane is due for a repaint.
bool FeedWantsReveal(const OutputFeed& feed, double now);
void FeedRevealed(OutputFeed& feed, double now);
// Nothing waits for a repaint, and no line is held back or incomplete and not shown.
bool FeedIsRevealed(const OutputFeed& feed);
// The line of the pane (from 0) that tells a diagnostic, below `before` equal ones; -1: it is not in the pane. When earlier
// lines were removed from the pane, the last equal one.
std::int32_t FeedLineOf(const OutputFeed& feed, const CompilerError& wanted, int before);
void FeedAddChunk(OutputFeed& feed, OutputChunk chunk);
// Before a build: resets the filter and the counts. Later diagnostics are recorded for this compiler.
void FeedReset(OutputFeed& feed, std::uint32_t compilerId);
// Shows the lines shown before in a pane that was emptied.
void FeedShowAgain(OutputFeed& feed);
