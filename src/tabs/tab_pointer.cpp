// The rules for the pointer on the tab strip. Pure.
#include "tabs/tab_pointer.h"

#include "tabs/tab_look.h"

#include <cstddef>
#include <cstdlib>

static int ButtonAt(const TabStrip& strip, int x, int y) {
    if (strip.list.Contains(x, y)) return static_cast<int>(TabButton::List);
    if (strip.back.Contains(x, y)) return static_cast<int>(TabButton::Back);
    return strip.forth.Contains(x, y) ? static_cast<int>(TabButton::Forth) : -1;
}

bool TabPointerHover(TabPointer& pointer, const TabMetrics& metrics, const TabStrip& strip, bool inside, int x, int y) {
    const int tab = inside ? TabHit(strip, x, y) : -1;
    const int button = inside ? ButtonAt(strip, x, y) : -1;
    const bool close = tab >= 0 && TabCloseRect(metrics, strip.tabs[static_cast<std::size_t>(tab)]).Contains(x, y);
    if (tab == pointer.hoverTab && close == pointer.hoverClose && button == pointer.hoverButton) return false;
    pointer.hoverTab = tab;
    pointer.hoverClose = close;
    pointer.hoverButton = button;
    return true;
}

bool TabPointerPress(TabPointer& pointer, DocumentId document, int x) {
    if (document == 0) return false;
    if (pointer.hoverClose) {
        pointer.pressedClose = document;
        return true;
    }
    pointer.dragDocument = document;
    pointer.dragFromX = x;
    return false;
}

int TabPointerDragTo(TabPointer& pointer, const TabMetrics& metrics, std::span<const TabRect> tabs, int from, int x) {
    if (from < 0) return -1;
    if (!pointer.dragging) {
        if (std::abs(x - pointer.dragFromX) < metrics.dragStart) return -1;
        pointer.dragging = true;
        pointer.dragFrom = from;
    }
    const int to = TabDropIndex(tabs, from, x);
    return to == from ? -1 : to;
}

void TabPointerEnd(TabPointer& pointer) {
    pointer.pressedClose = 0;
    pointer.dragDocument = 0;
    pointer.dragging = false;
}
