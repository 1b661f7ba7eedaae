// Sessions and workspaces: what is written when the program closes, and what comes back.
#include "harness.h"

#include "editor/margins.h"
#include "resources/ids.h"

namespace {

// The lines of a session file from the first file section on.
std::string FileSections(const std::string& session) {
    const std::size_t start = session.find("\r\n[File");
    return start == std::string::npos ? "" : session.substr(start);
}

std::string Lines(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += "line " + std::to_string(i) + "\r\n";
    return text;
}

std::string Escaped(const std::wstring& path) {
    std::string out;
    for (const char c : Utf8(path)) out += c == '\\' ? "\\\\" : std::string(1, c);
    return out;
}

// Of a line, from 0.
LRESULT BreakpointMarks(const Editor& editor, WPARAM line) {
    return editor.Sci(SCI_MARKERGET, line) & (1 << kMarkBreakpoint | 1 << kMarkDisabled | 1 << kMarkConditional);
}

TEST(Session, KeepsPlacesAndMarks) {
    ProgramFolder folder;
    const std::wstring a = folder.Write(L"\xE9\x65E5.bas", Lines(3000)), b = folder.Write(L"b.bas", Lines(10));
    {
        Editor editor(folder, OpenArgument(a) + OpenArgument(b));
        for (const WPARAM line : {3, 5, 8}) {
            editor.Sci(SCI_GOTOLINE, line);
            editor.Do(IDM_DEBUG_BREAKPOINT);
        }
        editor.Do(IDM_DEBUG_ENABLE_BREAKPOINT);
        editor.Sci(SCI_GOTOLINE, 5);
        editor.Post(IDM_DEBUG_CONDITIONAL);
        const Dialog dialog = editor.AwaitDialog(L"Conditional Breakpoint");
        SetDlgItemTextW(dialog.window, IDC_CONDITION_TEXT, L"RCX > 5");
        editor.Press(dialog, IDOK);
        EXPECT_TRUE(WaitFor([&] { return (BreakpointMarks(editor, 5) & 1 << kMarkConditional) != 0; }));
        editor.Do(IDM_PREVIOUS_TAB);
        ASSERT_EQ(editor.ActiveTab(), 0);
        for (const WPARAM line : {0, 7, 2999}) editor.Sci(SCI_MARKERADD, line, kMarkBookmark);
        for (WPARAM line = 100; line < 1500; ++line)  // more than 4 kB of numbers
            editor.Sci(SCI_MARKERADD, line, kMarkBreakpoint);
        editor.Sci(SCI_SETSEL, 100, 125);
        editor.Sci(SCI_SETFIRSTVISIBLELINE, 12);
        editor.Do(IDM_FILE_NEW);  // has no path: not written
        EXPECT_EQ(editor.Close(), 0u);
    }
    const std::string session = folder.Read(kSessionFile);
    EXPECT_TRUE(session.starts_with("[Session]\r\nVersion=1\r\nActiveTab=2\r\nActiveCompiler=3\r\nProjectRoot="))
        << session;
    EXPECT_NE(session.find("\r\nTabCount=2\r\n"), std::string::npos);
    const std::string sections = FileSections(session);
    EXPECT_TRUE(sections.starts_with("\r\n[File1]\r\nPath=" + Utf8(a) +
                                     "\r\nCursor=125\r\nScroll=12\r\nSelectionStart=100\r\nSelectionEnd=125\r\n"
                                     "Bookmarks=0,7,2999\r\nBreakpoints=100,101,"))
        << sections.substr(0, 300);
    EXPECT_NE(sections.find(",1499\r\n\r\n[File2]\r\nPath=" + Utf8(b) + "\r\n"), std::string::npos);
    EXPECT_EQ(sections.find("[File3]"), std::string::npos);
    constexpr char kRules[] = "\r\nBreakpoints=3,5,8\r\nBreakpointRule=5,1,RCX > 5\r\nBreakpointRule=8,0,\r\n";
    EXPECT_NE(sections.find(kRules), std::string::npos) << sections;
    // Lines that have no breakpoint, and a condition that nobody could have entered.
    folder.Write(kSessionFile, session +
                                   "BreakpointRule=2147483647,1,1 > 0\r\nBreakpointRule=4,0,\r\nBreakpointRule=3,1," +
                                   std::string(200, 'x') + "\r\n");

    Editor editor(folder, L"", Until::Started);
    editor.Answer(kRestore, L"", IDYES);
    ASSERT_TRUE(editor.AwaitReady());
    ASSERT_EQ(editor.Tabs(), 2);
    ASSERT_EQ(editor.ActiveTab(), 1);
    EXPECT_EQ(BreakpointMarks(editor, 3), 1 << kMarkBreakpoint);
    EXPECT_EQ(BreakpointMarks(editor, 4), 0);
    EXPECT_EQ(BreakpointMarks(editor, 5), 1 << kMarkBreakpoint | 1 << kMarkConditional);
    EXPECT_EQ(BreakpointMarks(editor, 8), 1 << kMarkBreakpoint | 1 << kMarkDisabled);
    editor.Do(IDM_PREVIOUS_TAB);
    EXPECT_EQ(editor.Sci(SCI_GETSELECTIONSTART), 100);
    EXPECT_EQ(editor.Sci(SCI_GETSELECTIONEND), 125);
    EXPECT_EQ(editor.Sci(SCI_GETFIRSTVISIBLELINE), 12);
    for (const WPARAM line : {0, 7, 2999}) EXPECT_NE(editor.Sci(SCI_MARKERGET, line) & 1 << kMarkBookmark, 0) << line;
    for (const WPARAM line : {100, 1499}) EXPECT_EQ(BreakpointMarks(editor, line), 1 << kMarkBreakpoint) << line;
    EXPECT_EQ(BreakpointMarks(editor, 1500), 0);
    EXPECT_EQ(editor.Close(), 0u);
    EXPECT_NE(folder.Read(kSessionFile).find(kRules), std::string::npos);
}

TEST(Session, FilesThatWereNotShownKeepTheirPlaces) {
    ProgramFolder folder;
    std::string session = "[Session]\r\nVersion=1\r\nActiveTab=2\r\nTabCount=3";
    for (int i = 1; i <= 3; ++i)
        session += "\r\n\r\n[File" + std::to_string(i) +
                   "]\r\nPath=" + Utf8(folder.Write(L"f" + std::to_wstring(i) + L".bas", Lines(90))) +
                   "\r\nCursor=300\r\nScroll=20\r\nSelectionStart=290\r\nSelectionEnd=300\r\nBookmarks=4,7";
    session += "\r\n";
    folder.Write(kSessionFile, session);
    {
        Editor editor(folder, L"", Until::Started);
        editor.Answer(kRestore, L"", IDYES);
        ASSERT_TRUE(editor.AwaitReady());
        EXPECT_EQ(editor.TabLabel(editor.ActiveTab()), L"f3.bas");
        EXPECT_EQ(editor.Close(), 0u);
        EXPECT_EQ(FileSections(folder.Read(kSessionFile)), FileSections(session));
    }
    Editor editor(folder, L"", Until::Started);
    editor.Answer(kRestore, L"", IDYES);
    ASSERT_TRUE(editor.AwaitReady());
    DeleteFileW(folder.File(L"f1.bas").c_str());
    folder.Write(L"f2.bas", Lines(95));  // nobody has read it yet, so it is read as it is now
    editor.Do(IDM_PREVIOUS_TAB);
    EXPECT_EQ(editor.Text(), Lines(95));
    EXPECT_EQ(editor.Sci(SCI_GETCURRENTPOS), 300);
    EXPECT_EQ(editor.Sci(SCI_GETFIRSTVISIBLELINE), 20);
    EXPECT_EQ(editor.Sci(SCI_MARKERNEXT, 5, 1 << kMarkBookmark), 7);
    editor.Post(IDM_PREVIOUS_TAB);  // its file has gone meanwhile: said, and nothing breaks
    editor.Answer(kProgramTitle, L"Failed to open file: ", IDOK);
    editor.Do(IDM_NEXT_TAB);
    EXPECT_EQ(editor.Text(), Lines(95));
    EXPECT_EQ(editor.Close(), 0u);
    EXPECT_EQ(FileSections(folder.Read(kSessionFile)), FileSections(session));
}

TEST(Session, AMissingFileShiftsLaterPlaces) {
    ProgramFolder folder;
    const std::wstring a = folder.Write(L"a.bas", "' caf\xC3\xA9s"), c = folder.Write(L"c.bas", Lines(20));
    folder.Write(kSessionFile,
                 "[Session]\nVersion=1\nActiveTab=0\nTheme=1\nTreeWidth=500\nEditorZoom=3\nWordWrap=1\nSplitPos=250\n"
                 "[File1]\nPath=" +
                     Utf8(a) +
                     "\nCursor =9\nCursor=1\nSelectionStart=6\nSelectionEnd=99\n"
                     "[File2]\nPath=" +
                     Utf8(folder.File(L"gone.bas")) +
                     "\nCursor=11\nBookmarks=1,2\n"
                     "[File3]\nPath=" +
                     Utf8(c) + "\nCursor=13\nBookmarks=2\n");
    Editor editor(folder, L"", Until::Started);
    editor.Answer(kRestore, L"", IDYES);
    EXPECT_NE(editor.AwaitDialog(kRestore).text.find(folder.File(L"gone.bas") + L"\n\nKeep"), std::wstring::npos);
    editor.Answer(kRestore, L"", IDYES);
    ASSERT_TRUE(editor.AwaitReady());
    ASSERT_EQ(editor.Tabs(), 2);
    EXPECT_EQ(editor.ActiveTab(), 0);
    EXPECT_EQ(editor.Sci(SCI_GETSELECTIONSTART), 5) << "not inside the character";
    EXPECT_EQ(editor.Sci(SCI_GETCURRENTPOS), 8);
    EXPECT_EQ(editor.Sci(SCI_GETZOOM), 3);
    EXPECT_EQ(editor.Sci(SCI_GETWRAPMODE), 1);
    EXPECT_EQ(folder.Ini(L"Editor", L"Theme"), L"1");
    EXPECT_EQ(folder.Ini(L"Project", L"ProjectTreeWidth"), L"200") << "limited, and the settings are saved";
    editor.Do(IDM_NEXT_TAB);
    EXPECT_EQ(editor.TabLabel(1), L"c.bas");
    EXPECT_EQ(editor.Sci(SCI_GETCURRENTPOS), 0) << "the third section belongs to a third tab, which is not there";
    EXPECT_EQ(editor.Sci(SCI_MARKERGET, 2) & 1 << kMarkBookmark, 0);

    // The session's split stays through a resize and back.
    const auto split = [&] {
        RECT bar{};
        GetWindowRect(editor.Child(IDC_SPLIT_OUTPUT), &bar);
        MapWindowPoints(nullptr, editor.main, reinterpret_cast<POINT*>(&bar), 2);
        return bar.top;
    };
    RECT frame{};
    GetWindowRect(editor.main, &frame);
    EXPECT_EQ(split(), 250);
    for (const LONG more : {90, 0})
        SetWindowPos(editor.main, nullptr, 0, 0, frame.right - frame.left, frame.bottom - frame.top + more,
                     SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_EQ(split(), 250);

    // The missing file stays in the session, with its places, and in the workspace.
    EXPECT_EQ(editor.Close(), 0u);
    const std::string gone = Utf8(folder.File(L"gone.bas"));
    EXPECT_TRUE(FileSections(folder.Read(kSessionFile))
                    .ends_with("[File3]\r\nPath=" + gone +
                               "\r\nCursor=11\r\nScroll=0\r\nSelectionStart=0\r\nSelectionEnd=0\r\nBookmarks=1,2\r\n"))
        << folder.Read(kSessionFile);
    EXPECT_NE(folder.Read(L"workspace.json").find(Escaped(folder.File(L"gone.bas"))), std::string::npos);
}

TEST(Session, IsNotOverwrittenWhileItsQuestionIsOpen) {
    ProgramFolder folder;
    const std::wstring a = folder.Write(L"a.bas", Lines(20)), b = folder.Write(L"b.bas", Lines(20));
    folder.Write(kSessionFile, "[Session]\nVersion=1\n[File1]\nPath=" + Utf8(a) + "\n");
    folder.Write(L"workspace.json", "{\"files\": [], \"activeFile\": 0}");
    const std::string session = folder.Read(kSessionFile), workspace = folder.Read(L"workspace.json");
    Editor editor(folder, L"\"" + b + L":3:2\"", Until::Started);
    const Dialog question = editor.AwaitDialog(kRestore);
    editor.main = GetWindow(question.window, GW_OWNER);
    editor.Send(editor.main, WM_TIMER, TIMER_SESSION);
    EXPECT_EQ(editor.Send(editor.main, WM_QUERYENDSESSION), TRUE);
    editor.Send(editor.main, WM_ENDSESSION, TRUE);
    editor.Send(editor.main, WM_CLOSE);
    EXPECT_EQ(folder.Read(kSessionFile), session);
    EXPECT_EQ(folder.Read(L"workspace.json"), workspace);
    EXPECT_EQ(editor.Dialogs().size(), 1u);
    editor.Press(question, IDYES);
    ASSERT_TRUE(editor.AwaitReady());
    ASSERT_EQ(editor.Tabs(), 2) << "the file that the program was started with is there, too";
    EXPECT_EQ(editor.TabLabel(editor.ActiveTab()), L"b.bas");
    EXPECT_EQ(editor.Line() * 10 + editor.Column(), 32);
    EXPECT_EQ(editor.Close(), 0u);
}

// A program that is killed brings its breakpoints back as they were then.
TEST(Session, BreakpointsAreKeptSoonAndComeBackWhole) {
    ProgramFolder folder;
    const std::wstring a = folder.Write(L"a.bas", Lines(20)), b = folder.Write(L"b.bas", Lines(20));
    {
        Editor editor(folder, OpenArgument(a) + OpenArgument(b));
        editor.Do(IDM_PREVIOUS_TAB);
        editor.Sci(SCI_GOTOLINE, 5);
        editor.Post(IDM_DEBUG_CONDITIONAL);
        const Dialog dialog = editor.AwaitDialog(L"Conditional Breakpoint");
        SetDlgItemTextW(dialog.window, IDC_CONDITION_TEXT, L"RCX > 5");
        editor.Press(dialog, IDOK);
        editor.Do(IDM_PREVIOUS_TAB);
        const auto kept = [&] {
            return folder.Read(kSessionFile).find("BreakpointRule=5,1,RCX > 5") != std::string::npos;
        };
        EXPECT_TRUE(WaitFor(kept)) << folder.Read(kSessionFile);
        TerminateProcess(editor.process, 1);
    }
    Editor editor(folder, L"", Until::Started);
    editor.Answer(kRestore, L"", IDYES);
    ASSERT_TRUE(editor.AwaitReady());
    ASSERT_EQ(editor.TabLabel(editor.ActiveTab()), L"b.bas");
    editor.Do(IDM_PREVIOUS_TAB);
    EXPECT_EQ(BreakpointMarks(editor, 5), 1 << kMarkBreakpoint | 1 << kMarkConditional);
    EXPECT_EQ(editor.Close(), 0u);
}

TEST(Session, TheAnswerNoHoldsAgainstTheTimer) {
    ProgramFolder folder;
    const std::wstring a = folder.Write(L"a.bas", "a"), b = folder.Write(L"b.bas", "b");
    Editor editor(folder, OpenArgument(a) + OpenArgument(b));
    editor.Type("x");
    editor.Do(IDM_PREVIOUS_TAB);
    editor.Type("x");
    PostMessageW(editor.main, WM_CLOSE, 0, 0);
    const Dialog question = editor.AwaitDialog(kUnsaved);  // one about both
    editor.Send(editor.main, WM_TIMER, TIMER_AUTO_SAVE);
    editor.Send(editor.main, WM_CLOSE);
    EXPECT_EQ(editor.Send(editor.main, WM_QUERYENDSESSION), FALSE);
    EXPECT_EQ(editor.Dialogs().size(), 1u) << "no second box";
    editor.Press(question, IDC_CLOSE_DISCARD);
    EXPECT_EQ(editor.ExitCode(), 0u);
    EXPECT_EQ(folder.Read(L"a.bas") + folder.Read(L"b.bas"), "ab");
}

TEST(Session, NotOfferedWithoutFiles) {
    ProgramFolder folder;
    folder.Write(kSessionFile, "[Session]\r\nVersion=1\r\nTabCount=0\r\n[File1]\r\nPath=\r\n");
    Editor editor(folder);
    EXPECT_EQ(editor.Tabs(), 1);
    EXPECT_EQ(editor.Close(), 0u);
    EXPECT_EQ(FileSections(folder.Read(kSessionFile)), "") << "untitled documents only";
    EXPECT_FALSE(Exists(folder.File(L"workspace.json"))) << "an empty workspace is no file";
}

TEST(Workspace, WritesItsLayoutAndReadsItBack) {
    ProgramFolder folder;
    const std::wstring a = folder.Write(L"a.bas", Lines(5)), b = folder.Write(L"b.bas", Lines(5)),
                       c = folder.Write(L"c.bas", "'bc\r\n'e\r\n");
    const std::wstring flags = L"-D \"x y\" C:\\i";
    folder.SetIni(L"KeldorBasic", L"Flags", flags);
    {
        Editor editor(folder, OpenArgument(a) + OpenArgument(b) + OpenArgument(c));
        editor.Sci(SCI_GOTOPOS, 5);
        editor.Do(IDM_FILE_NEW);
        EXPECT_EQ(editor.Close(), 0u);
    }
    const auto entry = [](const std::wstring& path, const char* rest) {
        return "    {\"path\": \"" + Escaped(path) + rest;
    };
    EXPECT_EQ(folder.Read(L"workspace.json"),
              "{\r\n  \"version\": \"1.0\",\r\n  \"files\": [\r\n" + entry(a, "\", \"cursorPos\": 0},\r\n") +
                  entry(b, "\", \"cursorPos\": 0},\r\n") + entry(c, "\", \"cursorPos\": 5},\r\n") +
                  "  ],\r\n  \"activeFile\": 3,\r\n  \"compiler\": \"KeldorBasic\",\r\n  \"compilerFlags\": \"-D \"x "
                  "y\" C:\\i\"\r\n}\r\n");

    {
        Editor editor(folder, L"", Until::Started);
        editor.Answer(kRestore, L"", IDNO);
        ASSERT_TRUE(editor.AwaitReady());
        EXPECT_EQ(editor.Tabs(), 3);
        EXPECT_EQ(editor.Close(), 0u);
    }
    EXPECT_EQ(folder.Ini(L"KeldorBasic", L"Flags"), flags) << "not cut at the quote by its own trip through the file";

    // A missing file is skipped in silence, and the carets of those behind it go to the tabs before.
    DeleteFileW(folder.File(kSessionFile).c_str());
    folder.Write(L"workspace.json", "{\"files\": [" + entry(a, "\", \"cursorPos\": 3},") +
                                        entry(folder.File(L"gone.bas"), "\", \"cursorPos\": 4},") +
                                        entry(c, "\", \"cursorPos\": 5}") +
                                        "], \"activeFile\": 1, \"compiler\": \"none\"}");
    Editor editor(folder);
    ASSERT_EQ(editor.Tabs(), 2);
    EXPECT_EQ(editor.ActiveTab(), 1);
    EXPECT_EQ(editor.TabLabel(1), L"c.bas");
    EXPECT_EQ(editor.Sci(SCI_GETCURRENTPOS), 3) << "not between CR and LF";

    // A new workspace needs every document closed; a refusal leaves everything as it is.
    editor.Post(IDM_WORKSPACE_NEW);
    editor.Answer(L"New Workspace", L"A new workspace closes the 2 open files", IDCANCEL);
    EXPECT_EQ(editor.Tabs(), 2);
    editor.Type("x");
    editor.Post(IDM_WORKSPACE_NEW);
    editor.Answer(kUnsaved, L"c.bas has unsaved changes.", IDCANCEL);
    EXPECT_EQ(editor.Tabs(), 2);
    EXPECT_TRUE(editor.Modified());
    editor.Post(IDM_WORKSPACE_NEW);
    editor.Answer(kUnsaved, L"c.bas has unsaved changes.", IDC_CLOSE_DISCARD);
    ASSERT_TRUE(WaitFor([&] { return editor.Tabs() == 1 && editor.TabLabel(0) == L"Untitled"; })) << editor.Describe();
}

TEST(Workspace, LeavesFilesOfOthersAlone) {
    ProgramFolder folder;
    const std::wstring a = folder.Write(L"a [1].bas", Lines(5)), b = folder.Write(L"b.bas", Lines(5));
    constexpr char kForeign[] = "{\"name\": \"x\", \"version\": \"1.0\", \"files\": [\"dist\"]}";
    folder.Write(L"workspace.json", kForeign);
    const std::wstring package = folder.Write(L"package.json", kForeign);
    const std::wstring named = folder.Write(
        L"named.json", "{\"files\": [{\"path\": \"" + Escaped(a) + "\", \"cursorPos\": 3}, {\"path\": \"" + Escaped(b) +
                           "\", \"cursorPos\": 0}], \"activeFile\": 0, \"compiler\": \"KVXB64\"}");
    {
        Editor editor(folder, OpenArgument(b));
        editor.Foreground();
        editor.Post(IDM_WORKSPACE_OPEN);
        editor.AnswerFileDialog(package);
        EXPECT_NE(editor.AwaitDialog(kProgramTitle).text.find(L"not a workspace"), std::wstring::npos);
        editor.Answer(kProgramTitle, L"", IDOK);
        editor.Post(IDM_SESSION_OPEN);
        editor.AnswerFileDialog(package);
        EXPECT_NE(editor.AwaitDialog(kProgramTitle).text.find(L"not a session"), std::wstring::npos);
        editor.Answer(kProgramTitle, L"", IDOK);
        EXPECT_EQ(editor.Tabs(), 1) << "nothing is closed";
        // A refusal leaves the compiler as it is.
        editor.Type("x");
        editor.Post(IDM_WORKSPACE_OPEN);
        editor.AnswerFileDialog(named);
        editor.Answer(kUnsaved, L"", IDCANCEL);
        EXPECT_TRUE(editor.Status(kPartCompiler).starts_with(L"KeldorBasic"));
        editor.Post(IDM_WORKSPACE_OPEN);
        editor.AnswerFileDialog(named);
        editor.Answer(kUnsaved, L"", IDC_CLOSE_DISCARD);
        ASSERT_TRUE(WaitFor([&] { return editor.Tabs() == 2; })) << "both files, in spite of the bracket";
        EXPECT_TRUE(WaitFor([&] { return editor.Focus() == editor.Sci(); })) << "keys go into the text";
        EXPECT_TRUE(editor.Status(kPartCompiler).starts_with(L"KVXB64"));
        editor.Post(IDM_SESSION_SAVE_AS);
        editor.AnswerFileDialog(folder.File(L"kept.kvxsess"));
        EXPECT_TRUE(WaitFor([&] { return editor.Status() == L"Session saved: kept.kvxsess"; }))
            << Utf8(editor.Status());
        editor.Do(IDM_FILE_CLOSE);
        editor.Do(IDM_RECENT_SESSION_FIRST);
        EXPECT_TRUE(WaitFor([&] { return editor.Tabs() == 2; })) << "the session from the list of recent ones";
        editor.Do(IDM_FILE_CLOSE_ALL);
        EXPECT_EQ(editor.Close(), 0u);
    }
    EXPECT_EQ(folder.Read(L"package.json"), kForeign);
    EXPECT_EQ(folder.Read(L"workspace.json"), kForeign);
    EXPECT_NE(folder.Read(L"named.json"), "") << "not deleted with the last document";
}

}  // namespace
