// What another program has done to a file, and what follows from it.
#include "documents/outside_rules.h"
#include "files/settling.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>

namespace {

constexpr FilePresence kThere = FilePresence::There;

FileState There(std::uint64_t written, std::string_view bytes, std::uint64_t number = 1, bool readOnly = false) {
    return {kThere, readOnly, written, bytes.size(), {1, 0, number}, ContentHashOf(bytes)};
}

FileState Missing(FileState before = {}) {
    before.presence = FilePresence::Missing;
    return before;
}

FileState WithoutHash(FileState state) {
    state.hash = {};
    return state;
}

}  // namespace

TEST(Outside, WhatAChangeIsAndWhatFollows) {
    using enum FileChange;
    const FileState known = There(100, "text");
    struct Case {
        const char* name;
        FileState known, now;
        FileChange change;
        OutsideNews news;    // for a document without a mark
        bool save, unasked;  // whether a save of either kind meets a change
    };
    const Case cases[] = {
        {"the same", known, WithoutHash(known), None, OutsideNews::Nothing, false, false},
        {"never read", {}, There(1, "a"), None, OutsideNews::Nothing, false, false},
        {"share away", known, {}, None, OutsideNews::Nothing, false, false},
        {"touched", known, There(200, "text"), Touched, OutsideNews::AsBefore, false, false},
        {"clock back", known, There(50, "text"), Touched, OutsideNews::AsBefore, false, false},
        {"saved by rename, same text", known, There(100, "text", 2), Touched, OutsideNews::AsBefore, false, false},
        {"other bytes", known, There(200, "tex!"), Changed, OutsideNews::Marked, true, true},
        {"unreadable", known, WithoutHash(There(200, "text")), Changed, OutsideNews::Marked, true, true},
        {"grown", known, WithoutHash(There(200, "text+")), Changed, OutsideNews::Marked, true, true},
        {"grown in the same tick", known, WithoutHash(There(100, "text+")), Changed, OutsideNews::Marked, true, true},
        {"another file", known, There(90, "other", 2), Replaced, OutsideNews::Marked, true, true},
        {"read-only", known, WithoutHash(There(100, "text", 1, true)), ReadOnly, OutsideNews::ReadOnly, false, false},
        {"read-only and changed", known, There(200, "tex!", 1, true), Changed, OutsideNews::Marked, true, true},
        {"writable again", There(100, "text", 1, true), known, Touched, OutsideNews::AsBefore, false, false},
        {"deleted", known, Missing(), Gone, OutsideNews::Marked, false, true},
        {"still deleted", Missing(known), Missing(), None, OutsideNews::Nothing, false, true},
        {"back as it was", Missing(known), There(300, "text", 7), Touched, OutsideNews::AsBefore, false, false},
        {"back with other bytes", Missing(known), There(300, "tex!", 7), Changed, OutsideNews::Marked, true, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(FileChangeOf(c.known, c.now), c.change);
        EXPECT_EQ(OutsideNewsOf(c.known, c.now, {}), c.news);
        EXPECT_EQ(SaveMeetsChange(c.known, c.now, false), c.save);
        EXPECT_EQ(SaveMeetsChange(c.known, c.now, true), c.unasked);
    }
    // After a failed save, only a file that is as it was makes the undone text equal to it.
    const FileState readOnly = WithoutHash(There(100, "text", 1, true));
    EXPECT_TRUE(FailedSaveKeptText(SaveEnd::ReadOnly, known, readOnly));
    EXPECT_TRUE(FailedSaveKeptText(SaveEnd::NoRoom, known, WithoutHash(known)));
    EXPECT_FALSE(FailedSaveKeptText(SaveEnd::NotWritten, known, WithoutHash(known)));
    EXPECT_FALSE(FailedSaveKeptText(SaveEnd::Different, known, WithoutHash(known)));
    EXPECT_FALSE(FailedSaveKeptText(SaveEnd::NotOpened, known, Missing()));
    EXPECT_FALSE(FailedSaveKeptText(SaveEnd::NotOpened, known, {})) << "a share that went away";
    EXPECT_FALSE(FailedSaveKeptText(SaveEnd::NoRoom, known, There(200, "tex!")));
    // A change that was taken back takes its mark along; a deleted file that is still away keeps it.
    EXPECT_EQ(OutsideNewsOf(known, known, {.kind = OutsideKind::Changed}), OutsideNews::AsBefore);
    EXPECT_EQ(OutsideNewsOf(Missing(known), Missing(), {.kind = OutsideKind::Gone}), OutsideNews::Nothing);
    EXPECT_EQ(OutsideKindOf(Gone, true), OutsideKind::Moved);
}

TEST(Outside, NeverOverEditsUnasked) {
    using enum OutsideKind;
    for (const OutsideKind kind : {Changed, Replaced}) {
        EXPECT_EQ(OutsideStepOf(kind, true, true), OutsideStep::AskReload);
        EXPECT_EQ(OutsideStepOf(kind, false, false), OutsideStep::AskReload);
        EXPECT_EQ(OutsideStepOf(kind, false, true), OutsideStep::Reload);
    }
    EXPECT_EQ(OutsideStepOf(Gone, false, true), OutsideStep::Tell);
    EXPECT_EQ(OutsideStepOf(Moved, false, true), OutsideStep::AskName);
}

TEST(Outside, AFileIsReportedOnceItStandsStill) {
    Settling settling;
    EXPECT_FALSE(SettlingTake(settling, Missing(), 1000));  // between the deletion and the renaming of a save
    EXPECT_FALSE(SettlingTake(settling, There(1, "a"), 1100));
    EXPECT_FALSE(SettlingTake(settling, There(1, "a"), 1100 + kSettleMs - 1));
    EXPECT_TRUE(SettlingTake(settling, There(1, "a"), 1100 + kSettleMs));
    settling = {};
    std::uint64_t time = 5000;
    while (!SettlingTake(settling, There(time, "log"), time)) time += 100;
    EXPECT_EQ(time, 5000 + kRestlessMs) << "a file that grows all the time";
}

TEST(Outside, TheHashKnowsEveryByteAndNoPieces) {
    const std::string text(1000, 'x');
    const ContentHash whole = ContentHashOf(text);
    for (std::size_t piece = 1; piece < 100; piece += 7) {
        ContentHasher hasher;
        for (std::size_t at = 0; at < text.size(); at += piece) hasher.Add(std::string_view(text).substr(at, piece));
        ASSERT_EQ(hasher.Value(), whole) << piece;
    }
    for (std::size_t at = 0; at < text.size(); ++at) {
        std::string other = text;
        other[at] = 'y';
        ASSERT_FALSE(ContentHashOf(other) == whole) << at;
        std::string swapped = other;
        std::swap(swapped[at], swapped[(at + 32) % text.size()]);
        ASSERT_FALSE(ContentHashOf(swapped) == ContentHashOf(other)) << at;
    }
    EXPECT_FALSE(ContentHashOf("") == ContentHashOf(std::string_view("\0", 1)));
    EXPECT_TRUE(ContentHashOf("").IsKnown());
}
