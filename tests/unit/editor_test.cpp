// Caret colour, navigation history, colouring of a pane, sticky header, brackets.
#include "documents/nav_history.h"
#include "editor/brace_match.h"
#include "editor/colour_marks.h"
#include "editor/comment_toggle.h"
#include "editor/pane_rules.h"
#include "editor/sticky_header.h"
#include "editor/typing_rules.h"
#include "language/caret_colour.h"

#include <SciLexer.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace {

TEST(CaretColour, FollowsTheLumaOfTheBackground) {
    const struct {
        const char* name;
        std::uint32_t background;
        std::uint32_t caret;
    } cases[] = {
        {"white is light", 0xFFFFFF, kCaretBlack},         {"black is dark", 0x000000, kCaretWhite},
        {"grey 127 is dark", 0x7F7F7F, kCaretWhite},       {"grey 128 is light", 0x808080, kCaretBlack},
        {"red (low byte) is dark", 0x0000FF, kCaretWhite}, {"green is light", 0x00FF00, kCaretBlack},
        {"blue is dark", 0xFF0000, kCaretWhite},
    };
    for (const auto& test : cases) EXPECT_EQ(CaretColourOn(test.background), test.caret) << test.name;
}

TEST(NavHistory, StepsThroughPlacesAndForgetsWhatWasAhead) {
    NavHistory history;
    EXPECT_FALSE(NavStepBack(history)) << "empty";
    NavRecord(history, 100, 2);
    NavRecord(history, 200, 1);
    EXPECT_FALSE(NavStepForward(history)) << "at the newest";
    ASSERT_TRUE(NavStepBack(history));
    EXPECT_EQ(history.navPos[history.navIndex], 100);
    ASSERT_TRUE(NavStepBack(history));
    EXPECT_EQ(history.navPos[history.navIndex], 0) << "before the first place: start of the first tab";
    EXPECT_EQ(history.navTab[history.navIndex], 0);
    EXPECT_FALSE(NavStepBack(history));
    ASSERT_TRUE(NavStepForward(history));
    NavRecord(history, 300, 0);
    EXPECT_FALSE(NavStepForward(history)) << "200 was ahead and is gone";
    EXPECT_EQ(history.navPos[history.navIndex], 300);
}

TEST(NavHistory, HoldsSixtyThreePlacesAndNoMore) {
    NavHistory history;
    for (int i = 1; i <= 70; ++i) NavRecord(history, i, 0);
    EXPECT_EQ(history.navIndex, 63);
    EXPECT_EQ(history.navPos[63], 63);
    history.navIndex = -5;
    NavRecord(history, 9, 4);
    EXPECT_EQ(history.navIndex, 1) << "a negative index counts as 0";
    EXPECT_EQ(history.navCount, 2);
}

TEST(NavHistory, RecordsJumpsOfSixLinesAndEveryTab) {
    NavHistory history;
    EXPECT_TRUE(NavShouldRecord(history, 0, 0)) << "the first place";
    EXPECT_FALSE(NavShouldRecord(history, 5, 0)) << "five lines";
    EXPECT_FALSE(NavShouldRecord(history, 5, 0)) << "measured from the recorded place, not from the last look";
    EXPECT_TRUE(NavShouldRecord(history, 6, 0)) << "six lines";
    EXPECT_TRUE(NavShouldRecord(history, 6, 1)) << "another tab";
    EXPECT_TRUE(NavShouldRecord(history, 0, 1)) << "six lines up";
}

TEST(NavHistory, PlacesFollowTheirDocumentsAndEndWithThem) {
    const auto tabs = [](const NavHistory& history) {
        return std::vector<int>(history.navTab, history.navTab + history.navCount);
    };
    NavHistory history;
    for (const int tab : {0, 1, 2, 3}) NavRecord(history, 10 * tab, tab);
    NavShouldRecord(history, 7, 3);
    NavTabMoved(history, 0, 3);  // the row is now 1 2 3 0
    EXPECT_EQ(tabs(history), (std::vector{0, 3, 0, 1, 2})) << "slot 0 is the first tab whichever it is";
    EXPECT_EQ(history.navLastTab, 2);
    NavTabRemoved(history, 1);  // document 2: the row is 1 3 0
    EXPECT_EQ(tabs(history), (std::vector{0, 2, 0, -1, 1}));
    NavTabRemoved(history, 0);
    EXPECT_EQ(tabs(history), (std::vector{0, 1, -1, -1, 0})) << "going back to a closed one leads nowhere";
    EXPECT_EQ(history.navIndex, 4) << "and is a step all the same";
    NavTabRemoved(history, 0);
    EXPECT_TRUE(NavShouldRecord(history, 7, 0)) << "the same line of another document";
}

TEST(PaneRules, ColoursWhatIsSeenFirstInSlicesThatTakeAFewMilliseconds) {
    constexpr PaneSpan kFar = {33 << 10, 40 << 10};
    const PaneSpan part = {kFar.start, 36 << 10};  // of kFar, when a line in its middle was changed
    const struct {
        ColourMarks marks;
        PaneSpan visible;
        PaintColours needed;
    } paints[] = {
        {{.coloured = 500}, {100, 500}, PaintColours::Ready},
        {{.coloured = 499}, {100, 500}, PaintColours::FromMark},
        {{}, {32 << 10, 40 << 10}, PaintColours::FromMark},
        {{}, {(32 << 10) + 1, 40 << 10}, PaintColours::VisibleOnly},
        {{.view = kFar}, kFar, PaintColours::Ready},
        {{.view = part}, kFar, PaintColours::FromView},
        {{.view = part}, {kFar.start - 1, kFar.end}, PaintColours::VisibleOnly},
        {{.view = part}, {part.end + 1, 40 << 10}, PaintColours::VisibleOnly},
    };
    for (const auto& paint : paints) EXPECT_EQ(ColoursForPaint(paint.marks, paint.visible), paint.needed);

    ColourMarks marks;
    ColourMarksOnView(&marks, {1000, 2000}, 2100);
    ColourMarksOnChange(&marks, {.position = 1510, .inserted = 5, .lineStart = 1500, .settles = 1600});
    EXPECT_EQ(marks.view, (PaneSpan{1000, 1500})) << "the changed line and those below are coloured again";
    ColourMarksOnChange(&marks, {.position = 3000, .inserted = 5, .lineStart = 2990, .settles = 3100});
    EXPECT_EQ(marks.view, (PaneSpan{1000, 1500})) << "a change below takes nothing away";
    ColourMarksOnChange(&marks, {.position = 999, .deleted = 1, .lineStart = 990, .settles = 1100});
    EXPECT_EQ(marks.view, PaneSpan{}) << "what is above decides about it";

    EXPECT_EQ(NextColourChunk(0, 1), kFirstColourChunk);
    EXPECT_EQ(NextColourChunk(100000, 0.003), 100000U);
    EXPECT_EQ(NextColourChunk(100000, 1), 50000U) << "at most halved";
    EXPECT_EQ(NextColourChunk(100000, 0), 200000U) << "at most doubled";
    EXPECT_EQ(NextColourChunk(4 << 10, 1), 4U << 10);
    EXPECT_EQ(NextColourChunk(1 << 20, 0), 1U << 20);

    EXPECT_EQ(ColourSliceEnd(0, 100, 90, 200), 90) << "whole lines";
    EXPECT_EQ(ColourSliceEnd(0, 100, 0, 200), 100) << "a line longer than a slice";
    EXPECT_EQ(ColourSliceEnd(0, 200, 190, 200), 200) << "the last line has no end";

    EXPECT_EQ(NextColourStep(99, 100, false), ColourStep::Slice);
    EXPECT_EQ(NextColourStep(99, 100, true), ColourStep::Wait) << "its repaint must not be cancelled";
    EXPECT_EQ(NextColourStep(100, 100, true), ColourStep::Done);
    EXPECT_TRUE(IsUnseen({0, 100}, {100, 200}));
    EXPECT_FALSE(IsUnseen({0, 101}, {100, 200}));
    EXPECT_FALSE(IsUnseen({199, 300}, {100, 200}));
    EXPECT_TRUE(IsUnseen({200, 300}, {100, 200}));
}

TEST(PaneRules, BracesAreSearchedWithinTheText) { EXPECT_EQ(BraceReach(5, 10), (PaneSpan{0, 10})); }

// Showing and hiding it moves no text, and the next look wants nothing else.
TEST(StickyHeader, IsShownOnlyWhenItsLineIsOutOfSight) {
    for (const std::int64_t header : {kStickyNone, std::int64_t{0}, std::int64_t{40}})
        for (std::int64_t top = 0; top < 60; ++top)
            for (const std::int64_t caret : {top, top + 5})
                for (const bool shown : {false, true}) {
                    const bool wanted = StickyIsWanted(header, top, shown);
                    if (wanted == shown) continue;
                    const std::int64_t after = StickyTopAfter(top, caret, wanted);
                    const bool stays = StickyIsWanted(header, after, wanted) == wanted;
                    EXPECT_TRUE(stays || (wanted && caret == top)) << header << " " << top << " " << shown;
                    if (!wanted && header != kStickyNone) EXPECT_GE(header, after) << "its line is visible";
                    if (wanted) EXPECT_LT(header, top) << "no visible line is repeated";
                    EXPECT_TRUE(caret >= after) << "the caret stays visible";
                }
    EXPECT_TRUE(StickyIsWanted(4, 5, false));
    EXPECT_FALSE(StickyIsWanted(4, 5, true)) << "one line up, and it is visible";
}

TEST(StickyHeader, IsAPlainPrefixTest) {
    const struct {
        std::string line;
        bool header;
    } cases[] = {
        {"SUB Foo", true}, {"FUNCTION PBMAIN", true}, {"TYPEOF x", true}, {"INTERFACE", true}, {"MACRO m", true},
        {"CLASS c", true}, {" SUB Foo", false},       {"sub Foo", false}, {"END SUB", false},  {"", false},
    };
    for (const auto& test : cases) EXPECT_EQ(StickyIsHeader(test.line), test.header) << test.line;
    for (const std::size_t length : {250, 251})
        EXPECT_EQ(StickyIsHeader("SUB " + std::string(length, 'x')), length == 250) << length;
}

// The lines of a document, each with its line end.
std::vector<std::string> SplitKeepingEnds(const std::string& text) {
    std::vector<std::string> lines(1);
    for (std::size_t i = 0; i < text.size(); ++i) {
        lines.back().push_back(text[i]);
        const bool crBeforeLf = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
        if ((text[i] == '\r' || text[i] == '\n') && !crBeforeLf) lines.emplace_back();
    }
    return lines;
}

std::string WithoutEnd(std::string line) {
    while (!line.empty() && (line.back() == '\r' || line.back() == '\n')) line.pop_back();
    return line;
}

std::int64_t NaiveHeader(const std::vector<std::string>& lines, std::int64_t line) {
    for (; line >= 0; --line)
        if (StickyIsHeader(WithoutEnd(lines[static_cast<std::size_t>(line)]))) return line;
    return kStickyNone;
}

// Looks a header up as the editor does, but in a string; `budget` bytes a look. Counts the lines that were read.
std::int64_t CachedHeader(StickyCache& cache, const std::vector<std::string>& lines, std::int64_t line,
                          std::ptrdiff_t budget, std::int64_t* looked) {
    std::vector<std::ptrdiff_t> starts;
    std::string all;
    for (const std::string& each : lines) {
        starts.push_back(static_cast<std::ptrdiff_t>(all.size()));
        all += each;
    }
    const auto at = [](std::int64_t number) { return static_cast<std::size_t>(number); };
    const StickySource source = {
        .lineStart = [&](std::int64_t number) { return starts[at(number)]; },
        .lineEnd =
            [&](std::int64_t number) {
                return starts[at(number)] + static_cast<std::ptrdiff_t>(WithoutEnd(lines[at(number)]).size());
            },
        .lineAt =
            [&](std::ptrdiff_t position) {
                return std::int64_t{std::upper_bound(starts.begin(), starts.end(), position) - starts.begin() - 1};
            },
        .text =
            [&](std::ptrdiff_t start, std::ptrdiff_t length) {
                const std::string_view part = std::string_view{all}.substr(at(start), at(length));
                *looked += 1 + std::ranges::count(part, '\n');
                return std::optional{part};
            }};
    while (!StickyLookUp(cache, line, budget, source)) continue;
    return cache.header != kStickyNone && cache.header <= line ? cache.header : kStickyNone;
}

TEST(StickyHeader, CacheAgreesWithAScanAfterRandomEditsAndMoves) {
    const std::string pieces[] = {"SUB a", "FUNCTION b", "x = 1", "",   "  SUB c", "SU",
                                  "B d",   "\r\n",       "\n",    "\r", "\r\n"};
    std::mt19937 random(20240611);
    const auto below = [&random](std::size_t limit) { return static_cast<std::size_t>(random() % limit); };
    for (int round = 0; round < 60; ++round) {
        std::string text;
        for (int i = 0; i < 40; ++i) text += pieces[below(std::size(pieces))];
        StickyCache cache;
        std::int64_t looked = 0;
        for (int step = 0; step < 150; ++step) {
            const std::vector<std::string> lines = SplitKeepingEnds(text);
            const auto line = static_cast<std::int64_t>(below(lines.size()));
            ASSERT_EQ(CachedHeader(cache, lines, line, 1 + static_cast<std::int64_t>(below(12)), &looked),
                      NaiveHeader(lines, line))
                << "round " << round << " step " << step << " line " << line << "\n"
                << text;
            if (below(3) != 0) continue;

            const std::size_t at = below(text.size() + 1);
            if (below(2) == 0)
                text.insert(at, pieces[below(std::size(pieces))]);
            else
                text.erase(at, below(12));
            // The line of the change as the editor reports it: that of its position in the changed text.
            const std::vector<std::string> after = SplitKeepingEnds(text);
            std::size_t start = 0;
            std::int64_t changed = 0;
            while (changed + 1 < static_cast<std::int64_t>(after.size()) &&
                   start + after[static_cast<std::size_t>(changed)].size() <= at) {
                start += after[static_cast<std::size_t>(changed)].size();
                ++changed;
            }
            StickyForget(cache, changed,
                         static_cast<std::int64_t>(after.size()) - static_cast<std::int64_t>(lines.size()));
        }
    }
}

TEST(StickyHeader, TypingAndMovingInADocumentWithoutHeadersLooksAtFewLines) {
    constexpr std::int64_t kLines = 20000;
    const std::vector<std::string> lines(kLines, "x = 1\n");
    StickyCache cache;
    std::int64_t looked = 0;
    EXPECT_EQ(CachedHeader(cache, lines, kLines - 1, 6000, &looked), kStickyNone);
    EXPECT_EQ(looked, kLines) << "the first look is a whole one";

    looked = 0;
    for (std::int64_t line = kLines - 1; line > kLines - 200; --line) {
        StickyForget(cache, line, 0);  // a key on the line
        CachedHeader(cache, lines, line, 1000, &looked);
        CachedHeader(cache, lines, 5, 1000, &looked);  // and a lookup near the top
    }
    EXPECT_LE(looked, 200) << "one line a key";
}

TEST(Typing, AWordThatEndsABlockTakesItsWholeLine) {
    const auto edit = [](const std::string& line, bool inAssembly, std::size_t start) {
        const auto found = KeywordEditOf(line, inAssembly ? kScanAssembly : 0, AnyDialect(), start, line.size());
        return found ? std::to_string(found->from) + found->text : "";
    };
    EXPECT_EQ(edit("x = a and", false, 6), "6AND");
    EXPECT_EQ(edit("  end asm", true, 6), "0  END ASM");
    EXPECT_EQ(edit("  END ASM", true, 6), "");
    EXPECT_EQ(edit("and", true, 0), "") << "an instruction";
    EXPECT_EQ(edit("a.print", false, 2), "") << "a member";
}

TEST(BraceMatch, FindsThePartnerOfTheSameStyle) {
    // `styles` gives the style of each byte.
    const struct {
        const char* name;
        std::string text, styles;
        std::size_t at;
        std::ptrdiff_t partner;
    } cases[] = {
        {"forward", "f(a)", "....", 1, 3},
        {"backward", "f(a)", "....", 3, 1},
        {"nested", "((a)(b))", "........", 0, 7},
        {"nested, from the end", "((a)(b))", "........", 7, 0},
        {"a bracket in a string does not count", "(\")\")", ".sss.", 0, 4},
        {"in a string its partner is there", "(\"()\")", ".ssss.", 2, 3},
        {"other kinds do not count", "([)]", "....", 0, 2},
        {"none", "(((", "...", 1, -1},
        {"no bracket", "abc", "...", 1, -1},
        {"beyond the end", "()", "..", 2, -1},
    };
    for (const auto& test : cases) {
        std::vector<StyledByte> text;
        for (std::size_t i = 0; i < test.text.size(); ++i) text.push_back({test.text[i], test.styles[i]});
        EXPECT_EQ(MatchBrace(text, test.at), test.partner) << test.name;
    }
}

TEST(Typing, ANewLineIsIndentedLikeTheOneAbove) {
    const struct {
        const char* name;
        BrokenLine line;
        std::optional<std::ptrdiff_t> indentation;
    } cases[] = {
        {"below an indented one", {.line = 3, .own = 0, .above = 8}, 8},
        {"it brought its own", {.line = 3, .own = 4, .above = 8}, std::nullopt},
        {"nothing above", {.line = 3, .own = 0, .above = 0}, std::nullopt},
        {"the first line", {.line = 0, .own = 0, .above = 8}, std::nullopt},
        {"several carets", {.selections = 2, .line = 3, .own = 0, .above = 8}, std::nullopt},
    };
    for (const auto& each : cases) EXPECT_EQ(IndentationAfterBreak(each.line), each.indentation) << each.name;
}

TEST(Typing, ANewLineIsIndentedByTheBlocksAboveIt) {
    const struct {
        const char* name;
        LineAbove above;
        std::ptrdiff_t below;
    } cases[] = {
        {"opens", {.indentation = 4, .own = 4, .depth = 1, .depthAfter = 2}, 8},
        {"closes", {.indentation = 4, .own = 4, .depth = 1, .depthAfter = 1}, 4},
        {"closes what is indented otherwise", {.indentation = 0, .own = 0, .depth = 2, .depthAfter = 1}, 0},
        {"goes on", {.indentation = 4, .own = 4, .depth = 1, .depthAfter = 1, .continues = true}, 8},
        {"goes on again", {4, 11, 1, 1, true, true}, 11},
        {"the last line of IF a _ b THEN", {4, 11, 1, 2, false, true}, 8},
    };
    for (const auto& each : cases) EXPECT_EQ(IndentationBelow(each.above, 4), each.below) << each.name;
    const LineAbove inside{.indentation = 8, .own = 8, .depth = 2, .depthAfter = 2};
    EXPECT_EQ(IndentationOfCloser(inside, 8, 1, 4), 4);
    EXPECT_EQ(IndentationOfCloser(inside, 8, 2, 4), std::nullopt) << "closes nothing";
    EXPECT_EQ(IndentationOfCloser(inside, 6, 1, 4), std::nullopt) << "placed by hand";
    EXPECT_TRUE(WritesCapitals("  \t'If") && !WritesCapitals("  iF") && !WritesCapitals("12"));
}

TEST(CommentToggle, MarksAllLinesOrTakesTheMarksAway) {
    const struct {
        const char *name, *lines, *toggled, *back;
    } cases[] = {
        {"at the least indentation", "    a\r\n\r\n      b\r\n", "    ' a\r\n\r\n    '   b\r\n",
         "    a\r\n\r\n      b\r\n"},
        {"a comment among code becomes one twice", "a\n' b\n", "' a\n' ' b\n", "a\n' b\n"},
        {"without a break", "a", "' a", "a"},
        {"one blank line", "  \r\n", "  ' \r\n", "  \r\n"},
        {"blank lines only", " \n\n", " \n\n", " \n\n"},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(ToggleLineComments(each.lines, "'"), each.toggled) << each.name;
        EXPECT_EQ(ToggleLineComments(each.toggled, "'"), each.back) << each.name;
    }
    EXPECT_EQ(ToggleLineComments("//a\n //  b\n", LineCommentMark(Language::C)), "a\n  b\n");
}

TEST(Typing, OnlyKeywordsOfTheirLengthAndStyleGoToCapitals) {
    EXPECT_FALSE(HasKeywordLength(1));
    EXPECT_TRUE(HasKeywordLength(2));
    EXPECT_TRUE(HasKeywordLength(kLongestKeyword));
    EXPECT_FALSE(HasKeywordLength(kLongestKeyword + 1));
}

TEST(Typing, TheBracketBeforeTheCaretCountsFirst) {
    EXPECT_EQ(BraceAtCaret(7, ')', '('), 6);
    EXPECT_EQ(BraceAtCaret(7, 'x', '('), 7);
    EXPECT_EQ(BraceAtCaret(7, 'x', 'y'), -1);
    EXPECT_EQ(BraceAtCaret(0, '(', '('), 0) << "nothing is before the start";
    const std::vector<StyledByte> text = {{'(', 0}, {'a', 0}, {')', 0}, {'(', 0}};
    EXPECT_EQ(BracesToShow(text, 100, 102), (BracePair{102, 100}));
    EXPECT_EQ(BracesToShow(text, 100, 103), (BracePair{-1, -1})) << "without a partner nothing is shown";
}

}  // namespace
