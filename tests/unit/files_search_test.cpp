// Which files a search takes, and what it finds in a text.
#include "base/path.h"
#include "base/utf8.h"
#include "files/ignore_rules.h"
#include "search/file_walk.h"
#include "search/files_options.h"
#include "search/files_replace.h"
#include "search/files_results.h"
#include "search/files_search_text.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <string>

namespace {

TEST(IgnoreRules, MatchAsGitDoes) {
    const struct {
        const char* rules;
        const wchar_t *ignored, *taken;  // paths with blanks between them; a backslash at the end is a folder
    } cases[] = {
        {"*.o\r\n", L"a.o src\\b.O x.o\\", L"a.obj o"},
        {"\xEF\xBB\xBF# note\n\nbuild/", L"build\\ src\\Build\\", L"build src\\build"},
        {"/build\n", L"build build\\", L"src\\build"},
        {"src/gen", L"src\\gen src\\gen\\", L"a\\src\\gen gen"},
        {"*.log\n!keep.log\n", L"a.log x\\b.log", L"keep.log x\\keep.log"},
        {"!a\n*", L"a", L""},
        {"**/foo", L"foo a\\foo a\\b\\foo", L"foo2 a\\foo\\x"},
        {"foo/**", L"foo\\a foo\\a\\b", L"foo foo\\ b\\foo\\a"},
        {"a/**/b", L"a\\b a\\x\\b a\\x\\y\\b", L"a\\xb x\\a\\b"},
        {"a**b/c", L"ab\\c axxb\\c", L"a\\x\\b\\c"},
        {"doc/*.txt", L"doc\\a.txt", L"doc\\x\\a.txt"},
        {"f?o[a-c]\n[!x]y", L"fooa f1oC ay", L"food fooab xy f\\oa"},
        {"\\#a\n\\!b\nc\\ \nd  ", L"#a !b d", L"c a b"},
        {"[ab", L"[ab", L"a"},
        {"[]x]", L"] x", L"[ a"},
        {"***/**/**/x/", L"x\\ a\\x\\", L"x"},
        {"/\n//\n", L"", L"a a\\"},
        {"a/*/c\n", L"a\\b\\c", L"a\\c a\\b\\d\\c"},
    };
    const auto check = [](const char* rules, std::wstring_view paths, bool expected) {
        const IgnoreScope scope{nullptr, 3, IgnoreRulesOf(rules)};
        while (!paths.empty()) {
            std::wstring path{paths.substr(0, paths.find(L' '))};
            paths.remove_prefix(std::min(path.size() + 1, paths.size()));
            const bool folder = path.ends_with(L'\\');
            if (folder) path.pop_back();
            EXPECT_EQ(IsIgnored(&scope, PathKey(L"C:\\" + path), folder), expected)
                << rules << " " << std::string(path.begin(), path.end());
        }
    };
    for (const auto& test : cases) {
        check(test.rules, test.ignored, true);
        check(test.rules, test.taken, false);
    }
    // What takes exponential time where every star is tried again.
    check("*a*a*a*a*a*a*a*a*a*a*a*b\n**/a/**/a/**/a/**/a/**/a/**/b", std::wstring(300, L'a'), false);

    const auto outer = std::make_shared<IgnoreScope>(IgnoreScope{nullptr, 3, IgnoreRulesOf("*.a\n*.b")});
    const IgnoreScope inner{outer, 6, IgnoreRulesOf("!*.a")};
    EXPECT_FALSE(IsIgnored(&inner, L"c:\\x\\1.a", false)) << "the inner file decides";
    EXPECT_TRUE(IsIgnored(&inner, L"c:\\x\\1.b", false)) << "where it says nothing, the outer one does";
}

TEST(FileWalk, TakesWhatTheRulesSay) {
    const struct {
        const wchar_t *only, *except, *name;
        bool folder, hidden, taken;
    } cases[] = {
        {L"*.bas; *.inc", L"", L"A.BAS", false, false, true},
        {L"*.bas,*.inc", L"", L"a.c", false, false, false},
        {L"*.bas", L"", L"lib", true, false, true},
        {L".bas", L"", L"a.bas", false, false, true},
        {L"*.*", L"", L"makefile", false, false, true},
        {L"src\\*.bas", L"", L"a.bas", false, false, true},
        {L"other/**", L"", L"a.bas", false, false, false},
        {L"", L"bin;*.o", L"bin", true, false, false},
        {L"", L"bin\\", L"bin", false, false, true},
        {L"", L"*.o", L"a.o", false, false, false},
        {L"", L"", L".git", true, false, false},
        {L"", L"", L"a", false, true, false},
        {L"", L"", L"a.BuildLog", false, false, false},
        {L"*.buildlog", L"", L"a.buildlog", false, false, true},
    };
    for (const auto& test : cases) {
        const WalkRules rules{L"C:\\p", NameListRules(test.only), NameListRules(test.except)};
        const WalkEntry entry{test.name, test.folder, test.hidden};
        EXPECT_EQ(WalkTakes(rules, L"C:\\p\\src\\", entry, nullptr), test.taken)
            << testing::PrintToString(std::wstring{test.only}) << testing::PrintToString(std::wstring{test.name});
    }
    EXPECT_TRUE(WalkTakes({.root = L"C:\\", .hidden = true}, L"C:\\", {L".a", true, true}, nullptr));
    EXPECT_FALSE(WalkTakes({.root = L"C:\\", .subfolders = false}, L"C:\\", {L"a", true, false}, nullptr));
}

TEST(FilesSearch, FindsWhatALookAtEveryPlaceFinds) {
    std::mt19937 random{10};
    const auto pick = [&](std::size_t count) {
        return std::uniform_int_distribution<std::size_t>{0, count - 1}(random);
    };
    const std::string_view characters[] = {"a", "A", "b", "B", "_", " ", "\n", "\r", "$", "\xC3\xA4", "\xC3\x84"};
    const auto text = [&](std::size_t length, std::size_t kinds) {
        std::string made;
        for (std::size_t i = 0; i < length; ++i) made += characters[pick(kinds)];
        return made;
    };
    const auto folded = [](std::string_view utf8) { return ToUtf8(PathKey(Utf8ToWideText(utf8))); };
    for (int round = 0; round < 4'000; ++round) {
        const std::size_t kinds = 1 + pick(std::size(characters));
        const std::string hay = text(pick(90), kinds);
        const FilesQuery query{text(1 + pick(4), kinds), pick(2) == 0, pick(2) == 0};
        std::string found, expected;
        auto matcher = TextMatcher::Of(query, nullptr);
        for (const FileHit& hit : HitsInText(hay, *matcher, 1000, nullptr).hits)
            found += std::to_string(hit.start) + ":" + std::to_string(hit.line) + " ";
        std::size_t line = 0;
        for (std::size_t at = 0, next = 0; at < hay.size(); ++at) {
            const std::string part = hay.substr(at, query.text.size());
            const bool same = query.matchCase ? part == query.text : folded(part) == folded(query.text);
            if (at >= next && same && (!query.wholeWord || IsWholeWord(hay, at, at + part.size()))) {
                expected += std::to_string(at) + ":" + std::to_string(line) + " ";
                next = at + part.size();
            }
            line += hay[at] == '\n' || (hay[at] == '\r' && (at + 1 == hay.size() || hay[at + 1] != '\n'));
        }
        ASSERT_EQ(found, expected) << testing::PrintToString(hay) << " " << testing::PrintToString(query.text);
    }
}

TEST(FilesSearch, ReadsEncodingsAsTheEditor) {
    const AnsiDecoder latin = [](std::string_view bytes, std::string* utf8, bool*) {
        for (const char c : bytes) *utf8 += ToUtf8(std::wstring(1, static_cast<unsigned char>(c)));
        return true;
    };
    const auto find = [&](std::string_view bytes, const char* what) {
        auto matcher = TextMatcher::Of({what}, nullptr);
        const FileHits found = HitsInBytes(bytes, *matcher, latin, 10, nullptr);
        if (found.kind != FileKind::Text) return std::string{"no text"};
        std::string places;
        for (const FileHit& hit : found.hits)
            places += std::to_string(hit.line) + ":" + std::to_string(hit.start) + "=" + hit.shown + " ";
        return places;
    };
    using namespace std::string_view_literals;
    EXPECT_EQ(find("a\n\tb \xC3\xA4"sv, "\xC3\x84"), "1:5=b \xC3\xA4 ");
    EXPECT_EQ(find("\xE4\r\nb\xE4"sv, "b"), "1:4=b\xC3\xA4 ") << "ANSI: the place in the decoded text";
    EXPECT_EQ(find("b\xE4"sv, "\xC3\xA4"), "0:1=b\xC3\xA4 ");
    EXPECT_EQ(find("\xEF\xBB\xBFx"sv, "x"), "0:3=\xEF\xBB\xBFx ") << "the mark stays in the text";
    EXPECT_EQ(find("\xFF\xFEx\0\xE4\0"sv, "\xC3\xA4"), "0:1=x\xC3\xA4 ");
    EXPECT_EQ(find("\0a\0\n\0x"sv, "X"), "1:2=x ") << "UTF-16 without a mark";
    EXPECT_EQ(find("MZ\x90\0x"sv, "x"), "no text");
    EXPECT_EQ(find(""sv, "x"), "");
}

TEST(FilesSearch, BoundsWhatItShowsAndFinds) {
    const auto first = [](const std::string& text, const char* what) {
        auto matcher = TextMatcher::Of({what}, nullptr);
        return HitsInText(text, *matcher, 1, nullptr).hits.at(0);
    };
    const std::string umlauts = [] {
        std::string text;
        for (int i = 0; i < 500; ++i) text += "\xC3\xA4";
        return text;
    }();
    const FileHit inside = first(umlauts + "needle" + umlauts, "needle");
    EXPECT_EQ(inside.shown.substr(inside.markStart, inside.markLength), "needle");
    EXPECT_LE(inside.shown.size(), kShownBytes);
    EXPECT_TRUE(IsValidUtf8Bytes(inside.shown.data(), inside.shown.size()));
    const FileHit longer = first(umlauts, umlauts.c_str());
    EXPECT_EQ(longer.markLength, longer.shown.size());
    EXPECT_EQ(longer.length, umlauts.size());

    const std::string many(3 << 20, 'x');
    auto matcher = TextMatcher::Of({"x"}, nullptr);
    const FileHits some = HitsInText(many, *matcher, 7, nullptr);
    EXPECT_EQ(some.hits.size(), 7U);
    EXPECT_TRUE(some.more);
    EXPECT_FALSE(HitsInText("xx", *matcher, 2, nullptr).more);
    int asked = 0;
    auto absent = TextMatcher::Of({"y"}, nullptr);
    EXPECT_TRUE(HitsInText(many + "y", *absent, 7, [&] { return ++asked == 2; }).hits.empty());
    EXPECT_EQ(asked, 2) << "a search ends within a piece";
    const std::string across = std::string((1 << 20) + 1, ' ') + "word" + std::string(1 << 20, ' ');
    auto word = TextMatcher::Of({"word", true, true}, nullptr);
    for (std::size_t shift = 0; shift < 8; ++shift)
        EXPECT_EQ(HitsInText(across.substr(shift), *word, 9, nullptr).hits.size(), 1U) << shift;
}

TEST(FilesSearch, FindsAndReplacesByExpressions) {
    FilesQuery query{"^(\\w+)=$|b*", true, false, true, "<\\1\\n>"};
    auto matcher = TextMatcher::Of(query, nullptr);
    const std::string text = "ab=\r\nbb";
    std::string found;
    for (const FileHit& hit : HitsInText(text, *matcher, 99, nullptr).hits)
        found += std::to_string(hit.start) + "+" + std::to_string(hit.length) + ":" + hit.preview + " ";
    EXPECT_EQ(found, "0+3:<ab > 5+2:< > ") << "an empty match right after a match does not count";
    const std::size_t starts[] = {0, 5, 6};
    EXPECT_EQ(ReplacedText(text, ReplacementsAt(text, query, "\r\n", starts)), "<ab\r\n>\r\n<\r\n>");
    std::wstring fault;
    query.text = "a(b";
    EXPECT_FALSE(TextMatcher::Of(query, &fault));
    EXPECT_NE(fault.find(L"character 4"), std::wstring::npos);
    query.text = "";
    EXPECT_FALSE(TextMatcher::Of(query, &fault));

    const FilesQuery plain{"a", false, false, false, "\\1"};
    auto plainMatcher = TextMatcher::Of(plain, nullptr);
    const std::vector<FileHit> hits = HitsInText("a1A", *plainMatcher, 9, nullptr).hits;
    EXPECT_TRUE(HasSameHits("a1A", plain, hits));
    EXPECT_FALSE(HasSameHits("a1A\na", plain, hits)) << "one more";
    EXPECT_FALSE(HasSameHits("a2A", plain, hits)) << "in another line";
    const std::size_t second[] = {2};
    EXPECT_EQ(ReplacedText("a1A", ReplacementsAt("a1A", plain, "\n", second)), "a1\\1") << "a plain text has no groups";
    // What is left after a replacement is found again; what was replaced is where it is now.
    const FilesQuery longer{"a", false, false, false, "xx"};
    auto longerMatcher = TextMatcher::Of(longer, nullptr);
    const std::string_view before = "a a\na a";
    const std::size_t inner[] = {2, 4};
    const std::vector<HitReplacement> done = ReplacementsAt(before, longer, "\n", inner);
    const std::string after = ReplacedText(before, done);
    EXPECT_EQ(after, "a xx\nxx a");
    const std::vector<FileHit> now =
        HitsAfterReplacing(HitsInText(before, *longerMatcher, 9, nullptr).hits, done, after);
    std::string shown;
    for (const FileHit& hit : now)
        shown += std::to_string(hit.start) + "+" + std::to_string(hit.length) + ":" + std::to_string(hit.line) +
                 (hit.replaced ? "! " : " ");
    EXPECT_EQ(shown, "0+1:0 2+2:0! 5+2:1! 8+1:1 ");
    EXPECT_TRUE(HasSameHits(after, longer, now)) << "so another replacement takes the rest";
    const FilesQuery alike{"on.e", false, false, false, "t\\1wo", true};
    const std::size_t all[] = {0, 5, 10};
    EXPECT_EQ(ReplacedText("On.e on.e ON.E", ReplacementsAt("On.e on.e ON.E", alike, "\n", all)),
              "T\\1wo t\\1wo T\\1WO");
}

TEST(FilesResults, KeepRowsInOrder) {
    const auto file = [](const wchar_t* key, std::size_t hits) {
        return ResultFile{
            .path = key, .key = key, .hits = std::vector<FileHit>(hits), .ticked = std::vector<bool>(hits, true)};
    };
    FilesResults results;
    results.Add({file(L"c", 1), file(L"a", 2)});
    results.Add({file(L"b", 1)});
    const auto rows = [&] {
        std::wstring text;
        for (std::size_t i = 0; i < results.RowCount(); ++i) {
            const ResultRow row = results.RowAt(i);
            EXPECT_EQ(results.IndexOf(row), i);
            text += row.hit ? std::to_wstring(*row.hit) : results.files[row.file].key;
        }
        return text;
    };
    EXPECT_EQ(rows(), L"a01b0c0");
    std::wstring walked;
    for (auto row = results.Beside(std::nullopt, true); row; row = results.Beside(row, true))
        walked += results.files[row->file].key + std::to_wstring(*row->hit);
    for (auto row = results.Beside(std::nullopt, false); row; row = results.Beside(row, false))
        walked += results.files[row->file].key + std::to_wstring(*row->hit);
    EXPECT_EQ(walked, L"a0a1b0c0c0b0a1a0");
    results.files[0].folded = true;
    results.Remove({1, 0});
    EXPECT_EQ(rows(), L"ac0") << "a file goes with its last hit";
    EXPECT_EQ(PathBelow(L"C:\\P\\x.bas", L"c:\\p\\"), L"x.bas");
    EXPECT_EQ(PathBelow(L"C:\\Pq\\x.bas", L"C:\\P"), L"C:\\Pq\\x.bas");
}

TEST(FilesResults, PlacesFollowEdits) {
    std::mt19937 random{7};
    const auto pick = [&](std::ptrdiff_t most) {
        return std::uniform_int_distribution<std::ptrdiff_t>{0, most}(random);
    };
    for (int round = 0; round < 300; ++round) {
        std::vector<std::ptrdiff_t> places;
        for (std::ptrdiff_t at = pick(5); places.size() < 20; at += pick(4))
            places.insert(places.end(), {at, at += 1 + pick(3)});
        MovedPlaces moved(places);
        for (int edit = 0; edit < 30; ++edit) {
            const std::ptrdiff_t position = pick(60), length = 1 + pick(5);
            const bool removes = pick(1) == 0;
            const std::vector<std::ptrdiff_t> before = places;
            for (std::size_t i = 0; i < places.size(); ++i) {
                const bool isEmpty = before[i & ~1U] == before[i | 1U];
                if (removes)
                    places[i] = before[i] <= position ? before[i] : std::max(before[i] - length, position);
                else if (before[i] > position || (before[i] == position && i % 2 == 0 && !isEmpty))
                    places[i] += length;
            }
            if (removes)
                moved.Removed(position, length);
            else
                moved.Inserted(position, length);
            for (std::size_t i = 0; i < places.size(); ++i) ASSERT_EQ(moved.At(i), places[i]) << round << " " << i;
        }
    }
}

// A text of lines whose words "x" are the hits, edited as the editor does it.
TEST(FilesResults, HitsGoWithTheirLine) {
    std::string text;
    ResultFile file;
    const auto begin = [&](const std::string& lines) {
        text = lines;
        file = {};
        std::vector<std::ptrdiff_t> places;
        for (std::size_t at = text.find('x'); at != std::string::npos; at = text.find('x', at + 1)) {
            places.insert(places.end(), {static_cast<std::ptrdiff_t>(at), static_cast<std::ptrdiff_t>(at + 2)});
            file.hits.push_back({.shown = text.substr(at, 2)});
            file.ticked.push_back(text[at + 1] != '2');
        }
        file.places = MovedPlaces(std::move(places));
    };
    const auto edit = [&](std::size_t at, const std::string& part, bool inserted) {
        inserted ? text.insert(at, part) : text.erase(at, part.size());
        MoveHits(file, static_cast<std::ptrdiff_t>(at), part, inserted);
    };
    // Each hit stands before its own number, in the order of the text.
    const auto hits = [&] {
        std::string found;
        for (std::size_t i = 0; i < file.hits.size(); ++i) {
            const std::ptrdiff_t start = file.places.At(2 * i), end = file.places.At(2 * i + 1);
            found += text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)) +
                     (file.hits[i].shown == text.substr(static_cast<std::size_t>(start), 2) ? "" : "?") +
                     (file.ticked[i] ? " " : "- ");
        }
        return found;
    };
    begin("a\r\nx1 x2\r\nx3");
    edit(3, "x1 x2\r\n", false);  // the line goes down, below the last one
    edit(5, "\r\nx1 x2", true);
    ASSERT_EQ(text, "a\r\nx3\r\nx1 x2");
    EXPECT_EQ(hits(), "x3 x1 x2- ");
    edit(5, "\r\nx1 x2", false);  // undo
    edit(3, "x1 x2\r\n", true);
    EXPECT_EQ(hits(), "x1 x2- x3 ");
    edit(3, "x1 x2\r\n", false);  // cut
    edit(0, "y", true);           // something else is typed
    edit(4, "x1 x2\r\n", true);
    EXPECT_EQ(hits(), " ?- x3 ") << "it may be another text";
    begin("x1x2\r\n");
    edit(1, "1x", false);  // a part of both
    edit(1, "1x", true);
    EXPECT_EQ(file.places.At(1), 1);
}

TEST(FilesOptions, RecentSearchesBringBackAllOptions) {
    FilesOptions all{L"a|b\\ ", L" ",  true, true, true, FilesScope::Folder, L"C:\\x|", L"*.bas",
                     L"",       false, true, true, true};
    EXPECT_EQ(RecentSearchOf(RecentSearchText(all)), all);
    const FilesOptions some{.what = L"\u00e4"};
    EXPECT_EQ(RecentSearchOf(RecentSearchText(some)), some);
    for (const wchar_t* foreign : {L"", L"x", L"P|", L"Pc||||||", L"Q|a|||||", L"P|a||||||"})
        EXPECT_EQ(RecentSearchOf(foreign), std::nullopt) << testing::PrintToString(std::wstring{foreign});
}

}  // namespace
