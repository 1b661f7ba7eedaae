// What the pointer does on the tab strip: hover, presses of close buttons, dragging. Knows no window. Pure.
#pragma once

#include "base/events.h"
#include "tabs/tab_bar_layout.h"

#include <span>

struct TabPointer {
    int hoverTab = -1;            // index of the tab under the pointer
    bool hoverClose = false;      // the pointer is on its close button
    DocumentId pressedClose = 0;  // its close button was pressed and not yet released
    DocumentId dragDocument = 0;  // its tab was pressed, and is perhaps dragged
    int dragFromX = 0;            // pixels, where it was pressed
    bool dragging = false;
};

// The pointer is at a point of the strip, or outside of it. True when that changes what it is over.
bool TabPointerHover(TabPointer& pointer, const TabMetrics& metrics, std::span<const TabRect> tabs, bool inside, int x,
                     int y);

// The left button went down over `document`, the one that the pointer hovers over (0: none). True when the press was on
// its close button.
bool TabPointerPress(TabPointer& pointer, DocumentId document, int x);

// The pointer moved with a tab pressed whose index is `from` now. The index that the tab belongs at, or -1: it stays.
int TabPointerDragTo(TabPointer& pointer, const TabMetrics& metrics, std::span<const TabRect> tabs, int from, int x);

// The button came up, or the capture is lost.
void TabPointerEnd(TabPointer& pointer);
