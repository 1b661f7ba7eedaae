// Decisions of an editing pane about memory, colouring, markers and typing. Positions are bytes. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// --- Text
// Bytes to allocate in addition to a text of `length` bytes, so that the first typed characters do not make Scintilla
// move the text to a larger block.
std::size_t RoomBeyondText(std::size_t length);

// Number of decimal digits; 1 for a number below 10.
int DecimalDigits(std::ptrdiff_t number);

// --- Colours
struct PaneSpan {
    std::ptrdiff_t start = 0;
    std::ptrdiff_t end = 0;
    bool operator==(const PaneSpan&) const = default;
};

// The bytes that the next idle slice colours, when the last one coloured `chunk` bytes (0: there was none) in
// `seconds`. A slice should take 3 ms, because a key that arrives during a slice waits until its end.
std::size_t NextColourChunk(std::size_t chunk, double seconds);
inline constexpr std::size_t kFirstColourChunk = 32 << 10;

// End of the slice that begins at `from` and should end at `wanted`: `lineStart`, the start of the line of `wanted`. It
// is `wanted` itself when `lineStart` is not after `from` or when `wanted` is the end of the document.
std::ptrdiff_t ColourSliceEnd(std::ptrdiff_t from, std::ptrdiff_t wanted, std::ptrdiff_t lineStart,
                              std::ptrdiff_t length);

// What idle time is used for.
enum class ColourStep : std::uint8_t {
    Done,   // all is coloured
    Wait,   // a paint is due: it colours what it shows, and a repaint cancelled now would cancel it
    Slice,  // the next one is coloured
};
ColourStep NextColourStep(std::ptrdiff_t coloured, std::ptrdiff_t length, bool paintIsDue);

// A slice of which nothing can be seen: the repaint that Scintilla asks for after it is for nothing.
bool IsUnseen(PaneSpan slice, PaneSpan visible);

// A disc of `radius` pixels with a ring of `ring` pixels around it, in a square of `size` pixels. Returns 4 bytes
// (RGBA) for each pixel. Colours are 0xRRGGBB.
std::vector<std::uint8_t> MarkerDot(int size, double radius, double ring, std::uint32_t discColour,
                                    std::uint32_t ringColour);

// --- Brackets
// The part of a document of `length` bytes in which the partner of the bracket at `brace` is searched; more than a
// screen shows.
PaneSpan BraceReach(std::ptrdiff_t brace, std::ptrdiff_t length);
