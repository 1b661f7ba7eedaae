// Find and replace in a real editing component.
#include "search/find_editor.h"

#include "editor/editor_pane.h"
#include "scintilla/sci.h"
#include "ui/long_work.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

class FindEngine : public testing::Test {
protected:
    static void SetUpTestSuite() { library_ = LoadLibraryW(L"" KVX_DIST_DIR "/Scintilla.dll"); }
    static void TearDownTestSuite() { FreeLibrary(library_); }

    void SetUp() override {
        ASSERT_NE(library_, nullptr) << "no Scintilla.dll in " KVX_DIST_DIR;
        editor_ = CreateWindowExW(0, L"Scintilla", L"", WS_POPUP, 0, 0, 400, 300, nullptr, nullptr, nullptr, nullptr);
        ASSERT_NE(editor_, nullptr);
        SciSend(editor_, SCI_SETCODEPAGE, SC_CP_UTF8);
    }
    void TearDown() override { DestroyWindow(editor_); }

    void SetText(const std::string& text) {
        SciSend(editor_, SCI_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
        SciSend(editor_, SCI_EMPTYUNDOBUFFER);
    }
    std::string Text() {
        std::string text(static_cast<std::size_t>(SciSend(editor_, SCI_GETLENGTH)) + 1, '\0');
        SciSend(editor_, SCI_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
        text.pop_back();
        return text;
    }
    FindSpan All() { return {0, SciSend(editor_, SCI_GETLENGTH)}; }

    // The matches that repeated "find next" selects, as "START-END"; "w" marks those after the search has wrapped
    // around.
    std::vector<std::string> Walk(const FindQuery& query, bool forward, int steps) {
        std::vector<std::string> found;
        for (int i = 0; i < steps; ++i) {
            const FindResult result =
                FindInScope(EditorTextOf(editor_), query, EditorSelection(editor_), All(), {.forward = forward});
            if (!result.match) {
                found.emplace_back("none");
                break;
            }
            found.push_back((result.wrapped ? "w" : "") + std::to_string(result.match->start) + "-" +
                            std::to_string(result.match->end));
            SciSend(editor_, SCI_SETSEL, static_cast<WPARAM>(result.match->start), result.match->end);
        }
        return found;
    }

    inline static HMODULE library_ = nullptr;
    HWND editor_ = nullptr;
};

FindQuery Prepared(const std::string& text, const FindOptions& options) {
    FindQuery query;
    RegexFault fault;
    EXPECT_TRUE(PrepareQuery(text, options, query, fault)) << text;
    return query;
}

ReplaceForm With(const FindQuery& query, const char* replacement) {
    ReplaceForm form;
    RegexFault fault;
    EXPECT_TRUE(ReplaceParse(replacement, *query.code, query.options, {}, form, fault)) << replacement;
    return form;
}

constexpr FindOptions kPlain{.matchCase = true};
constexpr FindOptions kRegex{.matchCase = true, .regex = true};

TEST_F(FindEngine, WalksForwardAndBackwardAroundTheEnds) {
    struct Case {
        const char* name;
        const char* text;
        const char* pattern;
        FindOptions options;
        bool forward;
        std::vector<std::string> expected;
    };
    const Case cases[] = {
        {"plain", "ab ab", "ab", kPlain, true, {"0-2", "3-5", "w0-2"}},
        {"backward", "ab ab", "ab", kPlain, false, {"w3-5", "0-2", "w3-5"}},
        {"case", "AB ab", "ab", kPlain, true, {"3-5", "w3-5"}},
        {"no case", "AB ab", "ab", {}, true, {"0-2", "3-5"}},
        {"whole word", "abc ab", "ab", {.wholeWord = true}, true, {"4-6"}},
        {"nothing", "abc", "x", kPlain, true, {"none"}},
        {"empty matches move on", "x\ny\n", "^", kRegex, true, {"2-2", "4-4", "w0-0", "2-2"}},
        {"empty matches move back", "x\ny\n", "^", kRegex, false, {"w4-4", "2-2", "0-0", "w4-4"}},
        {"alternatives, whichever comes first", "one two one", "two|one", kRegex, true, {"0-3", "4-7", "8-11", "w0-3"}},
        {"alternatives backward", "one two one", "two|one", kRegex, false, {"w8-11", "4-7", "0-3"}},
        {"whole characters", "x\xC3\xA9 ", ".[^x]$", kRegex, true, {"1-4"}},
        {"of two at one place the first alternative", "abc", "a|ab", kRegex, true, {"0-1"}},
    };
    for (const Case& test : cases) {
        SetText(test.text);
        EXPECT_EQ(Walk(Prepared(test.pattern, test.options), test.forward, static_cast<int>(test.expected.size())),
                  test.expected)
            << test.name;
    }
}

TEST_F(FindEngine, ReplacesAllThatMatchedBefore) {
    struct Case {
        const char* name;
        const char* text;
        const char* pattern;
        const char* replacement;
        FindOptions options;
        std::size_t count;
        const char* expected;
    };
    const Case cases[] = {
        {"plain", "a.b.c", ".", "--", kPlain, 2, "a--b--c"},
        {"new text is not searched", "aa", "a", "aa", kPlain, 2, "aaaa"},
        {"a backslash is plain outside of expressions", "a", "a", "\\n", kPlain, 1, "\\n"},
        {"every line start, once", "a\nb\n", "^", "> ", kRegex, 3, "> a\n> b\n> "},
        {"what moves up to the line start is not matched again", "aaa\naab", "^a", "", kRegex, 2, "aa\nab"},
        {"line ends", "a\nb", "$", ";", kRegex, 2, "a;\nb;"},
        {"empty matches before characters", "ab", "x*", "-", kRegex, 3, "-a-b-"},
        {"no empty match right behind a match", "aab", "a*", "-", kRegex, 2, "-b-"},
        {"groups", "k=v\nx=y", "([a-z])=([a-z])", "\\2:\\1 (\\0)", kRegex, 2, "v:k (k=v)\ny:x (x=y)"},
        {"groups of the alternative that matched", "a1 b2", "a([0-9])|b([0-9])", "<\\1$2>", kRegex, 2, "<1> <2>"},
        {"multi-byte characters", "\xC3\xA4\xE2\x82\xAC", "x*", ".", kRegex, 3, ".\xC3\xA4.\xE2\x82\xAC."},
        {"over lines", "a\r\nb\r\nc", "\\R", "$0$0", kRegex, 2, "a\r\n\r\nb\r\n\r\nc"},
        {"nothing", "abc", "x", "y", kPlain, 0, "abc"},
    };
    for (const Case& test : cases) {
        SetText(test.text);
        const FindQuery query = Prepared(test.pattern, test.options);
        const ReplaceAllResult result = ReplaceAllInScope(editor_, query, With(query, test.replacement), All());
        EXPECT_EQ(result.count, test.count) << test.name;
        EXPECT_EQ(Text(), test.expected) << test.name;
        SciSend(editor_, SCI_UNDO);
        EXPECT_EQ(Text(), test.text) << test.name << ": one undo takes it all back";
    }
}

TEST_F(FindEngine, EscStopsAndLeavesTheTextAsItWas) {
    g_longWorkAfterMs = 0;
    static int shown;
    shown = 0;
    std::string text;
    for (int i = 0; i < 3000; ++i) text += "one two\n";
    const FindQuery one = Prepared("one", kPlain);
    for (const int steps : {0, 3000, 4500}) {  // before Esc: while finding, and after some were replaced
        SetText(text);
        SciSend(editor_, SCI_SETSEL, 9, 2);
        LongWork work(L"Replacing", [](const wchar_t*) { ++shown; });
        int asked = 0;
        const auto goesOn = [&](double share) {
            if (asked++ == steps) PostMessageW(editor_, WM_KEYDOWN, VK_ESCAPE, 0);
            return work.GoesOn(share);
        };
        const ReplaceAllResult result = ReplaceAllInScope(editor_, one, With(one, "1"), All(), goesOn);
        EXPECT_TRUE(result.end == RegexResult::Stopped && LongWorkRuns()) << steps;
        EXPECT_EQ(result.count, 0u);
        EXPECT_EQ(Text(), text) << steps;
        EXPECT_EQ(SciSend(editor_, SCI_GETCURRENTPOS), 2) << steps;
        EXPECT_EQ(SciSend(editor_, SCI_GETANCHOR), 9) << steps;
        EXPECT_EQ(asked, steps + 1);
        SciSend(editor_, SCI_REDO);
        EXPECT_EQ(Text(), text) << "a stopped half comes back by nothing";
        EXPECT_EQ(SciSend(editor_, SCI_GETMODIFY), 0);
    }
    SetText(text);
    SciSend(editor_, SCI_INSERTTEXT, 0, reinterpret_cast<LPARAM>("typed "));
    SciSend(editor_, SCI_BEGINUNDOACTION);
    SciSend(editor_, SCI_DELETERANGE, 0, 100);
    SciSend(editor_, SCI_ENDUNDOACTION);
    EditorPaneTakeBack(editor_);
    SciSend(editor_, SCI_REDO);
    EXPECT_EQ(Text(), "typed " + text);
    SciSend(editor_, SCI_UNDO);
    SciSend(editor_, SCI_UNDO);
    EXPECT_EQ(Text(), text) << "what was done before can still be undone";
    EXPECT_GE(shown, 3);
    EXPECT_FALSE(LongWorkRuns());
    g_longWorkAfterMs = kLongWorkMs;
}

TEST_F(FindEngine, KeepsToTheScope) {
    SetText("ab ab ab");
    const FindQuery query = Prepared("ab", kPlain);
    const ReplaceForm form = With(query, "x");
    EXPECT_EQ(ReplaceAllInScope(editor_, query, form, {2, 6}).count, 1U);
    EXPECT_EQ(Text(), "ab x ab");

    SetText("ab ab ab");
    EXPECT_FALSE(ReplaceMatch(editor_, query, form, {0, 2}, {2, 8}));
    EXPECT_FALSE(ReplaceMatch(editor_, query, form, {1, 3}, All()));
    EXPECT_TRUE(ReplaceMatch(editor_, query, form, {0, 2}, All()));
    EXPECT_EQ(Text(), "x ab ab");
}

// A search backwards takes blocks of lines: a match is found in whichever it is, and the nearest one.
TEST_F(FindEngine, SearchesBackwardsThroughALongText) {
    std::string text = "needle\n";
    for (int i = 0; i < 20000; ++i) text += "some other line\n";
    SetText(text + "needle needle\n" + std::string(50000, 'x') + "\n");
    SciSend(editor_, SCI_GOTOPOS, static_cast<WPARAM>(All().end));
    const auto at = [&](std::size_t offset) {
        return std::to_string(text.size() + offset) + "-" + std::to_string(text.size() + offset + 6);
    };
    EXPECT_EQ(Walk(Prepared("ne+dle", kRegex), false, 4), (std::vector<std::string>{at(7), at(0), "0-6", "w" + at(7)}));
}

// A long line, with an expression for which backtracking engines recurse once a character.
TEST_F(FindEngine, LongLinesAreSafe) {
    SetText(std::string(1 << 20, 'a') + "b");
    const FindResult result = FindInScope(EditorTextOf(editor_), Prepared("a.*b", kRegex), {}, All(), {});
    ASSERT_TRUE(result.match);
    EXPECT_EQ(*result.match, All());
}

}  // namespace
