// What the line commands make of a text.
#include "editor/line_changes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

bool GoesOn(double) { return true; }

std::string Sorted(std::string_view text, bool down = false, const std::vector<SortKey>& keys = {}) {
    return SortLines(text, down, keys, GoesOn).text;
}

std::string WithoutRepeated(std::string text) {
    const std::vector<TextSpan> spans = RepeatedLines(text);
    for (auto span = spans.rbegin(); span != spans.rend(); ++span) text.erase(span->start, span->end - span->start);
    return text;
}

TEST(LineChanges, SortAndRemoveKeepTheLineEndingsInTheirPlaces) {
    EXPECT_EQ(Sorted("b\r\nA\r\na"), "A\r\na\r\nb") << "the last line still has no break";
    EXPECT_EQ(Sorted("b\nc\r\na\r"), "a\nb\r\nc\r");
    EXPECT_EQ(Sorted("b\nB\na\n", true), "b\nB\na\n");
    EXPECT_EQ(Sorted(""), "");
    EXPECT_EQ(Sorted("\n\nx"), "\n\nx");
    EXPECT_EQ(Sorted("1 z\n2 a\n3 m\n", false, {{2, 1}, {2, 1}, {2, 1}}), "2 a\n3 m\n1 z\n") << "by a column";
    EXPECT_EQ(Sorted("bb\na\n", false, {{5, 1}, {0, 0}}), "bb\na\n") << "a key beyond its line is empty";
    EXPECT_EQ(SortLines("c\na\nb\n", false, {}, GoesOn).order, (std::vector<std::size_t>{1, 2, 0}));
    EXPECT_TRUE(SortLines("c\na\n", false, {}, [](double) { return false; }).stopped);
    const struct {
        const char *name, *before, *after;
    } cases[] = {{"in the middle", "a\nb\na\na\nc\n", "a\nb\nc\n"},
                 {"the last, without a break", "a\r\nb\r\na", "a\r\nb"},
                 {"several at the end", "a\na\na", "a"},
                 {"other letters are another line", "a\nA\na", "a\nA"},
                 {"empty lines", "\n\nx\n\n", "\nx\n"},
                 {"none", "a\nb", "a\nb"}};
    for (const auto& each : cases) EXPECT_EQ(WithoutRepeated(each.before), each.after) << each.name;
}

TEST(LineChanges, ManyLinesAreSortedInStepsThatGiveOneOrder) {
    std::string text, expected;
    constexpr int kLines = 100000;
    for (int i = 0; i < kLines; ++i) {
        text += "line " + std::to_string(100000 + (i * 7919L) % kLines) + "\r\n";
        expected += "line " + std::to_string(100000 + i) + "\r\n";
    }
    double last = 0;
    const SortedLines sorted = SortLines(text, false, {}, [&last](double share) {
        EXPECT_TRUE(share > last && share < 1.2) << share;
        last = share;
        return true;
    });
    EXPECT_TRUE(sorted.text == expected);
    EXPECT_GT(last, 0.9);
}

TEST(LineChanges, BlanksTabsAndJoins) {
    EXPECT_EQ(TrimLineEnds("a \t\r\n\t\n b"), "a\r\n\n b");
    EXPECT_EQ(TabsToBlanks("\ta\tb\n  \tc", 4), "    a   b\n    c");
    EXPECT_EQ(TabsToBlanks("\xC3\xA4\tx", 4), "\xC3\xA4   x") << "a character, not its bytes, is a column";
    EXPECT_EQ(BlanksToTabs("      a  b\n \tc\nd", 4), "\t  a  b\n\tc\nd") << "only the indentation";
    EXPECT_EQ(JoinLines("a  \r\n   b\r\n\r\n c\r\n"), "a b c\r\n");
    EXPECT_EQ(JoinLines("\n  b"), "b");
    EXPECT_EQ(JoinLines("a\n\n"), "a\n");
    const auto other = [](wchar_t c, wchar_t from, wchar_t to) {
        return c >= from && c <= to ? static_cast<wchar_t>(c ^ 0x20) : c;
    };
    static const auto kOther = other;
    EXPECT_EQ(TitleCase(
                  L"the DON'T_x 2nd", [](wchar_t c) { return kOther(c, L'a', L'z'); },
                  [](wchar_t c) { return kOther(c, L'A', L'Z'); }),
              L"The Don't_x 2nd");
}

TEST(LineChanges, NeighboursChangePlacesWhicheverIsMoved) {
    const struct {
        const char *upper, *lower, *after;
    } cases[] = {{"a\n", "b\n", "b\na\n"},   {"a\r\n", "b", "b\r\na"}, {"a\r\nx\r\n", "b", "b\r\na\r\nx"},
                 {"a\r", "b\nc", "b\nc\ra"}, {"a\n", "", "\na"},       {"\r\n", "b", "b\r\n"}};
    for (const auto& each : cases)
        for (const bool movesUpper : {true, false}) {
            std::string text = std::string(each.upper) + each.lower;
            const TextMove move = MoveOver(each.upper, each.lower, movesUpper);
            text.erase(move.erased.start, move.erased.end - move.erased.start);
            text.insert(move.at, move.text);
            EXPECT_EQ(text, each.after) << movesUpper;
        }
    EXPECT_EQ(MergedBlocks({{7, 9}, {1, 2}, {3, 3}, {8, 12}}), (std::vector<LineBlock>{{1, 3}, {7, 12}}));
}

}  // namespace
