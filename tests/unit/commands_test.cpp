// The commands as the user meets them: menu, table and keys agree, and each command is enabled and checked when it
// should be. Reads src/resources/app.rc.
#include "commands/command_table.h"
#include "commands/context_menu.h"
#include "commands/edit_fields.h"
#include "resources/ids.h"
#include "support/golden_file.h"
#include "ui/pane_id.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cwctype>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct MenuItem {
    std::string text, key;  // "&Save", "Ctrl+S"
    int command = 0;
};

struct Resources {
    std::vector<MenuItem> items;
    std::map<std::string, int> accelerators;  // "Ctrl+Shift+S" to its command
    std::vector<std::string> faults;
};

std::map<std::string, int> Numbers() {
    std::map<std::string, int> numbers;
    std::istringstream lines(ReadBytes(std::string(KVX_ROOT_DIR) + "/src/resources/ids.h"));
    const std::regex define(R"(^#define (IDM_\w+) (\d+))");
    std::smatch found;
    for (std::string line; std::getline(lines, line);)
        if (std::regex_search(line, found, define)) numbers[found[1]] = std::stoi(found[2]);
    return numbers;
}

// Name of a key in the menu, made from "VK_F9, VIRTKEY, CONTROL, SHIFT".
std::string KeyName(std::string key, const std::string& modifiers) {
    if (key.starts_with("VK_")) key.erase(0, 3);
    const auto has = [&modifiers](const char* word) { return modifiers.find(word) != std::string::npos; };
    return std::string(has("CONTROL") ? "Ctrl+" : "") + (has("ALT") ? "Alt+" : "") + (has("SHIFT") ? "Shift+" : "") +
           key;
}

Resources ReadResources() {
    const std::map<std::string, int> numbers = Numbers();
    Resources resources;
    std::istringstream lines(ReadBytes(std::string(KVX_ROOT_DIR) + "/src/resources/app.rc"));
    const std::regex item(R"rx(MENUITEM "([^"]*)", (\w+))rx");
    const std::regex key(R"rx(^ *"?(\w+)"?, (IDM_\w+), VIRTKEY(.*))rx");
    std::smatch found;
    for (std::string line; std::getline(lines, line);) {
        const bool isItem = std::regex_search(line, found, item);
        if (!isItem && !std::regex_search(line, found, key)) continue;
        const auto number = numbers.find(found[2]);
        if (number == numbers.end()) {
            resources.faults.push_back(found[2]);
        } else if (isItem) {
            const std::string text = found[1];
            const std::size_t tab = text.find("\\t");
            resources.items.push_back(
                {text.substr(0, tab), tab == std::string::npos ? "" : text.substr(tab + 2), number->second});
        } else if (!resources.accelerators.emplace(KeyName(found[1], found[3]), number->second).second) {
            resources.faults.push_back("twice: " + line);
        }
    }
    return resources;
}

std::string NarrowName(const ExtraKey& key) {
    const std::wstring name = NameOfExtraKey(key);
    return {name.begin(), name.end()};
}

// The keys of both tables.
std::multimap<std::string, int> AllKeys(const Resources& resources) {
    std::multimap<std::string, int> keys(resources.accelerators.begin(), resources.accelerators.end());
    for (const ExtraKey& key : ExtraKeys()) keys.emplace(NarrowName(key), key.command);
    return keys;
}

// Keys that the menu shows although neither table has them: those of the system and of the editing control.
const std::set<std::string> kKeysOfOthers = {"Alt+F4", "Ctrl+Z", "Ctrl+Y", "Ctrl+X", "Ctrl+C", "Ctrl+V", "Ctrl+A"};

struct Moment {
    char letter;
    std::uint32_t conditions;
};
constexpr std::uint32_t kText = kHasTab | kCanPaste | kCanSelectAll | kIdle | kNoSession;
constexpr Moment kMoments[] = {
    {'n', kIdle | kNoSession},  // no document
    {'u', kText | kBasicSource},
    {'e', kText | kBasicSource | kCanUndo | kCanRedo | kAnyModified | kHasOtherTabs | kHasTabsRight},  // edited
    {'s', kText | kBasicSource | kHasSelection | kCanCut | kCanCopy},
    {'f', kText | kHasFile | kCanBuild},  // saved, but not BASIC
    {'x', kText | kHasFile | kCanBuild | kHasErrors},
    {'b', kHasTab | kCanPaste | kCanSelectAll | kHasFile | kCanBuild | kBuilding | kNoSession},
    {'l', kHasTab | kCanPaste | kCanSelectAll | kHasFile | kCanBuild | kIdle | kSession},  // a program is launched
    {'p', kHasTab | kCanPaste | kCanSelectAll | kHasFile | kCanBuild | kIdle | kSession | kProgramStopped},
    {'r', kHasTab | kCanPaste | kCanSelectAll | kHasFile | kCanBuild | kIdle | kSession | kProgramRunning},
};

struct Mark {
    std::string name;
    CommandView view;
};
std::vector<Mark> Marks() {
    std::vector<Mark> marks;
    const auto add = [&marks](const std::string& name) -> CommandView& {
        CommandView& view = marks.emplace_back(Mark{name, {}}).view;
        view.theme = view.style = view.compiler = view.profile = -1;
        return view;
    };
    for (const auto& [name, shown] : {std::pair{"toolbar", &CommandView::toolbar},
                                      {"status bar", &CommandView::statusBar},
                                      {"whitespace", &CommandView::whitespace},
                                      {"wrap", &CommandView::wrap},
                                      {"steps follow", &CommandView::stepsFollow},
                                      {"error texts", &CommandView::errorTexts}})
        add(name).*shown = true;
    for (const auto& [name, pane] :
         {std::pair{"output", PaneId::Output}, {"asm", PaneId::Asm}, {"debug pane", PaneId::Debug}, {"ai", PaneId::Ai}})
        add(name).panes = PaneBit(pane);
    for (int i = 0; i <= 5; ++i)
        for (const auto& [name, choice] : {std::pair{"theme ", &CommandView::theme},
                                           {"style ", &CommandView::style},
                                           {"compiler ", &CommandView::compiler},
                                           {"profile ", &CommandView::profile}})
            add(name + std::to_string(i)).*choice = i;
    return marks;
}

std::string Described(const CommandRow& row, const Resources& resources) {
    std::string text = std::to_string(row.id) + " ";
    const auto item = std::ranges::find(resources.items, row.id, &MenuItem::command);
    text += item != resources.items.end() ? item->text : "-";
    text += " | ";
    for (const Moment& moment : kMoments)
        text += CommandStateOf(row.id, {.conditions = moment.conditions}).enabled ? moment.letter : '.';
    text += " |";
    // A mark counts only when the command is not checked without it. The theme counts as dark from 1 on.
    for (const Mark& mark : Marks()) {
        if (mark.name.starts_with("theme") && mark.view.theme > 1) continue;
        CommandView other = mark.view;
        other.theme = mark.name.starts_with("theme") ? other.theme : 0;
        CommandView none;
        none.theme = 0;
        none.style = none.compiler = none.profile = -1;
        const bool checked = CommandStateOf(row.id, other).checked;
        if (checked && (mark.name == "theme 0" || !CommandStateOf(row.id, none).checked)) text += " " + mark.name;
    }
    text += " |";
    for (const auto& [key, command] : AllKeys(resources))
        if (command == row.id) text += " " + key;
    return text + "\n";
}

TEST(Commands, StatesMarksAndKeysOfEveryOne) {
    const Resources resources = ReadResources();
    std::string text =
        "number, menu text | possible with: no document, untitled, edited, selection, file, errors (x), build, "
        "launched, "
        "stopped (p), running | checked by | keys\n";
    for (const CommandRow& row : CommandTable()) text += Described(row, resources);
    ExpectGolden("commands.txt", text);
    EXPECT_FALSE(CommandStateOf(4711, {.conditions = ~0u}).enabled) << "no command";
}

TEST(Commands, MenuTableAndKeysAgree) {
    const Resources resources = ReadResources();
    ASSERT_GT(resources.items.size(), 50U);
    ASSERT_GT(resources.accelerators.size(), 10U);
    EXPECT_TRUE(resources.faults.empty()) << resources.faults.front();

    std::set<int> inMenu;
    for (const MenuItem& item : resources.items) {
        EXPECT_TRUE(inMenu.insert(item.command).second) << item.text << " stands twice";
        const CommandRow* row = FindCommand(item.command);
        ASSERT_NE(row, nullptr) << item.text << " has no row";
        EXPECT_EQ(row->place, CommandPlace::Menu) << item.text;
    }
    std::set<int> rows;
    for (const CommandRow& row : CommandTable()) {
        EXPECT_TRUE(rows.insert(row.id).second) << row.id << " has two rows";
        EXPECT_EQ(inMenu.contains(row.id), row.place == CommandPlace::Menu) << row.id;
    }

    const std::multimap<std::string, int> keys = AllKeys(resources);
    for (const auto& [key, command] : keys) {
        EXPECT_NE(FindCommand(command), nullptr) << key << " leads nowhere";
        EXPECT_EQ(keys.count(key), 1U) << key << " means two commands";
        EXPECT_FALSE(kKeysOfOthers.contains(key)) << key;
    }
    for (const MenuItem& item : resources.items) {
        if (item.key.empty() || kKeysOfOthers.contains(item.key)) continue;
        const auto key = keys.find(item.key);
        ASSERT_NE(key, keys.end()) << item.text << " shows " << item.key;
        // The menu shows F5 beside both commands, but the key is bound to IDM_BUILD_RUN.
        const int shown = item.command == IDM_DEBUG_START ? IDM_BUILD_RUN : item.command;
        EXPECT_EQ(key->second, shown) << item.text << " shows " << item.key;
    }
}

// The letters of each menu's items. `twice` gets those that stand in one menu twice.
void TakeMnemonic(const std::string& item, std::map<char, std::string>& letters, std::set<std::string>& twice) {
    const std::size_t mark = std::regex_replace(item, std::regex("&&"), "  ").find('&');
    if (mark == std::string::npos) return;
    const char letter = static_cast<char>(std::toupper(static_cast<unsigned char>(item[mark + 1])));
    const auto [first, isNew] = letters.emplace(letter, item);
    if (!isNew) twice.insert(first->second + " | " + item);
}

TEST(Commands, MnemonicsOfAMenuDiffer) {
    std::istringstream lines(ReadBytes(std::string(KVX_ROOT_DIR) + "/src/resources/app.rc"));
    const std::regex item(R"rx(^ *(POPUP|MENUITEM) "([^"\\]*))rx");
    std::vector<std::map<char, std::string>> menus;  // that are open, the innermost last
    std::set<std::string> twice;
    std::smatch found;
    for (std::string line; std::getline(lines, line) && !line.starts_with("IDR_ACCELERATORS");) {
        if (line.ends_with("BEGIN")) menus.emplace_back();
        if (line.ends_with("END")) menus.pop_back();
        if (std::regex_search(line, found, item)) TakeMnemonic(found[2], menus.back(), twice);
    }
    // These texts are fixed. The letter goes from one to the other, and Enter takes it.
    const std::set<std::string> known = {"&Redo | &Replace...", "&Status Bar | AI &Sidebar", "&Output Pane | Zoom &Out",
                                         "&Whitespace | &Word Wrap"};
    EXPECT_EQ(twice, known);
}

TEST(EditFields, OfferWhatTheyCanDo) {
    using Kind = EditFieldKind;
    const struct {
        const char* name;
        EditField field;
        std::uint32_t conditions;
    } cases[] = {
        {"an empty line", {.kind = Kind::Line}, kCanSelectAll | kCanPaste},
        {"a line", {Kind::Line, false, true, true}, kCanSelectAll | kCanPaste | kCanCut | kCanCopy | kCanUndo},
        {"a pane of text", {Kind::Rich, true, true, true, true}, kCanSelectAll | kCanCopy},
        {"a list", {Kind::Rows, false, true, true}, kCanCopy},
        {"an empty list", {.kind = Kind::Rows}, 0},
        {"tabs", {Kind::Other, false, true, true}, 0},
    };
    for (const auto& each : cases) EXPECT_EQ(EditConditionsOf(each.field), each.conditions) << each.name;
    EXPECT_EQ(EditFieldKindOf(L"RichEdit50W"), Kind::Rich);
}

TEST(ContextMenus, OfferCommandsOfTheTableWithMnemonicsOfTheirOwn) {
    for (const ContextPlace place :
         {ContextPlace::Text, ContextPlace::Margin, ContextPlace::Output, ContextPlace::Errors}) {
        std::set<wchar_t> mnemonics;
        for (const ContextItem& item : ContextItemsOf(place)) {
            if (item.command == 0) continue;
            const std::wstring text = item.text;
            EXPECT_NE(FindCommand(item.command), nullptr) << item.command;
            ASSERT_NE(text.find(L'&'), std::wstring::npos) << item.command;
            EXPECT_TRUE(
                mnemonics.insert(static_cast<wchar_t>(std::towupper(static_cast<wint_t>(text[text.find(L'&') + 1]))))
                    .second)
                << "two items with one key: " << item.command;
        }
        for (const bool onDiagnostic : {false, true}) {
            const std::vector<ContextItem> items = ContextItemsNow(place, onDiagnostic, IDM_AI_LMSTUDIO);
            bool separator = true;  // none may stand first
            int explain = 0;
            for (const ContextItem& item : items) {
                EXPECT_FALSE(separator && item.command == 0) << static_cast<int>(place);
                separator = item.command == 0;
                explain += item.command == IDM_AI_EXPLAIN;
                EXPECT_NE(item.command, IDM_AI_OPENAI) << "the service that the settings name is asked";
            }
            EXPECT_FALSE(separator) << "at the end";
            EXPECT_EQ(explain, onDiagnostic ? 1 : 0);
        }
    }
}

}  // namespace
