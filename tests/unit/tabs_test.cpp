// Geometry of the tab bar, indexes in the row of documents, what the pointer does.
#include "documents/row_rules.h"
#include "tabs/tab_bar_layout.h"
#include "tabs/tab_look.h"
#include "tabs/tab_pointer.h"

#include <gtest/gtest.h>

#include <numeric>
#include <string>
#include <vector>

namespace {

std::vector<TabRect> Row(int count, int width) {
    std::vector<TabRect> row;
    for (int i = 0; i < count; ++i) row.push_back({i * width, 0, (i + 1) * width, 32});
    return row;
}

TEST(TabLayout, PartsStayInsideTheTabAndApart) {
    for (const int dpi : {96, 120, 144, 192, 240}) {
        const TabMetrics metrics = TabMetricsForDpi(dpi);
        for (const int count : {1, 5, 200}) {
            const int width = TabWidthFor(metrics, 900, count);
            EXPECT_GE(width, metrics.minWidth) << dpi;
            EXPECT_LE(width, metrics.maxWidth) << dpi;
            const TabRect tab = {100, 0, 100 + width, metrics.height};
            const TabRect close = TabCloseRect(metrics, tab);
            const TabRect text = TabTextRect(metrics, tab, true, true);
            const TabRect mark = TabMarkRect(metrics, tab);
            EXPECT_TRUE(tab.left < mark.left && mark.right <= text.left && text.right <= close.left &&
                        close.right <= tab.right)
                << dpi << ' ' << count;
            EXPECT_TRUE(close.top >= tab.top && close.bottom <= tab.bottom) << dpi;
            EXPECT_GT(text.Width(), width / 3) << dpi << ": a name to read";
            EXPECT_GT(TabTextRect(metrics, tab, false, true).Width(), text.Width()) << dpi << ": no mark";
            EXPECT_GT(TabTextRect(metrics, tab, true, false).Width(), text.Width()) << dpi << ": no button";
        }
    }
    const TabMetrics metrics = TabMetricsForDpi(96);
    EXPECT_EQ(TabWidthFor(metrics, 1000, 8), 125) << "shared evenly between the limits";
    EXPECT_EQ(TabWidthFor(metrics, 1000, 0), metrics.maxWidth);
}

TEST(TabLayout, HitsTheTabUnderThePointer) {
    const std::vector<TabRect> row = Row(3, 100);
    EXPECT_EQ(TabHit(row, 0, 0), 0);
    EXPECT_EQ(TabHit(row, 99, 31), 0);
    EXPECT_EQ(TabHit(row, 100, 5), 1);
    EXPECT_EQ(TabHit(row, 300, 5), -1) << "after the last";
    EXPECT_EQ(TabHit(row, 50, 32), -1) << "below";
    EXPECT_EQ(TabHit({}, 5, 5), -1);
}

TEST(TabLayout, ADraggedTabChangesPlacesAtItsNeighboursMiddle) {
    const std::vector<TabRect> row = Row(4, 100);
    const struct {
        int from, x, to;
    } cases[] = {{0, 50, 0},  {0, 149, 0}, {0, 151, 1}, {0, 251, 2}, {0, 5000, 3}, {0, -50, 0},
                 {3, 350, 3}, {3, 251, 3}, {3, 249, 2}, {3, -5, 0},  {1, 249, 1},  {1, 251, 2}};
    for (const auto& test : cases) {
        EXPECT_EQ(TabDropIndex(row, test.from, test.x), test.to) << test.from << " at " << test.x;
        // At its new place, the tab stays for the same pointer position.
        EXPECT_EQ(TabDropIndex(row, test.to, test.x), test.to) << test.from << " at " << test.x << ", again";
    }
}

TEST(TabLayout, IndicesFollowMovesAndRemovals) {
    for (int from = 0; from < 5; ++from) {
        for (int to = 0; to < 5; ++to) {
            std::vector<int> row(5);
            std::iota(row.begin(), row.end(), 0);
            row.erase(row.begin() + from);
            row.insert(row.begin() + to, from);
            for (int i = 0; i < 5; ++i)
                EXPECT_EQ(row[static_cast<std::size_t>(TabIndexAfterMove(i, from, to))], i) << from << " to " << to;
        }
    }
    const struct {
        const char* name;
        int active, removed, count, wanted, shown;
    } cases[] = {
        {"the only one", 0, 0, 1, -1, -1},
        {"left of the active", 2, 0, 4, -1, 1},
        {"right of the active", 1, 3, 4, -1, 1},
        {"the active: its right neighbour", 1, 1, 4, -1, 1},
        {"the active and last", 3, 3, 4, -1, 2},
        {"none active", -1, 0, 3, -1, -1},
        {"the active: back to one left of it", 2, 2, 4, 0, 0},
        {"the active: back to one right of it", 1, 1, 4, 3, 2},
        {"the active stays, whatever was wanted", 2, 0, 4, 3, 1},
    };
    for (const auto& test : cases)
        EXPECT_EQ(TabToShowAfterRemoval(test.active, test.removed, test.count, test.wanted), test.shown) << test.name;
}

TEST(TabPointer, ClosesOnReleaseOverTheSameButtonAndDragsPastTheThreshold) {
    const TabMetrics metrics = TabMetricsForDpi(96);
    const std::vector<TabRect> row = Row(3, 150);
    const TabRect button = TabCloseRect(metrics, row[1]);
    TabPointer pointer;
    EXPECT_TRUE(TabPointerHover(pointer, metrics, row, true, button.left, button.top));
    EXPECT_FALSE(TabPointerHover(pointer, metrics, row, true, button.left + 1, button.top)) << "nothing new";
    EXPECT_EQ(pointer.hoverTab, 1);
    EXPECT_TRUE(TabPointerPress(pointer, 42, button.left)) << "the control does not see it";
    EXPECT_EQ(pointer.pressedClose, 42);
    EXPECT_EQ(TabPointerDragTo(pointer, metrics, row, -1, 5), -1) << "a close button is not dragged";
    TabPointerEnd(pointer);
    EXPECT_TRUE(TabPointerHover(pointer, metrics, row, true, 160, 5) && !pointer.hoverClose);
    EXPECT_FALSE(TabPointerPress(pointer, 0, 160)) << "no document";
    EXPECT_FALSE(TabPointerPress(pointer, 42, 160));
    EXPECT_EQ(TabPointerDragTo(pointer, metrics, row, 1, 160 + metrics.dragStart - 1), -1) << "a shaky click";
    EXPECT_FALSE(pointer.dragging);
    EXPECT_EQ(TabPointerDragTo(pointer, metrics, row, 1, 400), 2);
    EXPECT_EQ(TabPointerDragTo(pointer, metrics, row, 2, 400), -1) << "there already";
    EXPECT_EQ(TabPointerDragTo(pointer, metrics, row, -1, 400), -1) << "closed meanwhile";
    TabPointerEnd(pointer);
    EXPECT_FALSE(pointer.dragging);
    EXPECT_TRUE(TabPointerHover(pointer, metrics, row, false, 160, 5));
    EXPECT_EQ(pointer.hoverTab, -1);
}

TEST(TabLook, TheCloseButtonAndTheDotTakeTurns) {
    const TabMetrics metrics = TabMetricsForDpi(96);
    const auto drawn = [&](const TabFacts& facts) {  // dots, and whether the cross is there
        const TabLook look = TabLookOf(facts, metrics, {0, 0, 180, metrics.height}, 4);
        std::string text;
        for (const TabPart& part : look.parts)
            if (part.shape == TabShape::Dot) text += part.colour == TabColour::Modified ? "m" : "b";
        return text + (look.strokes.empty() ? "" : "x");
    };
    EXPECT_EQ(drawn({}), "");
    EXPECT_EQ(drawn({.active = true}), "x");
    EXPECT_EQ(drawn({.pointed = true}), "x");
    EXPECT_EQ(drawn({.pointed = true, .dragging = true}), "");
    EXPECT_EQ(drawn({.active = true, .modified = true, .mark = TabMark::Error}), "bm");
    EXPECT_EQ(drawn({.modified = true, .pointed = true, .onClose = true}), "x");
}

}  // namespace
