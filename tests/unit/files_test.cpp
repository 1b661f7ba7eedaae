// Encodings, line breaks, paths, the order of a save and the names of recovery copies.
#include "base/bounded_text.h"
#include "base/path.h"
#include "base/utf8.h"
#include "files/break_kinds.h"
#include "files/recovery.h"
#include "files/safe_save.h"
#include "files/save_errors.h"
#include "files/source_text.h"
#include "files/text_encoding.h"
#include "files/utf16.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace std::string_view_literals;

struct Utf8Case {
    const char* name;
    std::string_view bytes;
    bool valid;
};

constexpr Utf8Case kUtf8Cases[] = {
    {"only ASCII", "plain text"sv, true},           {"a NUL among them", "a\0b"sv, true},
    {"two bytes, lowest", "\xC2\x80"sv, true},      {"two bytes, highest", "\xDF\xBF"sv, true},
    {"three, lowest", "\xE0\xA0\x80"sv, true},      {"before surrogates", "\xED\x9F\xBF"sv, true},
    {"after surrogates", "\xEE\x80\x80"sv, true},   {"lowest four", "\xF0\x90\x80\x80"sv, true},
    {"highest four", "\xF4\x8F\xBF\xBF"sv, true},   {"byte-order mark", "\xEF\xBB\xBF"sv, true},
    {"overlong NUL", "\xC0\x80"sv, false},          {"overlong C1", "\xC1\xBF"sv, false},
    {"overlong three", "\xE0\x9F\xBF"sv, false},    {"a surrogate", "\xED\xA0\x80"sv, false},
    {"overlong four", "\xF0\x8F\xBF\xBF"sv, false}, {"beyond all", "\xF4\x90\x80\x80"sv, false},
    {"never: F5", "\xF5\x80\x80\x80"sv, false},     {"stray continuation", "\x80"sv, false},
    {"lead by itself", "\xC3("sv, false},           {"third byte wrong", "\xE2\x82("sv, false},
    {"fourth wrong", "\xF0\x9F\x98("sv, false},     {"F8", "\xF8\x88\x80\x80\x80"sv, false},
};

// A block of exactly these bytes, so that the sanitizer sees a read after its end.
std::vector<char> Exact(std::string_view bytes) { return {bytes.begin(), bytes.end()}; }

bool IsValid(std::string_view bytes) { return IsValidUtf8Bytes(Exact(bytes).data(), bytes.size()); }

std::string Normalized(std::string_view bytes, LineEnding ending) {
    std::size_t length = 0;
    char* const block = NormalizeLineEndings(Exact(bytes).data(), bytes.size(), ending, &length);
    std::string result{block, length};
    EXPECT_EQ(block[length], '\0');
    std::free(block);
    return result;
}

}  // namespace

// Each case also stands before, after and between stretches of every length that the fast check treats differently.
TEST(Files, Utf8IsRecognisedAtEveryAlignment) {
    EXPECT_TRUE(IsValidUtf8Bytes(nullptr, 0));
    for (const Utf8Case& test : kUtf8Cases) {
        for (std::size_t before = 0; before < 41; ++before) {
            for (const std::size_t after : {0U, 1U, 9U, 40U}) {
                const std::string text = std::string(before, 'x') + std::string{test.bytes} + std::string(after, 'y');
                EXPECT_EQ(IsValid(text), test.valid) << test.name << " after " << before << ", before " << after;
            }
            if (test.valid && static_cast<unsigned char>(test.bytes.back()) >= 0x80) {
                const std::string cut =
                    std::string(before, 'x') + std::string{test.bytes.substr(0, test.bytes.size() - 1)};
                EXPECT_FALSE(IsValid(cut)) << test.name << " cut off, after " << before;
            }
        }
    }
}

TEST(Files, TextAndUtf8ConvertBothWays) {
    for (const Utf8Case& test : kUtf8Cases)
        if (test.valid)
            EXPECT_EQ(ToUtf8(Utf8ToWideText(test.bytes)), test.bytes) << test.name;
        else
            EXPECT_NE(Utf8ToWideText(test.bytes).find(L'\xFFFD'), std::wstring::npos) << test.name;
    EXPECT_EQ(Utf8ToWideText("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"), L"\u00E9\u20AC\U0001F600");
    EXPECT_EQ(Utf8ToWideText("a\xE2\x82z\x80\xFF"), L"a\xFFFDz\xFFFD\xFFFD")
        << "a cut sequence is one, a stray byte is one";
    const wchar_t lone[] = {L'a', static_cast<wchar_t>(0xD83D), L'z', static_cast<wchar_t>(0xDE00), L'\0'};
    EXPECT_EQ(ToUtf8(lone), "a\xEF\xBF\xBDz\xEF\xBF\xBD") << "half a pair of surrogates";
}

// Every course of a save, step by step: c copy written, r room, o overwrite, k check, D copy discarded, K copy kept.
TEST(Files, ASaveNeverLeavesTheUserWithoutOldAndNewText) {
    struct Case {
        const char* name;
        bool readOnly;
        std::uint64_t size;
        bool copy, room, overwrite;
        SaveCheck check;
        const char* steps;
        SaveEnd end;
        bool cancelled = false;
    };
    using SaveCheck::Same;
    using SaveCheck::Unreadable;
    using enum SaveEnd;
    for (const Case& test : {
             Case{"cancelled: the file is not touched", false, 9, false, true, true, Same, "cK", Cancelled, true},
             {"all well", false, 9, true, true, true, Same, "crokD", Saved},
             {"a new file", false, 0, true, true, true, Same, "crokD", Saved},
             {"read-only: the copy is what remains", true, 9, true, true, true, Same, "cK", ReadOnly},
             {"no copy: the old text is the only one", false, 9, false, true, true, Same, "cK", NoCopy},
             {"no copy, but nothing to lose", false, 0, false, true, true, Same, "crokD", Saved},
             {"no room: not even cut short", false, 9, true, false, true, Same, "crK", NoRoom},
             {"the disk failed", false, 9, true, true, false, Same, "croK", NotWritten},
             {"other bytes came back", false, 9, true, true, true, SaveCheck::Different, "crokK", SaveEnd::Different},
             {"cannot be read back", false, 9, true, true, true, Unreadable, "crokK", Saved},
         }) {
        std::string steps;
        const SaveEnd end = SafeSave({.readOnly = test.readOnly, .size = test.size},
                                     {.writeCopy = [&] { return steps += 'c', test.copy; },
                                      .isCancelled = [&] { return test.cancelled; },
                                      .hasRoom = [&] { return steps += 'r', test.room; },
                                      .overwrite = [&] { return steps += 'o', test.overwrite; },
                                      .check = [&] { return steps += 'k', test.check; },
                                      .discardCopy = [&] { steps += 'D'; },
                                      .keepCopy = [&] { steps += 'K'; }});
        EXPECT_EQ(steps, test.steps) << test.name;
        EXPECT_EQ(end, test.end) << test.name;
    }
}

// A text with every kind of character, cut at every byte; and files that must not be taken for UTF-16.
// 112, 39 and 1295 are a full disk, 1117 a broken one: writing in place would cost the old content as well.
TEST(Files, OnlyAFolderThatTakesNoFileIsAReasonToWriteInPlace) {
    for (const unsigned long error : {112UL, 39UL, 1295UL, 1117UL, 1223UL, 0UL}) {
        EXPECT_FALSE(MayWriteInPlace(error)) << error;
        EXPECT_FALSE(IsHeldElsewhere(error)) << error;
    }
    for (const unsigned long error : {5UL, 32UL, 206UL}) EXPECT_TRUE(MayWriteInPlace(error)) << error;
}

TEST(Files, Utf16IsReadAndWrittenBack) {
    const std::string utf8 = "PRINT \"\xC3\xA9 \xE4\xB8\x80 \xE2\x82\xAC \xF0\x9F\x98\x80\"\r\n";
    for (const Utf16Order order : {Utf16Order::Little, Utf16Order::Big}) {
        for (const bool mark : {false, true}) {
            const std::string bytes = Utf8AsUtf16(utf8, order, mark);
            const Utf16Kind kind = Utf16KindOf(bytes);
            EXPECT_EQ(kind.order, order);
            EXPECT_EQ(kind.mark, mark);
            for (std::size_t cut = mark ? 2 : 0; cut <= bytes.size(); ++cut) {
                const std::size_t whole = WholeUtf16(std::string_view{bytes}.substr(0, cut), order);
                std::string text;
                EXPECT_TRUE(AppendUtf16AsUtf8(std::string_view{bytes}.substr(0, whole), order, text)) << cut;
                EXPECT_LE(cut - whole, 3U);
                EXPECT_TRUE(AppendUtf16AsUtf8(std::string_view{bytes}.substr(whole), order, text)) << cut;
                EXPECT_EQ(text, (mark ? "\xEF\xBB\xBF" : "") + utf8) << cut;
            }
        }
    }
    for (const std::string_view bytes : {""sv, "a"sv, "plain"sv, "a\0\0b\r\n\0"sv, "MZ\x90\0\3\0\0\0"sv, "a\0b\0c"sv,
                                         "a\0b\nc\rd\r\ne\0\n"sv, "ab\r\nc\0"sv, "\0\xD8z\0"sv, "\1\0\2\0"sv})
        EXPECT_EQ(Utf16KindOf(bytes).order, Utf16Order::None) << bytes;
    std::string ignored;
    for (const std::string_view half : {"a"sv, "\0\xD8"sv,
                                        "\0\xD8"
                                        "a\0"sv,
                                        "\0\xDC"sv})
        EXPECT_FALSE(AppendUtf16AsUtf8(half, Utf16Order::Little, ignored)) << half;
    EXPECT_EQ(Utf8AsUtf16("a\xFF", Utf16Order::Big, false), "\0a\xFF\xFD"sv);
}

TEST(Files, NulIsFoundAtEveryPlace) {
    for (const char other : {'\x01', 'a', '\x80', '\xFF'}) {
        const std::string without(70, other);
        EXPECT_FALSE(HasNul(without)) << int{other};
        for (std::size_t at = 0; at < without.size(); ++at) {
            std::string with = without;
            with[at] = '\0';
            EXPECT_TRUE(HasNul(with)) << int{other} << " " << at;
        }
    }
}

TEST(Files, BytesAreTextOfTheFirstEncodingThatFits) {
    const auto ansi = [](std::string_view bytes, std::string* utf8, bool* exact) {
        *exact = bytes.find('\xE9') == std::string_view::npos;
        *utf8 = "ansi";
        return bytes != "\xFF"sv;
    };
    SourceText text;
    ASSERT_TRUE(DecodeSource("a\0\n"sv, ansi, &text));
    EXPECT_TRUE(text.asItIs && text.form.keepBreaks && text.lineEnding == LineEnding::Lf);
    ASSERT_TRUE(
        DecodeSource("\xFF\xFE"
                     "a\0\r\0\n\0"sv,
                     ansi, &text));
    EXPECT_TRUE(text.utf8 == "a\r\n" && text.form.utf16 == Utf16Order::Little && text.form.mark);
    EXPECT_TRUE(text.lineEnding == LineEnding::CrLf && text.encoding == TextEncoding::Utf8 && !text.form.keepBreaks);
    for (const bool exact : {false, true}) {
        ASSERT_TRUE(DecodeSource(exact ? "\xFCx\r" : "\xE9x\r", ansi, &text));
        EXPECT_TRUE(text.utf8 == "ansi" && text.encoding == TextEncoding::Ansi && text.form.inexact == !exact);
        EXPECT_EQ(text.lineEnding, LineEnding::Cr);
    }
    EXPECT_FALSE(DecodeSource("\xFF", ansi, &text));

    // What the user says goes before what the bytes look like.
    ASSERT_TRUE(DecodeSource("\xE9x", ansi, &text, SourceCode::Utf8));
    EXPECT_TRUE(text.asItIs && text.encoding == TextEncoding::Utf8);
    ASSERT_TRUE(DecodeSource("plain", ansi, &text, SourceCode::Ansi));
    EXPECT_TRUE(text.utf8 == "ansi" && text.encoding == TextEncoding::Ansi);
    ASSERT_TRUE(DecodeSource("\0x\0y"sv, ansi, &text, SourceCode::Utf16Big));
    EXPECT_TRUE(text.utf8 == "xy" && text.form.utf16 == Utf16Order::Big && !text.form.mark);
    EXPECT_FALSE(DecodeSource("odd", ansi, &text, SourceCode::Utf16Little));
}

TEST(Files, FindsTheFirstCharacterThatIsRefused) {
    const auto refuseEuro = [](std::string_view part) { return part.find("\xE2\x82\xAC") == std::string_view::npos; };
    EXPECT_EQ(FirstRefusedCharacter("", refuseEuro), -1);
    EXPECT_EQ(FirstRefusedCharacter("caf\xC3\xA9", refuseEuro), -1);
    EXPECT_EQ(FirstRefusedCharacter("\xC3\xA9\xE2\x82\xAC", refuseEuro), 2);
    // Around the ends of the blocks that are asked about.
    for (std::size_t before = 65530; before < 65540; ++before) {
        const std::string head(before, 'x');
        EXPECT_EQ(FirstRefusedCharacter(head + "\xC3\xA9\xE2\x82\xAC" + head, refuseEuro),
                  static_cast<std::ptrdiff_t>(before + 2));
    }
}

TEST(Files, OneCopyIsKeptForEachTargetUntilItIsSaved) {
    const auto paths = [](const std::vector<RecoveryCopy>& copies) {
        std::wstring all;
        for (const RecoveryCopy& copy : copies) all += copy.path;
        return all;
    };
    KeptCopies kept;
    EXPECT_EQ(paths(kept.Keep(L"C:\\a", {.path = L"1", .notePath = L""})), L"");
    EXPECT_EQ(paths(kept.Keep(L"C:\\b", {.path = L"2", .notePath = L""})), L"");
    EXPECT_EQ(paths(kept.Keep(L"c:\\A", {.path = L"3", .notePath = L""})), L"1") << "the newer text replaces the older";
    EXPECT_EQ(paths(kept.Keep(L"C:\\a", {})), L"") << "a failure without a copy gives nothing up";
    EXPECT_EQ(kept.LastPath(), L"");
    EXPECT_TRUE(kept.Has(L"C:\\A") && kept.Has(L"C:\\b"));
    EXPECT_EQ(paths(kept.Forget(L"C:\\a")), L"3");
    EXPECT_FALSE(kept.Has(L"C:\\a"));
    EXPECT_TRUE(kept.Has(L"C:\\b"));
}

TEST(Files, FirstLineBreakDecides) {
    struct Case {
        std::string_view bytes;
        LineEnding ending;
    };
    constexpr Case kCases[] = {
        {"", LineEnding::CrLf},       {"no break", LineEnding::CrLf}, {"a\r\nb\n", LineEnding::CrLf},
        {"a\nb\r\n", LineEnding::Lf}, {"a\rb\r\n", LineEnding::Cr},   {"ends in CR\r", LineEnding::Cr},
        {"\n\r", LineEnding::Lf},     {"\r\r\n", LineEnding::Cr},     {"\x0B\x0C\x0E\n", LineEnding::Lf},
    };
    for (const Case& test : kCases) {
        for (std::size_t before = 0; before < 20; ++before) {
            const std::string text = std::string(before, 'x') + std::string{test.bytes};
            EXPECT_EQ(DetectLineEnding(Exact(text).data(), text.size()), test.ending)
                << test.bytes << " after " << before;
        }
    }
}

TEST(Files, BreaksOfSeveralKindsAreNoticedInPieces) {
    const struct {
        std::string_view text;
        bool mixed;
    } cases[] = {{"", false},        {"a\r\nb\r\n", false}, {"\n\n", false},    {"a\rb\r", false},
                 {"\r\r\n", true},   {"\n\r", true},        {"a\r\nb\n", true}, {"a\r\nb\rc", true},
                 {"a\nb\r\n", true}, {"a\nb\rc", true},     {"\r\nb\r", true}};
    for (const auto& test : cases) {
        for (const std::size_t before : {0, 1, 4094, 4095, 4096, 9000}) {
            const std::string text = std::string(before, 'x') + std::string(test.text);
            for (std::size_t cut = before; cut <= text.size(); ++cut) {
                BreakKinds kinds;
                kinds.Look(std::string_view(text).substr(0, cut));
                kinds.Look(std::string_view(text).substr(cut));
                EXPECT_EQ(kinds.Mixed(), test.mixed) << test.text << " after " << before << ", cut at " << cut;
            }
        }
    }
    // Blocks of one kind, with the other one at the end of all.
    std::string lines;
    while (lines.size() < 3 * 4096 + 5) lines += "line\r\n";
    BreakKinds one, two;
    one.Look(lines);
    two.Look(lines + std::string(5000, 'x') + "\n" + lines);
    EXPECT_FALSE(one.Mixed());
    EXPECT_TRUE(two.Mixed());
}

TEST(Files, EveryBreakBecomesTheOneAskedFor) {
    constexpr std::string_view kMixed = "a\r\nb\rc\nd\r\r\n\n\re"sv;
    for (std::size_t before = 0; before < 20; ++before) {
        const std::string head(before, 'x');
        const std::string text = head + std::string{kMixed} + std::string{"\0\x0B tail"sv};
        const std::string tail{"e\0\x0B tail"sv};
        EXPECT_EQ(Normalized(text, LineEnding::Lf), head + "a\nb\nc\nd\n\n\n\n" + tail);
        EXPECT_EQ(Normalized(text, LineEnding::Cr), head + "a\rb\rc\rd\r\r\r\r" + tail);
        EXPECT_EQ(Normalized(text, LineEnding::CrLf), head + "a\r\nb\r\nc\r\nd\r\n\r\n\r\n\r\n" + tail);
        EXPECT_EQ(Normalized(text, static_cast<LineEnding>(7)), Normalized(text, LineEnding::CrLf));
    }
    EXPECT_EQ(Normalized("", LineEnding::Lf), "");
}

TEST(Files, PathParts) {
    struct Case {
        const wchar_t *path, *directory, *file;
    };
    constexpr Case kCases[] = {
        {L"name.bas", L"", L"name.bas"},
        {L"C:\\x\\y.bas", L"C:\\x\\", L"y.bas"},
        {L"C:\\x\\", L"C:\\x\\", L""},
        {L"a/b.bas", L"", L"a/b.bas"},  // a forward slash is no separator
        {L"", L"", L""},
    };
    for (const Case& test : kCases) {
        wchar_t part[64] = L"?";
        PathGetDir(test.path, part, 64);
        EXPECT_STREQ(part, test.directory);
        PathGetFile(test.path, part, 64);
        EXPECT_STREQ(part, test.file);
    }
    wchar_t small[4] = L"?";
    PathGetDir(L"C:\\x\\y.bas", small, 4);
    EXPECT_STREQ(small, L"C:\\");
    PathGetFile(L"long.bas", small, 4);
    EXPECT_STREQ(small, L"lon");
    PathGetFile(nullptr, small, 4);
    PathGetDir(L"x\\", nullptr, 4);
    EXPECT_STREQ(small, L"lon");
}

TEST(Files, PathJoin) {
    struct Case {
        const wchar_t *directory, *name;
        std::size_t capacity;
        const wchar_t* joined;
    };
    constexpr Case kCases[] = {
        {L"C:\\dir\\", L"f.bas", 64, L"C:\\dir\\f.bas"},
        {L"C:\\dir", L"f.bas", 64, L"C:\\dir\\f.bas"},
        {L"", L"f.bas", 64, L"\\f.bas"},
        {L"C:\\dir", L"f.bas", 13, L"C:\\dir\\f.bas"},  // fits to the last character
        {L"C:\\dir", L"f.bas", 12, L"C:\\dir"},         // the name is dropped, not cut
        {L"C:\\dir", L"f.bas", 4, L"C:\\"},
    };
    for (const Case& test : kCases) {
        wchar_t out[64] = L"?";
        PathJoin(test.directory, test.name, out, test.capacity);
        EXPECT_STREQ(out, test.joined) << "capacity " << test.capacity;
    }
    wchar_t same[64] = L"C:\\dir";
    PathJoin(same, L"f", same, 64);
    EXPECT_STREQ(same, L"C:\\dir\\f");
}

TEST(Files, PathComparison) {
    struct Case {
        const wchar_t *a, *b;
        bool equal;
    };
    constexpr Case kCases[] = {
        {L"C:\\A\\b.BAS", L"c:\\a\\B.bas", true},
        {L"C:\\a", L"C:\\a\\", false},
        {L"\u00C4\u00D6\u0178\u0141\u0416\u03A9\u040F", L"\u00E4\u00F6\u00FF\u0142\u0436\u03C9\u045F", true},
        {L"\u00D7", L"\u00F7", false},  // the signs between the letters have no case
        {L"[", L"{", false},
        {L"\u0130", L"\u0131", false},
        {L"\u4E00", L"\u4E01", false},
    };
    for (const Case& test : kCases) {
        EXPECT_EQ(PathEqualsIgnoreCase(test.a, test.b), test.equal) << test.a << " and " << test.b;
        EXPECT_EQ(PathEqualsIgnoreCase(test.b, test.a), test.equal) << test.b << " and " << test.a;
    }
    EXPECT_TRUE(StrStartsWithW(L"[File1]", L"[File") && StrStartsWithW(L"", L""));
    EXPECT_FALSE(StrStartsWithW(L"[file1]", L"[File") || StrStartsWithW(nullptr, L"") || StrStartsWithW(L"", nullptr));
}

TEST(Files, TrailingSlashesAndLongPaths) {
    wchar_t path[] = L"C:\\dir\\\\\\";
    StripTrailingSlash(path);
    EXPECT_STREQ(path, L"C:\\dir");
    wchar_t only[] = L"\\\\";
    StripTrailingSlash(only);
    EXPECT_STREQ(only, L"");

    const std::wstring tail(250, L'x');
    EXPECT_EQ(PathExtended(L"C:\\short"), L"C:\\short");
    EXPECT_EQ(PathExtended(L"C:\\" + tail), L"\\\\?\\C:\\" + tail);
    EXPECT_EQ(PathExtended(L"\\\\server\\" + tail), L"\\\\?\\UNC\\server\\" + tail);
    EXPECT_EQ(PathExtended(L"\\\\?\\C:\\" + tail), L"\\\\?\\C:\\" + tail);
    EXPECT_EQ(PathExtended(tail), tail);  // relative: the prefix would change its meaning
}

TEST(Files, BoundedTextAlwaysEnds) {
    wchar_t text[6] = L"ab";
    EXPECT_TRUE(SafeCatW(text, L"cde"));
    EXPECT_FALSE(SafeCatW(text, L"f"));
    EXPECT_STREQ(text, L"abcde");
    EXPECT_FALSE(SafeCopyW(text, L"123456"));
    EXPECT_STREQ(text, L"12345");
    text[5] = L'!';
    EXPECT_FALSE(SafeCatW(text, L"x"));  // the text had no terminator
    EXPECT_EQ(text[5], L'\0');
    EXPECT_FALSE(SafeCopyW(nullptr, 3, L"x") || SafeCatW(text, 0, L"x"));
}

TEST(Files, RecoveryNamesTellTargetsApart) {
    const std::wstring name = RecoveryCopyName(L"C:\\src\\demo.bas", 0x3A4, 2);
    EXPECT_TRUE(name.starts_with(L"demo [") && name.ends_with(L"-3a4-2].bas")) << name;
    EXPECT_EQ(name, RecoveryCopyName(L"c:\\SRC\\demo.bas", 0x3A4, 2));
    EXPECT_NE(name, RecoveryCopyName(L"C:\\other\\demo.bas", 0x3A4, 2));
    EXPECT_NE(name, RecoveryCopyName(L"C:\\src\\demo.bas", 0x3A4, 3));
    EXPECT_TRUE(RecoveryCopyName(L"C:\\.config", 1, 1).starts_with(L".config ["));
    EXPECT_LT(RecoveryCopyName(L"C:\\" + std::wstring(255, L'n'), 0xFFFFFFFF, 0xFFFFFFFF).size(), 200U);
    EXPECT_LT(RecoveryCopyName(L"C:\\a." + std::wstring(250, L'e'), 1, 1).size(), 200U);
}
