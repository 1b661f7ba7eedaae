// What is drawn of a tab: shapes in their order, with colours by their role. Pure.
#pragma once

#include "tabs/tab_bar_layout.h"

#include <array>
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
enum class TabShape : std::uint8_t { Area, Dot, Label, Ring };
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
    std::vector<TabStroke> markStrokes;  // the same, in TabColour::Outside
};

enum class TabMark : std::uint8_t { None, Error, Success };
// What stands with its file. It takes the place of the mark of the build.
enum class TabFileMark : std::uint8_t { None, Changed, Gone, ReadOnly };
struct TabFacts {
    bool active = false;
    bool modified = false;
    TabMark mark = TabMark::None;
    TabFileMark fileMark = TabFileMark::None;
    bool pointed = false;  // the pointer is on the tab
    bool onClose = false;  // and on its close button
    bool dragging = false;
};
// `arm`: half the length of a stroke of the cross, in pixels.
TabLook TabLookOf(const TabFacts& facts, const TabMetrics& metrics, const TabRect& rect, int arm);
// The arrows that scroll a long row.
TabLook ScrollerLookOf(const TabRect& area, bool pressedLeft, bool pressedRight, int arm);
