// Which part of a document has its colours. A change takes them from the changed lines; below, the former ones are right
// again from the first line on before which the lexer has the state that it had. Positions are bytes. Pure.
#pragma once

#include "editor/pane_rules.h"

#include <cstddef>
#include <cstdint>

struct ColourMarks {
    std::ptrdiff_t coloured = 0;  // everything before is right
    std::ptrdiff_t settles = 0;   // a pass that ends here or later, with the state of before, ends the recolouring
    std::ptrdiff_t known = 0;     // up to here colours are those of before the changes; never before `coloured`
    PaneSpan view;                // coloured without the lines above it; empty: none
};

// `inserted` or `deleted` bytes at `position`. `lineStart`: of its line. `settles`: the start of the second line after the
// last changed one. The state of the first such line is the one to compare with, because a line that a change has
// made or joined has no state of its own yet.
struct ColourChange {
    std::ptrdiff_t position = 0;
    std::ptrdiff_t inserted = 0;
    std::ptrdiff_t deleted = 0;
    std::ptrdiff_t lineStart = 0;
    std::ptrdiff_t settles = 0;
};
void ColourMarksOnChange(ColourMarks* marks, const ColourChange& change);

// All before `to` has been coloured, from `coloured` on. `same`: the state behind the last line is what it was.
// `next`: the start of the second line after the last one of which anything was coloured, because that line may be
// coloured again.
void ColourMarksOnPass(ColourMarks* marks, std::ptrdiff_t to, bool same, std::ptrdiff_t next);

// The lines of `view` were coloured without those above them. `next`: as before.
void ColourMarksOnView(ColourMarks* marks, PaneSpan view, std::ptrdiff_t next);

// Nothing from `position` on counts as coloured: another text, lexer or property.
void ColourMarksOnReset(ColourMarks* marks, std::ptrdiff_t position);

// What must be coloured before a paint of `visible`.
enum class PaintColours : std::uint8_t {
    Ready,        // nothing: all visible text is coloured
    FromMark,     // all text from `coloured` on: the part above the view is short
    FromView,     // what is missing behind `view`, which begins above: so typing after a jump costs the changed line
    VisibleOnly,  // the visible part now, the part above it later
};
PaintColours ColoursForPaint(const ColourMarks& marks, PaneSpan visible);

// Where the next slice of at most `chunk` bytes should end in a text of `length` bytes. Soon after the changed lines,
// because most changes settle there.
std::ptrdiff_t ColourSliceWanted(const ColourMarks& marks, std::ptrdiff_t chunk, std::ptrdiff_t length);
