// Toolbar pictures, and which buttons there is room for.
#include "commands/icons.h"
#include "commands/toolbar_fit.h"
#include "commands/toolbar_rules.h"
#include "commands/toolbar_table.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

TEST(Icons, EachIsDrawnInsideItsFrameAtEverySize) {
    const IconInks inks{.line = 0x112233, .accent = 0x445566, .go = 0x00FF00, .stop = 0xFF0000, .fill = 0xFFFFFF};
    for (int icon = 0; icon < static_cast<int>(Icon::Count); ++icon) {
        for (const int size : {16, 24, 32}) {
            const auto pixels = RenderIcon(static_cast<Icon>(icon), size, inks);
            int covered = 0;
            for (std::size_t i = 0; i < pixels.size(); ++i) {
                const std::uint32_t alpha = pixels[i] >> 24;
                covered += alpha > 127 ? 1 : 0;
            }
            const int area = size * size;
            EXPECT_TRUE(covered > area / 20 && covered < area * 4 / 5) << "icon " << icon << " size " << size;
        }
    }
}

TEST(ToolbarTable, EachButtonHasACommandANameAndAPictureOfItsOwn) {
    std::set<int> commands;
    std::map<Icon, int> pictures;
    for (const ButtonRow& button : kToolbarButtons) {
        if (button.command == 0) continue;
        EXPECT_TRUE(commands.insert(button.command).second) << button.command << " has two buttons";
        const CommandRow* row = FindCommand(button.command);
        ASSERT_NE(row, nullptr) << button.command;
        const CommandRow* named = button.twin != 0 ? FindCommand(button.twin) : row;
        ASSERT_NE(named, nullptr) << button.twin;
        EXPECT_NE(button.tip != nullptr, named->place == CommandPlace::Menu) << button.command << " needs one name";
        // The button of the compilers shows a text. Two that take back something have the same picture.
        if (button.command != IDM_COMPILER_MENU && button.command != IDM_AI_UNDO) ++pictures[button.icon];
    }
    for (int icon = 0; icon < static_cast<int>(Icon::Count); ++icon)
        EXPECT_EQ(pictures[static_cast<Icon>(icon)], 1) << "buttons with picture " << icon;
}

// Where the edge of a shape covers a part of a pixel, the colour stays and only the opacity falls.
TEST(Icons, EdgesKeepTheColourOfTheInk) {
    const IconInks inks{.line = 0x804020, .accent = 0x804020, .go = 0x804020, .stop = 0x804020, .fill = 0x804020};
    int edges = 0;
    for (const std::uint32_t pixel : RenderIcon(Icon::Run, 24, inks)) {
        if (pixel >> 24 == 0) continue;
        edges += pixel >> 24 < 255 ? 1 : 0;
        ASSERT_EQ(pixel & 0xFFFFFF, 0x804020U);
    }
    EXPECT_GT(edges, 10);
    EXPECT_EQ(PremultipliedPixel(0x80FF8000), 0x80804000U);
}

TEST(ToolbarTexts, OfTipsAndOfTheMenuOfHiddenButtons) {
    const struct {
        const wchar_t *menu, *key, *tip, *item;
    } cases[] = {{L"Save A&ll\tCtrl+Shift+S", L"F1", L"Save All (Ctrl+Shift+S)", L"Save All\tCtrl+Shift+S"},
                 {L"Build && &Run...", L"F5", L"Build & Run (F5)", L"Build && Run\tF5"},
                 {L"AI Do (transcribe + edit)", L"", L"AI Do (transcribe + edit)", L"AI Do (transcribe + edit)"}};
    for (const auto& each : cases) {
        EXPECT_EQ(CommandTip(each.menu, each.key), each.tip);
        EXPECT_EQ(CommandItem(each.menu, each.key), each.item);
    }
}

TEST(ToolbarFit, TheLowestRankGoesFirstAndGapsFollow) {
    // Groups: files | editing | a button that always stays, for running | panes, and a button that is hidden at the
    // moment.
    const std::vector<BarItem> items = {{10, 2, true, false},      {10, 2, true, false}, {3, 0, false, true},
                                        {10, 1, true, false},      {10, 1, true, false}, {3, 0, false, true},
                                        {30, kStays, true, false}, {10, 4, true, false}, {10, 4, false, false},
                                        {3, 0, false, true},       {10, 0, true, false}};
    const struct {
        int room;
        const char* shown;
        bool more;
    } cases[] = {{200, "11g11g11.g1", false}, {99, "11g11g11.g1", false}, {98, "11g11g11...", true},
                 {93, "11g1.g11...", true},   {61, "1....g11...", true},  {5, "......1....", true}};
    for (const auto& each : cases) {
        const BarFit fit = FitToolbar(items, each.room, 8);
        std::string shown;
        for (std::size_t i = 0; i < items.size(); ++i) shown += !fit.shown[i] ? '.' : items[i].gap ? 'g' : '1';
        EXPECT_EQ(shown, each.shown) << each.room;
        EXPECT_EQ(fit.more, each.more) << each.room;
    }
}

}  // namespace
