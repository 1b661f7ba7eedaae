// The table of panes, questions and lists as any pane would use them, without the frame.
#include "app/app_state.h"
#include "base/events.h"
#include "ui/chrome.h"
#include "ui/list_view.h"
#include "ui/message.h"
#include "ui/panes.h"

#include <gtest/gtest.h>

#include <string>

namespace {

HWND g_windows[2];
int g_layouts = 0, g_opened = 0;

HWND MakePane(HWND, int) { return nullptr; }

const PaneSpec kTwoPanes[] = {{.id = PaneId::Output,
                               .title = L"Output",
                               .area = PaneArea::Bottom,
                               .controlId = 1,
                               .window = &g_windows[0],
                               .create = MakePane,
                               .comesBack = true,
                               .command = 77,
                               .onShown = [] { ++g_opened; }},
                              {.id = PaneId::Tree,
                               .title = L"Tree",
                               .area = PaneArea::Left,
                               .controlId = 2,
                               .window = &g_windows[1],
                               .create = MakePane,
                               .setting = &Settings::showProjectTree}};

TEST(Panes, AreShownByTheirSettingOrForTheRun) {
    SettingsDefaults(g_app.settings);
    g_app.panesShown = 0;
    g_layouts = g_opened = 0;
    const auto layout = g_events.layoutWanted;
    g_events.layoutWanted = [] { ++g_layouts; };
    PanesConnect(kTwoPanes);
    PanesRestore();
    EXPECT_EQ(PanesShown(), PaneBit(PaneId::Output)) << "as the default of the setting says";
    PaneShow(PaneId::Output, false);
    EXPECT_EQ(PanesShown(), 0U);
    g_app.settings.errorListHeight = 210;
    PanesRemember();
    EXPECT_EQ(g_app.settings.panesShown, 0);
    g_app.settings.errorListHeight = 150;
    PanesRestore();
    EXPECT_EQ(g_app.settings.errorListHeight, 210);
    EXPECT_EQ(PanesShown(), 0U) << "it stays hidden";
    PaneShow(PaneId::Output, true);
    PaneShow(PaneId::Output, true);
    EXPECT_EQ(g_opened, 1) << "opened once, whatever is asked again";
    EXPECT_EQ(g_layouts, 3);
    PaneSetShown(PaneId::Tree, true);
    EXPECT_EQ(g_layouts, 3) << "for several at once";
    EXPECT_EQ(g_app.settings.showProjectTree, 1);
    EXPECT_TRUE(PaneIsShown(PaneId::Tree));
    EXPECT_EQ(PaneOfCommand(77), &kTwoPanes[0]);
    EXPECT_EQ(PaneOfCommand(0), nullptr) << "panes without a command are no pane's command";
    PanesConnect({});
    g_events.layoutWanted = layout;
}

TEST(Messages, ASelftestOrATestAnswersInTheUsersPlace) {
    const UserQuestion question = {L"Caption", L"Text?", AskButtons::YesNoCancel, AskIcon::Question, Answer::No};
    g_selftestTabsMode = true;
    EXPECT_EQ(AskUser(question), Answer::No);
    static std::wstring asked;
    g_answerInstead = [](const UserQuestion& each) {
        asked = each.text;
        return Answer::Cancel;
    };
    EXPECT_EQ(AskUser(question), Answer::Cancel);
    ErrorMessage(L"%d lost", 3);
    EXPECT_EQ(asked, L"3 lost");
    g_answerInstead = nullptr;
    g_selftestTabsMode = false;
}

constexpr ListColumn kWide[] = {{L"Name", 10, 4, false}, {L"Value", 10, 4, true}};
int g_activated = -1;
constexpr ListKind kNames = {.columns = kWide, .activate = [](int row, int) { g_activated = row; }};
constexpr ListKind kOthers = {.columns = kWide, .hasMarks = true};

// Two lists at once, each with its own rows and columns: neither changes the other's.
TEST(Lists, KeepTheirRowsAndPlacesApart) {
    SettingsDefaults(g_app.settings);
    g_app.hInstance = GetModuleHandleW(nullptr);
    const HWND parent =
        CreateWindowW(L"STATIC", L"", WS_POPUP, 0, 0, 400, 300, nullptr, nullptr, g_app.hInstance, nullptr);
    ListView first, second;
    ASSERT_TRUE(ListViewCreate(first, parent, 1));
    ASSERT_TRUE(ListViewCreate(second, parent, 2));
    ListContent names, others;
    for (int i = 0; i < 5; ++i) names.rows.push_back({.cells = {std::to_wstring(i), L"value"}});
    others.rows.push_back({.cells = {L"only", L""}});
    for (ListView* list : {&first, &second}) {
        SetWindowPos(list->window, nullptr, 0, 0, 300, 200, SWP_NOZORDER);
        ListViewApplyTheme(*list);
    }
    ListViewShow(first, kNames);
    ListViewUpdate(first, names);
    ListViewShow(second, kOthers);
    ListViewUpdate(second, others);
    ListViewSelect(first, 3);
    EXPECT_EQ(ListViewSelected(second), 0);
    SendMessageW(first.window, WM_KEYDOWN, VK_RETURN, 0);
    EXPECT_EQ(g_activated, 3);
    ListViewShow(first, kOthers);
    ListViewUpdate(first, others);
    EXPECT_EQ(SendMessageW(first.window, LVM_GETITEMCOUNT, 0, 0), 1);
    ListViewShow(first, kNames);
    ListViewUpdate(first, names);
    EXPECT_EQ(ListViewSelected(first), 3) << "back where the user left it";
    DestroyWindow(parent);
    EXPECT_EQ(first.window, nullptr) << "forgotten with its window";
}

// The dark theme is chosen, and the system asks for black on white.
TEST(HighContrast, OverrulesTheThemeAndLeavesControlsToTheSystem) {
    SettingsDefaults(g_app.settings);
    g_app.settings.theme = 1;
    ThemeUseSystem({.highContrast = true,
                    .colours = {.window = 0xFFFFFF,
                                .windowText = 0x000000,
                                .face = 0xFFFFFF,
                                .faceText = 0x000000,
                                .highlight = 0x37006E,
                                .highlightText = 0xFFFFFF}});
    EXPECT_TRUE(ThemeChosenDark());
    EXPECT_FALSE(ThemeIsDark());
    EXPECT_FALSE(ThemeDrawsControls());
    EXPECT_EQ(ThemeCurrentChrome().paneBack, RGB(255, 255, 255));
    EXPECT_EQ(ThemeCurrentChrome().tabActiveBack, RGB(255, 255, 255));
    EXPECT_EQ(ThemeCurrentChrome().line, RGB(0, 0, 0));
    EXPECT_EQ(ThemeCurrentPalette().selectionText, 0xFFFFFFu);
    g_app.settings.editorStylePreset = 4;
    EXPECT_TRUE(ThemeCurrentPalette().italicComments) << "the fonts of the chosen style stay";
    ThemeUseSystem({});
    EXPECT_TRUE(ThemeIsDark());
    EXPECT_TRUE(ThemeDrawsControls());
    EXPECT_FALSE(ThemeCurrentPalette().selectionText);
    SettingsDefaults(g_app.settings);
}

}  // namespace
