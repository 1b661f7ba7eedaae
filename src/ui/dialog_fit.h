// Where the controls of a dialog go that is larger than its screen. Pure; any thread.
#pragma once

#include <span>

// A control along one axis of its dialog, in pixels.
struct FitPart {
    int start = 0, end = 0;
    bool rigid = false;  // keeps its length: a button, a check box, a text
};

// Takes up to `excess` pixels from the dialog's height. The highest control that is not rigid gives them, but keeps
// `least`; what begins below it moves up. When it cannot give enough, the next one gives the rest. Returns what was
// taken.
int FitDialogHeight(std::span<FitPart> parts, int excess, int least);
// Takes `excess` pixels from the dialog's width, which is `width` now: rigid parts in the right half move, and others
// that would stick out become shorter.
void FitDialogWidth(std::span<FitPart> parts, int width, int excess);
