// Decisions of an editing pane: how wide, how much, what is coloured when. Positions are bytes. Pure.
#pragma once

#include "language/inline_regions.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// --- Text
// Room to allocate beyond a text of that many bytes, so that the first typed characters do not make Scintilla move all of
// it to a larger block.
std::size_t RoomBeyondText(std::size_t length);

int DecimalDigits(std::ptrdiff_t number);

// --- Colours
struct PaneSpan {
    std::ptrdiff_t start = 0;
    std::ptrdiff_t end = 0;
    bool operator==(const PaneSpan&) const = default;
};

// How much the next idle slice of colouring takes on, in bytes, after one of `chunk` bytes (0: the first) took `seconds`.
// A slice is meant to take 3 ms: a key that arrives meanwhile waits no longer.
std::size_t NextColourChunk(std::size_t chunk, double seconds);
inline constexpr std::size_t kFirstColourChunk = 32 << 10;

// Where a slice ends that begins at `from` and should end at `wanted`: at the start of the line of `wanted`, unless that
// is no progress or the document ends there.
std::ptrdiff_t ColourSliceEnd(std::ptrdiff_t from, std::ptrdiff_t wanted, std::ptrdiff_t lineStart,
                              std::ptrdiff_t length);

// What a paint needs when everything before `coloured` has its colours.
enum class PaintColours : std::uint8_t {
    Ready,        // nothing: all that is visible is coloured
    FromMark,     // the paint colours from the mark on: the stretch above the view is short
    VisibleOnly,  // the visible part is coloured first, and the stretch above it is left for later
};
PaintColours ColoursForPaint(std::ptrdiff_t coloured, PaneSpan visible);

// The mark up to which everything has its colours, once Scintilla says that it has lost them after `styled`: a new lexer,
// other keywords, another property.
std::ptrdiff_t ColouredAfterReset(std::ptrdiff_t coloured, std::ptrdiff_t styled, std::ptrdiff_t length);

// What idle time is used for.
enum class ColourStep : std::uint8_t {
    Done,   // all is coloured
    Wait,   // a paint is due: it colours what it shows, and a repaint cancelled now would cancel it
    Slice,  // the next one is coloured
};
ColourStep NextColourStep(std::ptrdiff_t coloured, std::ptrdiff_t length, bool paintIsDue);

// A slice of which nothing can be seen: the repaint that Scintilla asks for after it is for nothing.
bool IsUnseen(PaneSpan slice, PaneSpan visible);

// Runs of the view that are to be marked as inline assembly or to lose that mark, in order, together the whole view.
// `ranges` counts from `origin`.
struct MarkedRun {
    PaneSpan span;
    bool on;
    bool operator==(const MarkedRun&) const = default;
};
std::vector<MarkedRun> MarkedRuns(std::span<const TextRange> ranges, std::ptrdiff_t origin, PaneSpan view);

// A disc of `radius` pixels with a ring around it, as RGBA in a square of `size` pixels; colours are 0xRRGGBB.
std::vector<std::uint8_t> MarkerDot(int size, double radius, double ring, std::uint32_t discColour,
                                    std::uint32_t ringColour);

// --- Typing
// The same word in capitals when it is a BASIC keyword that is not written so already.
std::optional<std::string> KeywordInCapitals(std::string_view word);

// The part of a document of that length in which the partner of a bracket is looked for: further than anyone can see.
PaneSpan BraceReach(std::ptrdiff_t brace, std::ptrdiff_t length);
