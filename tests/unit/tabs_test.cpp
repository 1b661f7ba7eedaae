// Geometry and index arithmetic of the tab bar.
#include "documents/row_rules.h"
#include "tabs/tab_bar_layout.h"

#include <gtest/gtest.h>

#include <numeric>
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
    EXPECT_EQ(TabHit(row, 300, 5), -1) << "behind the last";
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
        // Once there, the same pointer keeps it there: no flutter.
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
        int active, removed, count, after;
    } cases[] = {
        {"the only one", 0, 0, 1, -1},       {"left of the active", 2, 0, 4, 1},
        {"right of the active", 1, 3, 4, 1}, {"the active: its right neighbour", 1, 1, 4, 1},
        {"the active and last", 3, 3, 4, 2}, {"none active", -1, 0, 3, -1},
    };
    for (const auto& test : cases)
        EXPECT_EQ(TabIndexAfterRemoval(test.active, test.removed, test.count), test.after) << test.name;
}

}  // namespace
