// The places of diagnostics in texts that are edited, and their record.
#include "output/source_marks.h"

#include "base/bounded_text.h"
#include "output/diagnostics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

std::string Underlined(std::string_view line, std::ptrdiff_t column) {
    const MarkSpan span = SpanOfDiagnostic(line, column);
    return std::string(
        line.substr(static_cast<std::size_t>(span.start), static_cast<std::size_t>(span.end - span.start)));
}

TEST(SourceMarks, AWordAStringOrTheStatementIsUnderlined) {
    const struct {
        std::string_view line;
        std::ptrdiff_t column;
        const char* underlined;
    } cases[] = {
        {"  used = missing + 1", 9, "missing"},
        {"  used = missing + 1", 12, "missing"},
        {"  used = missing + 1", 17, "+"},
        {"  used = missing + 1", -1, "used = missing + 1"},
        {"  used = missing + 1  ", 0, "used = missing + 1"},
        {"  used = missing + ", 40, "+"},
        {"count% = 3", 0, "count%"},
        {"%SIZE = 3", 0, "%SIZE"},
        {"x = 3 $ 4", 6, "$"},
        {"#INCLUDE \"a b.inc\" ' c", 9, "\"a b.inc\""},
        {"PRINT \"no end ", 6, "\"no end"},
        {"a = \xC3\xA9t\xC3\xA9 + 1", 5, "\xC3\xA9t\xC3\xA9"},
        {"a  b", 1, "a  b"},
        {"", 0, ""},
        {"   ", 2, ""},
        {"x", 1 << 30, "x"},
    };
    for (const auto& each : cases) EXPECT_EQ(Underlined(each.line, each.column), each.underlined) << each.line;
}

// A text with one place in brackets, edited as Scintilla would.
struct MarkedText {
    std::string text;
    MarkPlace place;
    std::uint64_t edits = 0;
    std::vector<MarkEdit> done;
    std::vector<std::string> texts;  // of `done`

    explicit MarkedText(std::string marked) {
        place.start = static_cast<std::ptrdiff_t>(marked.find('['));
        marked.erase(marked.find('['), 1);
        place.end = static_cast<std::ptrdiff_t>(marked.find(']'));
        marked.erase(marked.find(']'), 1);
        text = marked;
    }
    void Change(bool insert, std::size_t at, const std::string& what, bool undone) {
        if (insert)
            text.insert(at, what);
        else
            text.erase(at, what.size());
        MoveMark(place, WholeEdit({.inserted = insert,
                                   .undone = undone,
                                   .position = static_cast<std::ptrdiff_t>(at),
                                   .text = what,
                                   .number = ++edits}));
    }
    // "+old|new": what is inserted before the first `old`; "-part": removed; "u": undoes the last edit.
    void Do(const std::string& order) {
        if (order == "u") {
            Change(!done.back().inserted, static_cast<std::size_t>(done.back().position), texts.back(), true);
            done.pop_back();
            texts.pop_back();
            return;
        }
        const std::size_t bar = order.find('|');
        const std::string part = order.substr(1, bar == std::string::npos ? bar : bar - 1);
        const std::string what = order[0] == '+' ? order.substr(bar + 1) : part;
        const std::size_t at = text.find(part);
        ASSERT_NE(at, std::string::npos) << order << " in " << text;
        Change(order[0] == '+', at, what, false);
        done.push_back({.inserted = order[0] == '+', .position = static_cast<std::ptrdiff_t>(at)});
        texts.push_back(what);
    }
    std::string Shown() const {
        if (MarkIsGone(place)) return "gone";
        std::string shown = text;
        shown.insert(static_cast<std::size_t>(place.end), "]");
        shown.insert(static_cast<std::size_t>(place.start), "[");
        return shown;
    }
};

TEST(SourceMarks, APlaceMovesWithItsTextAndComesBackWithIt) {
    const struct {
        const char* name;
        const char* text;
        std::vector<std::string> orders;
        const char* shown;
    } cases[] = {
        {"typed before", "a\n  [foo] x\n", {"+a|new\n"}, "new\na\n  [foo] x\n"},
        {"typed behind", "a\n  [foo] x\n", {"+ x|y"}, "a\n  [foo]y x\n"},
        {"typed inside", "[foo] x\n", {"+oo|z"}, "[fzoo] x\n"},
        {"line broken before it", "  a [foo]\n", {"+foo|\n  "}, "  a \n  [foo]\n"},
        {"lines above removed", "a\nb\n[foo]\n", {"-a\nb\n"}, "[foo]\n"},
        {"text below removed", "[foo]\nb\n", {"-b\n"}, "[foo]\n"},
        {"its end removed", "x [foobar] y", {"-bar y"}, "x [foo]"},
        {"its end removed and back", "x [foobar] y", {"-bar y", "u"}, "x [foobar] y"},
        {"its start removed and back", "x [foobar] y", {"-x foo", "u"}, "x [foobar] y"},
        {"its middle removed and back", "[foobar] y", {"-oba", "u"}, "[foobar] y"},
        {"letters removed one by one, and back", "x [ab] y", {"-b", "-a", "u", "u"}, "x [ab] y"},
        {"the word removed", "x [foo] y", {"-foo"}, "x [] y"},
        {"the word replaced", "x [foo] y", {"-foo", "+ y|bar"}, "x [bar] y"},
        {"its line removed", "a\n  [foo]\nb\n", {"-  foo\n"}, "gone"},
        {"its line removed and back", "a\n  [foo]\nb\n", {"-  foo\n", "u"}, "a\n  [foo]\nb\n"},
        {"removed in two steps and back", "a\n[foo]\nb\nc\n", {"-foo\nb\n", "-a\nc\n", "u", "u"}, "a\n[foo]\nb\nc\n"},
        {"removed, typed above, back", "a\n[foo]\nb\n", {"-foo\n", "+a|new\n", "u", "u"}, "a\n[foo]\nb\n"},
        {"its line moved down", "  [foo]\nb\nc\n", {"-  foo\n", "+c|  foo\n"}, "b\n  [foo]\nc\n"},
        {"removed and something else typed", "a\n  [foo]\nb\n", {"-  foo\n", "+b|x"}, "gone"},
        {"removed and a line begun", "a\n  [foo]\nb\n", {"-  foo\n", "+b|\n"}, "gone"},
        {"its lines replaced",
         "a\n  [foo]\nb\nc\n",
         {"-a\n  foo\n", "+b|A\n    bar = 1\n"},
         "A\n    [bar = 1]\nb\nc\n"},
        {"replaced by fewer lines", "a\n  [foo]\nb\n", {"-a\n  foo\n", "+b|A\n"}, "gone"},
        {"replaced later", "a\n  [foo]\nb\n", {"-  foo\n", "+a|x", "+b|  bar\n"}, "gone"},
        {"joined to the line above", "a\n[foo]\n", {"-\nfoo", "u"}, "a\n[foo]\n"},
        {"line break behind it removed", "[foo]\nb", {"-\n"}, "[foo]b"},
        {"a text that is typed anywhere", "a\n[]\nb", {"-\n", "+b|\n"}, "gone"},
    };
    for (const auto& each : cases) {
        MarkedText text(each.text);
        for (const std::string& order : each.orders) text.Do(order);
        EXPECT_EQ(text.Shown(), each.shown) << each.name;
    }
}

TEST(SourceMarks, UndoBringsEveryPlaceBackWhateverWasDone) {
    std::uint32_t seed = 12345;
    const auto next = [&seed](std::size_t below) {
        seed = seed * 1664525 + 1013904223;
        return (seed >> 8) % below;
    };
    const std::string marked = "SUB a\n  LOCAL x\n  [missing] = x + 1\n  PRINT x\nEND SUB\n";
    for (int round = 0; round < 400; ++round) {
        MarkedText text(marked);
        for (std::size_t edit = 0, most = 1 + next(6); edit < most && !text.text.empty(); ++edit) {
            const std::size_t at = next(text.text.size()), length = 1 + next(30);
            const bool insert = next(3) == 0;
            const std::string what = insert ? "new " + std::to_string(round) + "\n" : text.text.substr(at, length);
            text.Change(insert, at, what, false);
            text.done.push_back({.inserted = insert, .position = static_cast<std::ptrdiff_t>(at)});
            text.texts.push_back(what);
        }
        while (!text.done.empty()) text.Do("u");
        ASSERT_EQ(text.Shown(), marked) << round;
    }
}

CompilerError Diagnostic(const wchar_t* file, int line, int severity = 0) {
    CompilerError error = {};
    SafeCopyW(error.file, file);
    SafeCopyW(error.message, L"text\twith a tab");
    error.line = line;
    error.severity = severity;
    return error;
}

TEST(SourceMarks, AreRecordedByFileUpToALimit) {
    SourceMarks marks;
    CompilerError whole = Diagnostic(L"a.bas", 1);
    whole.column = 1;
    EXPECT_TRUE(HasPlaceInSource(whole, L"C:\\src\\a.exe"));
    SafeCopyW(whole.message, L"cannot write c:\\SRC\\a.exe (is it in use?)");
    EXPECT_FALSE(HasPlaceInSource(whole, L"C:\\src\\a.exe")) << "about the program, not about line 1";
    EXPECT_FALSE(HasPlaceInSource(Diagnostic(L"a.bas", 0), L""));
    for (int line = 1; line <= 700; ++line) {
        const bool room = line <= static_cast<int>(kMostMarksOfFile);
        EXPECT_EQ(SourceMarksAdd(marks, Diagnostic(L"a.bas", line)), room) << line;
        if (line <= 3) SourceMarksAdd(marks, Diagnostic(L"a.bas", line));
    }
    EXPECT_TRUE(SourceMarksAdd(marks, Diagnostic(L"b.inc", 7, 1))) << "another file has room of its own";
    ASSERT_EQ(marks.files.size(), 2u);
    EXPECT_EQ(marks.files[0].marks.size(), kMostMarksOfFile);
    EXPECT_EQ(marks.files[0].total, 700u) << "the same one twice counts once";
    EXPECT_EQ(marks.files[1].marks[0].fileLine, 6);
    CompilerError again = Diagnostic(L"b.inc", 7, 1);
    again.build = 2;
    SourceMarksAdd(marks, again);
    EXPECT_EQ(marks.files.size(), 3u) << "in another build the name may mean another file";
    for (std::size_t i = 0; i < kMostMarkedFiles + 5; ++i)
        SourceMarksAdd(marks, Diagnostic((L"f" + std::to_wstring(i)).c_str(), 1));
    EXPECT_EQ(marks.files.size(), kMostMarkedFiles);

    const SourceMark& warning = marks.files[1].marks[0];
    EXPECT_EQ(MarkText(warning), L"Warning: text with a tab");
    EXPECT_EQ(MarkTexts({&warning, &marks.files[0].marks[0]}, L" | "),
              L"Error: text with a tab | Warning: text with a tab");
    const std::vector<const SourceMark*> many(30, &warning);
    EXPECT_TRUE(MarkTexts(many, L"\n").ends_with(L"\n... and 18 more"));
}

}  // namespace
