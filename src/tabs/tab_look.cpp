#include "tabs/tab_look.h"

namespace {

TabRect ShrunkTo(const TabRect& box, int size) {
    const int left = (box.left + box.right - size) / 2;
    const int top = (box.top + box.bottom - size) / 2;
    return {left, top, left + size, top + size};
}

bool HasCloseButton(const TabFacts& facts) {
    return facts.modified || facts.active || facts.pinned || (facts.pointed && !facts.dragging);
}

void AddArea(TabLook& look, const TabRect& place, TabColour colour) {
    look.parts.push_back({TabShape::Area, place, colour});
}

std::vector<TabStroke> CrossAt(int x, int y, int arm) {
    return {{x - arm, y - arm, x + arm + 1, y + arm + 1}, {x - arm, y + arm, x + arm + 1, y - arm - 1}};
}

// A head with a plate below it, and the needle.
std::vector<TabStroke> PinAt(int x, int y, int arm) {
    const int half = arm / 2;
    return {{x - half, y - arm, x + half + 1, y - arm},
            {x - half, y - arm, x - half, y},
            {x + half, y - arm, x + half, y},
            {x - arm, y, x + arm + 1, y},
            {x, y, x, y + arm + 1}};
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
    look.strokes = facts.pinned ? PinAt(x, y, arm) : CrossAt(x, y, arm);
    look.strokeColour = over || facts.active ? TabColour::ActiveText : TabColour::Text;
}

void AddLock(TabLook& look, const TabRect& box) {
    const int middle = (box.top + box.bottom) / 2, inset = box.Width() / 4;
    AddArea(look, {box.left, middle, box.right, box.bottom}, TabColour::Outside);
    look.lightStrokes = {{box.left + inset, middle, box.left + inset, box.top},
                         {box.left + inset, box.top, box.right - inset - 1, box.top},
                         {box.right - inset - 1, box.top, box.right - inset - 1, middle}};
}

void AddLight(TabLook& look, TabLight light, const TabRect& box) {
    const auto add = [&](TabShape shape, TabColour colour) { look.parts.push_back({shape, box, colour}); };
    const int x = (box.left + box.right) / 2, y = (box.top + box.bottom) / 2, half = box.Width() / 2;
    switch (light) {
        case TabLight::None: return;
        case TabLight::Saved:
            look.parts.push_back({TabShape::Dot, ShrunkTo(box, (box.Width() + 1) / 2), TabColour::Text});
            return;
        case TabLight::Built:
            look.lightColour = TabColour::Success;
            look.lightStrokes = {{box.left, y, x - 1, box.bottom - 1}, {x - 1, box.bottom - 1, box.right, box.top}};
            return;
        case TabLight::Failed:
            look.lightColour = TabColour::Error;
            look.lightStrokes = CrossAt(x, y, half - 1);
            return;
        case TabLight::Building: AddArea(look, box, TabColour::Accent); return;
        case TabLight::Debugged: add(TabShape::Arrow, TabColour::Success); return;
        case TabLight::ReadOnly: AddLock(look, box); return;
        case TabLight::Gone: look.lightStrokes = {{box.left, box.bottom - 1, box.right, box.top - 1}}; [[fallthrough]];
        case TabLight::Changed: add(TabShape::Ring, TabColour::Outside); return;
    }
}

}  // namespace

TabLight TabLightOf(const TabState& state) {
    if (state.debugged) return TabLight::Debugged;
    if (state.building) return TabLight::Building;
    if (state.gone) return TabLight::Gone;
    if (state.changed) return TabLight::Changed;
    if (state.failed) return TabLight::Failed;
    if (state.readOnly) return TabLight::ReadOnly;
    if (state.modified || !state.hasFile) return TabLight::None;
    return state.built ? TabLight::Built : TabLight::Saved;
}

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
    AddLight(look, facts.light, TabMarkRect(metrics, rect));
    look.parts.push_back({TabShape::Label, TabTextRect(metrics, rect, HasCloseButton(facts)),
                          facts.active ? TabColour::ActiveText : TabColour::Text});
    AddCloseButton(look, facts, metrics, TabCloseRect(metrics, rect), arm);
    if (facts.active && facts.focused) {
        const int gap = metrics.accent + 1;
        look.parts.push_back({TabShape::Frame,
                              {rect.left + gap, rect.top + gap, rect.right - gap, rect.bottom - gap},
                              TabColour::ActiveText});
    }
    return look;
}

TabLook TabButtonLook(TabButton button, const TabRect& area, bool lit, bool works, int arm) {
    TabLook look;
    AddArea(look, area, lit && works ? TabColour::Hover : TabColour::Back);
    const int x = (area.left + area.right) / 2, y = (area.top + area.bottom) / 2, half = arm / 2;
    look.strokeColour = works ? TabColour::Text : TabColour::Line;
    switch (button) {
        case TabButton::Back:
            look.strokes = {{x + half, y - arm, x - half, y}, {x - half, y, x + half + 1, y + arm + 1}};
            break;
        case TabButton::Forth:
            look.strokes = {{x - half, y - arm, x + half, y}, {x + half, y, x - half - 1, y + arm + 1}};
            break;
        case TabButton::List:
            look.strokes = {{x - arm, y - half, x, y + half}, {x, y + half, x + arm + 1, y - half - 1}};
            break;
    }
    return look;
}
