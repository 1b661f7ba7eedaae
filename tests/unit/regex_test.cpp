// Searching by expressions: what matches, in pieces of any size as in one, and the limits.
#include "search/regex.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

constexpr FindOptions kPlain{.matchCase = true};
constexpr FindOptions kRegex{.matchCase = true, .regex = true};

// All matches in the scope as "START-END ", and how the walk ended when not at the scope's end.
std::string Matches(std::string_view text, std::string_view expression, const FindOptions& options, FindSpan scope,
                    std::ptrdiff_t piece) {
    RegexFault fault;
    const RegexHandle code = RegexCompile(expression, options, fault);
    if (code == nullptr) return "fault at " + std::to_string(fault.position);
    RegexText searched = RegexTextOf(text);
    searched.piece = piece;
    RegexSearch search(code);
    search.Begin(searched, scope);
    std::string found;
    RegexResult result = search.Next();
    for (; result == RegexResult::Match; result = search.Next())
        found += std::to_string(search.Match().start) + "-" + std::to_string(search.Match().end) + " ";
    return found + (result == RegexResult::NoMatch ? "" : "too complex");
}

TEST(Regex, FindsInPiecesAsInOne) {
    struct Case {
        const char *name, *text, *expression;
        FindOptions options;
        const char* matches;
        FindSpan scope{0, 1000};
    };
    const Case cases[] = {
        {"plain", "a.b a.B", "a.b", kPlain, "0-3 "},
        {"without case", "a.b a.B \xC3\x84 \xC3\xA4", "\xC3\xA4", {}, "8-10 11-13 "},
        {"whole word", "ab abc cab ab_ (ab)", "ab", {.wholeWord = true}, "0-2 16-18 "},
        {"whole word of signs", "a+=b += c", "+=", {.wholeWord = true}, "1-3 5-7 "},
        {"whole word of an expression", "ab abc b", "a?b", {.wholeWord = true, .regex = true}, "0-2 7-8 "},
        {"alternatives in a group", "cat cow cup", "c(at|up)\\b", kRegex, "0-3 8-11 "},
        {"starts of lines of all kinds", "a\r\nb\nc\rd", "^.", kRegex, "0-1 3-4 5-6 7-8 "},
        {"starts of lines without text", "a\r\n\r\nb", "^", kRegex, "0-0 3-3 5-5 "},
        {"ends of lines", "a\r\nb\n\r\n", "$", kRegex, "1-1 4-4 5-5 7-7 "},
        {"line breaks", "a\r\nb\nc\r", "\\R", kRegex, "1-3 4-5 6-7 "},
        {"line breaks by their letter", "a\r\nb\nc\r", "\\w\\n", kRegex, "0-3 3-5 5-7 "},
        {"line breaks as they are written", "a\r\nb\nc\r", "\\r\\n|[^[:cntrl:]](?=\\n)", kRegex, "0-1 1-3 3-4 5-6 "},
        {"line breaks by their bytes", "a\r\nb\nc\\n", "[]\\n](?<=\\n).|\\Q\\n\\E", kRegex, "2-4 4-6 6-8 "},
        {"over lines", "x {\r\n a\r\n} {b}", "\\{[^}]*\\}", kRegex, "2-10 11-14 "},
        {"look-behind and look-ahead", "10 eur 20 usd", "(?<=\\d\\d )\\w+(?= 2)", kRegex, "3-6 "},
        {"look-behind before the scope", "abab", "(?<=a)b", kRegex, "1-2 ", {1, 3}},
        {"an end of the scope is no end of a line", "aa\naa", "a$", kRegex, "1-2 ", {0, 4}},
        {"the start of the line behind the scope", "aa\naa", "^", kRegex, "0-0 ", {0, 3}},
        {"the start of a last line without text", "aa\n", "^", kRegex, "0-0 3-3 "},
        {"the end of a line at the end of the scope", "aa\r\naa", "a$", kRegex, "1-2 ", {0, 2}},
        {"no empty match right behind a match", "baaac", "a*", kRegex, "0-0 1-4 5-5 "},
        {"bytes that are no UTF-8",
         "a\xFF"
         "b \xC3 a\xC3\xA9",
         "a.", kRegex, "6-9 "},
        {"whole characters", "\xC3\xA4\xE2\x82\xAC", ".", kRegex, "0-2 2-5 "},
        {"letters of all languages", "\xC3\xA4x+1", "\\w+", kRegex, "0-3 4-5 "},
        {"what was matched, again", "abab cdcd", "(..)\\1", kRegex, "0-4 5-9 "},
    };
    for (const Case& test : cases)
        for (const std::ptrdiff_t piece : {1, 2, 3, 5, 8, 1000})
            EXPECT_EQ(Matches(test.text, test.expression, test.options, test.scope, piece), test.matches)
                << test.name << ", in pieces of " << piece;
}

TEST(Regex, TellsFaultsWithTheirPlace) {
    const struct {
        const char* expression;
        const wchar_t* part;
        std::ptrdiff_t position;
    } cases[] = {{"", L"Nothing to find", 0},
                 {"a(b", L"parenthesis", 3},
                 {"a)b", L"parenthesis", 1},
                 {"[a", L"]", 2},
                 {"a*b**", L"uantifier", 4},
                 {"x\\", L"\\ at end", 2},
                 {"(?<n>a)\\k<m>", L"non-existent", 10}};
    for (const auto& test : cases) {
        RegexFault fault;
        EXPECT_EQ(RegexCompile(test.expression, kRegex, fault), nullptr) << test.expression;
        EXPECT_NE(fault.text.find(test.part), std::wstring::npos) << test.expression;
        EXPECT_EQ(fault.position, test.position) << test.expression;
    }
}

// Expressions that would run for years, or need memory without end.
TEST(Regex, NothingHangs) {
    const std::string as(40, 'a');
    EXPECT_EQ(Matches(as + "!", "(a+)+$", kRegex, {0, 41}, 1000), "too complex");
    EXPECT_EQ(Matches(as + "!", "(a|aa)+$", kRegex, {0, 41}, 1000), "too complex");
    const std::string line(1 << 20, 'a');
    EXPECT_EQ(Matches(line + "b", "a.*b", kRegex, {0, 2 << 20}, 32768), "0-1048577 ");
    EXPECT_EQ(Matches(line, "(?:(a)|b)*c", kRegex, {0, 2 << 20}, 32768), "too complex");
    // Every start looks at the whole rest: it goes on for minutes, but can be stopped.
    RegexFault fault;
    RegexSearch search(RegexCompile("(?s)ea(?=.*nowhere)", kRegex, fault));
    std::string words;
    while (words.size() < line.size()) words += "eat ";
    const RegexText text = RegexTextOf(words);
    int asked = 0;
    search.Begin(text, {0, text.length}, false, [&asked](std::ptrdiff_t) { return ++asked < 30; });
    EXPECT_EQ(search.Next(), RegexResult::Stopped);
}

}  // namespace
