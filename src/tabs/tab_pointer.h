// The rules for the pointer on the tab strip: hover, presses of close buttons, dragging. Points are in pixels of the
// strip. Pure.
#pragma once

#include "base/events.h"
#include "tabs/tab_bar_layout.h"

#include <span>

struct TabPointer {
    int hoverTab = -1;             // index of the tab under the pointer, -1: none
    bool hoverClose = false;       // the pointer is on its close button
    int hoverButton = -1;          // TabButton under the pointer, -1: none
    DocumentId pressedClose = 0;   // the document whose close button is held down, 0: none
    DocumentId pressedMiddle = 0;  // the document on whose tab the middle button is held down, 0: none
    DocumentId dragDocument = 0;   // the document whose tab is held down, 0: none
    int dragFromX = 0;             // x of the press, in pixels
    int dragFrom = -1;             // index of its tab before the drag
    bool dragging = false;         // the pointer has moved far enough since the press
};

// Called when the pointer is at (`x`, `y`), or outside the strip. True when the tab or the button under it has changed.
bool TabPointerHover(TabPointer& pointer, const TabMetrics& metrics, const TabStrip& strip, bool inside, int x, int y);

// Called when the left button goes down on the tab of `document` (0: none). True when the press was on its close
// button.
bool TabPointerPress(TabPointer& pointer, DocumentId document, int x);

// Called when the pointer moves while the tab at index `from` is held down. Returns the tab's new index, -1: it stays.
int TabPointerDragTo(TabPointer& pointer, const TabMetrics& metrics, std::span<const TabRect> tabs, int from, int x);

// Called when the button goes up or the capture is lost.
void TabPointerEnd(TabPointer& pointer);
