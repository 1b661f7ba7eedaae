// What a replacement by the assistant has changed, how that is marked, and where it is after further edits.
#include "ai/replacement_marks.h"
#include "base/line_diff.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

using Lines = std::vector<std::string_view>;

// The old lines with the hunks carried out. Fails when two hunks touch.
Lines Applied(const Lines& oldLines, const Lines& newLines, const std::vector<LineHunk>& hunks) {
    Lines out;
    int at = 0;
    for (const LineHunk& hunk : hunks) {
        EXPECT_TRUE(hunk.oldFirst > at || &hunk == hunks.data()) << "hunks that touch are one";
        out.insert(out.end(), oldLines.begin() + at, oldLines.begin() + hunk.oldFirst);
        out.insert(out.end(), newLines.begin() + hunk.newFirst, newLines.begin() + hunk.newEnd);
        at = hunk.oldEnd;
    }
    out.insert(out.end(), oldLines.begin() + at, oldLines.end());
    return out;
}

TEST(LineDiff, TurnsTheOldLinesIntoTheNewOnes) {
    EXPECT_EQ(LinesOf("a\r\nb\rc\n\n"), (Lines{"a", "b", "c", "", ""}));
    EXPECT_EQ(LinesOf(""), Lines{""});
    const std::vector<LineHunk> inserted = {{1, 1, 1, 2}}, both = {{0, 1, 0, 0}, {2, 2, 1, 2}};
    EXPECT_EQ(LineDiff({"a", "b"}, {"a", "x", "b"}), inserted);
    EXPECT_EQ(LineDiff({"a", "b", "c"}, {"b", "x", "c"}), both);
    std::mt19937 random(7);
    const Lines alphabet = {"", "a", "b", "END IF", "NEXT"};
    for (int i = 0; i < 2000; ++i) {
        Lines texts[2];
        for (Lines& text : texts)
            for (std::size_t n = random() % 12; n > 0; --n) text.push_back(alphabet[random() % alphabet.size()]);
        EXPECT_EQ(Applied(texts[0], texts[1], LineDiff(texts[0], texts[1])), texts[1]);
    }
}

// Too large for one table: with lines that occur once, with repetitions only, and with nothing in common.
TEST(LineDiff, LargeTextsTakeBoundedWork) {
    std::vector<std::string> numbered;
    for (int i = 0; i < 40000; ++i) numbered.push_back(std::to_string(i));
    Lines unique(numbered.begin(), numbered.end()), repeated(40000, "NEXT"), others = repeated;
    Lines edited = unique;
    for (std::size_t i = 10; i < edited.size(); i += 1000) edited[i] = "changed";
    EXPECT_EQ(LineDiff(unique, edited).size(), 40U);
    for (std::size_t i = 3; i < others.size(); i += 7) others[i] = "b";
    for (const auto& [from, to] : {std::pair{&repeated, &others}, {&unique, &others}, {&edited, &unique}})
        EXPECT_EQ(Applied(*from, *to, LineDiff(*from, *to)), *to);
}

std::string Described(const ReplacementMarks& marks) {
    std::string text;
    for (const AddedLines& lines : marks.added)
        text += "+" + std::to_string(lines.first) + "-" + std::to_string(lines.end) + " ";
    for (const RemovedLines& lines : marks.removed) text += std::to_string(lines.below) + "[" + lines.text + "]";
    return text;
}

TEST(ReplacementMarks, StandWhereLinesWereChanged) {
    const struct {
        const char *before, *now;
        int firstLine;
        const char* marks;
    } cases[] = {
        {"a\r\nb\r\nc", "a\r\nx\r\ny\r\nc", 5, "+6-8 5[b]"},
        {"a\nb", "a\nb", 0, ""},
        {"a\nb", "a\r\nb", 0, ""},
        {"a\nb", "x\nb", 0, "+0-1 0[a]"},  // below, because nothing can stand above
        {"a\nb", "x\nb", 3, "+3-4 2[a]"},
        {"a\nb", "b", 0, "0[(removed above this line)\na]"},
        {"a\nb\nc\nd", "b\nd", 0, "0[(removed above this line)\na\nc]"},
        {"\tx\ty\n\n", "", 1, "0[    x   y\n ]"},  // the last of three lines is the one left
        {"a\nb", "1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\nb", 0, "+0-11 0[(removed above this line)\na]"},
        {"a\x01\n", "b\n", 1, "+1-2 0[a?]"},
    };
    for (const auto& c : cases) EXPECT_EQ(Described(MarksOfReplacement(c.before, c.now, c.firstLine, 4)), c.marks);

    std::string many;
    for (int i = 0; i < 45; ++i) many += std::to_string(i) + "\n";
    const std::string shown = MarksOfReplacement(many, "x\n", 1, 4).removed[0].text;
    EXPECT_TRUE(shown.starts_with("0\n1\n") && shown.ends_with("\n39\n... 5 more lines")) << shown;
    EXPECT_TRUE(MarksOfReplacement(many.substr(0, many.find("41\n")), "x\n", 1, 4).removed[0].text.ends_with("\n40"));
    std::string before, now;
    for (int i = 0; i < 3000; ++i)
        before += "old\nsame" + std::to_string(i) + "\n", now += "same" + std::to_string(i) + "\n";
    const ReplacementMarks marks = MarksOfReplacement(before, now, 1, 4);
    EXPECT_EQ(marks.removedCount, 3000);
    EXPECT_EQ(marks.removed.back().text, "... 1 line removed");
    EXPECT_EQ(MarksSummary(marks), L"AI replacement: 0 lines new, 3000 removed");
    const std::string wide = MarksOfReplacement(std::string(299, 'a') +
                                                    "\xC3\xA9"
                                                    "b",
                                                "", 1, 4)
                                 .removed[0]
                                 .text;
    EXPECT_EQ(wide, std::string(299, 'a') + "\xC3\xA9...") << "cut between characters";
    const auto wrapped = [](const char* text, std::size_t most) {
        ReplacementMarks narrow = {.removed = {{0, text}}};
        WrapRemoved(narrow, [most](const std::string& part) { return part.size() <= most; });
        return narrow.removed[0].text;
    };
    EXPECT_EQ(wrapped("abcdefg\n\nxyz", 3), "abc\ndef\ng\n\nxyz");
    EXPECT_EQ(wrapped("ab\xC3\xA9\xC3\xA9", 3), "ab\n\xC3\xA9\n\xC3\xA9");
    EXPECT_EQ(wrapped("\xC3\xA9\xC3\xA9", 0), "\xC3\xA9\n\xC3\xA9");
}

TEST(ReplacementMarks, TheRangeFollowsEdits) {
    static constexpr ByteRange kRange = {10, 5};
    const struct {
        const char* name;
        TextEdit edit;
        ByteRange after;
        std::size_t whole = 5;
        bool touches = true;
        ByteRange range = kRange;
    } cases[] = {
        {"before", {3, 4, true}, {14, 5}, 5, false},
        {"at the start", {10, 4, true}, {14, 5}},
        {"inside", {12, 4, true}, {10, 9}},
        {"at the end", {15, 4, true}, {10, 5}},
        {"behind", {16, 4, true}, {10, 5}, 5, false},
        {"an undone deletion at the start", {10, 3, true, true}, {10, 8}, 8},
        {"an undone deletion at the end", {15, 3, true, true}, {10, 8}, 8},
        {"undone beside a whole range", {10, 3, true, true}, {13, 5}},
        {"deleted before", {2, 4, false}, {6, 5}, 5, false},
        {"deleted over the start", {8, 4, false}, {8, 3}},
        {"deleted inside", {11, 2, false}, {10, 3}},
        {"deleted over the end", {13, 9, false}, {10, 3}},
        {"all deleted", {0, 30, false}, {0, 0}},
        {"put back", {10, 3, true}, {10, 3}, 5, true, {10, 0}},
        {"deleted behind", {16, 9, false}, {10, 5}, 5, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(RangeAfterEdit(c.range, c.edit, c.whole), c.after) << c.name;
        EXPECT_EQ(EditTouches(c.range, c.edit), c.touches) << c.name;
    }
}

}  // namespace
