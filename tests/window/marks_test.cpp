// The diagnostics of a build in the texts: they follow edits, undo, saving, closing and reloading until the next build.
#include "build_driver.h"

#include "editor/margins.h"
#include "output/line_colours.h"
#include "output/source_marks.h"
#include "ui/theme_table.h"

#include <richedit.h>

#include <algorithm>
#include <string>

namespace {

constexpr char kSource[] =
    "FUNCTION PBMAIN() AS LONG\r\n  LOCAL x AS LONG\r\n  x = missing + 1\r\n  PRINT x\r\n  unused = 2\r\nEND "
    "FUNCTION\r\n";
constexpr char kScript[] =
    "print main.bas(3,7): error: 'missing' is not declared\n"
    "print main.bas(5,3): warning: 'unused' is never used\n"
    "print part.inc(2,1): error: no such word\n"
    "exit 1\n";

// What is marked on each line: "e" or "w" for the signs, and the underlined text. Lines without marks are left out.
std::string Marks(const Editor& editor) {
    std::string all;
    const std::string text = editor.Text();
    for (LRESULT line = 0; line < editor.Sci(SCI_GETLINECOUNT); ++line) {
        const LRESULT signs = editor.Sci(SCI_MARKERGET, static_cast<WPARAM>(line));
        std::string found = std::to_string(line + 1) + ((signs >> kMarkErrorSign & 1) != 0 ? "e" : "") +
                            ((signs >> kMarkWarningSign & 1) != 0 ? "w" : "");
        if (found == std::to_string(line + 1)) continue;
        const LRESULT end = editor.Sci(SCI_GETLINEENDPOSITION, static_cast<WPARAM>(line));
        for (LRESULT at = editor.Sci(SCI_POSITIONFROMLINE, static_cast<WPARAM>(line)); at < end; ++at)
            if (editor.Sci(SCI_INDICATORVALUEAT, kIndicatorError, at) != 0 ||
                editor.Sci(SCI_INDICATORVALUEAT, kIndicatorWarning, at) != 0)
                found += text[static_cast<std::size_t>(at)];
        all += (all.empty() ? "" : " ") + found;
    }
    return all;
}

void ExpectMarks(const Editor& editor, const std::string& wanted, const char* when) {
    EXPECT_TRUE(WaitFor([&] { return Marks(editor) == wanted; })) << when << ": " << Marks(editor);
}

std::wstring SelectedOutput(const Editor& editor) {
    const auto range = editor.Ask<CHARRANGE>(editor.Child(IDC_OUTPUT), EM_EXGETSEL, 0);
    const std::wstring text = editor.Output();
    const auto from = static_cast<std::size_t>(range.cpMin), to = static_cast<std::size_t>(range.cpMax);
    return to <= text.size() && from <= to ? text.substr(from, to - from) : L"(" + std::to_wstring(from) + L")";
}

LRESULT LinesWith(const Editor& editor, int marker) {
    LRESULT count = 0;
    for (LRESULT line = -1;
         (line = editor.Sci(SCI_MARKERNEXT, static_cast<WPARAM>(line + 1), LPARAM{1} << marker)) >= 0;)
        ++count;
    return count;
}

TEST(Marks, FollowTheTextUntilTheNextBuild) {
    FakeFolder folder(kScript);
    const std::wstring source = folder.Write(L"main.bas", kSource);
    const std::wstring part = folder.Write(L"part.inc", "SUB a\r\n  word\r\nEND SUB\r\n");
    folder.SetIni(L"Editor", L"ShowErrorList", L"1");
    const Editor editor(folder, OpenArgument(source) + L" --compiler kvxa64");
    const LRESULT margin = editor.Sci(SCI_GETMARGINWIDTHN, kMarginProblems);
    EXPECT_GT(margin, 0) << "the first diagnostic would push the text aside";
    const auto listed = [&editor](int row) { return editor.CellOf(editor.Child(IDC_ERROR_LIST), row, 3); };
    Build(editor);
    ExpectMarks(editor, "3emissing 5wunused", "after the build");
    EXPECT_EQ(editor.Sci(SCI_GETMARGINWIDTHN, kMarginProblems), margin);
    EXPECT_EQ(listed(0), L"3");

    editor.Do(IDM_ERROR_NEXT);
    EXPECT_EQ(editor.Line(), 3) << "the first one first";
    EXPECT_EQ(editor.Column(), 7);
    EXPECT_TRUE(WaitFor([&] { return editor.Status() == L"Error: 'missing' is not declared"; }))
        << Utf8(editor.Status());
    EXPECT_EQ(SelectedOutput(editor), L"main.bas(3,7): error: 'missing' is not declared");
    editor.Sci(SCI_GOTOLINE, 1);
    EXPECT_TRUE(WaitFor([&] { return editor.Status().empty(); })) << Utf8(editor.Status());

    // Under the mouse, in the text and in the margin of the signs.
    LONG signs = 3;
    for (WPARAM left = 0; left < kMarginProblems; ++left)
        signs += static_cast<LONG>(editor.Sci(SCI_GETMARGINWIDTHN, left));
    const auto at = [&](std::string_view text) {
        const auto place = static_cast<LPARAM>(std::string_view(kSource).find(text));
        return POINT{static_cast<LONG>(editor.Sci(SCI_POINTXFROMPOSITION, 0, place)) + 3,
                     static_cast<LONG>(editor.Sci(SCI_POINTYFROMPOSITION, 0, place)) + 5};
    };
    editor.Foreground();
    for (const auto& [where, told] : {std::pair{at("missing"), true},
                                      {at("END"), false},
                                      {{signs, at("missing").y}, true},
                                      {{signs, at("PRINT").y}, false},
                                      {{signs, at("unused").y}, true}}) {
        editor.Click(editor.Sci(), where, MOUSEEVENTF_LEFTDOWN, 0);
        EXPECT_TRUE(WaitFor([&, told = told] { return (editor.Sci(SCI_CALLTIPACTIVE) != 0) == told; }))
            << where.x << ", " << where.y << " told: " << told;
    }

    editor.Sci(SCI_GOTOPOS, 0);
    editor.Type("' one\r\n' two\r\n");
    ExpectMarks(editor, "5emissing 7wunused", "after two lines above");
    EXPECT_TRUE(WaitFor([&] { return listed(0) == L"5" && listed(1) == L"7"; })) << Utf8(listed(0));
    editor.Do(IDM_ERROR_NEXT);
    EXPECT_EQ(editor.Line(), 7) << "to where the text is now";
    editor.Sci(SCI_GOTOLINE, 4);
    editor.Sci(SCI_LINEDELETE);
    ExpectMarks(editor, "6wunused", "after its line was deleted");
    editor.Do(IDM_EDIT_UNDO);
    ExpectMarks(editor, "5emissing 7wunused", "after undo");
    editor.Sci(SCI_GOTOLINE, 6);
    editor.Sci(SCI_MOVESELECTEDLINESUP);
    ExpectMarks(editor, "5emissing 6wunused", "after the line was moved");

    editor.Do(IDM_FILE_SAVE);
    editor.Do(IDM_FILE_CLOSE);
    editor.Do(IDM_ERROR_NEXT);  // opens part.inc
    EXPECT_TRUE(WaitFor([&] { return editor.TabLabel(editor.ActiveTab()) == L"part.inc"; }));
    ExpectMarks(editor, "2eword", "in a file that is opened later");
    editor.Do(IDM_ERROR_NEXT);
    EXPECT_TRUE(WaitFor([&] { return editor.TabLabel(editor.ActiveTab()) == L"main.bas"; }));
    ExpectMarks(editor, "5emissing 6wunused", "after it was closed and opened again");
    EXPECT_EQ(editor.Line(), 5);

    std::string changed = *ReadBytes(source);
    changed.insert(0, "' another program\r\n");
    WriteBytes(source, changed);
    editor.Do(IDM_FILE_RELOAD);
    ExpectMarks(editor, "6emissing 7wunused", "after another program has added a line");

    folder.Script("print fine\n");
    Build(editor);
    ExpectMarks(editor, "", "after the next build");
    EXPECT_EQ(editor.Sci(SCI_GETMARGINWIDTHN, kMarginProblems), margin);
}

TEST(Marks, AreRightAfterDiscardedEditsAndUnderAnotherName) {
    FakeFolder folder(kScript);
    const Editor editor(folder, OpenArgument(folder.Write(L"main.bas", kSource)) + L" --compiler kvxa64");
    Build(editor);
    ExpectMarks(editor, "3emissing 5wunused", "after the build");
    editor.Sci(SCI_GOTOPOS, 0);
    editor.Type("' one\r\n' two\r\n");
    ExpectMarks(editor, "5emissing 7wunused", "not saved yet");
    editor.Post(IDM_FILE_CLOSE);
    editor.Answer(kUnsaved, L"", IDNO);
    editor.Do(IDM_ERROR_NEXT);
    ExpectMarks(editor, "3emissing 5wunused", "the file never had the two lines");
    EXPECT_EQ(editor.Line(), 3);

    editor.Post(IDM_FILE_SAVE_AS);
    editor.AnswerFileDialog(folder.File(L"other.bas"));
    EXPECT_TRUE(WaitFor([&] { return editor.TabLabel(editor.ActiveTab()) == L"other.bas"; }));
    editor.Sci(SCI_GOTOPOS, 0);
    editor.Type("' one\r\n");
    editor.Do(IDM_FILE_SAVE);
    ExpectMarks(editor, "4emissing 6wunused", "under another name");
    editor.Do(IDM_FILE_CLOSE);
    editor.Post(IDM_FILE_OPEN);
    editor.AnswerFileDialog(folder.File(L"other.bas"));
    EXPECT_TRUE(WaitFor([&] { return editor.TabLabel(editor.ActiveTab()) == L"other.bas"; }));
    ExpectMarks(editor, "4emissing 6wunused", "opened again under that name");
}

TEST(Marks, TwentyThousandDiagnosticsAreMarkedUpToALimit) {
    FakeFolder folder("errors 20000 main.bas\nexit 1\n");
    std::string text;
    for (int i = 0; i < 20000; ++i) text += "x = " + std::to_string(i) + "\r\n";
    const Editor editor(folder, OpenArgument(folder.Write(L"main.bas", text)) + L" --compiler kvxa64");
    Build(editor);
    EXPECT_TRUE(editor.AwaitOutput(L"[Marks] The first 500 of 20000 errors and warnings are marked in main.bas."));
    const auto wanted = static_cast<LRESULT>(kMostMarksOfFile);
    EXPECT_TRUE(WaitFor([&] { return LinesWith(editor, kMarkErrorSign) == wanted; }))
        << LinesWith(editor, kMarkErrorSign);
}

TEST(Marks, AJumpShowsThePlaceInTheMiddleAndTextsComeBySetting) {
    std::string text, script;
    for (int i = 1; i <= 300; ++i) text += "x = " + std::to_string(i) + "\r\n";
    for (const int line : {200, 120, 260, 297}) script += "print main.bas(" + std::to_string(line) + ",1): error: e\n";
    FakeFolder folder(script + "print main.bas(120,1): warning: w\nexit 1\n");
    const Editor editor(folder, OpenArgument(folder.Write(L"main.bas", text)) + L" --compiler kvxa64");
    Build(editor);
    for (const int line : {200, 120, 260}) {
        editor.Do(IDM_ERROR_NEXT);
        ASSERT_EQ(editor.Line(), line);
        const LRESULT row = line - 1 - editor.Sci(SCI_GETFIRSTVISIBLELINE), rows = editor.Sci(SCI_LINESONSCREEN);
        EXPECT_GE(row, rows / 3) << line;
        EXPECT_LE(row, rows - rows / 3) << line;
    }
    const auto style = [&](WPARAM line) { return editor.Sci(SCI_EOLANNOTATIONGETSTYLE, line - 1); };
    EXPECT_EQ(editor.Sci(SCI_EOLANNOTATIONGETVISIBLE), EOLANNOTATION_HIDDEN);
    editor.Do(IDM_VIEW_ERROR_TEXTS);
    EXPECT_TRUE(WaitFor([&] { return editor.Sci(SCI_EOLANNOTATIONGETVISIBLE) != EOLANNOTATION_HIDDEN; }));
    EXPECT_EQ(style(200), kStyleErrorText);
    EXPECT_EQ(style(120), kStyleErrorText) << "an error is told before a warning of the line";
    EXPECT_EQ(style(121), 0);
    folder.Script("print main.bas(7,1): warning: w\n");
    Build(editor);
    EXPECT_TRUE(WaitFor([&] { return style(7) == kStyleWarningText; }));
    EXPECT_EQ(style(200), 0);
}

TEST(Marks, TheOutputHasItsColoursAndBySettingReadableOnes) {
    const Rgb back = ThemeChromePalette(0, false).paneBack;
    for (const bool readable : {false, true}) {
        FakeFolder folder(kScript);
        folder.SetIni(L"Editor", L"ReadableOutput", readable ? L"1" : L"0");
        const Editor editor(folder, OpenArgument(folder.Write(L"main.bas", kSource)) + L" --compiler kvxa64");
        const std::wstring output = Build(editor);
        const HWND pane = editor.Child(IDC_OUTPUT);
        const COLORREF error = editor.ColourAt(pane, output.find(L"main.bas(3,7)") + 2);
        const COLORREF warning = editor.ColourAt(pane, output.find(L"main.bas(5,3)") + 2);
        EXPECT_EQ(error == kLineRed && warning == kLineYellow, !readable) << std::hex << error << " " << warning;
        for (const COLORREF colour : {error, warning})
            EXPECT_EQ(ThemeContrast(ThemeColorRef(colour), back) >= kReadableContrast, readable);
    }
}

}  // namespace
