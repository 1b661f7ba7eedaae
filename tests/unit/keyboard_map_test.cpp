// The keys of panes in the keyboard map against the sources of their windows.
#include "base/utf8.h"
#include "commands/keyboard_map_rows.h"
#include "support/golden_file.h"

#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace {

// The keys that a window asks for, without Ctrl, Shift and Alt: "Enter", "C".
std::set<std::string> KeysOfSource(const std::string& file) {
    static const std::map<std::string, std::string> names = {
        {"RETURN", "Enter"},  {"INSERT", "Ins"},     {"DELETE", "Del"},  {"ESCAPE", "Esc"}, {"PRIOR", "PageUp"},
        {"NEXT", "PageDown"}, {"BACK", "Backspace"}, {"SPACE", "Space"}, {"TAB", "Tab"},    {"LEFT", "Left"},
        {"RIGHT", "Right"},   {"UP", "Up"},          {"DOWN", "Down"},   {"HOME", "Home"},  {"END", "End"},
        {"CONTROL", ""},      {"SHIFT", ""},         {"MENU", ""},       {"LBUTTON", ""}};
    const std::string source = ReadBytes(std::string(KVX_ROOT_DIR) + "/src/" + file);
    EXPECT_FALSE(source.empty()) << file;
    const std::regex key("VK_([A-Z0-9]+)|(?:key == |case )'([A-Z])'");
    std::set<std::string> keys;
    for (std::sregex_iterator at(source.begin(), source.end(), key), end; at != end; ++at) {
        const std::string found = (*at)[1].matched ? (*at)[1].str() : (*at)[2].str();
        const auto name = names.find(found);
        keys.insert(name != names.end() ? name->second : found);
    }
    keys.erase("");
    return keys;
}

// The keys of panes stand in a table of their own, because each is taken by the procedure of its window.
TEST(KeyboardMap, HasTheKeysThatThePanesTake) {
    const struct {
        const wchar_t* place;
        std::vector<const char*> files;
        std::set<std::string> elsewhere = {};  // taken by the control itself, by a menu, or shared
        std::set<std::string> untold = {};     // what every list and field does, and keys of commands
    } panes[] = {
        {L"in the project tree", {"project/tree_menu_win.cpp"}, {"Enter", "C", "R"}},
        {L"on the tab strip", {"tabs/tab_input_win.cpp"}},
        {L"in the terminal line", {"compile/terminal_win.cpp"}, {"Z"}},
        {L"in the output", {"output/output_pane_win.cpp"}},
        {L"in the error list", {"output/error_list_win.cpp", "ui/list_input_win.cpp"}, {}, {"F2", "Space"}},
        {L"in the search bar", {"search/find_bar_win.cpp"}},
        {L"in Find and Replace", {"search/find_win.cpp"}, {"Esc"}},
        {L"in the search results", {"search/files_pane_win.cpp"}},
        {L"in the outline", {"symbols/outline_pane_win.cpp"}},
        {L"in the lists of the debug views",
         {"debugui/debug_pane_win.cpp", "debugui/pane_breakpoints_win.cpp", "debugui/pane_locals_win.cpp",
          "debugui/pane_watches_win.cpp", "ui/list_input_win.cpp"}},
        {L"in the memory view", {"debugui/pane_memory_win.cpp"}, {}, {"Up", "Down", "PageUp", "PageDown"}},
        {L"on a bar between panes", {"app/splitters_win.cpp"}},
        {L"on the toolbar", {"commands/toolbar_keys_win.cpp"}},
        {L"on the status bar", {"commands/status_fields_win.cpp"}, {"Enter", "Space"}},
        {L"in the peek window", {"symbols/peek_window_win.cpp"}, {}, {"F12"}},
        {L"in Go to File and the command palette",
         {"commands/quick_open_win.cpp", "commands/quick_list_win.cpp"},
         {},
         {"A", "Backspace", "Home", "End"}},
        {L"in the message to the assistant", {"ai/ai_pane_win.cpp"}},
    };
    std::set<std::wstring> places;
    for (const auto& pane : panes) {
        std::set<std::string> taken = pane.elsewhere, told = pane.untold;
        for (const char* const file : pane.files) taken.merge(KeysOfSource(file));
        for (const PaneKey& row : PaneKeys())
            if (std::wstring_view(row.place) == pane.place) {
                const std::string keys = ToUtf8(row.keys);
                const std::regex last("([^+, ]+)(, |$)");  // of "Ctrl+Home, End"
                for (std::sregex_iterator at(keys.begin(), keys.end(), last), end; at != end; ++at)
                    told.insert((*at)[1]);
            }
        EXPECT_EQ(taken, told) << ToUtf8(pane.place);
        places.insert(pane.place);
    }
    for (const PaneKey& row : PaneKeys()) EXPECT_TRUE(places.contains(row.place)) << ToUtf8(row.place);
}

}  // namespace
