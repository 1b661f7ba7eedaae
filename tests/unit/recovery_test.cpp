// What keeps unsaved text: the copy that is taken while the user types, the edits by lines, notes and times.
#include "files/recovery.h"
#include "base/difference.h"
#include "base/line_edits.h"
#include "recovery/leftover_rules.h"
#include "recovery/snapshot_note.h"
#include "recovery/text_snapshot.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

namespace {

using Random = std::mt19937;

std::size_t Below(Random& random, std::size_t end) { return end == 0 ? 0 : random() % end; }

std::string RandomText(Random& random, std::size_t most) {
    static constexpr std::string_view kCharacters = "ab\n\r x";
    std::string text(Below(random, most + 1), ' ');
    std::ranges::generate(text, [&] { return kCharacters[Below(random, kCharacters.size())]; });
    return text;
}

std::string Joined(const std::vector<std::string>& pieces) {
    std::string all;
    for (const std::string& piece : pieces) all += piece;
    return all;
}

}  // namespace

TEST(TextSnapshot, HasTheTextWhateverIsTypedMeanwhile) {
    Random random(7);
    for (int round = 0; round < 400; ++round) {
        std::string text = RandomText(random, 60);
        TextSnapshot snapshot;
        for (bool copied = false; !copied;) {
            const std::size_t at = Below(random, text.size() + 1);
            if (random() % 3 == 0) {
                const std::string typed = RandomText(random, 9);
                text.insert(at, typed);
                snapshot.Inserted(at, typed);
            } else if (random() % 2 == 0) {
                const std::size_t length = Below(random, text.size() - at + 1);
                text.erase(at, length);
                snapshot.Removed(at, length);
            }
            const std::string rest = text.substr(snapshot.Copied());
            copied = rest.size() <= 5;
            snapshot.Take(rest.substr(0, 5));
        }
        ASSERT_EQ(Joined(snapshot.Release()), text) << round;
    }
}

TEST(LineEdits, TurnOneTextIntoTheOther) {
    Random random(11);
    const auto applied = [](std::string text, std::string_view wanted) {
        const std::vector<LineEdit> edits = LineEdits(text, wanted);
        std::string result = text;
        for (auto edit = edits.rbegin(); edit != edits.rend(); ++edit)
            result.replace(edit->start, edit->end - edit->start, edit->text);
        return result;
    };
    for (int round = 0; round < 2000; ++round) {
        const std::string from = RandomText(random, 30);
        std::string to = random() % 2 == 0 ? from : RandomText(random, 30);
        to.insert(Below(random, to.size() + 1), RandomText(random, 4));
        ASSERT_EQ(applied(from, to), to) << round;
    }
    // Only what differs is touched, so that markers stay.
    const std::vector<LineEdit> edits =
        LineEdits("one\r\ntwo\r\nthree\r\nfour\r\n", "one\r\n2\r\nthree\r\nfour\r\nfive");
    ASSERT_EQ(edits.size(), 2U);
    EXPECT_EQ(edits[0].start, 5U);
    EXPECT_EQ(edits[0].end, 8U);
    EXPECT_EQ(edits[0].text, "2");
    EXPECT_EQ(edits[1].text, "five");
    EXPECT_EQ(LineEdits("a\nb\n", "a\r\nb\r\n").size(), 2U);  // other line ends are a change
    const std::vector<LineEdit> within = LineEdits("caf\xC3\xA9 1\n", "caf\xC3\xA8 1\n");  // whole characters
    ASSERT_EQ(within.size(), 1U);
    EXPECT_EQ(within[0].text, "\xC3\xA8");
    // Beyond the limit it is one piece, at once.
    const std::string large(5 << 20, 'x');
    EXPECT_EQ(applied("a\n" + large, "a\ny" + large), "a\ny" + large);
}

TEST(Difference, ShowsChangesWithTheLinesAround) {
    std::string from, to;
    for (int line = 1; line <= 20; ++line) {
        from += "line " + std::to_string(line) + "\n";
        to += line == 10 ? "changed\n" : "line " + std::to_string(line) + "\n";
    }
    std::wstring shown;
    for (const DifferenceLine& line : DifferenceOf(from, to, 100)) shown += line.text + L"|";
    EXPECT_EQ(shown, L"Line 10|  line 7|  line 8|  line 9|- line 10|+ changed|  line 11|  line 12|  line 13|");
    EXPECT_TRUE(DifferenceOf(from, from, 100).empty());
    EXPECT_EQ(DifferenceOf({}, "new", 100).back().text, L"+ new");
    EXPECT_EQ(DifferenceOf({}, to, 5).size(), 6U);  // with the line that says that there are more
}

TEST(SnapshotNote, ComesBackAndToleratesAnything) {
    const SnapshotNote note{.path = L"C:\\src\\\x4E2D=1.bas",
                            .label = L"\x4E2D=1.bas",
                            .encoding = TextEncoding::Ansi,
                            .lineEnding = LineEnding::Cr,
                            .caret = 5'000'000'000,
                            .file = {.written = 7, .size = 8, .hash = {~0ULL, 9}}};
    const std::string text = SnapshotNoteText(note);
    const SnapshotNote back = ParseSnapshotNote(text);
    EXPECT_EQ(back.path, note.path);
    EXPECT_EQ(back.label, note.label);
    EXPECT_EQ(back.encoding, note.encoding);
    EXPECT_EQ(back.lineEnding, note.lineEnding);
    EXPECT_EQ(back.caret, note.caret);
    EXPECT_EQ(back.file, note.file);
    EXPECT_FALSE(ParseSnapshotNote(SnapshotNoteText({})).file.hash.IsKnown());
    for (std::size_t length = 0; length < text.size(); ++length)  // cut anywhere
        EXPECT_LE(ParseSnapshotNote(text.substr(0, length)).path.size(), note.path.size());
    EXPECT_EQ(ParseSnapshotNote(text.substr(0, 30) + "\nLineEnding=99999\nEncoding=-1\n\0=\n").lineEnding,
              LineEnding::CrLf);
    EXPECT_EQ(ParseSnapshotNote("PK\x03\x04 Path=C:\\x").path, L"");

    EXPECT_EQ(SnapshotName(L"demo.bas", 12), L"demo [12].bas");
    EXPECT_EQ(SnapshotName(L"a/b:c", 3), L"a_b_c [3].txt");
    EXPECT_LT(SnapshotName(std::wstring(259, L'x'), 1).size(), 140U);
    EXPECT_EQ(RecoveryCopyWriter(L"C:\\r\\demo [1f00c0de-3a4-2].bas"), 0x3A4U);
    for (const wchar_t* const foreign : {L"demo.bas", L"demo [1].bas", L"a [-].b", L"x [1-g-2].y", L" [1-123456789-2]"})
        EXPECT_EQ(RecoveryCopyWriter(foreign), 0U) << foreign;
}

TEST(SnapshotTimes, AreSoonButNotAllTheTime) {
    const struct {
        SnapshotTimes times;
        std::uint64_t now;
        bool due;
    } cases[] = {
        {{.firstEdit = 1000, .lastEdit = 1000}, 2400, false},  // still typing, perhaps
        {{.firstEdit = 1000, .lastEdit = 1000}, 2500, true},
        {{.firstEdit = 1000, .lastEdit = 4900}, 4999, false},  // typing on and on
        {{.firstEdit = 1000, .lastEdit = 4900}, 5000, true},
        {{.firstEdit = 6000, .lastEdit = 6000, .written = 5900, .cost = 1000}, 10000, false},  // a large text
        {{.firstEdit = 6000, .lastEdit = 6000, .written = 5900, .cost = 1000}, 10900, true},
        {{.firstEdit = 6000, .lastEdit = 6000, .written = 5900, .failed = true}, 30000, false},  // a full disk
        {{.firstEdit = 6000, .lastEdit = 6000, .written = 5900, .failed = true}, 35900, true},
    };
    for (const auto& each : cases) EXPECT_EQ(SnapshotIsDue(each.times, each.now), each.due) << &each - cases;
}

TEST(LeftoverRules, OnlyTheSameRunsLaterSaveReplacesAText) {
    const LeftoverOrigin snapshot = {.path = L"C:\\a.bas", .run = L"1-2", .time = 10};
    const LeftoverOrigin save = {.path = L"c:\\A.BAS", .run = L"1-2", .time = 10, .ofSave = true};
    EXPECT_TRUE(LeftoverReplaces(save, snapshot));
    EXPECT_FALSE(LeftoverReplaces(snapshot, save)) << "its text may have been copied before the save";
    for (const LeftoverOrigin& other : {LeftoverOrigin{.path = L"C:\\a.bas", .run = L"1-3", .time = 10},
                                        {.path = L"C:\\b.bas", .run = L"1-2", .time = 10},
                                        {.path = L"C:\\a.bas", .run = L"", .time = 10},
                                        {.path = L"C:\\a.bas", .run = L"1-2", .time = 11}})
        EXPECT_FALSE(LeftoverReplaces(save, other));
    EXPECT_FALSE(LeftoverReplaces({.time = 10, .ofSave = true}, {.time = 10})) << "documents without a file";
}
