#include "ui/drag_pace.h"

void DragStepBegins(DragPace& pace, double now) {
    if (pace.running) return;  // it belongs to the step before, which is not painted yet
    if (now - pace.last > kStillMs) pace.slow = 0;
    pace.running = true;
    pace.began = now;
}

void DragStepEnds(DragPace& pace, double now, double allowance) {
    if (!pace.running) return;
    pace.running = false;
    pace.last = now;
    if (pace.slow >= kSlowSteps) return;
    pace.slow = now - pace.began > kFrameMs + allowance ? pace.slow + 1 : 0;
}

bool DragIsSlow(const DragPace& pace, double now) {
    return pace.slow >= kSlowSteps && (pace.running || now - pace.last <= kStillMs);
}
