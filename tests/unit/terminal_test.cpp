// The terminal line: its history and the completion of names.
#include "base/utf8.h"
#include "compile/terminal_names.h"
#include "compile/terminal_text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(Terminal, HistoryGoesBackAndForth) {
    TerminalHistory history;
    std::wstring shown = L"typed";
    EXPECT_FALSE(TerminalRecall(history, true, &shown));
    for (const wchar_t* command : {L"a", L"b", L"a"}) TerminalRemember(history, command);
    std::string walk;
    for (const bool older : {true, true, true, false, false, false}) {
        shown = L"-";
        walk += TerminalRecall(history, older, &shown) ? ToUtf8(shown) + "," : "none,";
    }
    EXPECT_EQ(walk, "a,b,none,a,-,none,") << "and at last the line that was being typed";
    for (std::size_t i = 0; i < kTerminalHistory; ++i) TerminalRemember(history, L"n" + std::to_wstring(i));
    EXPECT_EQ(history.commands.size(), kTerminalHistory);
    EXPECT_EQ(ToUtf8(TerminalCommandLine(L"C:\\Windows\\system32", L"echo \"x\"")),
              "\"C:\\Windows\\system32\\cmd.exe\" /d /s /c \"echo \"x\"\"");
}

TEST(Terminal, ItsFileHoldsCommandsAndTakesAnyBytes) {
    const std::vector<std::wstring> commands = {L"dir \u00e9", L" secret", std::wstring(kLongestKeptCommand + 1, L'x'),
                                                L"b"};
    const std::string bytes = TerminalHistoryBytes(commands);
    EXPECT_EQ(bytes, "dir \xC3\xA9\r\nb\r\n") << "a blank in front keeps a command out";
    EXPECT_EQ(TerminalHistoryOf(bytes), (std::vector<std::wstring>{commands[0], commands[3]}));
    constexpr char kOdd[] = "a\nb\r\r\0c\n\x01 d\n a\nb\nlast";
    EXPECT_EQ(TerminalHistoryOf({kOdd, sizeof kOdd - 1}), (std::vector<std::wstring>{L"a", L"b", L"last"}));
    std::string many;
    for (std::size_t i = 0; i < kTerminalHistory + 9; ++i) many += std::to_string(i) + "\n";
    ASSERT_EQ(TerminalHistoryOf(many).size(), kTerminalHistory);
    EXPECT_EQ(TerminalHistoryOf(many)[0], L"9") << "the oldest go";
}

TEST(Terminal, NamesAreCompletedWhereTheCaretStands) {
    const struct {
        const wchar_t *line, *folder, *name;
        std::size_t start;
    } cases[] = {{L"copy ab", L"", L"ab", 5},
                 {L"type sub/x\\y", L"sub\\x\\", L"y", 5},
                 {L"type \"a b\"\\c", L"a b\\", L"c", 5},
                 {L"type \"a b", L"", L"a b", 5},
                 {L"a&b", L"", L"b", 2},
                 {L"c:x", L"c:", L"x", 0},
                 {L"dir ", L"", L"", 4}};
    for (const auto& c : cases) {
        const std::wstring line = c.line;
        EXPECT_EQ(TerminalWordAt(line + L" rest", line.size()), (TerminalWord{c.start, line.size(), c.folder, c.name}))
            << ToUtf8(line);
    }
    EXPECT_EQ(TerminalFolderOf(L"D:\\w\\", L"\\x\\"), L"D:\\x\\");
    EXPECT_EQ(TerminalFolderOf(L"D:\\w\\", L"s\\"), L"D:\\w\\s\\");
    EXPECT_EQ(TerminalFolderOf(L"D:\\w", L""), L"D:\\w\\");
    EXPECT_EQ(TerminalFolderOf(L"D:\\w\\", L"c:"), L"c:\\");
    EXPECT_EQ(TerminalFolderOf(L"D:\\w\\", L"\\\\s\\t\\"), L"\\\\s\\t\\");
    TerminalCompletion completion = {.word = TerminalWordAt(L"copy A b", 6)};
    completion.names = TerminalNamesFitting({L"aZ", L"..", L"a b", L"b", L"."}, completion.word.name);
    std::wstring line = L"copy A b";
    std::size_t caret = 0;
    std::string walk;
    for (const bool forward : {true, true, true, false, false}) {
        EXPECT_TRUE(TerminalCompleteNext(completion, &line, &caret, forward));
        walk += ToUtf8(line) + "|";
        EXPECT_EQ(line.substr(caret), L" b");
    }
    EXPECT_EQ(walk, "copy \"a b\" b|copy aZ b|copy \"a b\" b|copy aZ b|copy \"a b\" b|");
    completion.names.clear();
    EXPECT_FALSE(TerminalCompleteNext(completion, &line, &caret, true));
}

}  // namespace
