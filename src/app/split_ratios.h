// Keeps the bars of the output and of the side panes at their share of the window while it changes its size. Pure.
#pragma once

#include "settings/settings.h"

// The part of the client area that the bars divide, in pixels.
struct BarArea {
    int top = 0;  // of what the output's bar divides
    int bottom = 0;
    int width = 0;  // of the client area
    int dpi = 96;
};

// Shares of the area; they stay when the window changes its size.
struct SplitRatios {
    double output = 0.0;  // (split - top) / (bottom - top); 0: not known yet
    double side = 0.0;    // side width / client width
};
double RatioOf(int position, int start, int end);
int PositionAt(double ratio, int start, int end);

// The output's bar where nobody has put it: the default of the setting, which has no ratio then.
inline constexpr int kUnchosenSplit = 400;
inline constexpr double kFirstOutputRatio = 0.78;  // where it goes: the output gets less than a quarter

// All three put the ratios into the settings too, with the values in pixels that they now stand for.
// Takes the ratios from the bars, after the output's bar was limited.
void RatiosCapture(SplitRatios& ratios, Settings& settings, const BarArea& area);
// Takes them from the settings, and from the bars where the settings have none, then sets the bars.
void RatiosRestore(SplitRatios& ratios, Settings& settings, const BarArea& area);
// Sets the bars in a new area.
void RatiosApply(SplitRatios& ratios, Settings& settings, const BarArea& area);
