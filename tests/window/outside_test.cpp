// What other programs do to the files of open documents.
#include "window/harness.h"

#include "resources/ids.h"

#include <filesystem>

namespace {

namespace fs = std::filesystem;

// The question about changed files, with its text.
Dialog AwaitQuestion(const Editor& editor, std::wstring_view text) {
    const Dialog dialog = editor.AwaitDialog(kProgramTitle);
    EXPECT_TRUE(dialog.text.starts_with(text)) << Utf8(dialog.text);
    return dialog;
}

void AnswerQuestion(const Editor& editor, std::wstring_view text, int button) {
    editor.Press(AwaitQuestion(editor, text), button);
}

// A file of 200 lines; the block of the lines 80 to 84 folds.
std::string LongText() {
    std::string text;
    for (int line = 1; line <= 200; ++line)
        text += line == 80 ? "SUB Folded()\n" : line == 84 ? "END SUB\n" : "PRINT " + std::to_string(line) + "\n";
    return text;
}

std::string WithLine(std::string text, std::string_view line, std::string_view other) {
    return text.replace(text.find(line), line.size(), other);
}

bool HasMarker(const Editor& editor, int line, int marker) {
    return (editor.Sci(SCI_MARKERGET, static_cast<WPARAM>(line - 1)) & (1 << marker)) != 0;
}

// Both documents have been looked at when the program has been left and entered again.
void ComeBack(const Editor& editor) {
    editor.Send(editor.main, WM_ACTIVATEAPP, FALSE);
    editor.Send(editor.main, WM_ACTIVATEAPP, TRUE);
}

}  // namespace

TEST(Outside, AReloadChangesOnlyTheLinesThatDiffer) {
    ProgramFolder folder;
    folder.KeepNoSession();
    const std::string before = LongText();
    const std::wstring path = folder.Write(L"a.bas", before);
    Editor editor(folder, OpenArgument(path));
    editor.Foreground();
    const auto toggle = [&](int line, int command) {
        editor.Sci(SCI_GOTOLINE, static_cast<WPARAM>(line - 1));
        editor.Do(command);
    };
    toggle(50, IDM_DEBUG_BREAKPOINT);
    toggle(120, IDM_BOOKMARK_TOGGLE);
    ASSERT_TRUE(WaitFor([&] { return (editor.Sci(SCI_GETFOLDLEVEL, 79) & SC_FOLDLEVELHEADERFLAG) != 0; }));
    editor.Sci(SCI_FOLDLINE, 79, SC_FOLDACTION_CONTRACT);
    editor.Sci(SCI_GOTOPOS, static_cast<WPARAM>(before.find("INT 100")));
    editor.Type("'mine ");
    editor.Do(IDM_FILE_SAVE);
    editor.Sci(SCI_SETFIRSTVISIBLELINE, 88);
    const std::string saved = editor.Text();
    const int column = editor.Column();

    std::string after = WithLine(WithLine(saved, "PRINT 50\n", "PRINT fifty\n"), "PRINT 120\n", "PRINT 120 'x\n");
    after = "'one\n'two\n'three\n" + WithLine(after, "PRINT 140\nPRINT 141\n", "");
    WriteBytes(path, after);
    const Dialog question = AwaitQuestion(editor, L"a.bas was changed by another program. It has no unsaved");
    editor.Send(question.window, WM_COMMAND, IDC_OUTSIDE_COMPARE);
    ASSERT_TRUE(WaitFor([&] {
        return editor.TextOf(GetDlgItem(question.window, IDC_OUTSIDE_DIFFERENCE)).find(L"+ PRINT 50\r") !=
               std::wstring::npos;
    }));
    editor.Press(question, IDC_OUTSIDE_FIRST);
    ASSERT_TRUE(WaitFor([&] { return editor.Text() == after; }));
    EXPECT_FALSE(editor.Modified());
    EXPECT_EQ(editor.Line(), 103);
    EXPECT_EQ(editor.Column(), column);
    EXPECT_EQ(editor.Sci(SCI_GETFIRSTVISIBLELINE), 91);
    EXPECT_TRUE(HasMarker(editor, 53, 2)) << "the breakpoint";
    EXPECT_TRUE(HasMarker(editor, 123, 1)) << "the bookmark";
    EXPECT_EQ(editor.Sci(SCI_GETFOLDEXPANDED, 82), 0);
    // Undo takes the reload back as one step, and then what was done before it.
    editor.Do(IDM_EDIT_UNDO);
    EXPECT_EQ(editor.Text(), saved);
    EXPECT_TRUE(editor.Modified());
    editor.Do(IDM_EDIT_UNDO);
    EXPECT_EQ(editor.Text(), before);
    editor.Do(IDM_FILE_SAVE);
    EXPECT_EQ(folder.Read(L"a.bas"), before) << "the file is the one that was read, so nothing is asked";
    EXPECT_EQ(editor.Close(), 0u);
}

TEST(Outside, EveryKindIsNoticedAndSaidOnce) {
    ProgramFolder folder;
    folder.KeepNoSession();
    const std::wstring a = folder.Write(L"a.bas", "a\n"), b = folder.Write(L"b.bas", "b\n");
    Editor editor(folder, OpenArgument(a) + OpenArgument(b));
    editor.Foreground();

    WriteBytes(b, "bb\n");  // over unsaved changes
    editor.Type("x");
    const Dialog question = AwaitQuestion(editor, L"b.bas was changed by another program. It also has unsaved");
    editor.Press(question, IDC_OUTSIDE_SECOND);
    EXPECT_EQ(editor.Text(), "xb\n");
    editor.Do(IDM_FILE_SAVE);  // what the user has seen is overwritten without another question
    EXPECT_EQ(folder.Read(L"b.bas"), "xb\n");

    WriteBytes(b, "put off\n");
    AnswerQuestion(editor, L"b.bas was changed", IDCANCEL);
    WriteBytes(b, "again\n");
    EXPECT_FALSE(WaitFor([&] { return !editor.Dialogs().empty(); }, 4000)) << "asked again, although nobody came back";
    ComeBack(editor);
    AnswerQuestion(editor, L"b.bas was changed", IDC_OUTSIDE_SECOND);
    WriteBytes(b, "newer than the answer\n");
    AnswerQuestion(editor, L"b.bas was changed", IDC_OUTSIDE_SECOND);
    editor.Do(IDM_FILE_SAVE);

    WrittenFromNow(b, -10);  // the time alone is no change
    folder.Write(L"new.tmp", "new\n");
    ASSERT_NE(MoveFileExW(folder.File(L"new.tmp").c_str(), b.c_str(), MOVEFILE_REPLACE_EXISTING), 0);
    AnswerQuestion(editor, L"b.bas was replaced", IDC_OUTSIDE_FIRST);
    EXPECT_TRUE(WaitFor([&] { return editor.Text() == "new\n"; }));

    SetFileAttributesW(b.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE(editor.AwaitOutput(L"b.bas was made read-only"));
    SetFileAttributesW(b.c_str(), FILE_ATTRIBUTE_NORMAL);

    fs::rename(b, folder.File(L"c.bas"));
    editor.Answer(kProgramTitle, L"b.bas was renamed to c.bas", IDYES);
    EXPECT_TRUE(WaitFor([&] { return editor.TabLabel(1) == L"c.bas"; }));
    editor.Type("y");
    editor.Do(IDM_FILE_SAVE);
    EXPECT_EQ(folder.Read(L"c.bas"), "nyew\n") << "the caret kept its column";

    fs::remove(folder.File(L"c.bas"));
    editor.Answer(kProgramTitle, L"c.bas was deleted", IDOK);
    editor.Post(IDM_FILE_CLOSE);
    editor.Answer(kUnsaved, L"Save changes to c.bas?", IDCANCEL);
    folder.Write(L"c.bas", "nyew\n");  // the same text is no change any more
    EXPECT_TRUE(WaitFor([&] {
        editor.Post(IDM_FILE_CLOSE);
        if (WaitFor([&] { return editor.Tabs() == 1; }, 1000)) return true;
        for (const Dialog& box : editor.Dialogs()) editor.Press(box, IDCANCEL);
        return false;
    }));

    // A minimised window asks when it is back.
    ShowWindow(editor.main, SW_MINIMIZE);
    ASSERT_TRUE(WaitFor([&] { return IsIconic(editor.main) != FALSE; }));
    WriteBytes(a, "away\n");
    EXPECT_FALSE(WaitFor([&] { return !editor.Dialogs().empty(); }, 3000)) << "behind the window once it is back";
    ShowWindow(editor.main, SW_RESTORE);
    editor.Foreground();
    AnswerQuestion(editor, L"a.bas was changed", IDC_OUTSIDE_FIRST);
    EXPECT_TRUE(WaitFor([&] { return editor.Text() == "away\n"; })) << editor.Text();

    // A tab that is not shown is asked about when it is.
    editor.Do(IDM_FILE_NEW);
    WriteBytes(a, "aa\n");
    ASSERT_TRUE(WaitFor([&] {
        editor.Do(IDM_NEXT_TAB);
        const bool asked = WaitFor([&] { return !editor.Dialogs().empty(); }, 2000);
        return asked;
    }));
    AnswerQuestion(editor, L"a.bas was changed", IDC_OUTSIDE_FIRST);
    EXPECT_EQ(editor.Close(), 0u);
}

TEST(Outside, ASaveNeverOverwritesUnasked) {
    ProgramFolder folder;
    folder.KeepNoSession();
    const std::wstring a = folder.Write(L"a.bas", "a\n");
    Editor editor(folder, OpenArgument(a));
    editor.Type("mine ");
    constexpr wchar_t kAsks[] = L"a.bas was changed by another program since";
    WriteBytes(a, "theirs\n");
    editor.Post(IDM_FILE_SAVE);
    AnswerQuestion(editor, kAsks, IDCANCEL);
    EXPECT_EQ(folder.Read(L"a.bas"), "theirs\n");
    EXPECT_TRUE(editor.Modified());

    editor.Post(IDM_FILE_SAVE);
    AnswerQuestion(editor, kAsks, IDC_OUTSIDE_SECOND);
    editor.AnswerFileDialog(folder.File(L"b.bas"), IDCANCEL);
    editor.Post(IDM_FILE_SAVE);
    const Dialog question = AwaitQuestion(editor, kAsks);
    WriteBytes(a, "newer than the question\n");
    editor.Press(question, IDC_OUTSIDE_FIRST);
    AnswerQuestion(editor, kAsks, IDC_OUTSIDE_FIRST);
    EXPECT_TRUE(WaitFor([&] { return folder.Read(L"a.bas") == "mine a\n"; }));
    EXPECT_TRUE(WaitFor([&] { return !editor.Modified(); }));

    // The timer's save asks nothing and leaves the file alone, also one that was deleted.
    editor.Type("more ");
    WriteBytes(a, "theirs again\n");
    editor.Send(editor.main, WM_TIMER, TIMER_AUTO_SAVE);
    EXPECT_EQ(folder.Read(L"a.bas"), "theirs again\n");
    fs::remove(a);
    editor.Send(editor.main, WM_TIMER, TIMER_AUTO_SAVE);
    EXPECT_FALSE(Exists(a));
    ASSERT_TRUE(WaitFor([&] {
        for (const Dialog& box : editor.Dialogs()) {
            if (box.caption == kUnsaved) return true;
            editor.Press(box, IDOK);  // that the file was deleted
        }
        PostMessageW(editor.main, WM_CLOSE, 0, 0);
        return false;
    }));
    editor.Answer(kUnsaved, L"a.bas has unsaved changes.", IDC_CLOSE_SAVE);
    EXPECT_EQ(editor.ExitCode(), 0u);
    EXPECT_EQ(folder.Read(L"a.bas"), "mine more a\n");
}

TEST(Outside, ManyFilesAreOneQuestion) {
    constexpr int kFiles = 20;
    ProgramFolder folder;
    folder.KeepNoSession();
    std::wstring arguments;
    std::vector<std::wstring> paths;
    for (int i = 0; i < kFiles; ++i) {
        paths.push_back(folder.Write(L"f" + std::to_wstring(i) + L".bas", "old\n"));
        arguments += OpenArgument(paths.back());
    }
    Editor editor(folder, arguments);
    ASSERT_EQ(editor.Tabs(), kFiles);
    editor.Foreground();
    editor.Type("x");  // in the last one
    for (int i = 1; i < kFiles; ++i) WriteBytes(paths[static_cast<std::size_t>(i)], "new\n");
    fs::remove(paths[0]);
    const Dialog question = AwaitQuestion(editor, L"20 open files were changed");
    const HWND list = GetDlgItem(question.window, IDC_OUTSIDE_LIST);
    EXPECT_EQ(editor.Send(list, LVM_GETITEMCOUNT), kFiles);
    EXPECT_EQ(editor.CellOf(list, 0, 1), L"deleted");
    editor.Press(question, IDC_OUTSIDE_FIRST);
    EXPECT_EQ(editor.Text(), "xold\n") << "unsaved changes are not ticked";
    for (int i = 0; i < kFiles; ++i) {
        editor.Do(IDM_NEXT_TAB);
        const std::string text = i == 0 ? "old\n" : i == kFiles - 1 ? "xold\n" : "new\n";
        EXPECT_TRUE(WaitFor([&] { return editor.Text() == text; })) << editor.Text();
    }
    editor.Do(IDM_FILE_SAVE);
    EXPECT_EQ(folder.Read(L"f19.bas"), "xold\n");
    editor.Do(IDM_NEXT_TAB);
    editor.Do(IDM_FILE_SAVE);
    EXPECT_EQ(folder.Read(L"f0.bas"), "old\n");

    // With the setting nothing is asked: the next box is the one of the close.
    EXPECT_EQ(editor.Close(), 0u);
    folder.SetIni(L"Editor", L"ReloadChangedFiles", L"1");
    Editor second(folder, arguments);
    second.Foreground();
    ComeBack(second);
    WriteBytes(paths[19], "again\n");
    EXPECT_TRUE(WaitFor([&] { return second.Text() == "again\n"; }));
    EXPECT_EQ(second.Close(), 0u);
}
