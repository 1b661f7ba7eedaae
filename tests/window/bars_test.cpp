// The toolbar's places and names, the fields of the status bar, the commands for lines and carets in the real editor.
#include "debug_driver.h"

#include <commctrl.h>

#include <map>

#include "editor/margins.h"
#include "resources/ids.h"

namespace {

using namespace debug_driver;

constexpr char kSource[] = "FUNCTION PBMAIN () AS LONG\r\n    FUNCTION = 1\r\nEND FUNCTION\r\n";

std::wstring ButtonName(const Editor& editor, int command) {
    const HWND bar = editor.Child(IDC_TOOLBAR);
    wchar_t name[64] = {};
    const RemoteBlock block(editor.process, sizeof(name));
    if (editor.Send(bar, TB_GETBUTTONTEXTW, static_cast<WPARAM>(command), block.At()) <= 0) return L"";
    block.Get(name, sizeof(name));
    return name;
}

TEST(Bars, ButtonsHaveNamesAndKeepTheirPlaces) {
    const Session session(L"bar.bas", kSource, L"kvxa64");
    const Editor& editor = session.editor;
    editor.ShowAt(96, 1200, 700);
    for (const auto& [command, name] :
         std::map<int, const wchar_t*>{{IDM_BUILD_RUN, L"Build & Run (F5)"},
                                       {IDM_FILE_SAVE_ALL, L"Save All (Ctrl+Shift+S)"},
                                       {IDM_DEBUG_BUTTON_STOP, L"Stop Debugging (Shift+F5)"},
                                       {IDM_TOOLBAR_MORE, L"More Buttons (Alt+F2)"}})
        EXPECT_EQ(ButtonName(editor, command), name);
    const int places[] = {IDM_BUILD, IDM_DEBUG_BUTTON_STOP, IDM_DEBUG_BREAKPOINT, IDM_VIEW_AI};
    const auto all = [&] {
        std::string text;
        for (const int command : places) text += std::to_string(editor.ButtonRect(command).left) + " ";
        return text;
    };
    const std::string before = all();
    for (const int compiler : {IDM_USE_KVXC64, IDM_USE_KELDORBASIC, IDM_USE_KVXA64}) {
        editor.Do(compiler);
        EXPECT_EQ(all(), before) << compiler;
    }
    ASSERT_TRUE(session.Start()) << editor.Describe();
    EXPECT_EQ(all(), before) << "a program is debugged";
    EXPECT_TRUE(editor.ButtonShown(IDM_DEBUG_CONTINUE) && !editor.ButtonShown(IDM_DEBUG_BUTTON_START));
}

constexpr int kPartTabWidth = 8, kPartZoom = 9;

void ClickField(const Editor& editor, int part) {
    const HWND bar = editor.Child(IDC_STATUS_BAR);
    editor.Click(bar, Centre(editor.Ask<RECT>(bar, SB_GETRECT, static_cast<WPARAM>(part))));
}

void Choose(const Editor& editor, int downs) {
    ASSERT_TRUE(editor.AwaitMenu(true));
    for (int i = 0; i < downs; ++i) editor.Keys({VK_DOWN});
    editor.Keys({VK_RETURN});
    ASSERT_TRUE(editor.AwaitMenu(false));
}

// Shift+F6 until the window has the keyboard.
void WalkBackTo(const Editor& editor, int id) {
    for (int i = 0; i < 8 && editor.Focus() != editor.Child(id); ++i) {
        const HWND before = editor.Focus();
        editor.Keys({VK_SHIFT, VK_F6});
        ASSERT_TRUE(WaitFor([&] { return editor.Focus() != before; }));
    }
    ASSERT_EQ(editor.Focus(), editor.Child(id));
}

TEST(Bars, FieldsOfTheStatusBarReact) {
    ProgramFolder folder;
    const std::wstring file = folder.Write(L"form.bas", "a\xC3\xA9\r\nb\r\n");
    Editor editor(folder, OpenArgument(file));
    editor.Foreground();
    ASSERT_EQ(editor.Status(kPartEncoding), L"UTF-8");
    ClickField(editor, kPartEncoding);
    Choose(editor, 3);  // Save as UTF-16 LE
    EXPECT_TRUE(WaitFor([&] { return editor.Status(kPartEncoding) == L"UTF-16 LE"; }));
    editor.Do(IDM_FILE_SAVE);
    EXPECT_EQ(folder.Read(L"form.bas").substr(0, 6), std::string("\xFF\xFE"
                                                                 "a\0\xE9\0",
                                                                 6))
        << "and nobody was asked";
    // The same by the keyboard: to the bar, over two fields, and the menu of the line ending.
    WalkBackTo(editor, IDC_TOOLBAR);
    editor.Keys({VK_RETURN});  // the first button
    EXPECT_TRUE(WaitFor([&] { return editor.Tabs() == 2 && editor.Focus() == editor.Sci(); }));
    EXPECT_TRUE(WaitFor([&] { return editor.Status(kPartEncoding) == L"ANSI"; })) << "which its first save writes";
    editor.Do(IDM_FILE_CLOSE);
    EXPECT_EQ(editor.Tabs(), 1) << "one new document for one key";
    WalkBackTo(editor, IDC_STATUS_BAR);
    for (const int key : {VK_RIGHT, VK_RIGHT, VK_RETURN}) editor.Keys({key});
    Choose(editor, 2);  // LF
    EXPECT_TRUE(WaitFor([&] { return editor.Status(kPartLineEnding) == L"LF"; }));
    EXPECT_EQ(editor.Text(), "a\xC3\xA9\nb\n");
    EXPECT_EQ(editor.Sci(SCI_GETEOLMODE), SC_EOL_LF);
    editor.Keys({VK_ESCAPE});
    EXPECT_TRUE(WaitFor([&] { return editor.Focus() == editor.Sci(); }));
    for (const auto& [down, ending, text] :
         {std::tuple{1, L"CRLF", "a\xC3\xA9\r\nb\r\n"}, {2, L"LF", "a\xC3\xA9\nb\n"}}) {
        ClickField(editor, kPartLineEnding);
        Choose(editor, down);
        EXPECT_TRUE(WaitFor([&, ending = ending] { return editor.Status(kPartLineEnding) == ending; })) << text;
        EXPECT_EQ(editor.Text(), text);
    }
    ClickField(editor, kPartPosition);
    editor.Press(editor.AwaitDialog(L"Go To Line"), IDCANCEL);
    ClickField(editor, kPartTabWidth);
    Choose(editor, 4);  // 8
    EXPECT_TRUE(WaitFor([&] { return editor.Sci(SCI_GETTABWIDTH) == 8; }));
    ClickField(editor, kPartZoom);
    Choose(editor, 1);  // In
    EXPECT_TRUE(WaitFor([&] { return editor.Sci(SCI_GETZOOM) == 1; }));
    editor.Do(IDM_ENCODE_UTF8);
    editor.Do(IDM_FILE_SAVE);
    EXPECT_EQ(folder.Read(L"form.bas"), "a\xC3\xA9\nb\n");
    editor.Do(IDM_REOPEN_ANSI);
    EXPECT_TRUE(WaitFor([&] { return editor.Text() == "a\xC3\x83\xC2\xA9\nb\n"; })) << editor.Text();
    EXPECT_TRUE(WaitFor([&] { return editor.Status(kPartEncoding) == L"ANSI"; }));
    // A field that is not wanted, from the menu of the bar.
    editor.Click(editor.Child(IDC_STATUS_BAR), {20, 10}, MOUSEEVENTF_RIGHTDOWN);
    Choose(editor, 9);  // Zoom, the last one
    EXPECT_TRUE(WaitFor([&] { return folder.Ini(L"Window", L"StatusHidden") == L"512"; }));
    const RECT zoom = editor.Ask<RECT>(editor.Child(IDC_STATUS_BAR), SB_GETRECT, kPartZoom);
    EXPECT_LE(zoom.right - zoom.left, 2);
}

TEST(Bars, TheSelectionBecomesOneOfColumnsAndBack) {
    ProgramFolder folder;
    const Editor editor(folder, OpenArgument(folder.Write(L"lines.txt", "eee\r\neee\r\neeeee")));  // at 0, 5, 10
    editor.Do(IDM_SELECT_COLUMNS);
    EXPECT_EQ(editor.Sci(SCI_GETSELECTIONMODE), SC_SEL_STREAM) << "nothing is selected";
    editor.Sci(SCI_SETSELECTION, 13, 1);
    editor.Do(IDM_SELECT_COLUMNS);
    EXPECT_EQ(editor.Sci(SCI_GETSELECTIONS), 3);
    for (const auto& [line, start] : {std::pair{0, 1}, {1, 6}, {2, 11}}) {
        EXPECT_EQ(editor.Sci(SCI_GETSELECTIONNSTART, static_cast<WPARAM>(line)), start);
        EXPECT_EQ(editor.Sci(SCI_GETSELECTIONNEND, static_cast<WPARAM>(line)), start + 2);
    }
    editor.Do(IDM_SELECT_COLUMNS);
    EXPECT_EQ(editor.Sci(SCI_GETSELECTIONMODE), SC_SEL_STREAM);
    EXPECT_EQ(editor.Sci(SCI_GETSELECTIONS), 1);
    EXPECT_EQ(editor.Sci(SCI_GETANCHOR), 1);
    EXPECT_EQ(editor.Sci(SCI_GETCURRENTPOS), 13);
    // A caret in each line is left of columns without a width.
    editor.Sci(SCI_SETSELECTION, 11, 1);
    editor.Do(IDM_SELECT_COLUMNS);
    EXPECT_EQ(editor.Sci(SCI_GETSELECTIONS), 3);
    editor.Do(IDM_SELECT_COLUMNS);
    EXPECT_EQ(editor.Sci(SCI_GETSELECTIONS), 1);
    EXPECT_EQ(editor.Sci(SCI_GETCURRENTPOS), 11);
    editor.Sci(SCI_SETSELECTION, 11, 1);
    editor.Do(IDM_SELECT_COLUMNS);
    editor.Send(editor.Sci(), WM_KEYDOWN, VK_ESCAPE);
    EXPECT_EQ(editor.Sci(SCI_GETSELECTIONMODE), SC_SEL_STREAM);
    EXPECT_EQ(editor.Sci(SCI_GETSELECTIONS), 1);
    EXPECT_EQ(editor.Sci(SCI_GETCURRENTPOS), 11);
}

struct LineStep {
    const char* name;
    std::vector<std::pair<int, int>> selections;  // anchor and caret, in bytes
    int command;
    const char* after;
};

TEST(Bars, LineCommandsWorkOnEverySelectionInOneStep) {
    ProgramFolder folder;
    const std::string text = "one\r\ntwo\r\nthree\r\nfour";  // at 0, 5, 10, 17
    const std::wstring file = folder.Write(L"lines.txt", text);
    Editor editor(folder, OpenArgument(file));
    const auto selected = [&editor] {
        std::vector<std::pair<int, int>> all;
        for (WPARAM i = 0; i < static_cast<WPARAM>(editor.Sci(SCI_GETSELECTIONS)); ++i)
            all.emplace_back(static_cast<int>(editor.Sci(SCI_GETSELECTIONNANCHOR, i)),
                             static_cast<int>(editor.Sci(SCI_GETSELECTIONNCARET, i)));
        return all;
    };
    const LineStep steps[] = {
        {"the last line goes up", {{18, 18}}, IDM_LINES_UP, "one\r\ntwo\r\nfour\r\nthree"},
        {"the first line does not", {{1, 1}, {18, 18}}, IDM_LINES_UP, "one\r\ntwo\r\nthree\r\nfour"},
        {"two blocks go down", {{1, 1}, {11, 12}}, IDM_LINES_DOWN, "two\r\none\r\nfour\r\nthree"},
        {"the last line twice", {{17, 17}}, IDM_LINES_DUPLICATE, "one\r\ntwo\r\nthree\r\nfour\r\nfour"},
        {"two selections twice", {{0, 1}, {5, 6}}, IDM_LINES_DUPLICATE, "oone\r\nttwo\r\nthree\r\nfour"},
        {"the last line goes", {{18, 18}}, IDM_LINES_DELETE, "one\r\ntwo\r\nthree"},
        {"two lines go", {{1, 1}, {11, 11}}, IDM_LINES_DELETE, "two\r\nfour"},
        {"join with the next", {{1, 1}}, IDM_LINES_JOIN, "one two\r\nthree\r\nfour"},
        {"join three", {{0, 12}}, IDM_LINES_JOIN, "one two three\r\nfour"},
        {"sort all", {{3, 3}}, IDM_LINES_SORT, "four\r\none\r\nthree\r\ntwo"},
        {"sort some down", {{5, 17}}, IDM_LINES_SORT_DOWN, "one\r\ntwo\r\nthree\r\nfour"},
        {"words at two carets", {{1, 1}, {11, 11}}, IDM_CASE_UPPER, "ONE\r\ntwo\r\nTHREE\r\nfour"},
        {"a part of a word", {{10, 12}}, IDM_CASE_TITLE, "one\r\ntwo\r\nThree\r\nfour"},
    };
    for (const LineStep& step : steps) {
        for (std::size_t i = 0; i < step.selections.size(); ++i)
            editor.Sci(i == 0 ? SCI_SETSELECTION : SCI_ADDSELECTION, static_cast<WPARAM>(step.selections[i].second),
                       step.selections[i].first);
        editor.Do(step.command);
        EXPECT_EQ(editor.Text(), step.after) << step.name;
        if (editor.Text() == text) continue;
        const auto after = selected();
        for (int i = 0; i < 2; ++i) {
            editor.Do(IDM_EDIT_UNDO);
            EXPECT_EQ(editor.Text(), text) << step.name << ", undone";
            EXPECT_EQ(selected(), step.selections) << step.name << ", undone";
            if (i == 1) break;
            editor.Do(IDM_EDIT_REDO);
            EXPECT_EQ(editor.Text(), step.after) << step.name << ", done again";
            EXPECT_EQ(selected(), after) << step.name << ", done again";
        }
    }
    // Marks go with their lines, whether the line moves or is passed by another.
    editor.Sci(SCI_GOTOLINE, 1);
    editor.Do(IDM_BOOKMARK_TOGGLE);
    editor.Do(IDM_LINES_DOWN);
    EXPECT_EQ(editor.Sci(SCI_MARKERNEXT, 0, 2), 2);
    editor.Sci(SCI_GOTOLINE, 1);
    editor.Do(IDM_LINES_DOWN);
    EXPECT_EQ(editor.Sci(SCI_MARKERNEXT, 0, 2), 1);
    editor.Do(IDM_LINES_SORT);  // four, one, three, two
    EXPECT_EQ(editor.Sci(SCI_MARKERNEXT, 0, 2), 3);
    // Carets above one another, and each place of a word.
    editor.Sci(SCI_GOTOPOS, 2);
    editor.Foreground();
    editor.Keys({VK_CONTROL, VK_MENU, VK_DOWN});
    ASSERT_TRUE(WaitFor([&] { return editor.Sci(SCI_GETSELECTIONS) == 2; }));
    editor.Keys({'X'});
    EXPECT_TRUE(WaitFor([&] { return editor.Text().starts_with("foxur\r\nonxe\r\n"); })) << editor.Text();
    // A word is one step, an erasure another, and so is what comes after a save.
    editor.Keys({'Y'});
    EXPECT_TRUE(WaitFor([&] { return editor.Text().starts_with("foxyur\r\nonxye\r\n"); })) << editor.Text();
    const auto behind = selected();
    editor.Keys({VK_BACK});
    EXPECT_TRUE(WaitFor([&] { return editor.Text().starts_with("foxur\r\nonxe\r\n"); })) << editor.Text();
    editor.Do(IDM_EDIT_UNDO);
    EXPECT_EQ(selected(), behind);
    editor.Keys({VK_CONTROL, 'Z'});
    EXPECT_TRUE(WaitFor([&] { return editor.Text().starts_with("four\r\n"); }));
    EXPECT_TRUE(editor.Text().starts_with("four\r\none\r\n")) << editor.Text();
    EXPECT_EQ(selected(), (std::vector<std::pair<int, int>>{{2, 2}, {8, 8}}));
    editor.Do(IDM_EDIT_REDO);
    EXPECT_TRUE(editor.Text().starts_with("foxyur\r\nonxye\r\n")) << editor.Text();
    EXPECT_EQ(selected(), behind);
    editor.Do(IDM_FILE_SAVE);
    editor.Keys({'Z'});
    EXPECT_TRUE(WaitFor([&] { return editor.Text().starts_with("foxyzur\r\n"); })) << editor.Text();
    editor.Do(IDM_EDIT_UNDO);
    EXPECT_FALSE(editor.Modified()) << "what was saved is not undone with it";
    editor.Sci(SCI_SETSEL, 0, 0);
    editor.Do(IDM_SELECT_EACH);
    EXPECT_EQ(editor.Sci(SCI_GETSELECTIONS), 1) << "a whole word";
    // Ctrl+L takes the lines that are selected, not the one at whose start the selection ends.
    editor.Sci(SCI_SETSEL, 0, -1);
    editor.Type("one\r\ntwo\r\nthree\r\n");
    editor.Sci(SCI_SETSEL, 0, 5);
    editor.Keys({VK_CONTROL, 'L'});
    EXPECT_TRUE(WaitFor([&] { return editor.Text() == "two\r\nthree\r\n"; })) << editor.Text();
    // A match that is marked goes with its line.
    editor.Sci(SCI_SETINDICATORCURRENT, kIndicatorFound);
    editor.Sci(SCI_INDICATORFILLRANGE, 0, 3);
    editor.Do(IDM_LINES_DOWN);
    EXPECT_EQ(editor.Text(), "three\r\ntwo\r\n");
    EXPECT_NE(editor.Sci(SCI_INDICATORVALUEAT, kIndicatorFound, 7), 0);
    EXPECT_EQ(editor.Sci(SCI_INDICATORVALUEAT, kIndicatorFound, 0), 0);
    // What is done to all lines is one step too.
    const struct {
        int command;
        const char *before, *after;
    } whole[] = {{IDM_LINES_TRIM, "  a \t\r\n\r\nb  ", "  a\r\n\r\nb"},
                 {IDM_TABS_TO_BLANKS, "\ta\tb\r\n\tc", "    a   b\r\n    c"},
                 {IDM_BLANKS_TO_TABS, "    a  b\r\n      c", "\ta  b\r\n\t  c"}};
    for (const auto& each : whole) {
        editor.Sci(SCI_SETSEL, 0, -1);
        editor.Type(each.before);
        editor.Sci(SCI_SETSEL, 0, -1);
        editor.Do(each.command);
        EXPECT_EQ(editor.Text(), each.after);
        editor.Do(IDM_EDIT_UNDO);
        EXPECT_EQ(editor.Text(), each.before);
    }
    // The next place of a word, and the word in both replaced in one step.
    const char* const places = "ab x ab y ab";
    editor.Sci(SCI_SETSEL, 0, -1);
    editor.Type(places);
    editor.Sci(SCI_SETSEL, 0, 0);
    for (const LRESULT selections : {1, 2}) {
        editor.Do(IDM_SELECT_NEXT);
        EXPECT_EQ(editor.Sci(SCI_GETSELECTIONS), selections);
    }
    editor.Send(editor.Sci(), WM_CHAR, 'z');
    EXPECT_EQ(editor.Text(), "z x z y ab");
    editor.Do(IDM_EDIT_UNDO);
    EXPECT_EQ(editor.Text(), places);
    // A column, by which its lines are sorted.
    editor.Sci(SCI_SETSEL, 0, -1);
    editor.Type("1z\r\n2a\r\n3m\r\n");
    editor.Sci(SCI_SETRECTANGULARSELECTIONANCHOR, 1);
    editor.Sci(SCI_SETRECTANGULARSELECTIONCARET, 10);
    editor.Do(IDM_LINES_SORT);
    EXPECT_EQ(editor.Text(), "2a\r\n3m\r\n1z\r\n");
    EXPECT_EQ(editor.Sci(SCI_GETSELECTIONMODE), SC_SEL_RECTANGLE) << "the column is still selected";
}

// Marks of a line of which something is left, by undo and redo too; those of a line that goes come back with it.
TEST(Bars, MarksFollowLinesThroughUndoAndRedo) {
    ProgramFolder folder;
    Editor editor(folder, OpenArgument(folder.Write(L"marks.bas", "c = 1\r\nd = 2\r\na = 3\r\nb = 4\r\na = 3\r\n")));
    constexpr LPARAM kBreakpoint = 1 << kMarkBreakpoint, kBookmark = 1 << kMarkBookmark;
    const auto lines = [&] {
        std::string text;
        for (WPARAM line = 0; line < 6; ++line) {
            const LRESULT marks = editor.Sci(SCI_MARKERGET, line);
            if ((marks & kBookmark) != 0) text += "b" + std::to_string(line);
            if ((marks & kBreakpoint) != 0) text += "p" + std::to_string(line);
            if ((marks >> kMarkConditional & 1) != 0) text += "c" + std::to_string(line);
        }
        return text;
    };
    for (const WPARAM line : {1, 4}) {
        editor.Sci(SCI_GOTOLINE, line);
        editor.Post(IDM_DEBUG_CONDITIONAL);
        const Dialog dialog = editor.AwaitDialog(L"Conditional Breakpoint");
        SetDlgItemTextW(dialog.window, IDC_CONDITION_TEXT, L"2 > 3");
        editor.Press(dialog, IDOK);
        ASSERT_TRUE(WaitFor([&] { return (editor.Sci(SCI_MARKERGET, line) >> kMarkConditional & 1) != 0; }));
    }
    editor.Sci(SCI_GOTOLINE, 1);
    editor.Do(IDM_BOOKMARK_TOGGLE);
    const std::string before = "b1p1c1p4c4";
    ASSERT_EQ(lines(), before);
    const struct {
        const char* name;
        int line, command;  // line -1: of all
        const char* after;
    } steps[] = {{"moved down", 1, IDM_LINES_DOWN, "b2p2c2p4c4"},
                 {"moved past another marked line", 3, IDM_LINES_DOWN, "b1p1c1p3c3"},
                 {"passed by another line", 2, IDM_LINES_UP, "b2p2c2p4c4"},
                 {"deleted", 1, IDM_LINES_DELETE, "p3c3"},
                 {"joined", 0, IDM_LINES_JOIN, "p3c3"},
                 {"sorted", -1, IDM_LINES_SORT, "p1c1b4p4c4"},
                 {"repeated", -1, IDM_LINES_UNIQUE, "b1p1c1"}};
    for (const auto& step : steps) {
        SCOPED_TRACE(step.name);
        editor.Sci(SCI_GOTOLINE, static_cast<WPARAM>(std::max(step.line, 0)));
        editor.Do(step.command);
        EXPECT_EQ(lines(), step.after);
        EXPECT_TRUE(WaitFor([&] { return editor.ButtonWorks(IDM_FILE_SAVE_ALL); })) << "the document is modified";
        for (int i = 0; i < 2; ++i) {
            editor.Do(IDM_EDIT_UNDO);
            EXPECT_EQ(lines(), before) << "undone";
            editor.Do(IDM_EDIT_REDO);
            EXPECT_EQ(lines(), step.after) << "done again";
        }
        editor.Do(IDM_EDIT_UNDO);
        EXPECT_TRUE(WaitFor([&] { return !editor.ButtonWorks(IDM_FILE_SAVE_ALL); })) << "and no longer";
    }
    // Lines that are cut or typed over take their marks along; one that stays keeps them.
    const WPARAM key = 'x';
    for (const bool typed : {true, false}) {
        editor.Sci(SCI_SETSEL, 7, 14);
        if (typed)
            editor.Send(editor.Sci(), WM_CHAR, key, 0);
        else
            editor.Do(IDM_EDIT_CUT);
        EXPECT_EQ(lines(), "p3c3");
        editor.Do(IDM_EDIT_UNDO);
        EXPECT_EQ(lines(), before) << typed;
    }
    const struct {
        int from, to;
        WPARAM key;
        const char* after;
    } parts[] = {{3, 17, key, "p2c2"},  // from within a line into another
                 {7, 7, VK_BACK, "b0p0c0p3c3"},
                 {5, 5, VK_DELETE, "b0p0c0p3c3"}};
    for (const auto& part : parts) {
        SCOPED_TRACE(part.from);
        editor.Sci(SCI_SETSEL, static_cast<WPARAM>(part.from), part.to);
        editor.Send(editor.Sci(), part.key == key ? WM_CHAR : WM_KEYDOWN, part.key, 0);
        EXPECT_EQ(lines(), part.after);
        editor.Do(IDM_EDIT_UNDO);
        EXPECT_EQ(lines(), before);
    }
    editor.Sci(SCI_SETSEL, 7, 9);
    editor.Send(editor.Sci(), WM_CHAR, key, 0);
    EXPECT_EQ(lines(), before);
    editor.Do(IDM_EDIT_UNDO);
    editor.Sci(SCI_SETSEL, 7, 14);
    editor.Do(IDM_EDIT_CUT);
    editor.Do(IDM_EDIT_UNDO);
    EXPECT_EQ(editor.Sci(SCI_GETSELECTIONEND), 14) << "what was cut is selected again";
    editor.Sci(SCI_GOTOLINE, 1);
    editor.Post(IDM_DEBUG_CONDITIONAL);  // on a line whose breakpoint came back
    const Dialog dialog = editor.AwaitDialog(L"Conditional Breakpoint");
    editor.Press(dialog, IDCANCEL);
}

// What is typed after Esc in a pane replaces what is selected in the editor, so that must be in sight.
TEST(Bars, EscShowsWhatTheNextKeyReplaces) {
    ProgramFolder folder;
    std::string text;
    for (int i = 0; i < 300; ++i) text += "line\r\n";
    Editor editor(folder, OpenArgument(folder.Write(L"long.txt", text)));
    for (const int command : {IDM_VIEW_ERROR_LIST, IDM_VIEW_ASM, IDM_VIEW_TERMINAL}) editor.Do(command);
    editor.Foreground();
    editor.Sci(SCI_GRABFOCUS);
    for (const int pane : {IDC_OUTPUT, IDC_ERROR_LIST, IDC_ASM, IDC_TERMINAL, IDC_TABS}) {
        SCOPED_TRACE(pane);
        editor.Sci(SCI_SETSEL, 0, 4);
        WalkBackTo(editor, pane);
        editor.Sci(SCI_SETFIRSTVISIBLELINE, 200);
        editor.Keys({VK_ESCAPE});
        ASSERT_TRUE(WaitFor([&] { return editor.Focus() == editor.Sci(); }));
        EXPECT_TRUE(WaitFor([&] { return editor.Sci(SCI_GETFIRSTVISIBLELINE) == 0; }));
        EXPECT_EQ(editor.Sci(SCI_GETSELECTIONEND), 4) << "and stays selected";
    }
    // A caret alone that is out of sight stays where it is, with the view.
    editor.Sci(SCI_GOTOPOS, 0);
    editor.Sci(SCI_SETFIRSTVISIBLELINE, 200);
    editor.Send(editor.Sci(), WM_SETFOCUS, 0, 0);
    EXPECT_EQ(editor.Sci(SCI_GETCURRENTPOS), 0);
}

TEST(Bars, BlocksAreFoldedByCommands) {
    ProgramFolder folder;
    const std::wstring file = folder.Write(
        L"fold.bas", "SUB A\r\n  IF 1 THEN\r\n    x = 1\r\n  END IF\r\nEND SUB\r\nSUB B\r\n  y = 2\r\nEND SUB\r\n");
    Editor editor(folder, OpenArgument(file));
    const auto shown = [&] {
        std::string lines;
        for (WPARAM line = 0; line < 8; ++line) lines += editor.Sci(SCI_GETLINEVISIBLE, line) != 0 ? '1' : '.';
        return lines;
    };
    ASSERT_TRUE(WaitFor([&] { return (editor.Sci(SCI_GETFOLDLEVEL, 5) & SC_FOLDLEVELHEADERFLAG) != 0; }));
    for (const auto& [command, lines] : {std::pair{IDM_FOLD_ALL, "1....1.."},
                                         {IDM_UNFOLD_ALL, "11111111"},
                                         {IDM_FOLD_LEVEL_2, "11..1111"},
                                         {IDM_FOLD_LEVEL_FIRST, "1....1.."},
                                         {IDM_UNFOLD_ALL, "11111111"}}) {
        editor.Do(command);
        EXPECT_EQ(shown(), lines) << command;
    }
    editor.Sci(SCI_GOTOLINE, 2);
    editor.Do(IDM_FOLD);
    EXPECT_EQ(shown(), "11..1111");
    EXPECT_EQ(editor.Line(), 2) << "the caret is not left where nobody sees it";
    editor.Do(IDM_FOLD);
    EXPECT_EQ(shown(), "1....111");
    editor.Do(IDM_UNFOLD);
    EXPECT_EQ(shown(), "11..1111");
    // What is folded is passed as a whole, and stays folded.
    editor.Sci(SCI_GOTOLINE, 4);
    editor.Do(IDM_LINES_UP);
    EXPECT_TRUE(editor.Text().starts_with("SUB A\r\nEND SUB\r\n  IF 1 THEN\r\n")) << editor.Text();
    EXPECT_EQ(shown(), "111..111");
}

}  // namespace
