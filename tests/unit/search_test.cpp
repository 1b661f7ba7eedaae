// Rules of find and replace.
#include "search/find_engine.h"
#include "search/find_rules.h"
#include "search/regex_check.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(FindRules, SplitsAlternatives) {
    // Each alternative with a blank after it.
    const auto split = [](const char* pattern) {
        std::vector<std::string> found;
        std::string text;
        if (!SplitAlternatives(pattern, found)) return std::string("impossible");
        for (const std::string& each : found) text += each + " ";
        return text;
    };
    const struct {
        const char *pattern, *alternatives;
    } cases[] = {
        {"SUB|FUNC", "SUB FUNC "}, {"a\\|b", "a\\|b "},     {"a\\\\|b", "a\\\\ b "}, {"[a|b]|c", "[a|b] c "},
        {"[]|]|c", "[]|] c "},     {"[^]|]|c", "[^]|] c "}, {"[a|b", "[a|b "},       {"[-]|]|c", "[-]|] c "},
        {"[\\]|]|c", "[\\]|] c "}, {"(a)|(b)", "(a) (b) "}, {"\\(a|b", "\\(a b "},   {"(a|b)", "impossible"},
        {"ab|a||", "ab a "},       {"|ab||", "ab "},
    };
    for (const auto& test : cases) EXPECT_EQ(split(test.pattern), test.alternatives) << test.pattern;
    for (const std::string alone : {"abc", "a\\", "["}) EXPECT_EQ(split(alone.c_str()), alone + " ");
    for (const char* nothing : {"|", ""}) EXPECT_EQ(split(nothing), "") << nothing;
}

TEST(FindRules, TellsFaultyExpressions) {
    const struct {
        const wchar_t* part;  // of the sentence; empty: no fault
        std::vector<const char*> patterns;
    } cases[] = {
        {L"", {"^SUB +([a-z]+)$", "a\\(b\\*", "[]*+(]x*", "(a)(b\\1)", "\xC3\xA4x*"}},
        {L"repeated", {"\xC3\xA4+x"}},
        {L"ASCII characters can stand", {"[\xC3\xA4]"}},
        {L"[ is not closed", {"[a"}},
        {L"( is not closed", {"(a"}},
        {L"has no (", {"a)"}},
        {L"empty", {"()"}},
        {L"nothing that", {"*a", "^*", "(a)*", "\\<*"}},
        {L"between", {"\\<\\>"}},
        {L"no group", {"(a\\1)", "\\2"}},
        {L"more than 9", {"(a)(a)(a)(a)(a)(a)(a)(a)(a)(a)"}},
    };
    for (const auto& test : cases) {
        for (const char* pattern : test.patterns) {
            const wchar_t* fault = RegexFault(pattern);
            EXPECT_EQ(fault != nullptr, test.part[0] != L'\0') << pattern;
            EXPECT_TRUE(fault == nullptr || std::wstring{fault}.find(test.part) != std::wstring::npos) << pattern;
        }
    }
}

TEST(FindRules, ExpandsReplacements) {
    const auto group = [](int number) { return "<" + std::to_string(number) + ">"; };
    struct Case {
        const char* replacement;
        const char* expected;
    };
    const Case cases[] = {
        {"plain", "plain"}, {"\\1 = \\2", "<1> = <2>"},
        {"\\0!", "<0>!"},   {"a\\nb\\tc\\r", "a\nb\tc\r"},
        {"\\\\1", "\\1"},   {"\\.", "."},
        {"end\\", "end\\"}, {"", ""},
    };
    for (const Case& test : cases)
        EXPECT_EQ(ExpandReplacement(test.replacement, group), test.expected) << test.replacement;
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
    EXPECT_EQ(ReplacementCountText(0), L"Not found: nothing replaced");
    EXPECT_EQ(ReplacementCountText(1), L"1 replacement");
    EXPECT_EQ(ReplacementCountText(12), L"12 replacements");
}

}  // namespace
