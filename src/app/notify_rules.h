// What the notifications of an editor mean to the rest of the editor. Pure.
#pragma once

#include <cstddef>

// A word of that many bytes is short enough to name a register.
bool CouldNameRegister(std::ptrdiff_t length);

// `x` lies in the `width` pixels from `left` on.
bool IsWithinMargin(int x, int left, int width);

// The line (from 1, 0: the top) below which all lines have moved by `linesAdded` (removed: less than 0), after a change on
// `line`. That line moves itself when something was inserted at its very start.
int LineBeforeMoved(int line, std::ptrdiff_t linesAdded, bool atLineStart);

// What the mouse rests on.
enum class DwellPlace : unsigned char {
    Nothing,
    SymbolMargin,   // what is to be said of a breakpoint
    ProblemMargin,  // the diagnostics of the line
    Text,           // the value of a register, while a program stands
};
// `margin` is the one under the mouse; -1: none.
DwellPlace DwellPlaceOf(int margin, std::ptrdiff_t position);
