// Several starts of the program: one window for all files, or windows that share settings and session.
#include "support/start_process.h"
#include "window/harness.h"

#include "resources/ids.h"

namespace {

// Starts the program as a user would, in its folder, and returns how it ended; nothing while it runs.
std::optional<DWORD> StartAgain(const ProgramFolder& folder, const std::wstring& arguments) {
    PROCESS_INFORMATION started{};
    const std::wstring line = L"\"" + folder.File(L"KVX-Editor.exe") + L"\" " + arguments;
    if (!StartProcess(line, &started, {.flags = 0, .folder = folder.path.c_str()})) return std::nullopt;
    CloseHandle(started.hThread);
    DWORD code = 0;
    const bool ended = WaitForSingleObject(started.hProcess, kDeadline) == WAIT_OBJECT_0 &&
                       GetExitCodeProcess(started.hProcess, &code);
    if (!ended) TerminateProcess(started.hProcess, 99);
    CloseHandle(started.hProcess);
    return ended ? std::optional(code) : std::nullopt;
}

}  // namespace

TEST(TwoWindows, ASecondStartHandsItsFilesToTheFirst) {
    ProgramFolder folder;
    folder.KeepNoSession();
    const std::wstring a = folder.Write(L"a.bas", "a\n");
    folder.Write(L"sub \xE9\\b.bas", "one\ntwo\nthree\n");
    folder.Write(L"c.bas", "c\n");
    Editor editor(folder, OpenArgument(a));
    EXPECT_EQ(StartAgain(folder, L"\"sub \xE9\\b.bas:2:3\" --goto a.bas:1:2"), 0u);
    ASSERT_TRUE(WaitFor([&] { return editor.Tabs() == 2 && editor.TabLabel(editor.ActiveTab()) == L"a.bas"; }));
    EXPECT_EQ(editor.Column(), 2);
    editor.Do(IDM_NEXT_TAB);
    EXPECT_EQ(editor.Line() * 10 + editor.Column(), 23);
    ShowWindow(editor.main, SW_MINIMIZE);
    EXPECT_EQ(StartAgain(folder, L""), 0u);
    EXPECT_TRUE(WaitFor([&] { return !IsIconic(editor.main); })) << "nothing to open: it comes to the front";

    // While the user has a question before him, the file waits.
    editor.Post(IDM_HELP_ABOUT);
    const Dialog box = editor.AwaitDialog(kProgramTitle);
    EXPECT_EQ(StartAgain(folder, L"c.bas"), 0u);
    EXPECT_EQ(editor.Tabs(), 2);
    editor.Press(box, IDOK);
    EXPECT_TRUE(WaitFor([&] { return editor.Tabs() == 3; }));

    // Messages of others are none of ours.
    COPYDATASTRUCT foreign = {1, 0, nullptr};
    EXPECT_EQ(editor.Send(editor.main, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&foreign)), FALSE);

    // The window closes with what he answers: a new one has the file then.
    editor.Do(IDM_FILE_NEW);
    editor.Type("x");
    PostMessageW(editor.main, WM_CLOSE, 0, 0);
    const Dialog question = editor.AwaitDialog(kUnsaved);
    const std::wstring late = folder.Write(L"late.bas", "late\n");
    EXPECT_EQ(StartAgain(folder, L"late.bas"), 0u);
    editor.Press(question, IDC_CLOSE_DISCARD);
    EXPECT_EQ(editor.ExitCode(), 0u);
    ASSERT_TRUE(WaitFor([&] { return (editor.main = FindWindowW(L"KVXEEditorWnd", nullptr)) != nullptr; }));
    EXPECT_TRUE(WaitFor([&] { return editor.Title().starts_with(late); }));
}

TEST(TwoWindows, ShareSettingsAndLeaveTheSessionToOne) {
    ProgramFolder folder;
    const std::wstring a = folder.Write(L"a.bas", "a\n"), b = folder.Write(L"b.bas", "b\n");
    {
        Editor first(folder, OpenArgument(a));
        Editor second(folder, OpenArgument(b));
        EXPECT_EQ(second.Tabs(), 1);
        first.Do(IDM_VIEW_DARK_THEME);
        second.Do(IDM_VIEW_WHITESPACE);
        EXPECT_EQ(first.Close(), 0u);
        EXPECT_EQ(second.Close(), 0u);
    }
    EXPECT_EQ(folder.Ini(L"Editor", L"Theme") + folder.Ini(L"Editor", L"ShowWhitespace"), L"11");
    EXPECT_EQ(folder.Ini(L"MRU", L"File0") + folder.Ini(L"MRU", L"File1"), b + a);
    const std::string session = folder.Read(kSessionFile);
    EXPECT_NE(session.find("a.bas"), std::string::npos);
    EXPECT_EQ(session.find("b.bas"), std::string::npos) << "it is of the window that was there first";

    Editor first(folder, L"", Until::Started);
    first.AwaitDialog(kRestore);
    Editor second(folder);
    EXPECT_TRUE(second.Dialogs().empty()) << "offered once";
    EXPECT_EQ(second.Tabs(), 1);
}
