// Where the controls of a dialog go that is larger than its screen, or whose texts need more room. Pure; any thread.
#pragma once

#include <span>

// A control along one axis of its dialog, in pixels.
struct FitPart {
    int start = 0, end = 0;
    bool rigid = false;  // keeps its length: a button, a check box, a text
    // The same along the other axis, which tells what stands in one row.
    int rowStart = 0, rowEnd = 0;
};

// Takes up to `excess` pixels from the dialog's height. The highest control that is not rigid gives them, but keeps
// `least`; what begins below it moves up. When it cannot give enough, the next one gives the rest. Returns what was
// taken.
int FitDialogHeight(std::span<FitPart> parts, int excess, int least);
// Takes `excess` pixels from the dialog's width, which is `width` now: rigid parts in the right half move, with those of
// the same row over which they would come to lie; and others that would stick out become shorter.
void FitDialogWidth(std::span<FitPart> parts, int width, int excess);

// A control that has a text, along one axis.
struct GrowPart {
    int start = 0, end = 0;
    int wanted = 0;      // the length that its text needs
    bool rigid = false;  // gets no longer than it needs: a button
};

// The end up to which a part of its row may grow without touching the next one: the least start of `others` that lies
// beyond it, less `gap`, or `edge`.
int FreeEnd(const GrowPart& part, std::span<const GrowPart> others, int gap, int edge);
// Makes each part as long as it needs: what begins beyond it moves, and what reaches over its end grows too. So columns
// stay columns. Rigid parts in the further half of `length` keep to that edge. Returns what the dialog grows by.
int GrowDialogParts(std::span<GrowPart> parts, int length);
