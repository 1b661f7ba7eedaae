// Rules of find and replace.
#include "search/find_bar_rules.h"
#include "search/find_engine.h"
#include "search/find_rules.h"
#include "search/replacement.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(Replacement, ExpandsWhatIsWritten) {
    const struct {
        const char *replacement, *expected;
        bool preserveCase = false;
    } cases[] = {
        {"plain", "plain"},
        {"$1 = \\2", "one = two"},
        {"\\0|$0|$&|${1}|${last}", "one.two|one.two|one.two|one|two"},
        {"$10$1x", "one0onex"},
        {"a\\nb\\tc\\r \\r\\n", "a\r\nb\tc\r \r\n"},
        {"\\\\1 \\. a$ $$1 ${ $x \\$1", "\\1 . a$ $1 ${ $x $1"},
        {"\\U$1\\E-$1-\\u$2-\\U\\l$2", "ONE-one-Two-tWO"},
        {"\\L\\u\xC3\x84\xC3\x96", "\xC3\x84\xC3\xB6"},
        {"end\\", "end\\"},
        {"", ""},
    };
    RegexFault fault;
    const FindOptions find{.regex = true};
    RegexSearch search(RegexCompile("(\\w+)\\.(?<last>\\w+)(x)?", find, fault));
    const RegexText text = RegexTextOf("<one.two>");
    search.Begin(text, {0, text.length});
    ASSERT_EQ(search.Next(), RegexResult::Match);
    ReplaceForm form;
    for (const auto& test : cases) {
        EXPECT_TRUE(ReplaceParse(test.replacement, search.Code(), find, {.lineBreak = "\r\n"}, form, fault));
        EXPECT_EQ(ReplaceExpand(form, search), test.expected) << test.replacement;
    }
    EXPECT_TRUE(ReplaceParse("$1\\n", search.Code(), {}, {}, form, fault));
    EXPECT_EQ(ReplaceExpand(form, search), "$1\\n") << "plain for a plain search";
    for (const char* bad : {"abc$4", "abc\\9", "abc${none}"}) {
        EXPECT_FALSE(ReplaceParse(bad, search.Code(), find, {}, form, fault)) << bad;
        EXPECT_EQ(fault.position, 3) << bad;
        EXPECT_NE(fault.text.find(L"no group"), std::wstring::npos);
    }
    const struct {
        const char *matched, *with;
    } cased[] = {{"ABC", "NEW WORD"}, {"abc", "new word"}, {"Abc", "New Word"},      {"aBC", "new Word"},
                 {"A", "New Word"},   {"12", "new Word"},  {"\xC3\x84X", "NEW WORD"}};
    for (const auto& test : cased) EXPECT_EQ(WithCaseOf(test.matched, "new Word"), test.with) << test.matched;
}

TEST(FindRules, PlansAroundSelectionAndScope) {
    const FindSpan document{0, 100};
    const FindPlan forward = PlanFind({20, 30}, document, true);
    EXPECT_EQ(forward.first, (FindSpan{30, 100}));
    EXPECT_EQ(forward.wrapped, (FindSpan{0, 100}));
    const FindPlan backward = PlanFind({20, 30}, document, false);
    EXPECT_EQ(backward.first, (FindSpan{20, 0}));
    EXPECT_EQ(backward.wrapped, (FindSpan{100, 0}));

    const FindSpan scope{40, 60};
    EXPECT_EQ(PlanFind({20, 30}, scope, true).first, (FindSpan{40, 60}));  // from before the scope: searches all of it
    EXPECT_EQ(PlanFind({70, 80}, scope, true).first, (FindSpan{40, 60}));
    EXPECT_EQ(PlanFind({70, 80}, scope, false).first, (FindSpan{60, 40}));
    EXPECT_EQ(PlanFind({45, 50}, scope, false).first, (FindSpan{45, 40}));
}

TEST(FindRules, ScopeAndDialogKeepToWhatIsThere) {
    EXPECT_EQ(ScopeWithin(std::nullopt, 50), (FindSpan{0, 50}));
    EXPECT_EQ(ScopeWithin(FindSpan{10, 90}, 50), (FindSpan{10, 50})) << "the document became shorter";
    EXPECT_EQ(ScopeWithin(FindSpan{60, 90}, 50), (FindSpan{50, 50}));
    EXPECT_EQ(ScopeAfterEdit({10, 20}, 4, 3, 0), (FindSpan{13, 23}));
    EXPECT_EQ(ScopeAfterEdit({10, 20}, 20, 3, 0), (FindSpan{10, 23}));
    EXPECT_EQ(ScopeAfterEdit({10, 20}, 8, 0, 4), (FindSpan{8, 16}));
    EXPECT_EQ(ScopeAfterEdit({10, 20}, 10, 0, 10), (FindSpan{10, 10})) << "a match that is all of it";
    EXPECT_EQ(ScopeAfterEdit({10, 20}, 5, 0, 40), std::nullopt);
    EXPECT_EQ(ScopeAfterEdit({10, 20}, 10, 0, 11), std::nullopt);
    EXPECT_EQ(DialogTopBesideMatch(100, 120, 200, 0, 900), 120) << "below";
    EXPECT_EQ(DialogTopBesideMatch(800, 820, 200, 0, 900), 600) << "above";
    EXPECT_EQ(DialogTopBesideMatch(100, 120, 200, 30, 300), 30) << "neither: at the top of the work area";
}

TEST(FindRules, TakesOneLineOfASelection) {
    EXPECT_EQ(SearchTextFromSelection("PRINT a$"), "PRINT a$");
    EXPECT_EQ(SearchTextFromSelection("a\r\nb"), "");
    EXPECT_EQ(SearchTextFromSelection(std::string(255, 'x')).size(), 255U);
    EXPECT_EQ(SearchTextFromSelection(std::string(256, 'x')), "");
    EXPECT_EQ(SearchTextFromSelection(std::string("a\0b", 3)), "");
    EXPECT_EQ(TextToFindNext(L"last", L"selected", L"newest"), L"last");
    EXPECT_EQ(TextToFindNext(L"", L"selected", L"newest"), L"selected");
    EXPECT_EQ(TextToFindNext(L"", L"", L"newest"), L"newest");
    EXPECT_EQ(ReplaceStatusOf(RegexResult::NoMatch, 0), L"Not found: nothing replaced");
    EXPECT_EQ(ReplaceStatusOf(RegexResult::NoMatch, 12), L"12 replacements");
    EXPECT_EQ(ReplaceStatusOf(RegexResult::Stopped, 0), L"Stopped: nothing was replaced");
}

TEST(FindBarRules, PlacesWhatHasRoomAndCounts) {
    const FindBarSizes sizes{.height = 30, .gap = 5, .controlHeight = 20, .widths = {100, 50, 50, 50, 80, 60, 40, 45}};
    for (int width = 0; width <= 1200; width += 7) {
        FindBarPlace places[kFindBarParts];
        PlaceFindBar(sizes, width, places);
        int right = 0;
        for (const FindBarPlace& place : places) {
            if (place.width == 0) continue;
            EXPECT_GE(place.left, right + sizes.gap) << width;
            right = place.left + place.width;
        }
        EXPECT_LE(right, width) << "nothing is cut off";
        EXPECT_TRUE(places[0].width >= 100 || width < 110) << "the field stays to the last: " << width;
        if (width > 600) EXPECT_GE(right, width - 2 * sizes.gap) << "the room is used";
    }
    EXPECT_EQ(FindBarCountText({.current = 3, .total = 120}), L"3 of 120");
    EXPECT_EQ(FindBarCountText({.current = 3, .total = 120, .counting = true}), L"3 of 120...");
    EXPECT_EQ(FindBarCountText({.total = 1}), L"1 match");
    EXPECT_EQ(FindBarCountText({.total = 1000000, .capped = true}), L"more than 1000000 matches");
    EXPECT_EQ(FindBarCountText({.counting = true}), L"Searching...");
    EXPECT_EQ(FindBarCountText({}), L"No matches");
}

}  // namespace
