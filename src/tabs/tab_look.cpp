#include "tabs/tab_look.h"

namespace {

TabRect ShrunkTo(const TabRect& box, int size) {
    const int left = (box.left + box.right - size) / 2;
    const int top = (box.top + box.bottom - size) / 2;
    return {left, top, left + size, top + size};
}

bool HasCloseButton(const TabFacts& facts) {
    return facts.modified || facts.active || (facts.pointed && !facts.dragging);
}

void AddArea(TabLook& look, const TabRect& place, TabColour colour) {
    look.parts.push_back({TabShape::Area, place, colour});
}

// A modified document has a dot on its close button while the pointer is not there.
void AddCloseButton(TabLook& look, const TabFacts& facts, const TabMetrics& metrics, const TabRect& box, int arm) {
    const bool over = facts.pointed && !facts.dragging && facts.onClose;
    if (facts.modified && !over) {
        look.parts.push_back({TabShape::Dot, ShrunkTo(box, metrics.markSize), TabColour::Modified});
        return;
    }
    if (!HasCloseButton(facts)) return;
    if (over) AddArea(look, box, TabColour::Line);
    const int x = (box.left + box.right) / 2, y = (box.top + box.bottom) / 2;
    look.strokes = {{x - arm, y - arm, x + arm + 1, y + arm + 1}, {x - arm, y + arm, x + arm + 1, y - arm - 1}};
    look.strokeColour = over || facts.active ? TabColour::ActiveText : TabColour::Text;
}

// A ring: other content. A ring that is struck through: no file. A lock: read-only.
void AddFileMark(TabLook& look, TabFileMark mark, const TabRect& box) {
    if (mark == TabFileMark::ReadOnly) {
        const int middle = (box.top + box.bottom) / 2, inset = box.Width() / 4;
        AddArea(look, {box.left, middle, box.right, box.bottom}, TabColour::Outside);
        look.markStrokes = {{box.left + inset, middle, box.left + inset, box.top},
                            {box.left + inset, box.top, box.right - inset - 1, box.top},
                            {box.right - inset - 1, box.top, box.right - inset - 1, middle}};
        return;
    }
    look.parts.push_back({TabShape::Ring, box, TabColour::Outside});
    if (mark == TabFileMark::Gone) look.markStrokes = {{box.left, box.bottom - 1, box.right, box.top - 1}};
}

}  // namespace

TabLook TabLookOf(const TabFacts& facts, const TabMetrics& metrics, const TabRect& rect, int arm) {
    TabLook look;
    AddArea(look, rect, facts.active ? TabColour::ActiveBack : facts.pointed ? TabColour::Hover : TabColour::Back);
    if (facts.active)
        AddArea(look, {rect.left, rect.top, rect.right, rect.top + metrics.accent}, TabColour::Accent);
    else
        AddArea(look, {rect.left, rect.bottom - 1, rect.right, rect.bottom}, TabColour::Line);
    // A thin line between tabs. At the active tab it has the full height.
    const int inset = facts.active ? 0 : metrics.padding * 4 / 5;
    AddArea(look, {rect.right - 1, rect.top + inset, rect.right, rect.bottom - inset}, TabColour::Line);
    const bool hasMark = facts.mark != TabMark::None || facts.fileMark != TabFileMark::None;
    if (facts.fileMark != TabFileMark::None)
        AddFileMark(look, facts.fileMark, TabMarkRect(metrics, rect));
    else if (hasMark)
        look.parts.push_back({TabShape::Dot, TabMarkRect(metrics, rect),
                              facts.mark == TabMark::Error ? TabColour::Error : TabColour::Success});
    look.parts.push_back({TabShape::Label, TabTextRect(metrics, rect, hasMark, HasCloseButton(facts)),
                          facts.active ? TabColour::ActiveText : TabColour::Text});
    AddCloseButton(look, facts, metrics, TabCloseRect(metrics, rect), arm);
    return look;
}

TabLook ScrollerLookOf(const TabRect& area, bool pressedLeft, bool pressedRight, int arm) {
    TabLook look;
    AddArea(look, area, TabColour::Back);
    const int middle = (area.left + area.right) / 2;
    if (pressedLeft) AddArea(look, {area.left, area.top, middle, area.bottom}, TabColour::Hover);
    if (pressedRight) AddArea(look, {middle, area.top, area.right, area.bottom}, TabColour::Hover);
    const int y = (area.top + area.bottom) / 2;
    const int left = (area.left + middle) / 2, right = (middle + area.right) / 2;
    look.strokes = {{left + arm / 2, y - arm, left - arm / 2, y},
                    {left - arm / 2, y, left + arm / 2 + 1, y + arm + 1},
                    {right - arm / 2, y - arm, right + arm / 2, y},
                    {right + arm / 2, y, right - arm / 2 - 1, y + arm + 1}};
    return look;
}
