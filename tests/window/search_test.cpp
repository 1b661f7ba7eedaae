// Find, replace and go to line in their dialogs.
#include "harness.h"

#include "resources/ids.h"

namespace {

struct FindDialog {
    const Editor& editor;
    HWND window;

    FindDialog(const Editor& program, int command, const wchar_t* caption) : editor(program), window(nullptr) {
        editor.Post(command);
        window = editor.AwaitDialog(caption).window;
    }
    void Set(int control, const std::wstring& text) const {
        editor.Send(GetDlgItem(window, control), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    }
    void Press(int control) const {
        editor.Send(window, WM_COMMAND, static_cast<WPARAM>(control),
                    reinterpret_cast<LPARAM>(GetDlgItem(window, control)));
    }
    void Tick(int control) const { editor.Send(GetDlgItem(window, control), BM_CLICK); }
    std::wstring Text(int control) const { return editor.TextOf(GetDlgItem(window, control)); }
    std::wstring Status() const { return Text(IDC_FIND_STATUS); }
};

std::string Selection(const Editor& editor) {
    return std::to_string(editor.Sci(SCI_GETSELECTIONSTART)) + "-" + std::to_string(editor.Sci(SCI_GETSELECTIONEND));
}

TEST(Find, WalksReplacesAndRemembers) {
    ProgramFolder folder;
    const std::wstring path = folder.Write(L"a.bas", "one two one\r\nOne two\r\none\r\n");
    {
        Editor editor(folder, OpenArgument(path));
        editor.Sci(SCI_SETSEL, 0, 3);
        const FindDialog find(editor, IDM_EDIT_FIND, L"Find");
        EXPECT_EQ(find.Text(IDC_FIND_WHAT), L"one") << "the selection is taken over";
        EXPECT_FALSE(IsWindowVisible(GetDlgItem(find.window, IDC_FIND_REPLACE)));
        find.Tick(IDC_FIND_CASE);
        find.Press(IDC_FIND_NEXT);
        EXPECT_EQ(Selection(editor), "8-11");
        find.Press(IDC_FIND_NEXT);
        EXPECT_EQ(Selection(editor), "22-25") << "not the capital one";
        EXPECT_EQ(find.Status(), L"");
        find.Press(IDC_FIND_NEXT);
        EXPECT_EQ(Selection(editor), "0-3");
        EXPECT_EQ(find.Status(), L"Continued from the start");
        find.Press(IDC_FIND_PREVIOUS);
        EXPECT_EQ(Selection(editor), "22-25");
        EXPECT_EQ(find.Status(), L"Continued from the end");
        for (const wchar_t* what : {L"Nowhere", L"nowhere"}) {
            find.Set(IDC_FIND_WHAT, what);
            find.Press(IDC_FIND_NEXT);
        }
        EXPECT_EQ(Selection(editor), "22-25");
        EXPECT_EQ(find.Status(), L"Not found");
        find.Press(IDCANCEL);
        EXPECT_TRUE(WaitFor([&] { return !IsWindow(find.window) && editor.Focus() == editor.Sci(); }));

        const FindDialog replace(editor, IDM_EDIT_REPLACE, L"Find and Replace");
        replace.Set(IDC_FIND_WHAT, L"one");
        replace.Set(IDC_FIND_WITH, L"three");
        editor.Sci(SCI_GOTOPOS, 0);
        replace.Press(IDC_FIND_REPLACE);  // nothing is selected yet: only finds
        EXPECT_EQ(Selection(editor), "0-3");
        replace.Press(IDC_FIND_REPLACE);
        EXPECT_EQ(Selection(editor), "10-13");
        EXPECT_EQ(editor.Text(), "three two one\r\nOne two\r\none\r\n");
        replace.Press(IDC_FIND_REPLACE_ALL);
        EXPECT_EQ(replace.Status(), L"2 replacements");
        EXPECT_EQ(editor.Text(), "three two three\r\nOne two\r\nthree\r\n");
        editor.Do(IDM_EDIT_UNDO);
        EXPECT_EQ(editor.Text(), "three two one\r\nOne two\r\none\r\n") << "one step";
        replace.Press(IDCANCEL);

        // Without the dialog the search goes on with what it last looked for.
        editor.Sci(SCI_GOTOPOS, 0);
        editor.Do(IDM_FIND_NEXT);
        EXPECT_EQ(Selection(editor), "10-13");
        editor.Do(IDM_FILE_SAVE);
        EXPECT_EQ(editor.Close(), 0u);
    }
    EXPECT_EQ(folder.Ini(L"Editor", L"SearchHistoryCount"), L"3") << "case tells two searches apart";
    EXPECT_EQ(folder.Ini(L"Editor", L"SearchHistory0"), L"one") << "the latest first";
    EXPECT_EQ(folder.Ini(L"Editor", L"SearchHistory1"), L"nowhere");
}

TEST(Find, ExpressionsInASelection) {
    ProgramFolder folder;
    const std::wstring path = folder.Write(L"a.bas", "a=1\r\nb=2\r\nc=3\r\nd=4\r\n");
    Editor editor(folder, OpenArgument(path));
    editor.Sci(SCI_SETSEL, 5, 15);  // the second and third line
    const FindDialog replace(editor, IDM_EDIT_REPLACE, L"Find and Replace");
    EXPECT_NE(editor.Send(GetDlgItem(replace.window, IDC_FIND_SELECTION), BM_GETCHECK), 0) << "more than one line";
    replace.Tick(IDC_FIND_REGEX);
    replace.Set(IDC_FIND_WHAT, L"\u00e4(b|c");
    replace.Press(IDC_FIND_REPLACE_ALL);
    EXPECT_EQ(replace.Status(), L"Missing closing parenthesis");
    const auto caret = [&](int control) {
        return LOWORD(editor.Send(GetDlgItem(replace.window, control), CB_GETEDITSEL));
    };
    EXPECT_EQ(caret(IDC_FIND_WHAT), 5) << "the caret is where it is missing";
    replace.Set(IDC_FIND_WHAT, L"(a+)+=");
    replace.Set(IDC_FIND_WITH, L"x$2");
    replace.Press(IDC_FIND_REPLACE_ALL);
    EXPECT_EQ(replace.Status(), L"There is no group 2");
    EXPECT_EQ(caret(IDC_FIND_WITH), 1);
    replace.Set(IDC_FIND_WHAT, L"^([a-z])=([0-9])");
    replace.Set(IDC_FIND_WITH, L"\\2 <- \\1");
    replace.Press(IDC_FIND_REPLACE_ALL);
    EXPECT_EQ(replace.Status(), L"2 replacements");
    EXPECT_EQ(editor.Text(), "a=1\r\n2 <- b\r\n3 <- c\r\nd=4\r\n");
    replace.Set(IDC_FIND_WHAT, L"$");
    replace.Set(IDC_FIND_WITH, L";");
    replace.Press(IDC_FIND_REPLACE_ALL);
    EXPECT_EQ(editor.Text(), "a=1\r\n2 <- b;\r\n3 <- c;\r\nd=4\r\n") << "the range has grown with its text";
    editor.Do(IDM_EDIT_UNDO);
    replace.Set(IDC_FIND_WHAT, L"(?<n>\\d) <- (\\w)\\R");
    replace.Set(IDC_FIND_WITH, L"\\U$2\\E=${n}\\n");
    replace.Press(IDC_FIND_REPLACE_ALL);
    EXPECT_EQ(editor.Text(), "a=1\r\nB=2\r\nC=3\r\nd=4\r\n") << "over line breaks, with the document's own";
    editor.Do(IDM_EDIT_UNDO);
    EXPECT_EQ(editor.Text(), "a=1\r\n2 <- b\r\n3 <- c\r\nd=4\r\n") << "one step";
    const RemoteBlock text(editor.process, 8);
    text.Put("'1\r\n", 5);
    editor.Sci(SCI_INSERTTEXT, 0, text.At());
    replace.Set(IDC_FIND_WHAT, L"\\d");
    replace.Press(IDC_FIND_COUNT);
    EXPECT_EQ(replace.Status(), L"2 matches") << "the range has moved with its text";
    editor.Sci(SCI_SETSEL, 0, 6);
    replace.Press(IDC_FIND_COUNT);
    EXPECT_EQ(replace.Status(), L"1 match") << "of what was selected last";
    editor.Do(IDM_EDIT_UNDO);
    replace.Tick(IDC_FIND_SELECTION);
    replace.Set(IDC_FIND_WHAT, L"\\d");
    replace.Press(IDC_FIND_COUNT);
    EXPECT_EQ(replace.Status(), L"4 matches");
    const auto marked = [&](WPARAM at) { return editor.Sci(SCI_INDICATORALLONFOR, at) != 0; };
    replace.Press(IDC_FIND_MARK_ALL);
    EXPECT_TRUE(marked(2) && marked(5) && !marked(3));
    editor.Do(IDM_SEARCH_CLEAR_MARKS);
    EXPECT_FALSE(marked(2));
    editor.Sci(SCI_GOTOPOS, 23);
    replace.Tick(IDC_FIND_WRAP);
    replace.Press(IDC_FIND_NEXT);
    replace.Press(IDC_FIND_NEXT);
    EXPECT_EQ(replace.Status(), L"Not found") << "it does not go on at the start";
    replace.Press(IDCANCEL);
}

// The search bar by keyboard alone.
TEST(FindBar, FindsWhileTypingAndGoesBack) {
    ProgramFolder folder;
    std::string text = "start\r\n";
    for (int i = 0; i < 300; ++i) text += "word " + std::to_string(i) + "\r\n";
    Editor editor(folder, OpenArgument(folder.Write(L"a.bas", text)));
    editor.Foreground();
    editor.Sci(SCI_GOTOPOS, 3);
    const auto bar = [&] { return editor.Child(IDC_FIND_BAR); };
    const auto part = [&](int id) { return GetDlgItem(bar(), id); };
    const auto says = [&](const std::wstring& count) {
        return WaitFor([&] { return editor.TextOf(part(IDC_BAR_COUNT)) == count; });
    };
    const auto type = [&](const wchar_t* keys) {
        for (; *keys != L'\0'; ++keys) editor.Send(part(IDC_BAR_FIELD), WM_CHAR, static_cast<WPARAM>(*keys));
    };
    const auto marked = [&](WPARAM at) { return editor.Sci(SCI_INDICATORVALUEAT, 21, static_cast<LPARAM>(at)) != 0; };

    editor.Keys({VK_CONTROL, 'I'});
    ASSERT_TRUE(WaitFor([&] { return bar() != nullptr && editor.Focus() == part(IDC_BAR_FIELD); }));
    type(L"word 29");
    EXPECT_TRUE(says(L"1 of 11")) << "29 and 290 to 299";
    EXPECT_EQ(editor.Line(), 31);
    EXPECT_TRUE(marked(static_cast<WPARAM>(editor.Sci(SCI_GETSELECTIONSTART))));
    editor.Keys({VK_RETURN});
    EXPECT_TRUE(says(L"2 of 11"));
    EXPECT_EQ(editor.Line(), 292);
    editor.Keys({VK_SHIFT, VK_RETURN});
    EXPECT_TRUE(says(L"1 of 11"));
    editor.Keys({VK_SHIFT, VK_RETURN});
    EXPECT_TRUE(says(L"11 of 11")) << "before the first comes the last";
    type(L"(");
    EXPECT_TRUE(says(L"No matches"));
    editor.Keys({VK_MENU, 'X'});
    EXPECT_TRUE(says(L"Missing closing parenthesis"));
    EXPECT_EQ(editor.Focus(), part(IDC_BAR_FIELD)) << "to go on typing";
    type(L"8|9)$");
    EXPECT_TRUE(says(L"1 of 2")) << "298 and 299, as an expression";
    EXPECT_EQ(editor.Line(), 300);
    editor.Do(IDM_FIND_NEXT);
    EXPECT_EQ(editor.Line(), 301) << "F3 goes on with it";
    editor.Keys({VK_ESCAPE});
    EXPECT_TRUE(WaitFor([&] { return bar() == nullptr && editor.Focus() == editor.Sci(); }));
    EXPECT_EQ(editor.Sci(SCI_GETCURRENTPOS), 3) << "where it began";
    EXPECT_FALSE(marked(static_cast<WPARAM>(editor.Sci(SCI_POSITIONFROMLINE, 299))));

    editor.Keys({VK_CONTROL, 'I'});
    ASSERT_TRUE(WaitFor([&] { return bar() != nullptr && editor.Focus() == part(IDC_BAR_FIELD); }));
    EXPECT_GE(static_cast<short>(LOWORD(editor.Send(part(IDC_BAR_FIELD), EM_POSFROMCHAR, 0))), 0) << "its start shows";
    editor.Keys({VK_CONTROL, VK_RETURN});
    EXPECT_TRUE(WaitFor([&] { return bar() == nullptr; }));
    EXPECT_EQ(editor.Line(), 300) << "stays at the match of the last text";
}

TEST(FindBar, LongLinesGetFewMarks) {
    ProgramFolder folder;
    std::string text;
    for (int i = 0; i < 20000; ++i) text += "word ";
    Editor editor(folder, OpenArgument(folder.Write(L"a.bas", text + "\r\nword\r\n")));
    const auto marked = [&](int indicator, LPARAM at) {
        return editor.Sci(SCI_INDICATORVALUEAT, static_cast<WPARAM>(indicator), at) != 0;
    };
    editor.Sci(SCI_SETSEL, 0, 4);
    const FindDialog find(editor, IDM_EDIT_FIND, L"Find");
    find.Press(IDC_FIND_MARK_ALL);
    EXPECT_EQ(find.Status(), L"20001 matches; the first 1000 of each line are marked");
    EXPECT_TRUE(marked(20, 4995) && !marked(20, 5000) && marked(20, 100002));
    find.Press(IDCANCEL);
    // A line that moves takes its marks along, and back.
    editor.Sci(SCI_GOTOPOS, 100004);
    editor.Do(IDM_LINES_UP);
    EXPECT_TRUE(marked(20, 1) && marked(20, 11) && !marked(20, 5006));
    editor.Do(IDM_EDIT_UNDO);
    EXPECT_TRUE(marked(20, 4995) && !marked(20, 5000) && marked(20, 100002));
    editor.Do(IDM_EDIT_REDO);
    EXPECT_TRUE(marked(20, 1) && marked(20, 11) && !marked(20, 5006));
    editor.Do(IDM_EDIT_UNDO);
    editor.Do(IDM_SEARCH_INCREMENTAL);
    EXPECT_TRUE(WaitFor([&] { return marked(21, 5) && marked(21, 100002); })) << "what is in sight";
    EXPECT_FALSE(marked(21, 50000));
    editor.Sci(SCI_GOTOPOS, 99999);
    EXPECT_TRUE(WaitFor([&] { return marked(21, 99990) && !marked(21, 5); }));
}

TEST(GotoLine, ShowsThePlaceAndGoes) {
    ProgramFolder folder;
    const std::wstring path = folder.Write(L"a.bas", "SUB Main\r\n\tPRINT 1\r\nEND SUB\r\n");
    Editor editor(folder, OpenArgument(path));
    const auto show = [&] {
        editor.Post(IDM_EDIT_GOTO);
        return editor.AwaitDialog(L"Go To Line");
    };
    const auto field = [&](const Dialog& dialog, int id) { return editor.TextOf(GetDlgItem(dialog.window, id)); };
    const auto go = [&](const wchar_t* line, const wchar_t* column) {
        const Dialog dialog = show();
        editor.Send(GetDlgItem(dialog.window, IDC_GOTO_LINE), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(line));
        editor.Send(GetDlgItem(dialog.window, IDC_GOTO_COLUMN), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(column));
        editor.Press(dialog, IDOK);
        return editor.Sci(SCI_GETCURRENTPOS);
    };

    editor.Sci(SCI_GOTOPOS, 12);
    const Dialog dialog = show();
    EXPECT_EQ(field(dialog, IDC_GOTO_LINE), L"2");
    EXPECT_EQ(field(dialog, IDC_GOTO_LINE_COUNT), L"4");
    EXPECT_EQ(field(dialog, IDC_GOTO_COLUMN), L"5") << "behind a tab of four columns and a letter, from 0";
    EXPECT_EQ(field(dialog, IDC_GOTO_PROCEDURE), L"SUB Main");
    editor.Press(dialog, IDOK);
    EXPECT_EQ(editor.Sci(SCI_GETCURRENTPOS), 12) << "as it was filled it means where the caret is";

    EXPECT_EQ(go(L"3", L"4"), 24);
    EXPECT_EQ(editor.Focus(), editor.Sci());
    EXPECT_EQ(go(L"0", L"1"), 24) << "no such line: nothing happens";
    EXPECT_EQ(go(L"1", L"500"), 8) << "the end of the line";
    EXPECT_EQ(go(L"2", L"-3"), 10) << "its start";
    EXPECT_EQ(go(L"900", L"0"), 29) << "the last line";
    const Dialog place = show();
    editor.Send(GetDlgItem(place.window, IDC_GOTO_LINE), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"3:5"));
    EXPECT_EQ(field(place, IDC_GOTO_COLUMN), L"4") << "a place counts as the status bar does";
    EXPECT_EQ(field(place, IDC_GOTO_SHOWN), L"from 0 (shown as Col 5)");
    editor.Press(place, IDOK);
    EXPECT_EQ(editor.Sci(SCI_GETCURRENTPOS), 24);
    EXPECT_EQ(editor.Close(), 0u);
}

}  // namespace
