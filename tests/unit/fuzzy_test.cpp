// Rankings of the file finder and the command palette.
#include "search/fuzzy_index.h"
#include "search/quick_query.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

std::size_t NameStart(std::wstring_view text) { return text.rfind(text.find(L':') < text.size() ? L' ' : L'\\') + 1; }

FuzzyIndices IndicesOf(const std::vector<std::wstring>& texts, int firstBoost = 0) {
    auto index = std::make_shared<FuzzyIndex>();
    for (const std::wstring& text : texts)
        FuzzyAdd(index.get(), text, NameStart(text), index->entries.empty() ? firstBoost : 0);
    return {index};
}

std::string Shown(std::wstring_view text) { return {text.begin(), text.end()}; }

FuzzyResult Search(const FuzzyIndices& indices, std::wstring_view typed, std::size_t most,
                   std::shared_ptr<const FuzzyResult> before = nullptr) {
    return FuzzySearch(FuzzyPlanOf(indices, typed, std::move(before), most));
}

std::string Ranked(const FuzzyIndices& indices, std::wstring_view typed) {
    std::string ranked;
    for (const std::uint32_t number : Search(indices, typed, 10).best) {
        const FuzzyPlace place = FuzzyPlaceOf(indices, number);
        ranked += Shown(FuzzyTextOf(*indices[place.index], place.entry).text) + " ";
    }
    return ranked;
}

TEST(Fuzzy, BestMatchFirstAsPeopleExpect) {
    const struct {
        const wchar_t* typed;
        std::vector<std::wstring> ranked;  // the expected order; the texts are offered in the opposite one
        std::vector<std::wstring> without = {};
    } cases[] = {
        // The start of the name, and what ends where the word ends.
        {L"main", {L"main.bas", L"src\\main_win.cpp", L"src\\domain.bas", L"src\\main\\other.bas"}},
        {L"find", {L"find.h", L"find.cpp", L"find_rules.cpp", L"findx.h", L"refind.cpp"}, {L"fid.cpp"}},
        {L"test", {L"test.bas", L"unit_test.bas", L"latest.bas", L"tests\\a.bas"}},
        {L"read", {L"readme.md", L"src\\file_read.c", L"src\\thread.c"}},
        {L"s", {L"s.bas", L"src.bas", L"a_s.bas", L"src\\a.bxx", L"aas.bas"}},
        // Word starts and humps.
        {L"fn", {L"FindNext.bas", L"Function.bas", L"a\\often.bas"}},
        {L"fn", {L"fnord.bas", L"FindNext.bas"}},
        {L"frw", {L"find_rules_win.cpp", L"firewall.cpp"}},
        {L"drw", {L"debug_run_win.cpp", L"list_draw_win.cpp", L"redrawn.cpp"}, {L"row.cpp"}},
        {L"nhw", {L"nav_history_win.cpp", L"NavHistoryWide.cpp", L"unhewn.cpp"}},
        {L"xp", {L"XMLParser.bas", L"explore.bas"}},
        {L"dt", {L"debug_table.bas", L"width.bas"}},
        {L"g2", {L"game2.bas", L"img12.bas"}},
        {L"list", {L"ui\\list_view.h", L"LastItemSelectedTable.bas"}},
        {L"bas", {L"bas.txt", L"database.txt", L"blanks.txt"}},
        // Folders, and parts of paths.
        {L"app", {L"lib\\app_state.h", L"lib\\mapping.cpp", L"app\\layout.cpp"}},
        {L"ui/list", {L"ui\\list.h", L"gui\\list.h", L"ui\\controls\\list.h"}, {L"list\\ui.h"}},
        {L"ui\\l", {L"ui\\list.h"}, {L"uil.h"}},
        {L"uilist", {L"ui\\list.h", L"unit\\lists.h"}},
        {L"s/m", {L"src\\main.bas", L"sources\\old\\main.bas"}},
        {L"search", {L"search_bar.cpp", L"research.cpp", L"search\\find.cpp"}},
        {L"tree.cpp", {L"tree.cpp", L"subtree.cpp", L"tree.cpp\\readme.txt"}},
        {L".rc", {L"app.rc", L"app.src\\a.bas"}},
        // Of equal ones the shorter.
        {L"mod", {L"mod.bas", L"a\\mod.bas", L"a\\b\\mod.bas", L"module.bas"}},
        // Letter case does not count, but the right one is better.
        {L"Sub", {L"Sub.bas", L"sub.bas", L"SUB.bas"}},
        {L"sub", {L"sub.bas", L"Sub.bas", L"SUB.bas"}},
        {L"\u00e4\u043f", {L"\u00c4\u041f.bas", L"\u00e4b\u043f.bas"}, {L"ap.bas"}},
        // Several words, in any order.
        {L"win find", {L"find_win.cpp", L"find_windows.cpp"}, {L"find.cpp"}},
        {L"list ui", {L"ui\\list.h", L"ui\\old_list.h"}, {L"list\\main.h"}},
        {L"  find   ", {L"find.cpp"}},
        // Names of commands.
        {L"tb", {L"Debug: Toggle.Breakpoint", L"View: Toolbar"}},
        {L"edit undo", {L"Edit: Undo"}, {L"Tools: Undo.Replacement"}},
    };
    for (const auto& test : cases) {
        std::vector<std::wstring> texts(test.ranked.rbegin(), test.ranked.rend());
        texts.insert(texts.end(), test.without.begin(), test.without.end());
        std::string expected;
        for (const std::wstring& text : test.ranked) expected += Shown(text) + " ";
        EXPECT_EQ(Ranked(IndicesOf(texts), test.typed), expected) << Shown(test.typed);
    }
}

TEST(Fuzzy, RecentOnesComeUpButNotAboveABetterMatch) {
    constexpr int kBoost = 12;
    EXPECT_EQ(Ranked(IndicesOf({L"b\\main.bas", L"a\\main.bas"}, kBoost), L"main"), "b\\main.bas a\\main.bas ");
    EXPECT_EQ(Ranked(IndicesOf({L"domain.bas", L"main.bas"}, kBoost), L"main"), "main.bas domain.bas ");
    EXPECT_EQ(Ranked(IndicesOf({L"z.bas", L"a.bas"}), L""), "z.bas a.bas ") << "all, in their order";
}

// The highest score of all ways to find the word in the text, tried one by one; nothing when there is none.
std::optional<int> NaiveScore(const FuzzyWord& word, const FuzzyText& text, std::size_t letter = 0,
                              std::size_t from = 0) {
    std::optional<int> best;
    for (std::size_t at = from; at < text.text.size(); ++at) {
        const wchar_t character = text.text[at];
        if (character != word.folded[letter] && character + 32 != word.folded[letter]) continue;
        const bool last = letter + 1 == word.folded.size();
        const int own =
            FuzzyLetterScore(text, at, word.letters[letter], last) + (letter > 0 ? FuzzyStepScore(from - 1, at) : 0);
        const std::optional<int> rest = last ? 0 : NaiveScore(word, text, letter + 1, at + 1);
        if (rest) best = std::max(best.value_or(own + *rest), own + *rest);
    }
    return best;
}

TEST(Fuzzy, AgreesWithTryingAllWays) {
    std::mt19937 random(7);
    const auto letters = [&](std::size_t most) {
        std::wstring text;
        for (std::size_t left = random() % (most + 1); left > 0; --left) text += L"abABc_\\"[random() % 7];
        return text;
    };
    std::vector<std::wstring> texts;
    for (int i = 0; i < 2500; ++i) texts.push_back(letters(18));
    const FuzzyIndices indices = IndicesOf(texts);
    for (int round = 0; round < 40; ++round) {
        const std::wstring typed = letters(4) + L" " + letters(3);
        std::shared_ptr<const FuzzyResult> before;
        for (std::size_t length = 1; length <= typed.size(); ++length)
            before = std::make_shared<FuzzyResult>(Search(indices, typed.substr(0, length), texts.size(), before));
        const FuzzyResult found = Search(indices, typed, texts.size());
        EXPECT_EQ(before->best, found.best) << Shown(typed) << ": narrowed letter by letter";
        const FuzzyQuery query = FuzzyQueryOf(typed);
        if (query.words.empty()) continue;
        std::vector<std::uint32_t> matching;
        for (std::uint32_t number = 0; number < texts.size(); ++number) {
            const FuzzyText text = FuzzyTextOf(*indices[0], number);
            std::optional<int> expected = 0;
            for (const FuzzyWord& word : query.words) {
                const std::optional<int> score = NaiveScore(word, text);
                expected = expected && score ? std::optional(*expected + *score) : std::nullopt;
            }
            if (expected) matching.push_back(number);
            ASSERT_EQ(FuzzyScore(query, text), expected) << Shown(typed) << " in " << Shown(text.text);
            ASSERT_EQ(!FuzzyPositions(query, text).empty(), expected.has_value());
        }
        EXPECT_EQ(found.matching, matching) << Shown(typed);
    }
}

TEST(Fuzzy, TellsTheLettersThatMatch) {
    const struct {
        const wchar_t *typed, *text;
        std::vector<std::size_t> positions;
    } cases[] = {
        {L"list", L"last\\ui_list.h", {8, 9, 10, 11}},
        {L"fn", L"a\\often_FindNext.bas", {8, 12}},
        {L"win find", L"find_win.cpp", {0, 1, 2, 3, 5, 6, 7}},
        {L"zz", L"z.bas", {}},
    };
    for (const auto& test : cases)
        EXPECT_EQ(FuzzyPositions(FuzzyQueryOf(test.typed), {test.text, NameStart(test.text)}), test.positions)
            << Shown(test.typed);
}

TEST(Fuzzy, BearsOddInput) {
    const std::wstring longWord(1000, L'a');
    const FuzzyIndices indices = IndicesOf({longWord, L"", L"a"});
    EXPECT_EQ(Search(indices, longWord, 10).best, std::vector<std::uint32_t>{0});
    EXPECT_EQ(Search(indices, L"a", 1).best.size(), 1u) << "at most so many";
    EXPECT_EQ(Search(indices, L"a", 1).matching.size(), 2u);
    FuzzyIndex index;
    EXPECT_FALSE(FuzzyAdd(&index, std::wstring(70'000, L'a'), 0));
    const FuzzyPlan plan = FuzzyPlanOf(IndicesOf(std::vector<std::wstring>(3000, L"a")), L"a", nullptr, 10);
    EXPECT_FALSE(FuzzyJoin(plan, std::vector{FuzzySearchPart(plan, 0)}).whole) << "the second part is missing";
}

TEST(QuickQuery, TellsListPatternAndPlace) {
    const struct {
        const wchar_t* typed;
        QuickQuery query;
    } cases[] = {
        {L"", {}},
        {L" find rules ", {L'\0', L"find rules"}},
        {L"find:", {L'\0', L"find"}},
        {L"find:12", {L'\0', L"find", 12}},
        {L"find:12:", {L'\0', L"find", 12}},
        {L"find:12:5", {L'\0', L"find", 12, 5}},
        {L"a.bas(12)", {L'\0', L"a.bas", 12}},
        {L"a.bas(12,3)", {L'\0', L"a.bas", 12, 3}},
        {L"a.bas(12", {L'\0', L"a.bas", 12}},
        {L"C:\\a\\b.bas", {L'\0', L"C:\\a\\b.bas"}},
        {L"C:\\a\\b.bas:7", {L'\0', L"C:\\a\\b.bas", 7}},
        {L"a2", {L'\0', L"a2"}},
        {L"a:99999999999999999999", {L'\0', L"a", 999999999}},
        {L">", {L'>', L""}},
        {L"> tool bar", {L'>', L"tool bar"}},
        {L">a:1", {L'>', L"a:1"}},
        {L":", {L':', L""}},
        {L":120", {L':', L"120", 120}},
        {L":120,4", {L':', L"120,4", 120, 4}},
        {L":120:4", {L':', L"120:4", 120, 4}},
        {L":x", {L':', L"x"}},
        {L"#a", {L'\0', L"#a"}},
    };
    for (const auto& test : cases) EXPECT_EQ(QuickQueryOf(test.typed, L">:@"), test.query) << Shown(test.typed);
}

}  // namespace
