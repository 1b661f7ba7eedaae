// Command states, keys and toolbar pictures.
#include "commands/command_table.h"
#include "commands/icons.h"
#include "commands/toolbar_fit.h"
#include "resources/ids.h"

#include <gtest/gtest.h>

#include <set>

namespace {

TEST(CommandTable, StatesFollowTheConditions) {
    CommandView view;
    EXPECT_FALSE(CommandStateOf(IDM_FILE_SAVE, view).enabled) << "no document";
    EXPECT_TRUE(CommandStateOf(IDM_FILE_NEW, view).enabled);
    view.conditions = kHasTab | kBuilding;
    EXPECT_FALSE(CommandStateOf(IDM_BUILD_CLEAN, view).enabled) << "a build runs";
    EXPECT_TRUE(CommandStateOf(IDM_BUILD_STOP, view).enabled);
    EXPECT_TRUE(CommandStateOf(IDM_BUILD, view).enabled) << "says itself that one runs";
    view.conditions = kHasTab | kHasFile | kIdle;
    EXPECT_FALSE(CommandStateOf(IDM_BUILD_STOP, view).enabled);
    EXPECT_TRUE(CommandStateOf(IDM_BUILD_CLEAN, view).enabled);
    EXPECT_FALSE(CommandStateOf(IDM_EDIT_FORMAT_DOCUMENT, view).enabled) << "not BASIC";
    view.conditions = ~static_cast<std::uint32_t>(kNever);
    EXPECT_FALSE(CommandStateOf(IDM_AI_OPENAI, view).enabled) << "not in this version";
    const struct {
        const char* name;
        std::uint32_t conditions;
        bool start, stop, step, pause;
    } moments[] = {{"no session", kHasTab | kNoSession, true, false, false, false},
                   {"starting", kHasTab | kSession, false, true, false, false},
                   {"stopped", kHasTab | kSession | kProgramStopped, false, true, true, false},
                   {"running", kHasTab | kSession | kProgramRunning, false, true, false, true}};
    for (const auto& moment : moments) {
        view.conditions = moment.conditions;
        for (const int id : {IDM_DEBUG_BUILD_START, IDM_DEBUG_BUTTON_START})
            EXPECT_EQ(CommandStateOf(id, view).enabled, moment.start) << moment.name << id;
        for (const int id : {IDM_DEBUG_STOP, IDM_DEBUG_BUTTON_STOP})
            EXPECT_EQ(CommandStateOf(id, view).enabled, moment.stop) << moment.name << id;
        for (const int id : {IDM_DEBUG_STEP_OVER, IDM_DEBUG_BUTTON_STEP_INTO, IDM_DEBUG_STEP_OUT, IDM_DEBUG_CONTINUE,
                             IDM_DEBUG_RUN_TO_CURSOR, IDM_DEBUG_MEMORY})
            EXPECT_EQ(CommandStateOf(id, view).enabled, moment.step) << moment.name << id;
        EXPECT_EQ(CommandStateOf(IDM_DEBUG_PAUSE, view).enabled, moment.pause) << moment.name;
        EXPECT_TRUE(CommandStateOf(IDM_DEBUG_START, view).enabled) << "starts or ends: " << moment.name;
    }
    EXPECT_FALSE(CommandStateOf(4711, view).enabled) << "unknown";
    view.compiler = 4;
    EXPECT_TRUE(CommandStateOf(IDM_USE_KVXC64, view).checked);
    EXPECT_FALSE(CommandStateOf(IDM_USE_KVXA64, view).checked);
}

TEST(CommandTable, EveryIdOnceAndEveryKeyLeadsToACommand) {
    std::set<int> ids;
    for (const CommandRow& row : CommandTable()) EXPECT_TRUE(ids.insert(row.id).second) << row.id;
    for (std::uint32_t key = 0; key < 256; ++key) {
        for (int modifiers = 0; modifiers < 8; ++modifiers) {
            const int command =
                CommandOfExtraKey(key, (modifiers & 1) != 0, (modifiers & 2) != 0, (modifiers & 4) != 0);
            EXPECT_TRUE(command == 0 || FindCommand(command) != nullptr) << key;
        }
    }
    EXPECT_EQ(CommandOfExtraKey(0x73, false, false, true), 0) << "Alt+F4 belongs to the system";
}

TEST(Icons, EachIsDrawnInsideItsFrameAtEverySize) {
    const IconInks inks{.line = 0x112233, .accent = 0x445566, .go = 0x00FF00, .stop = 0xFF0000, .fill = 0xFFFFFF};
    for (int icon = 0; icon < static_cast<int>(Icon::Count); ++icon) {
        for (const int size : {16, 24, 32}) {
            const auto pixels = RenderIcon(static_cast<Icon>(icon), size, inks);
            int covered = 0;
            for (std::size_t i = 0; i < pixels.size(); ++i) {
                const std::uint32_t alpha = pixels[i] >> 24;
                covered += alpha > 127 ? 1 : 0;
                for (int shift : {0, 8, 16})
                    EXPECT_LE(pixels[i] >> shift & 0xFF, alpha) << "not premultiplied: icon " << icon;
            }
            const int area = size * size;
            EXPECT_TRUE(covered > area / 20 && covered < area * 4 / 5) << "icon " << icon << " size " << size;
        }
    }
}

TEST(ToolbarFit, TheLowestRankGoesFirstAndGapsFollow) {
    // Files | editing | one that stays, running | panes, and one that the moment does not want.
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
