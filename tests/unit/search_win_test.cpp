// Find and replace in a real editing component.
#include "search/find_editor.h"

#include "documents/editor_pane.h"
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
            const FindResult result = FindInScope(FindTextOf(editor_), query, All(), forward);
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
    EXPECT_EQ(PrepareQuery(text, options, query), nullptr) << text;
    return query;
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
        {"empty matches before characters", "ab", "x*", "-", kRegex, 2, "-a-b"},
        {"no empty match right behind a match", "aab", "a*", "-", kRegex, 1, "-b"},
        {"groups", "k=v\nx=y", "([a-z])=([a-z])", "\\2:\\1 (\\0)", kRegex, 2, "v:k (k=v)\ny:x (x=y)"},
        {"groups of the alternative that matched", "a1 b2", "a([0-9])|b([0-9])", "<\\1>", kRegex, 2, "<1> <2>"},
        {"multi-byte characters", "\xC3\xA4\xE2\x82\xAC", "x*", ".", kRegex, 2, ".\xC3\xA4.\xE2\x82\xAC"},
        {"a group that splits a character", "\xC3\xA9=1 b=1", "(.)=1", "<\\1>", kRegex, 1, "\xC3\xA9=1 <b>"},
        {"nothing", "abc", "x", "y", kPlain, 0, "abc"},
    };
    for (const Case& test : cases) {
        SetText(test.text);
        const auto before = static_cast<std::ptrdiff_t>(std::string{test.text}.size());
        const ReplaceAllResult result =
            ReplaceAllInScope(editor_, Prepared(test.pattern, test.options), test.replacement, All());
        EXPECT_EQ(result.count, test.count) << test.name;
        EXPECT_EQ(Text(), test.expected) << test.name;
        EXPECT_EQ(result.grown, SciSend(editor_, SCI_GETLENGTH) - before) << test.name;
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
    for (const int steps : {0, 3000, 4500}) {  // before Esc: while finding, and after some were replaced
        SetText(text);
        SciSend(editor_, SCI_SETSEL, 9, 2);
        LongWork work(L"Replacing", [](const wchar_t*) { ++shown; });
        int asked = 0;
        const auto goesOn = [&](double share) {
            if (asked++ == steps) PostMessageW(editor_, WM_KEYDOWN, VK_ESCAPE, 0);
            return work.GoesOn(share);
        };
        const ReplaceAllResult result = ReplaceAllInScope(editor_, Prepared("one", kPlain), "1", All(), goesOn);
        EXPECT_TRUE(result.stopped && LongWorkRuns()) << steps;
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
    EXPECT_EQ(ReplaceAllInScope(editor_, Prepared("ab", kPlain), "x", {2, 6}).count, 1U);
    EXPECT_EQ(Text(), "ab x ab");

    SetText("ab ab ab");
    SciSend(editor_, SCI_SETSEL, 0, 2);
    EXPECT_FALSE(ReplaceSelection(editor_, Prepared("ab", kPlain), "x", {2, 8}));
    EXPECT_TRUE(ReplaceSelection(editor_, Prepared("ab", kPlain), "x", All()));
    EXPECT_FALSE(ReplaceSelection(editor_, Prepared("ab", kPlain), "x", All()));  // nothing is selected now
    EXPECT_EQ(Text(), "x ab ab");
}

// Scintilla answers a faulty expression like a missing match, so each expression that it refuses must be recognised
// before.
TEST_F(FindEngine, KnowsWhatTheComponentRefuses) {
    SetText("aaa(b)[c]*d^e$\\1<>");
    FindQuery query;
    for (const char* pattern : {"", "|", "(a|b)", "[a"})
        EXPECT_NE(PrepareQuery(pattern, kRegex, query), nullptr) << pattern;
    for (const char* pattern :
         {"a**", "[]]", "[-]]*x?", "\\(b\\)", "a+\\(", "\\<d?", "e\\$", "\\\\1", "[c]]\\*", "(a)\\1"}) {
        query = Prepared(pattern, kRegex);
        EXPECT_TRUE(FindInScope(FindTextOf(editor_), query, All(), true).match) << pattern;
    }
}

// A long line, with an expression for which backtracking engines recurse once a character.
TEST_F(FindEngine, LongLinesAreSafe) {
    SetText(std::string(1 << 20, 'a') + "b");
    const FindResult result = FindInScope(FindTextOf(editor_), Prepared("a.*b", kRegex), All(), true);
    ASSERT_TRUE(result.match);
    EXPECT_EQ(*result.match, All());
}

}  // namespace
