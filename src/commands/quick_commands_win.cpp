// The commands, for the command palette: every one in the main menu, with its keys and its state. UI thread only.
#include "commands/quick_source.h"

#include "base/texts.h"
#include "commands/command_state.h"
#include "commands/menu_commands.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <vector>

namespace {

constexpr std::size_t kMostRecent = 12;

struct PaletteState {
    CommandView view;  // when the window was opened; its own field would count as the place of the keyboard
    std::vector<MenuCommand> commands;
    FuzzyIndices texts;
    std::vector<int> recent;  // commands that were run from here, the latest first
};
PaletteState g_palette;

std::size_t RankOf(int command) {
    return static_cast<std::size_t>(std::ranges::find(g_palette.recent, command) - g_palette.recent.begin());
}

void GatherCommands(HWND) {
    g_palette.commands = MenuCommands(GetMenu(g_ui.hMainWnd));
    std::ranges::stable_sort(g_palette.commands, {}, [](const MenuCommand& command) { return RankOf(command.id); });
    auto index = std::make_shared<FuzzyIndex>();
    for (const MenuCommand& command : g_palette.commands) {
        const std::size_t rank = RankOf(command.id);
        const int boost = rank < g_palette.recent.size() ? static_cast<int>(kMostRecent - rank) : 0;
        FuzzyAdd(index.get(), command.path + command.name, command.path.size(), boost);
    }
    g_palette.texts = {index};
}

void RunCommand(const QuickItem& item, const QuickQuery&) {
    const int command = g_palette.commands[item.number].id;
    std::erase(g_palette.recent, command);
    g_palette.recent.insert(g_palette.recent.begin(), command);
    if (g_palette.recent.size() > kMostRecent) g_palette.recent.pop_back();
    PostMessageW(g_ui.hMainWnd, WM_COMMAND, static_cast<WPARAM>(command), 0);
}

QuickExtra ExtraOfCommand(const QuickItem& item) {
    const MenuCommand& command = g_palette.commands[item.number];
    const CommandState state = CommandStateOf(command.id, g_palette.view);
    return {.keys = command.keys, .mark = state.checked ? QuickMark::Tick : QuickMark::None, .enabled = state.enabled};
}

}  // namespace

const QuickSource kQuickCommands = {
    .prefix = L'>',
    .title = English(L"commands"),
    .opening = [] { g_palette.view = CurrentCommandView(); },
    .begin = GatherCommands,
    .texts = [](const QuickQuery&) -> const FuzzyIndices& { return g_palette.texts; },
    .extra = ExtraOfCommand,
    .accept = RunCommand,
};
