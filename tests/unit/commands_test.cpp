// The commands as the user meets them: menu, table and keys agree, and each command is enabled and checked when it
// should be. Reads src/resources/app.rc.
#include "base/utf8.h"
#include "commands/command_table.h"
#include "commands/context_menu.h"
#include "commands/edit_fields.h"
#include "commands/keyboard_map_rows.h"
#include "editor/pane_settings.h"
#include "resources/ids.h"
#include "settingsui/settings_pages.h"
#include "support/golden_file.h"
#include "ui/pane_id.h"

#include <Scintilla.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cwctype>
#include <filesystem>
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
    {'s', kText | kBasicSource | kHasSelection | kHasCorners | kCanCut | kCanCopy},
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
                                      {"keeps console", &CommandView::keepsConsole},
                                      {"error texts", &CommandView::errorTexts},
                                      {"columns", &CommandView::columns}})
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

// For each menu of the bar what stands in it at any depth, as a text would name it: "Build & Run". The pages of the
// settings dialog stand under "Settings".
std::map<std::string, std::vector<std::string>> NamesInMenus() {
    std::map<std::string, std::vector<std::string>> names;
    std::istringstream lines(ReadBytes(std::string(KVX_ROOT_DIR) + "/src/resources/app.rc"));
    const std::regex row(R"rx(^( *)(POPUP|MENUITEM) "([^"]*)")rx");
    std::smatch found;
    std::string menu;
    for (std::string line; std::getline(lines, line);) {
        if (!std::regex_search(line, found, row)) continue;
        const std::string shown = std::regex_replace(found[3].str(), std::regex(R"((\.\.\.)?(\\t.*)?$)"), "");
        const std::string name = std::regex_replace(shown, std::regex("&(&?)"), "$1");
        if (found[1].length() == 4 && found[2] == "POPUP")
            menu = name;
        else
            names[menu].push_back(name);
    }
    for (const SettingsPage& page : SettingsPages()) names["Settings"].emplace_back(ToUtf8(page.title));
    return names;
}

// Who is sent to a menu item or a page finds it there. The texts of the program, its pages of help, and the readme.
TEST(Commands, TextsNameMenuItemsAndPagesThatExist) {
    static const std::set<std::string> kOfOldTexts = {"Settings > AI.", "Settings > OAI", "Settings > OpenAI.",
                                                      "Tools > OpenAI"};
    const std::map<std::string, std::vector<std::string>> names = NamesInMenus();
    std::vector<std::string> files = {"src/resources/texts.txt", "README.md"};
    for (const auto& entry : std::filesystem::directory_iterator(std::string(KVX_ROOT_DIR) + "/docs"))
        if (entry.path().extension() == ".md") files.push_back("docs/" + entry.path().filename().string());
    const std::regex place(
        R"(\b(File|Edit|Search|View|Compiler|Project|Debug|Tools|Window|Help|Settings) > ([A-Z].*))");
    int seen = 0;
    for (const std::string& file : files) {
        std::string text = ReadBytes(std::string(KVX_ROOT_DIR) + "/" + file);
        if (file.ends_with(".md")) text = std::regex_replace(text, std::regex("[*`]|\n(?![\n|#-])"), " ");
        text = std::regex_replace(text, std::regex(" +"), " ");
        std::istringstream lines(text);
        std::smatch found;
        for (std::string line; std::getline(lines, line);) {
            for (; std::regex_search(line, found, place); line = found[2]) {
                const std::string whole = found[0], rest = found[2];
                const auto isThere = [&](const std::string& name) {
                    return rest.starts_with(name) && (rest.size() == name.size() ||
                                                      std::isalnum(static_cast<unsigned char>(rest[name.size()])) == 0);
                };
                const auto isOld = [&](const std::string& old) { return whole.starts_with(old); };
                EXPECT_TRUE(std::ranges::any_of(names.at(found[1]), isThere) || std::ranges::any_of(kOfOldTexts, isOld))
                    << file << ": " << whole;
                ++seen;
            }
        }
    }
    EXPECT_GT(seen, 40);
}

// The keys that the editing control has by itself, as the menus write them: "Ctrl+Shift+T".
std::set<std::string> KeysOfControl() {
    static const std::map<std::string, std::string> kModifiers = {
        {"SCI_NORM", ""},           {"SCI_SHIFT", "Shift+"},           {"SCI_CTRL", "Ctrl+"},
        {"SCI_CTRL_META", "Ctrl+"}, {"SCI_SCTRL_META", "Ctrl+Shift+"}, {"SCI_CSHIFT", "Ctrl+Shift+"},
        {"SCI_ALT", "Alt+"},        {"SCI_ASHIFT", "Alt+Shift+"}};
    static const std::map<std::string, std::string> kNames = {
        {"Add", "Num+"},       {"Subtract", "Num-"}, {"Divide", "Num/"}, {"Prior", "PageUp"}, {"Next", "PageDown"},
        {"Back", "Backspace"}, {"Delete", "Del"},    {"Insert", "Ins"},  {"Escape", "Esc"}};
    std::set<std::string> keys;
    std::istringstream lines(ReadBytes(std::string(KVX_ROOT_DIR) + "/third_party/scite/scintilla/src/KeyMap.cxx"));
    const std::regex row(R"rx(^\s*\{(?:Keys::(\w+)|Key\('(\\?.)'\)),\s*(SCI_\w+),)rx");
    std::smatch found;
    bool foreign = false;  // of another system
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("#")) foreign = line.starts_with("#if OS_X");
        if (foreign || !std::regex_search(line, found, row)) continue;
        std::string key = found[1].matched ? found[1].str() : found[2].str();
        if (key.starts_with('\\')) key.erase(0, 1);
        if (const auto named = kNames.find(key); named != kNames.end()) key = named->second;
        keys.insert(kModifiers.at(found[3]) + key);
    }
    return keys;
}

// The keys that panes take from the control, as they are in the messages that do so.
std::set<std::string> KeysTaken() {
    std::set<std::string> keys;
    for (const EditorMessage& message : PaneSetUpMessages()) {
        if (message.message != SCI_CLEARCMDKEY) continue;
        const int modifiers = static_cast<int>(message.wParam >> 16), key = static_cast<int>(message.wParam & 0xFFFF);
        std::string name = key == SCK_ADD        ? "Num+"
                           : key == SCK_SUBTRACT ? "Num-"
                           : key == SCK_DIVIDE   ? "Num/"
                                                 : std::string(1, static_cast<char>(key));
        if ((modifiers & SCMOD_SHIFT) != 0) name = "Shift+" + name;
        if ((modifiers & SCMOD_ALT) != 0) name = "Alt+" + name;
        if ((modifiers & SCMOD_CTRL) != 0) name = "Ctrl+" + name;
        keys.insert(name);
    }
    return keys;
}

TEST(Commands, NoKeyMeansSomethingToTheEditingControlToo) {
    const std::set<std::string> control = KeysOfControl(), taken = KeysTaken();
    if (control.empty()) GTEST_SKIP() << "the sources of the control are not here";
    ASSERT_TRUE(control.contains("Ctrl+Shift+L") && control.contains("Ctrl+\\") && control.size() > 60);
    const Resources resources = ReadResources();
    const std::multimap<std::string, int> ours = AllKeys(resources);
    for (const auto& [key, command] : ours)
        EXPECT_TRUE(!control.contains(key) || taken.contains(key))
            << key << " is command " << command << " and a key of the editing control";
    for (const std::string& key : taken)
        EXPECT_TRUE(control.contains(key) && ours.contains(key)) << key << " is taken for nothing";
    for (const EditorKey& key : EditorKeys()) {
        const std::wstring name = key.keys;
        const std::string narrow(name.begin(), name.end());
        EXPECT_TRUE(control.contains(narrow) && !ours.contains(narrow)) << narrow << " does not do what the map says";
    }
}

// "F8, F4": both.
std::set<std::string> KeysIn(const std::wstring& shown) {
    std::set<std::string> keys;
    for (std::size_t at = 0; at < shown.size();) {
        const std::size_t end = std::min(shown.find(L", ", at), shown.size());
        keys.insert(ToUtf8(shown.substr(at, end - at)));
        at = end + 2;
    }
    return keys;
}

// Keys that lists, trees and lines handle themselves wherever they have the keyboard. A command may have one of them only
// when that is for the editor alone.
TEST(Commands, PanesKeepTheirOwnKeys) {
    // These windows take their keys before the commands do.
    const std::set<std::wstring> first = {L"in the peek window", L"in Find and Replace",
                                          L"in Go to File and the command palette"};
    std::set<std::string> own = {"Ctrl+A"};
    for (const PaneKey& pane : PaneKeys())
        if (!first.contains(pane.place)) own.merge(KeysIn(pane.keys));
    EXPECT_GT(own.size(), 20u);
    for (const ExtraKey& key : ExtraKeys())
        EXPECT_TRUE(key.editorOnly || !own.contains(NarrowName(key))) << NarrowName(key) << " is a key of panes";
}

// The rows of the keyboard map, with the menus as they stand in the resources.
std::vector<KeyMapRow> MapRows(const Resources& resources) {
    const std::multimap<std::string, int> all = AllKeys(resources);
    std::vector<KeyMapRow> rows;
    for (const MenuItem& item : resources.items) {
        std::string keys = item.key;
        for (const auto& [key, command] : all)
            if (command == item.command && key != item.key) keys += (keys.empty() ? "" : ", ") + key;
        std::string name = std::regex_replace(item.text, std::regex("&(.)"), "$1");
        while (name.ends_with('.')) name.pop_back();
        rows.push_back({item.command, {keys.begin(), keys.end()}, {name.begin(), name.end()}, L""});
    }
    return AllKeyRows(rows);
}

TEST(Commands, TheKeyboardMapHasEachKeyOfACommandOnce) {
    const Resources resources = ReadResources();
    std::map<std::string, std::vector<int>> shown;
    for (const KeyMapRow& row : MapRows(resources)) {
        if (row.command == 0) continue;
        for (const std::string& key : KeysIn(row.keys)) shown[key].push_back(row.command);
    }
    for (const auto& [key, command] : AllKeys(resources)) EXPECT_EQ(shown[key], std::vector{command}) << key;
}

// The map as docs/keyboard.md lists it.
std::string KeyboardPage(const Resources& resources) {
    std::string page =
        "# Keys\n\nMade from the tables of the program. Help > Keyboard Map shows the same, with a filter.\n\n"
        "| keys | command |\n|---|---|\n";
    std::wstring place;
    for (const KeyMapRow& row : MapRows(resources)) {
        if (row.command == 0 && row.place != place) {
            place = row.place;
            std::string title = ToUtf8(place);
            title[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(title[0])));
            page += "\n## " + title + "\n\n| keys | what they do |\n|---|---|\n";
        }
        page += "| " + ToUtf8(row.keys) + " | " + ToUtf8(row.name) + " |\n";
    }
    return page;
}

TEST(Commands, ThePageOfKeysIsThatOfTheTables) {
    const std::string path = std::string(KVX_ROOT_DIR) + "/docs/keyboard.md";
    const std::string page = KeyboardPage(ReadResources());
    std::string shown = ReadBytes(path);
    std::erase(shown, '\r');
    if (shown == page) return;
    WriteBytes(path + ".new", page);
    ADD_FAILURE() << "docs/keyboard.md is out of date; see " << path << ".new";
}

TEST(KeyboardMap, AFilterFindsKeysAndWords) {
    const std::vector<KeyMapRow> rows = {{1, L"Ctrl+D", L"Duplicate", L"Edit > Lines"},
                                         {2, L"Ctrl+Shift+D", L"Select Next Occurrence", L"Edit"},
                                         {3, L"F8, F4", L"Next Error", L"Compiler"},
                                         {4, L"Ctrl++, Ctrl+Num+", L"Zoom In", L"View"}};
    const auto found = [&rows](const wchar_t* filter) {
        std::string numbers;
        for (const KeyMapRow& row : FilteredKeyRows(rows, filter)) numbers += std::to_string(row.command);
        return numbers;
    };
    EXPECT_EQ(found(L""), "1234");
    EXPECT_EQ(found(L"ctrl+d"), "1") << "the whole key";
    EXPECT_EQ(found(L"next"), "23");
    EXPECT_EQ(found(L"next  edit"), "2");
    EXPECT_EQ(found(L"F4"), "3");
    EXPECT_EQ(found(L"ctrl+num+"), "4");
    EXPECT_EQ(found(L"nothing"), "");
}

// The letters of the items of a menu or of the controls of a dialog. `twice` gets those that stand there twice.
void TakeMnemonic(const std::string& item, std::map<char, std::string>& letters, std::set<std::string>& twice) {
    const std::size_t mark = std::regex_replace(item, std::regex("&&"), "  ").find('&');
    if (mark == std::string::npos) return;
    const char letter = static_cast<char>(std::toupper(static_cast<unsigned char>(item[mark + 1])));
    const auto [first, isNew] = letters.emplace(letter, item);
    if (!isNew) twice.insert(first->second + " | " + item);
}

TEST(Commands, MnemonicsOfMenusAndDialogsDiffer) {
    const std::regex item(
        R"rx(^ *(POPUP|MENUITEM|LTEXT|RTEXT|CTEXT|AUTOCHECKBOX|AUTORADIOBUTTON|PUSHBUTTON|DEFPUSHBUTTON|GROUPBOX|CONTROL) +"([^"\\]*))rx");
    std::set<std::string> twice;
    std::smatch found;
    int dialogs = 0;
    for (const auto& file : std::filesystem::directory_iterator(std::string(KVX_ROOT_DIR) + "/src/resources")) {
        if (file.path().extension() != ".rc") continue;
        std::istringstream lines(ReadBytes(file.path().string()));
        std::vector<std::map<char, std::string>> open;  // menus and dialogs, the innermost last
        for (std::string line; std::getline(lines, line) && !line.starts_with("IDR_ACCELERATORS");) {
            if (line.find(" DIALOGEX ") != std::string::npos) ++dialogs;
            if (line.ends_with("BEGIN")) open.emplace_back();
            if (line.ends_with("END") && !open.empty()) open.pop_back();
            if (!open.empty() && std::regex_search(line, found, item)) TakeMnemonic(found[2], open.back(), twice);
        }
    }
    EXPECT_GT(dialogs, 10);
    // These texts are fixed. The letter goes from one to the other, and Enter takes it.
    const std::set<std::string> known = {"&Redo | &Replace...", "&Status Bar | AI &Sidebar", "&Output Pane | Zoom &Out",
                                         "&Whitespace | &Word Wrap"};
    EXPECT_EQ(twice, known);
}

// The pop-up menus that are written as lists in the sources, and the windows whose children are.
TEST(Commands, MnemonicsOfOtherMenusDiffer) {
    const std::regex list(R"rx((MenuItem>? \w+(\[\])?|MenuItem, \d+>\(|PaneShowMenu\(|kControls\[\]) ?=? ?\{)rx");
    const std::regex choice(R"rx((\? (?:Text\()?L"[^"]*"\)?)\s*:\s*(?:Text\()?L"[^"]*")rx"),
        text(R"rx(L"([^"\\]*)[^"]*")rx");
    int menus = 0;
    for (const auto& file : std::filesystem::recursive_directory_iterator(std::string(KVX_ROOT_DIR) + "/src")) {
        if (!file.path().string().ends_with("_win.cpp")) continue;
        const std::string source = ReadBytes(file.path().string());
        for (std::sregex_iterator at(source.begin(), source.end(), list), end; at != end; ++at) {
            const auto begin = static_cast<std::size_t>(at->position());
            const std::string body =
                std::regex_replace(source.substr(begin, source.find("};", begin) - begin), choice, "$1");
            std::map<char, std::string> letters;
            std::set<std::string> twice;
            for (std::sregex_iterator item(body.begin(), body.end(), text); item != end; ++item)
                TakeMnemonic((*item)[1], letters, twice);
            menus += letters.empty() ? 0 : 1;
            EXPECT_TRUE(twice.empty()) << file.path().filename() << ": " << *twice.begin();
        }
    }
    EXPECT_GE(menus, 5);
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
    for (const ContextPlace place : {ContextPlace::Text, ContextPlace::Margin, ContextPlace::Output,
                                     ContextPlace::Errors, ContextPlace::Listing}) {
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
            EXPECT_EQ(explain, onDiagnostic && place != ContextPlace::Listing ? 1 : 0);
        }
    }
}

}  // namespace
