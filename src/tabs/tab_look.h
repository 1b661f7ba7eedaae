// What is drawn of a tab: shapes in their order, with colours by their role. Pure.
#pragma once

#include "tabs/tab_bar_layout.h"

#include <cstdint>
#include <vector>

enum class TabColour : std::uint8_t {
    Back,
    ActiveBack,
    Hover,
    Accent,
    Line,
    Text,
    ActiveText,
    Modified,
    Error,
    Success,
    Outside
};
enum class TabShape : std::uint8_t { Area, Dot, Label, Ring, Arrow, Frame };  // Arrow: a filled one to the right
struct TabPart {
    TabShape shape;
    TabRect place;
    TabColour colour;
};
struct TabStroke {
    int fromX, fromY, toX, toY;
};
struct TabLook {
    std::vector<TabPart> parts;
    std::vector<TabStroke> strokes;  // drawn last
    TabColour strokeColour = TabColour::Text;
    std::vector<TabStroke> lightStrokes;  // of the status light, before `strokes`
    TabColour lightColour = TabColour::Outside;
};

// The status light of a tab. Each has a shape of its own, so that nobody depends on its colour.
enum class TabLight : std::uint8_t {
    None,      // a document without a file, or a modified one: its dot is on the close button
    Saved,     // a small dot
    Built,     // a tick
    Failed,    // a cross
    Building,  // a square
    Debugged,  // an arrow
    Changed,   // a ring
    Gone,      // a ring that is struck through
    ReadOnly,  // a lock
};
// What the light is chosen from.
struct TabState {
    bool hasFile = false;
    bool modified = false;
    bool readOnly = false;
    bool changed = false;  // on the disk, by another program
    bool gone = false;     // from the disk
    bool building = false;
    bool debugged = false;
    bool failed = false;  // the last build
    bool built = false;   // without errors
};
// What passes soon, or matters most, comes before what stays.
TabLight TabLightOf(const TabState& state);

struct TabFacts {
    bool active = false;
    bool focused = false;  // the strip has the keyboard
    bool modified = false;
    bool pinned = false;  // the close button is a pin
    TabLight light = TabLight::None;
    bool pointed = false;  // the pointer is on the tab
    bool onClose = false;  // and on its close button
    bool dragging = false;
};
// `arm`: half the length of a stroke of the cross, in pixels.
TabLook TabLookOf(const TabFacts& facts, const TabMetrics& metrics, const TabRect& rect, int arm);

enum class TabButton : std::uint8_t { Back, Forth, List };
// A button at the end of the strip: an arrow to the left, to the right, or down. `lit`: the pointer is on it.
// `works`: there is something to scroll to.
TabLook TabButtonLook(TabButton button, const TabRect& area, bool lit, bool works, int arm);
