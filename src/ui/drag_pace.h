// Whether the steps of a running drag, of the frame or of a bar, take too long to be smooth. Pure.
#pragma once

constexpr double kFrameMs = 16;   // a step within this time is smooth
constexpr double kStillMs = 150;  // after the last step the hand is still, and the drag is over
constexpr int kSlowSteps = 2;     // one after the other make a slow drag; a single one may be chance

struct DragPace {
    bool running = false;  // a step that is not painted yet
    double began = 0;      // all times in milliseconds of one clock
    double last = -kStillMs;
    int slow = 0;
};

void DragStepBegins(DragPace& pace, double now);
// All of the step has been painted. `allowance` is how much later than that this is told at most.
void DragStepEnds(DragPace& pace, double now, double allowance);
// Stays true until the hand is still, because the steps become faster by what is left out.
bool DragIsSlow(const DragPace& pace, double now);
