// Geometry and looks of the tab bar, names of tabs, the order in the row of documents, what the pointer does.
#include "documents/row_rules.h"
#include "session/closed_tabs.h"
#include "tabs/tab_bar_layout.h"
#include "tabs/tab_look.h"
#include "tabs/tab_names.h"
#include "tabs/tab_pointer.h"
#include "tabs/tab_text.h"

#include <gtest/gtest.h>

#include <numeric>
#include <set>
#include <string>
#include <vector>

namespace {

std::vector<TabRect> Row(int count, int width) {
    std::vector<TabRect> row;
    for (int i = 0; i < count; ++i) row.push_back({i * width, 0, (i + 1) * width, 32});
    return row;
}

std::vector<TabWish> Wishes(int count, int text) {
    return std::vector<TabWish>(static_cast<std::size_t>(count), {text, false});
}

TEST(TabLayout, PartsStayInsideTheTabAndApart) {
    for (const int dpi : {96, 120, 144, 192, 240}) {
        const TabMetrics metrics = TabMetricsForDpi(dpi);
        for (const int count : {1, 5, 200}) {
            const TabStrip strip = TabStripOf(metrics, 900, Wishes(count, 400), 0, 0);
            const TabRect tab = strip.tabs.back();
            const TabRect close = TabCloseRect(metrics, tab);
            const TabRect text = TabTextRect(metrics, tab, true);
            const TabRect mark = TabMarkRect(metrics, tab);
            EXPECT_TRUE(tab.left < mark.left && mark.right <= text.left && text.right <= close.left &&
                        close.right <= tab.right)
                << dpi << ' ' << count;
            EXPECT_TRUE(close.top >= tab.top && close.bottom <= tab.bottom) << dpi;
            EXPECT_GT(text.Width(), tab.Width() / 3) << dpi << ": a name to read";
            EXPECT_GT(TabTextRect(metrics, tab, false).Width(), text.Width()) << dpi << ": no button";
        }
    }
}

TEST(TabLayout, TheActiveTabShowsItsNameAndTheOthersShareTheRest) {
    const TabMetrics metrics = TabMetricsForDpi(96);
    const auto textRoom = [&](const TabStrip& strip, std::size_t tab) {
        return TabTextRect(metrics, strip.tabs[tab], true).Width();
    };
    TabStrip strip = TabStripOf(metrics, 1000, Wishes(3, 60), 1, 50);
    EXPECT_EQ(textRoom(strip, 0), 60) << "as wide as its name";
    EXPECT_TRUE(strip.scroll == 0 && strip.back.Width() == 0 && strip.forth.Width() == 0) << "all fit";
    EXPECT_EQ(strip.list.right, 1000);
    EXPECT_EQ(strip.view, strip.list.left);

    strip = TabStripOf(metrics, 1000, Wishes(5, 300), 2, 0);
    EXPECT_EQ(textRoom(strip, 2), 300) << "not cut";
    EXPECT_EQ(strip.tabs[0].Width(), strip.tabs[4].Width());
    EXPECT_GE(strip.tabs[0].Width(), metrics.minWidth);
    EXPECT_TRUE(strip.tabs[4].right <= strip.view && strip.tabs[4].right > strip.view - 5) << "no room is given away";

    std::vector<TabWish> many = Wishes(30, 300);
    many[0].pinned = true;
    strip = TabStripOf(metrics, 1000, many, 20, 0);
    EXPECT_EQ(strip.tabs[5].Width(), metrics.minWidth);
    EXPECT_EQ(TabStripOf(metrics, 5000, many, 20, 0).tabs[0].Width(), metrics.pinnedWidth) << "however much room";
    EXPECT_TRUE(strip.view == strip.back.left && strip.back.right == strip.forth.left &&
                strip.forth.right == strip.list.left);
    EXPECT_EQ(TabHit(strip, strip.view, 5), -1) << "a tab below the arrows is not hit";
    for (const int index : {20, 0, 29, 3}) {
        strip = TabStripOf(metrics, 1000, many, 20, TabScrollToShow(strip, index));
        const TabRect& tab = strip.tabs[static_cast<std::size_t>(index)];
        EXPECT_TRUE(tab.left >= 0 && tab.right <= strip.view) << index;
        EXPECT_EQ(TabScrollToShow(strip, index), strip.scroll) << index << ": it stays";
    }
    EXPECT_EQ(TabStripOf(metrics, 1000, many, 20, 1 << 20).scroll, strip.mostScroll);
    strip = TabStripOf(metrics, 100, Wishes(1, 400), 0, 0);
    EXPECT_LE(strip.tabs[0].right, 100) << "a strip that is narrower than a name";
}

TEST(TabNames, EqualOnesGetTheShortestFolderThatTellsThemApart) {
    const std::wstring_view paths[] = {L"C:\\app\\main.bas",
                                       L"C:\\LIB\\Main.BAS",
                                       L"C:\\a\\src\\util.bas",
                                       L"C:\\b\\src\\util.bas",
                                       L"C:\\c\\util.bas",
                                       L"",
                                       L"",
                                       L"D:\\main.bas",
                                       L"C:\\x\\1\\2\\z.c",
                                       L"C:\\y\\1\\2\\z.c",
                                       L"C:\\alone.bas",
                                       L"\\\\server\\share\\alone.asm"};
    const std::vector<std::wstring> expected = {L"app", L"LIB", L"a\\src",    L"b\\src",    L"c", L"",
                                                L"",    L"D:",  L"x\\...\\2", L"y\\...\\2", L"",  L""};
    EXPECT_EQ(DistinguishingFolders(paths), expected);
    EXPECT_EQ(TabFullName(L"a.bas", L"lib"), L"a.bas (lib)");
    EXPECT_EQ(TabMenuText(0, L"a&b"), L"&1 a&&b");
}

TEST(TabLayout, HitsTheTabUnderThePointer) {
    const std::vector<TabRect> row = Row(3, 100);
    EXPECT_EQ(TabHit(row, 0, 0), 0);
    EXPECT_EQ(TabHit(row, 99, 31), 0);
    EXPECT_EQ(TabHit(row, 100, 5), 1);
    EXPECT_EQ(TabHit(row, 300, 5), -1) << "after the last";
    EXPECT_EQ(TabHit(row, 50, 32), -1) << "below";
    EXPECT_EQ(TabHit(std::vector<TabRect>{}, 5, 5), -1);
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

TEST(TabLayout, PinnedTabsStandFirstAndStayWhenOthersAreClosed) {
    const std::vector<RowEntry> row = {
        {1, true, true, true}, {2, false, true, true}, {3, false, true}, {4, true, false}};
    const struct { int from, to, place; } moves[] = {{0, 3, 1}, {1, 0, 0}, {3, 0, 2}, {2, 3, 3}};
    for (const auto& move : moves) EXPECT_EQ(TabPlaceAllowed(row, move.from, move.to), move.place) << move.from;
    using Ids = std::vector<DocumentId>;
    EXPECT_EQ(DocumentsToClose(row, CloseRange::All, 0), (Ids{4, 3, 2, 1}));
    EXPECT_EQ(DocumentsToClose(row, CloseRange::Others, 4), (Ids{3}));
    EXPECT_EQ(DocumentsToClose(row, CloseRange::Right, 1), (Ids{4, 3}));
    EXPECT_EQ(DocumentsToClose(row, CloseRange::Saved, 3), (Ids{3})) << "the active one, too";
    EXPECT_EQ(DocumentsToClose(row, CloseRange::Others, 9), Ids{});
    const std::vector<std::wstring> labels{L"Untitled 2", L"Untitled", L"x", L"7"};
    const std::pair<const wchar_t*, const wchar_t*> free[] = {{L"Untitled", L"Untitled 3"},
                                                              {L"Untitled 2", L"Untitled 3"},
                                                              {L"Untitled 9", L"Untitled 9"},
                                                              {L"x", L"x 2"},
                                                              {L"7", L"7 2"},
                                                              {L"AI reply", L"AI reply"}};
    for (const auto& [wanted, given] : free) EXPECT_EQ(FreeLabel(wanted, labels), given);
}

TEST(TabPointer, ClosesOnReleaseOverTheSameButtonAndDragsPastTheThreshold) {
    const TabMetrics metrics = TabMetricsForDpi(96);
    TabStrip strip;
    strip.tabs = Row(3, 150);
    strip.view = 440;
    strip.list = {450, 0, 470, 31};
    const std::vector<TabRect>& row = strip.tabs;
    const TabRect button = TabCloseRect(metrics, row[1]);
    TabPointer pointer;
    EXPECT_TRUE(TabPointerHover(pointer, metrics, strip, true, button.left, button.top));
    EXPECT_FALSE(TabPointerHover(pointer, metrics, strip, true, button.left + 1, button.top)) << "nothing new";
    EXPECT_EQ(pointer.hoverTab, 1);
    EXPECT_TRUE(TabPointerPress(pointer, 42, button.left)) << "the control does not see it";
    EXPECT_EQ(pointer.pressedClose, 42);
    EXPECT_EQ(TabPointerDragTo(pointer, metrics, row, -1, 5), -1) << "a close button is not dragged";
    TabPointerEnd(pointer);
    EXPECT_TRUE(TabPointerHover(pointer, metrics, strip, true, 160, 5) && !pointer.hoverClose);
    EXPECT_FALSE(TabPointerPress(pointer, 0, 160)) << "no document";
    EXPECT_FALSE(TabPointerPress(pointer, 42, 160));
    EXPECT_EQ(TabPointerDragTo(pointer, metrics, row, 1, 160 + metrics.dragStart - 1), -1) << "a shaky click";
    EXPECT_FALSE(pointer.dragging);
    EXPECT_EQ(TabPointerDragTo(pointer, metrics, row, 1, 400), 2);
    EXPECT_EQ(TabPointerDragTo(pointer, metrics, row, 2, 400), -1) << "there already";
    EXPECT_EQ(TabPointerDragTo(pointer, metrics, row, -1, 400), -1) << "closed meanwhile";
    TabPointerEnd(pointer);
    EXPECT_FALSE(pointer.dragging);
    EXPECT_TRUE(TabPointerHover(pointer, metrics, strip, true, 455, 5));
    EXPECT_TRUE(pointer.hoverTab == -1 && pointer.hoverButton == static_cast<int>(TabButton::List));
    EXPECT_TRUE(TabPointerHover(pointer, metrics, strip, false, 160, 5));
    EXPECT_TRUE(pointer.hoverTab == -1 && pointer.hoverButton == -1);
}

TEST(TabLook, TheCloseButtonTheDotAndThePinTakeTurns) {
    const TabMetrics metrics = TabMetricsForDpi(96);
    const auto drawn = [&](const TabFacts& facts) {  // the dot, and the strokes of the cross or the pin
        const TabLook look = TabLookOf(facts, metrics, {0, 0, 180, metrics.height}, 4);
        std::string text;
        for (const TabPart& part : look.parts)
            if (part.shape == TabShape::Dot) text += part.colour == TabColour::Modified ? "m" : "b";
        return text + (look.strokes.empty() ? "" : look.strokes.size() == 2 ? "x" : "p");
    };
    EXPECT_EQ(drawn({}), "");
    EXPECT_EQ(drawn({.active = true}), "x");
    EXPECT_EQ(drawn({.pointed = true}), "x");
    EXPECT_EQ(drawn({.pointed = true, .dragging = true}), "");
    EXPECT_EQ(drawn({.active = true, .modified = true, .light = TabLight::Failed}), "m");
    EXPECT_EQ(drawn({.modified = true, .pointed = true, .onClose = true}), "x");
    EXPECT_EQ(drawn({.pinned = true}), "p");
    EXPECT_EQ(drawn({.modified = true, .pinned = true, .pointed = true, .onClose = true}), "p");
}

TEST(TabLook, EachLightHasAShapeOfItsOwn) {
    using enum TabLight;
    const TabMetrics metrics = TabMetricsForDpi(96);
    std::set<std::string> shapes;
    for (const TabLight light : {None, Saved, Built, Failed, Building, Debugged, Changed, Gone, ReadOnly}) {
        const TabLook look = TabLookOf({.light = light}, metrics, {0, 0, 180, metrics.height}, 4);
        const TabRect box = TabMarkRect(metrics, {0, 0, 180, metrics.height});
        std::string shape;  // without the colours
        for (const TabPart& part : look.parts)
            if (part.place.left >= box.left && part.place.right <= box.right)
                shape += std::to_string(static_cast<int>(part.shape)) + "/" + std::to_string(part.place.Height()) + " ";
        for (const TabStroke& stroke : look.lightStrokes)
            shape += std::to_string(stroke.fromX) + "-" + std::to_string(stroke.toX) + " ";
        EXPECT_TRUE(shapes.insert(shape).second) << static_cast<int>(light) << ": " << shape;
    }
    const struct {
        TabState state;
        TabLight light;
        const wchar_t* words;
    } cases[] = {
        {{}, None, L"Never saved"},
        {{.hasFile = true}, Saved, L"Saved"},
        {{.hasFile = true, .built = true}, Built, L"Saved, built without errors"},
        {{.hasFile = true, .modified = true, .built = true}, None, L"Unsaved changes, built without errors"},
        {{.hasFile = true, .modified = true, .failed = true}, Failed, L"Unsaved changes, last build failed"},
        {{.hasFile = true, .readOnly = true, .failed = true}, Failed, L"Saved, read-only, last build failed"},
        {{.hasFile = true, .readOnly = true, .changed = true}, Changed, L"Saved, changed on the disk, read-only"},
        {{.hasFile = true, .gone = true, .building = true, .failed = true},
         Building,
         L"Saved, gone from the disk, is being built"},
        {{.hasFile = true, .building = true, .debugged = true}, Debugged, L"Saved, is being built, is being debugged"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(TabLightOf(test.state), test.light);
        EXPECT_EQ(TabStateText(test.state), test.words);
    }
}

TEST(ClosedTabs, AreKeptUpToANumberAndASize) {
    std::vector<ClosedTab> closed;
    for (std::size_t i = 0; i <= kMostClosedTabs; ++i) ClosedTabsAdd(closed, {.label = std::to_wstring(i)});
    EXPECT_EQ(closed.size(), kMostClosedTabs);
    EXPECT_EQ(closed.front().label, L"1") << "the first one went";
    ClosedTabsAdd(closed, {.label = L"large", .text = std::string(kMostClosedText, 'x')});
    EXPECT_EQ(closed.back().label, L"large");
    ClosedTabsAdd(closed, {.label = L"more", .text = "x"});
    EXPECT_TRUE(closed.size() == 1 && closed.front().label == L"more") << "what was closed before it went, too";
    ClosedTabsAdd(closed, {.label = L"too large", .text = std::string(kMostClosedText + 1, 'x')});
    EXPECT_EQ(closed.back().label, L"more");
}

}  // namespace
