// Recent lists, the open dialog's first folder, the go-to-line target, source file names, the row of documents,
// decisions of saves, files that are read in pieces.
#include "base/utf8.h"
#include "documents/file_binding.h"
#include "documents/file_column.h"
#include "documents/file_dialog_texts.h"
#include "documents/file_form.h"
#include "documents/file_work.h"
#include "documents/goto_line.h"
#include "documents/load_rules.h"
#include "documents/open_directory.h"
#include "documents/recent_files.h"
#include "documents/row_rules.h"
#include "documents/save_rules.h"
#include "documents/text_pieces.h"
#include "files/utf16.h"
#include "ui/path_dialog_names.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

TEST(RecentList, PutsTheLatestFirst) {
    using enum RecentMatch;
    const struct {
        const char* name;
        const wchar_t *list, *added;  // entries end with a blank
        RecentMatch match;
        const wchar_t* expected;
    } cases[] = {
        {"first entry", L"", L"a", IgnoreCase, L"a "},
        {"new entry in a full list drops the oldest", L"a b c ", L"d", IgnoreCase, L"d a b "},
        {"third entry comes to the front", L"a b c ", L"c", IgnoreCase, L"c a b "},
        {"second entry takes the new spelling", L"a C:\\X.BAS ", L"c:\\x.bas", IgnoreCase, L"c:\\x.bas a "},
        {"other case is another entry where case counts", L"a B ", L"b", Exact, L"b a B "},
        {"first entry again", L"a b ", L"a", Exact, L"a b "},
        {"empty text is ignored", L"a ", L"", Exact, L"a "},
        {"text that fits a row to the last place", L"a ", L"123456789012345", Exact, L"123456789012345 a "},
        {"text that no row can hold whole is ignored", L"a ", L"1234567890123456", Exact, L"a "},
    };
    for (const auto& test : cases) {
        wchar_t rows[3][16] = {};
        int count = 0;
        std::wistringstream list(test.list);
        for (std::wstring entry; list >> entry; ++count) entry.copy(rows[count], 15);
        count = RecentListAdd(rows, count, test.added, test.match);
        std::wstring found;
        for (int i = 0; i < count; ++i) found += std::wstring(rows[i]) + L" ";
        EXPECT_EQ(found, test.expected) << test.name;
    }
}

TEST(RecentList, MayBeGivenOneOfItsOwnRows) {
    wchar_t rows[3][16] = {L"a", L"b", L"c"};
    EXPECT_EQ(RecentListAdd(rows, 3, rows[2], RecentMatch::Exact), 3);
    EXPECT_STREQ(rows[0], L"c");
    EXPECT_STREQ(rows[1], L"a");
    EXPECT_STREQ(rows[2], L"b");
}

std::wstring g_existing;
bool OnlyExisting(const wchar_t* path) { return path == g_existing; }

TEST(OpenDirectory, FirstMatchWins) {
    const std::wstring first = L"E:\\exe\\TestUsage\\KVX-Editor\\KVXB64\\Examples",
                       second = L"E:\\exe\\KVX-Editor\\KVXB64\\Examples";
    const struct {
        const char* name;
        const wchar_t *file, *last;
        std::wstring existing, expected;
    } cases[] = {
        {"active file", L"C:\\a\\b.bas", L"D:\\last\\", L"", L"C:\\a\\"},
        {"last directory", L"", L"D:\\last\\", second, L"D:\\last\\"},
        {"first examples folder", L"", L"", first, first},
        {"second examples folder", L"", L"", second, second},
        {"program's folder", L"", L"", L"", L"E:\\exe\\"},
    };
    for (const auto& test : cases) {
        g_existing = test.existing;
        wchar_t out[1024] = {};
        EXPECT_TRUE(ResolveOpenDirectory({test.file, test.last, L"E:\\exe\\"}, OnlyExisting, out, 1024)) << test.name;
        EXPECT_EQ(out, test.expected) << test.name;
    }
}

TEST(GotoLine, FieldsAndPlacesStayWithinBounds) {
    const struct {
        const wchar_t* field;
        int number;
    } fields[] = {{L"12", 12}, {L" \t-7x", -7}, {L"x", 0}, {L"", 0}, {L"- 3", 0}, {L"99999999999", 2147483647},
                  {L"+4.9", 4}};
    for (const auto& test : fields) EXPECT_EQ(GotoNumber(test.field), test.number) << test.number;
    const struct {
        const wchar_t* field;
        int line, column;
    } places[] = {{L"5:4", 5, 4}, {L" 5 , 4 ", 5, 4}, {L"54", 54, 0}, {L"5:", 5, 0}, {L":4", 0, 4}, {L"5:-4", 5, 0}};
    for (const auto& test : places) {
        EXPECT_EQ(GotoPlaceOf(test.field).line, test.line) << test.line;
        EXPECT_EQ(GotoPlaceOf(test.field).column, test.column) << test.line;
    }
    EXPECT_EQ(GotoLineIndex(0, 10), -1) << "the line counts from 1";
    EXPECT_EQ(GotoLineIndex(1, 10), 0);
    EXPECT_EQ(GotoLineIndex(2147483647, 10), 9);
}

TEST(FileColumn, CountsTheBytesOfTheFile) {
    const WidthInFile narrow = [](std::string_view) { return 1; };
    const WidthInFile wide = [](std::string_view character) { return character.size() > 1 ? 2 : 1; };
    constexpr std::string_view kLine = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z";
    const struct {
        std::ptrdiff_t column, narrow, wide;
    } cases[] = {{-1, 0, 0}, {0, 0, 0}, {1, 1, 1}, {2, 3, 1}, {3, 6, 3}, {4, 10, 3}, {7, 11, 10}, {900, 11, 11}};
    for (const auto& test : cases) {
        EXPECT_EQ(OffsetOfFileColumn(kLine, test.column, narrow), test.narrow) << test.column;
        EXPECT_EQ(OffsetOfFileColumn(kLine, test.column, wide), test.wide) << test.column << ", two bytes each";
    }
    EXPECT_EQ(OffsetOfFileColumn("\x80\xFF\xC3", 2, narrow), 2) << "no UTF-8";
}

TEST(DocumentRow, CommandsOnSeveralTakeThemInTheirOrder) {
    const std::vector<RowEntry> row = {{7, true, true}, {3, false, true}, {9, true, false}, {4, true, true}};
    using Ids = std::vector<DocumentId>;
    EXPECT_EQ(DocumentsToClose(row, CloseRange::All, 0), (Ids{4, 9, 3, 7}));
    EXPECT_EQ(DocumentsToClose(row, CloseRange::Others, 3), (Ids{4, 9, 7}));
    EXPECT_EQ(DocumentsToClose(row, CloseRange::Right, 3), (Ids{4, 9}));
    EXPECT_EQ(DocumentsToClose(row, CloseRange::Right, 4), Ids{});
    EXPECT_EQ(DocumentsToClose(row, CloseRange::Others, 5), Ids{}) << "the one to keep is gone: nothing is closed";
    EXPECT_EQ(DocumentsToSave(row, true), (Ids{7, 4}));
    EXPECT_EQ(DocumentsToSave(row, false), Ids{9});
}

TEST(Documents, WhatMayTakeLongIsReadOnAWorker) {
    EXPECT_EQ(LoadWayOf(kLargeFile - 1, false), LoadWay::Direct);
    EXPECT_EQ(LoadWayOf(-1, false), LoadWay::Direct) << "a file that is not there";
    for (const auto& [size, remote] :
         {std::pair{kLargeFile, false}, {std::int64_t{10}, true}, {std::int64_t{-1}, true}})
        EXPECT_EQ(LoadWayOf(size, remote), LoadWay::Worker) << size;
    EXPECT_EQ(LoadWayOf(std::int64_t{kLargestText} + 1, true), LoadWay::Refused);
}

TEST(Documents, WorkThatHangsIsLeftBehindOnlyWhileItMayStop) {
    WorkWatch watch = {.began = 1000};
    FileProgress progress;
    EXPECT_FALSE(WorkIsShown(watch, 1000 + kQuietMs - 1));
    EXPECT_TRUE(WorkIsShown(watch, 1000 + kQuietMs));
    EXPECT_FALSE(WorkHangs(watch, progress, 100000)) << "slow, but nobody wants it to stop";
    progress.cancel = true;
    progress.mayCancel = false;
    EXPECT_FALSE(WorkHangs(watch, progress, 200000)) << "half a file would be left";
    progress.mayCancel = true;
    EXPECT_FALSE(WorkHangs(watch, progress, 300000));
    EXPECT_FALSE(WorkHangs(watch, progress, 300000 + kHangsMs - 1));
    EXPECT_TRUE(WorkHangs(watch, progress, 300000 + kHangsMs));
}

TEST(Documents, ChangesAreAskedAboutOnceAndTogether) {
    std::vector<RowEntry> row = {{1, false, true}, {2, true, false}, {3, true, true}};
    using Ids = std::vector<DocumentId>;
    std::vector<Ids> questions;
    Ids stays;  // what the user keeps open
    const ClosingQuestions ask = {.row = [&] { return row; },
                                  .ask =
                                      [&](const Ids& documents) {
                                          questions.push_back(documents);
                                          // Moved, closed and changed while the question was open.
                                          row = {{3, true, true}, {1, true, true}, {4, true, false}};
                                          return stays;
                                      }};
    EXPECT_TRUE(ConfirmClosing({}, ask, nullptr));
    EXPECT_EQ(questions, (std::vector<Ids>{{2, 3}, {1, 4}})) << "what got changes meanwhile is asked about, too";

    questions.clear();
    EXPECT_TRUE(ConfirmClosing(Ids{7, 4}, ask, nullptr));
    EXPECT_EQ(questions, std::vector<Ids>{{4}});

    questions.clear();
    stays = {3, 9};
    EXPECT_FALSE(ConfirmClosing({}, ask, nullptr));
    EXPECT_EQ(questions.size(), 1U);
    Ids refused;
    stays = {9};
    EXPECT_TRUE(ConfirmClosing({}, ask, &refused)) << "what is gone after its question counts as closed";
    stays = {3};
    EXPECT_FALSE(ConfirmClosing({}, ask, &refused));
    EXPECT_EQ(refused, stays);
}

TEST(SaveRules, NothingIsReplacedOrOverwrittenUnasked) {
    struct Case {
        TextEncoding own;
        bool holds;
        Answer answer;
        bool asks;
        std::optional<TextEncoding> saved;
    };
    for (const Case& test : {Case{TextEncoding::Utf8, false, Answer::Cancel, false, TextEncoding::Utf8},
                             {TextEncoding::Ansi, true, Answer::Cancel, false, TextEncoding::Ansi},
                             {TextEncoding::Ansi, false, Answer::Yes, true, TextEncoding::Utf8},
                             {TextEncoding::Ansi, false, Answer::No, true, TextEncoding::Ansi},
                             {TextEncoding::Ansi, false, Answer::Cancel, true, std::nullopt}}) {
        bool asked = false;
        const auto saved = EncodingToSave(test.own, test.holds, [&] {
            asked = true;
            return test.answer;
        });
        EXPECT_EQ(asked, test.asks) << static_cast<int>(test.answer);
        EXPECT_EQ(saved, test.saved) << static_cast<int>(test.answer);
    }
    EXPECT_TRUE(SaveMakesBackup(true, true, false));
    EXPECT_FALSE(SaveMakesBackup(true, true, true)) << "the file may be damaged, its backup is not";
    EXPECT_FALSE(SaveMakesBackup(true, false, false) || SaveMakesBackup(false, true, false));
    const std::wstring label(259, L'n');
    EXPECT_EQ(SaveQuestion(label.c_str()), L"Save changes to " + label + L"?");

    const FileBinding binding = BindingForNewName(L"C:\\x\\new.bas", {}, TextEncoding::Ansi);
    EXPECT_STREQ(binding.label, L"new.bas");
    EXPECT_TRUE(binding.hasFile && binding.encoding == TextEncoding::Ansi && binding.lineEnding == LineEnding::CrLf);
}

TEST(FileForms, AreKeptOnceTheUserHasChosenThem) {
    FileBinding file;
    file.encoding = TextEncoding::Ansi;
    file.readAs = SourceCode::Ansi;
    EXPECT_FALSE(ChooseFileForm(file, FileForm::Ansi));
    for (const FileForm form : {FileForm::Utf16Big, FileForm::Utf8, FileForm::Utf16Little, FileForm::Ansi}) {
        EXPECT_TRUE(ChooseFileForm(file, form));
        EXPECT_EQ(FileFormOf(file), form);
        EXPECT_FALSE(SaveAsksAboutForm(file)) << "the choice is the answer";
        EXPECT_EQ(file.form.mark, file.form.utf16 != Utf16Order::None);
        EXPECT_EQ(FileFormOf(BindingForNewName(L"C:\\new.bas", file, TextEncoding::Ansi)), form);
        EXPECT_EQ(file.readAs, SourceCode::Guess) << "the next save writes another file";
    }
    EXPECT_EQ(ChooseLineEnding(file, LineEnding::Lf), EndingChange::Changed);
    EXPECT_EQ(ChooseLineEnding(file, LineEnding::Lf), EndingChange::Same);
    EXPECT_EQ(BindingForNewName(L"C:\\new.bas", file, TextEncoding::Ansi).lineEnding, LineEnding::Lf);
    file.form.mixedBreaks = true;
    EXPECT_NE(FormNotice(file).find(L"makes all of them LF"), std::wstring::npos);
    EXPECT_EQ(ChooseLineEnding(file, LineEnding::Lf), EndingChange::Changed) << "the others become LF";
    EXPECT_FALSE(SaveUnifiesBreaks(file));
    file.form.mixedBreaks = file.form.keepBreaks = true;
    EXPECT_FALSE(SaveUnifiesBreaks(file)) << "the breaks of a file with NUL bytes stay";
    EXPECT_EQ(ChooseLineEnding(file, LineEnding::Cr), EndingChange::Refused);
    EXPECT_EQ(file.lineEnding, LineEnding::Lf);
}

TEST(SaveRules, AsksBeforeAFileChangesItsForm) {
    struct Case {
        bool inexact, utf16, sameFile;
        Answer answer;
        int questions;
        FormChoice choice;
        Utf16Order kept;
    };
    using enum FormChoice;
    constexpr auto kNone = Utf16Order::None, kBig = Utf16Order::Big;
    for (const Case& test : {Case{false, false, true, Answer::Cancel, 0, Save, kNone},
                             {true, false, true, Answer::Yes, 1, OtherName, kNone},
                             {true, false, true, Answer::No, 1, Save, kNone},
                             {true, false, true, Answer::Cancel, 1, Cancel, kNone},
                             {true, false, false, Answer::Cancel, 0, Save, kNone},
                             {false, true, true, Answer::Yes, 1, Save, kBig},
                             {false, true, false, Answer::No, 1, Save, kNone},
                             {false, true, true, Answer::Cancel, 1, Cancel, kBig}}) {
        FileBinding binding;
        binding.form = {.utf16 = test.utf16 ? kBig : kNone, .inexact = test.inexact};
        int questions = 0;
        const auto ask = [&](const FormQuestion&) { return ++questions, test.answer; };
        EXPECT_EQ(SaveAsksAboutForm(binding), test.inexact || test.utf16);
        EXPECT_EQ(ChooseForm(binding, test.sameFile, ask), test.choice);
        EXPECT_EQ(questions, test.questions);
        EXPECT_EQ(binding.form.utf16, test.kept);
        if (test.choice != Save || test.inexact) continue;
        EXPECT_EQ(ChooseForm(binding, test.sameFile, ask), Save);
        EXPECT_EQ(questions, test.questions) << "asked once";
    }
    const std::wstring text = FailedSaveText(L"C:\\a.bas", {SaveEnd::NotOpened, 32}, L"In use.", L"D:\\copy.bas");
    EXPECT_TRUE(text.starts_with(L"Failed to save file: C:\\a.bas\n"));
    EXPECT_TRUE(text.find(L"In use. (error 32)") != text.npos && text.ends_with(L"D:\\copy.bas"));
}

// A text that was read in pieces, of at most `most` bytes a read.
struct MovedText {
    PiecesResult result;
    std::string text;
    bool whole = true;  // no piece ended within a character
};

// Takes each byte of an "ANSI" text for the character with its number.
MovedText MoveInPieces(std::string_view text, std::size_t most, PieceCode code = PieceCode::Guess,
                       const PiecesLimits& limits = {}) {
    MovedText moved;
    moved.result = MoveTextPieces({.read = [&](char* out, std::size_t capacity) -> std::optional<std::size_t> {
                                       const std::size_t taken = text.copy(out, std::min(most, capacity));
                                       text.remove_prefix(taken);
                                       return taken;
                                   },
                                   .append =
                                       [&](std::string_view piece) {
                                           moved.whole = moved.whole && IsValidUtf8Bytes(piece.data(), piece.size());
                                           moved.text += piece;
                                           return true;
                                       },
                                   .wholeAnsi = [](std::string_view bytes) { return bytes.size(); },
                                   .decodeAnsi =
                                       [](std::string_view bytes, std::string* utf8, bool* exact) {
                                           for (const char c : bytes) *utf8 += ToUtf8(std::wstring(1, c & 0xFF));
                                           *exact = bytes.find('\x81') == std::string_view::npos;
                                           return true;
                                       }},
                                  code, limits);
    return moved;
}

// Puts a character or a line break across every border of the 1 MB pieces, cut at each of its bytes.
TEST(SaveRules, ANameIsProposed) {
    EXPECT_EQ(NameToPropose(L"Untitled 2"), L"Untitled 2.bas");
    EXPECT_EQ(NameToPropose(L"a:b?.inc"), L"a_b_.inc");
    EXPECT_EQ(NameToPropose(L" .. "), L"Untitled.bas");
}

TEST(TextPieces, NothingIsCutAtTheBorders) {
    struct Case {
        const char* name;
        std::string_view across;
        LineEnding ending;
    };
    for (const Case& test : {Case{"two bytes", "\xC3\xA9", LineEnding::CrLf},
                             {"three bytes", "\xE2\x82\xAC", LineEnding::CrLf},
                             {"four bytes", "\xF0\x9F\x98\x80", LineEnding::CrLf},
                             {"CR LF", "\r\n", LineEnding::CrLf},
                             {"CR alone", "\rx", LineEnding::Cr},
                             {"LF", "\n", LineEnding::Lf}}) {
        for (std::size_t before = 1; before <= test.across.size(); ++before) {
            std::string text;
            for (std::size_t border = kTextPiece; border <= 4 * kTextPiece; border += kTextPiece) {
                text.resize(border - before, 'x');
                text += test.across;
            }
            text += "tail";
            for (const std::size_t most : {kTextPiece, kTextPiece / 3 + 1}) {
                const MovedText moved = MoveInPieces(text, most);
                EXPECT_EQ(moved.result.end, PiecesEnd::Done) << test.name << ' ' << before;
                EXPECT_EQ(moved.result.length, text.size()) << test.name << ' ' << before;
                EXPECT_EQ(moved.result.lineEnding, test.ending) << test.name << ' ' << before;
                EXPECT_TRUE(moved.text == text && moved.whole) << test.name << ' ' << before;
            }
        }
    }
}

TEST(TextPieces, TellsWhatIsNoUtf8) {
    for (const std::string_view text : {"a\x80", "ends in \xE2\x82", "\xFF\xFE\xFD\xFC", "\xED\xA0\x80"}) {
        EXPECT_EQ(MoveInPieces(text, 1, PieceCode::Utf8).result.end, PiecesEnd::OtherCode) << text;
        EXPECT_EQ(MoveInPieces(text, 100, PieceCode::Utf8).result.end, PiecesEnd::OtherCode) << text;
    }
    EXPECT_EQ(MoveInPieces("a\x80z", 100, PieceCodeOf(SourceCode::Utf8)).text, "a\x80z") << "as the user says";
    const MovedText wide = MoveInPieces(std::string_view("\xFE\xFF\0x", 4), 3, PieceCodeOf(SourceCode::Utf16Big));
    EXPECT_TRUE(wide.text == "x" && wide.result.form.mark && wide.result.form.utf16 == Utf16Order::Big);
    EXPECT_EQ(MoveInPieces("", 100).result.end, PiecesEnd::Done);
    EXPECT_EQ(MoveInPieces("ends in CR\r", 100).result.lineEnding, LineEnding::Cr);
    EXPECT_FALSE(MoveInPieces("a\r\nb\r\n", 2).result.form.mixedBreaks);
    EXPECT_TRUE(MoveInPieces("a\r\nb\r\nc\n", 2).result.form.mixedBreaks);
    PiecesResult failed =
        MoveTextPieces({.read = [](char*, std::size_t) { return std::optional<std::size_t>{}; }}, PieceCode::Utf8, {});
    EXPECT_EQ(failed.end, PiecesEnd::Failed);
    EXPECT_EQ(NextPieceCode(failed), PieceCode::Ansi);
    failed.form.utf16 = Utf16Order::Little;
    EXPECT_EQ(NextPieceCode(failed), PieceCode::Utf8);
}

TEST(TextPieces, OtherEncodingsAndLimits) {
    const std::string utf8 = "a" + std::string(3 * kTextPiece, 'x') + "\xF0\x9F\x98\x80\n";
    for (const bool mark : {false, true}) {
        const MovedText moved =
            MoveInPieces(Utf8AsUtf16(utf8, Utf16Order::Big, mark), kTextPiece - 1 - mark, PieceCode::Guess);
        EXPECT_EQ(moved.result.end, PiecesEnd::Done);
        EXPECT_TRUE(moved.text == utf8 && moved.whole);
        EXPECT_TRUE(moved.result.form.utf16 == Utf16Order::Big && moved.result.form.mark == mark);
        EXPECT_TRUE(moved.result.longLine && !moved.result.form.keepBreaks);
    }
    const MovedText ansi = MoveInPieces("caf\xE9\r\x81", 4, PieceCode::Ansi);
    EXPECT_EQ(ansi.text, "caf\xC3\xA9\r\xC2\x81");
    EXPECT_TRUE(ansi.result.encoding == TextEncoding::Ansi && ansi.result.form.inexact && !ansi.result.longLine);
    EXPECT_EQ(MoveInPieces(utf8, kTextPiece, PieceCode::Utf8, {.text = utf8.size() - 1}).result.end,
              PiecesEnd::TextTooLong);
    EXPECT_EQ(MoveInPieces(utf8, kTextPiece, PieceCode::Utf8, {.line = 2 * kTextPiece}).text.size(), 2 * kTextPiece)
        << "refused before the rest is read";
    // A line that is just long, with its ends at every place of the pieces; and text that is all short lines.
    for (const std::size_t length : {kLongLine - 1, kLongLine}) {
        for (const std::size_t before : {std::size_t{0}, kLongLine / 2, kLongLine - 1}) {
            std::string text;
            while (text.size() < before) text += "line\n";
            text += std::string(length, 'x') + "\nline\r\n";
            EXPECT_EQ(MoveInPieces(text, kTextPiece).result.longLine, length == kLongLine) << before;
        }
    }
}

TEST(FileDialogs, AreGivenPairsAndTheNamesOfAPath) {
    const std::wstring filter = FileDialogFilter();
    EXPECT_EQ(std::count(filter.begin(), filter.end(), L'\0'), 17) << "eight pairs, and one to end them";
    EXPECT_TRUE(filter.ends_with(std::wstring_view(L"\0*.*\0\0", 6)));
    EXPECT_EQ(FileDialogNames(L"C:\\a\\b.bas")[1], L"b.bas");
}

}  // namespace
