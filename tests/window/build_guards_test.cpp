// What a build leaves alone and puts back, whose errors it shows, and programs that run in the output pane.
#include "build_driver.h"
#include "harness.h"

#include <richedit.h>

#include "editor/margins.h"
#include "resources/ids.h"

#include "support/deep_folder.h"

namespace {

bool Has(const std::wstring& text, const std::wstring& part) { return text.find(part) != std::wstring::npos; }

}  // namespace

TEST(BuildGuards, EachDiagnosticOfABatchHasItsOwnFolder) {
    FakeFolder folder("print main.bas(2,1): error: same\nprint part.inc(1,1): warning: w\nmake\n");
    folder.SetIni(L"Build", L"PreBuildCmd", L"pre one");
    folder.Write(L"KVXA64\\part.inc", "the compiler's");
    std::wstring files;
    for (const wchar_t* name : {L"one\\", L"two\\"}) {
        files += OpenArgument(folder.Write(std::wstring(name) + L"main.bas", "1\r\n2\r\n"));
        folder.Write(std::wstring(name) + L"part.inc", Utf8(name));
        folder.Write(std::wstring(name) + L"pre.bat", "@echo from %1>made.txt\r\n");
    }
    Editor editor(folder, files + L" --compiler kvxa64");
    editor.Type("changed\r\n");  // in two\main.bas, which the batch saves before it builds one\main.bas
    editor.Do(IDM_PREVIOUS_TAB);
    std::wstring text = Build(editor);
    EXPECT_TRUE(text.starts_with(L"Saved: " + folder.File(L"two\\main.bas\n"))) << Utf8(text);
    EXPECT_EQ(folder.Read(L"two\\main.bas"), "changed\r\n1\r\n2\r\n");
    EXPECT_EQ(folder.Read(L"one\\made.txt"), "from one\r\n") << "a script beside the source";
    editor.Post(IDM_BUILD_ALL);
    ASSERT_TRUE(editor.AwaitOutput(L"Batch build: 2 succeeded", kBuildDeadline)) << editor.Describe();
    text = editor.Output();
    const HWND pane = editor.Child(IDC_OUTPUT);
    for (const auto& [at, tab] : {std::pair{text.find(L"main.bas(2,1)"), 0}, {text.rfind(L"main.bas(2,1)"), 1}}) {
        editor.Send(pane, EM_SETSEL, at, static_cast<LPARAM>(at));
        editor.Send(pane, WM_KEYDOWN, VK_RETURN);
        EXPECT_TRUE(WaitFor([&, tab = tab] { return editor.ActiveTab() == tab && editor.Line() == 2; }))
            << editor.Describe();
    }
    editor.Do(IDM_ERROR_NEXT);
    EXPECT_TRUE(WaitFor([&] { return editor.Text() == "two\\"; })) << "neither the compiler's nor the other's";
    EXPECT_EQ(editor.Close(), 0u);
}

// The user who does not want to save a read-only file is not asked at every build.
TEST(BuildGuards, AReadOnlyFileIsAskedAboutOnceForEachText) {
    FakeFolder folder("make\n");
    const std::wstring part = folder.Write(L"part.bas", "old\r\n");
    Editor editor(folder,
                  OpenArgument(folder.Write(L"main.bas", "1\r\n")) + OpenArgument(part) + L" --compiler kvxa64");
    editor.Type("x");
    SetFileAttributesW(part.c_str(), FILE_ATTRIBUTE_READONLY);
    editor.Do(IDM_PREVIOUS_TAB);
    const std::wstring notSaved = L"Not saved, so the build takes what is on the disk: " + part;
    const auto buildAndRefuse = [&] {
        editor.Post(IDM_BUILD);
        editor.Answer(kProgramTitle, L"Failed to save file: " + part, IDCANCEL);
        ASSERT_TRUE(editor.AwaitOutput(L"--- Build succeeded", kBuildDeadline)) << editor.Describe();
        EXPECT_TRUE(Has(editor.Output(), notSaved)) << editor.Describe();
    };
    buildAndRefuse();
    EXPECT_TRUE(Has(Build(editor), notSaved)) << "it asked again";
    editor.Do(IDM_PREVIOUS_TAB);
    editor.Type("y");
    editor.Do(IDM_PREVIOUS_TAB);
    buildAndRefuse();
    SetFileAttributesW(part.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_TRUE(Has(Build(editor), L"Saved: " + part)) << editor.Describe();
    EXPECT_EQ(folder.Read(L"part.bas"), "xyold\r\n");
    EXPECT_EQ(editor.Close(), 0u);
}

// Without a project, an include file stands for the program that includes it, as far as one can tell which.
TEST(BuildGuards, AnIncludeFileStandsForItsProgram) {
    FakeFolder folder("args\nmake\n");
    const std::wstring first = folder.Write(L"first.bas", "#INCLUDE \"part.inc\"\r\n" + kHello);
    const std::wstring second = folder.Write(L"second.bas", "#INCLUDE \"part.inc\"\r\n" + kHello);
    const std::wstring part = folder.Write(L"part.inc", "' part\r\n");
    Editor editor(folder, OpenArgument(first) + OpenArgument(second) + OpenArgument(part) + L" --compiler kvxa64");
    const auto show = [&editor](const std::wstring& name) {
        for (int i = 0; i < 3 && editor.TabLabel(editor.ActiveTab()) != name; ++i) editor.Do(IDM_PREVIOUS_TAB);
        ASSERT_EQ(editor.TabLabel(editor.ActiveTab()), name);
    };
    const auto expect = [&](const std::wstring& said, const std::wstring& built) {
        const std::wstring text = Build(editor);
        EXPECT_TRUE(Has(text, said)) << Utf8(text);
        for (const std::wstring& each : {first, second, part})
            EXPECT_EQ(Has(text, Quoted(each)), each == built) << Utf8(each) << " in " << Utf8(text);
    };
    expect(L"part.inc is included by several open sources", part);
    show(L"second.bas");
    Build(editor);
    show(L"part.inc");
    editor.Type("' typed\r\n");
    expect(L"part.inc is a part of second.bas", second);  // that was built last
    EXPECT_EQ(folder.Read(L"part.inc"), "' typed\r\n' part\r\n") << "saved all the same";
    for (const wchar_t* other : {L"second.bas", L"first.bas"}) {
        show(other);
        editor.Do(IDM_FILE_CLOSE);
        show(L"part.inc");
        other[0] == L's' ? expect(L"part.inc is a part of first.bas", first)
                         : expect(L"part.inc is an include file that no open source includes", part);
    }
}

TEST(BuildGuards, AnIncludeFileStandsForItsProgramThroughOtherFiles) {
    FakeFolder folder("make\n");
    folder.Write(L"lib\\outer.inc", "#INCLUDE \"inner.inc\"\r\n");
    const std::wstring inner = folder.Write(L"lib\\inner.inc", "MACRO X = 1\r\n");
    Editor editor(folder, OpenArgument(folder.Write(L"other.bas", kHello)) +
                              OpenArgument(folder.Write(L"main.bas", "#INCLUDE \"lib\\outer.inc\"\r\n")) +
                              OpenArgument(inner) + L" --compiler kvxa64");
    EXPECT_TRUE(Has(Build(editor), L"inner.inc is a part of main.bas, which is built."))
        << "through a file on the disk";
    folder.Write(L"lib\\outer.inc", "' nothing\r\n");
    EXPECT_TRUE(Has(Build(editor), L"inner.inc is an include file that no open source includes."));
}

TEST(BuildGuards, WhatIsSaidOfTheProgramMarksNoLine) {
    FakeFolder folder("");
    const std::wstring source = folder.Write(L"held.bas", "PRINT 1\r\nPRINT 2\r\n");
    const std::wstring program = folder.Write(L"held.exe", "MZ");
    folder.Script("print held.bas(2,1): error: of a line\nprint held.bas(1,1): error: cannot write " + Utf8(program) +
                  "\nexit 1\n");
    const HANDLE held = CreateFileW(program.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    Editor editor(folder, OpenArgument(source) + L" --compiler kvxa64");
    const std::wstring text = Build(editor);
    EXPECT_TRUE(Has(text, L"\n[Build] " + program + L" cannot be written: ")) << Utf8(text);
    EXPECT_TRUE(WaitFor([&] { return (editor.Sci(SCI_MARKERGET, 1) >> kMarkErrorSign & 1) != 0; })) << Utf8(text);
    EXPECT_EQ(editor.Sci(SCI_MARKERGET, 0) >> kMarkErrorSign & 1, 0);
    CloseHandle(held);
    EXPECT_EQ(editor.Close(), 0u);
}

TEST(BuildGuards, AProgramRunsInTheOutputPane) {
    FakeFolder folder("make\n");
    folder.SetIni(L"Editor", L"ProgramArguments", L"-a \"b c\"");
    Editor editor(folder, OpenArgument(folder.Write(L"kvxpane.bas", kHello)) + L" --compiler kvxa64");
    folder.Write(L"fake.txt", "args\nraw Name? \necho\nexit 259\n");  // for the program
    editor.Do(IDM_RUN_IN_OUTPUT);
    EXPECT_TRUE(Has(editor.Output(), L"Nothing to run: build a program first (Ctrl+B).\n"));
    Build(editor);
    editor.Do(IDM_RUN_IN_OUTPUT);
    const HWND terminal = editor.Child(IDC_TERMINAL);
    EXPECT_TRUE(IsWindowVisible(terminal));
    EXPECT_EQ(editor.Focus(), terminal);
    ASSERT_TRUE(editor.AwaitOutput(L"Name? ")) << editor.Describe();
    const auto cue = [&] {
        wchar_t text[16] = {};
        const RemoteBlock block(editor.process, sizeof text);
        editor.Send(terminal, EM_GETCUEBANNER, static_cast<WPARAM>(block.At()), std::size(text));
        block.Get(text, sizeof text);
        return std::wstring(text);
    };
    EXPECT_EQ(cue(), L"Input of the pr");
    EXPECT_TRUE(Has(editor.Output(), L"kvxpane.exe\" -a \"b c\"\n")) << Utf8(editor.Output());
    TypeInTerminal(editor, L"Bob");
    TypeInTerminal(editor, L"");
    EXPECT_TRUE(editor.AwaitOutput(L"\nName? Bob\n")) << Utf8(editor.Output());
    EXPECT_TRUE(editor.AwaitOutput(L"got Bob\n")) << Utf8(editor.Output());
    editor.Foreground();
    editor.Keys({VK_CONTROL, 'Z'});
    EXPECT_TRUE(editor.AwaitOutput(L"--- Program ended (exit code 259) ---\n")) << Utf8(editor.Output());
    EXPECT_TRUE(WaitFor([&] { return editor.Focus() == editor.Sci(); }));
    EXPECT_EQ(cue(), L"Command");
    EXPECT_FALSE(Has(editor.Output(), L"The source was changed")) << Utf8(editor.Output());
    editor.Type("'");
    editor.Do(IDM_FILE_SAVE);
    editor.Keys({VK_CONTROL, VK_SHIFT, 'R'});
    EXPECT_TRUE(WaitFor([&] { return Count(editor.Output(), L"Name? ") == 2; }));
    EXPECT_TRUE(Has(editor.Output(), L"---\nThe source was changed after this program was built.\n"));
    for (const int command : {IDM_BUILD, IDM_DEBUG_START}) {
        editor.Do(command);
        EXPECT_TRUE(Has(editor.Status(), L"still runs in the output pane")) << Utf8(editor.Status());
        editor.Do(IDM_PROFILE_DEBUG);  // has a status text of its own
    }
    editor.Do(IDM_BUILD_STOP);
    EXPECT_TRUE(editor.AwaitOutput(L"--- Program stopped ---\n"));
    EXPECT_EQ(CountProcesses(L"kvxpane.exe"), 0);
    editor.Do(IDM_RUN_IN_OUTPUT);
    EXPECT_TRUE(WaitFor([&] { return Count(editor.Output(), L"Name? ") == 3; }));
    EXPECT_EQ(EndProcesses(L"kvxpane.exe"), 1) << "by another program";
    EXPECT_TRUE(editor.AwaitOutput(L"--- Program ended (exit code 7) ---\n")) << Utf8(editor.Output());
    folder.Write(L"fake.txt", "await " + Utf8(folder.File(L"go")) + "\n");
    editor.Do(IDM_RUN_IN_OUTPUT);
    TypeInTerminal(editor, L"unread");
    EXPECT_TRUE(editor.AwaitOutput(L"unread\nThe program has not read this input.")) << Utf8(editor.Output());
    SendMessageW(terminal, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"not"));
    folder.Write(L"go", "");
    EXPECT_TRUE(editor.AwaitOutput(L"--- Program ended (exit code 0) ---\n")) << Utf8(editor.Output());
    EXPECT_EQ(editor.Focus(), terminal) << "the line that is being typed does not go on in the source";
    TypeInTerminal(editor, L"not sent in time");
    EXPECT_TRUE(Has(editor.Status(), L"Enter again runs this line as a command.")) << Utf8(editor.Status());

    folder.Script("print nothing made\nspawn\n");
    const std::wstring text = Build(editor, IDM_BUILD_RUN);
    EXPECT_TRUE(Has(text, L"No program was written: " + folder.File(L"kvxpane.exe is of an earlier build.\n")))
        << Utf8(text);
    EXPECT_EQ(CountProcesses(L"kvxpane.exe"), 0) << "the program of the build before";
    EXPECT_TRUE(Has(text, L"started are still running. Stop Build (Ctrl+Break) ends them.\n")) << Utf8(text);
    EXPECT_EQ(CountProcesses(L"kvxa64.exe"), 1);
    EXPECT_TRUE(WaitFor([&] { return editor.ButtonWorks(IDM_BUILD_STOP); }));
    editor.Do(IDM_BUILD_STOP);
    EXPECT_TRUE(WaitFor([] { return CountProcesses(L"kvxa64.exe") == 0; }));
    EXPECT_EQ(editor.Close(), 0u);
}

// A working folder beyond the system's limit: every stage works, or says in a line why it does not.
TEST(BuildGuards, FoldersBeyondTheLimit) {
    ProgramFolder folder(kCompilers);
    folder.KeepNoSession();
    folder.SetIni(L"Build", L"PreBuildCmd", L"cmd /c echo pre-build here");
    DeepFolder deep(folder.path);
    const std::wstring source = deep.File(L"x.bas");
    WriteBytes(DeepFolder::LongForm(source), kHello);
    {
        Editor editor(folder, OpenArgument(source));
        for (const int compiler : {IDM_USE_KVXB64, IDM_USE_KELDORBASIC}) {
            editor.Do(compiler);
            const std::wstring text = Build(editor, IDM_BUILD_RUN);
            EXPECT_TRUE(Has(text, L"\npre-build here\n")) << Utf8(text);
            EXPECT_TRUE(Has(text, L"--- Build succeeded")) << Utf8(text);
            EXPECT_TRUE(Has(text, L"\nRun failed. The system starts no program")) << Utf8(text);
            editor.Do(IDM_RUN_IN_OUTPUT);
            EXPECT_EQ(Count(editor.Output(), L"\nRun failed. The system starts no program"), 2)
                << Utf8(editor.Output());
            editor.Do(IDM_DEBUG_START);
            EXPECT_TRUE(editor.AwaitOutput(L"\n[Debug] The system starts no program", kBuildDeadline));
        }
        EXPECT_EQ(editor.Close(), 0u);
    }
    for (const wchar_t* name : {L"x.bas", L"x.exe", L"x.exe.pbd", L"x.buildlog", L"x.asm"})
        DeleteFileW(DeepFolder::LongForm(deep.File(name)).c_str());
}

// The compiler's copy x.bas of x.kb takes the place of the user's x.bas for a while.
TEST(BuildGuards, AStagedCopyIsNeitherShownNorLeftBehind) {
    FakeFolder folder("");
    folder.SetIni(L"KELDORBASIC", L"Path", folder.File(L"KVXA64\\kvxa64.exe"));
    const std::wstring mine = folder.Write(L"x.bas", "mine\r\n2\r\n"),
                       source = folder.Write(L"x.kb", "1\r\n2\r\n3\r\n");
    folder.Script("print " + Utf8(mine) + "(2,1): error: e\nexit 1\n");
    const std::wstring arguments = OpenArgument(mine) + OpenArgument(source) + L" --compiler keldorbasic";
    {
        Editor editor(folder, arguments);
        Build(editor);
        editor.Do(IDM_ERROR_NEXT);
        EXPECT_TRUE(WaitFor([&] { return editor.Line() == 2; }));
        EXPECT_EQ(editor.TabLabel(editor.ActiveTab()), L"x.kb") << "the user's file of that name is open, too";
        folder.Script("print begun\nsleep 60000\n");
        editor.Do(IDM_BUILD);
        ASSERT_TRUE(editor.AwaitOutput(L"begun"));
        EXPECT_EQ(folder.Read(L"x.bas"), "1\r\n2\r\n3\r\n");
        TerminateProcess(editor.process, 9);  // a crash, a power cut
        EXPECT_TRUE(editor.ExitCode());
        EXPECT_TRUE(WaitFor([] { return CountProcesses(L"kvxa64.exe") == 0; }));
    }
    Editor again(folder, arguments);
    EXPECT_EQ(folder.Read(L"x.bas"), "mine\r\n2\r\n");
    EXPECT_FALSE(Exists(mine + L".kvx-aside1"));
    EXPECT_TRUE(Has(again.Output(), L"your file " + mine + L" has been put back.\n")) << Utf8(again.Output());
    EXPECT_EQ(again.Close(), 0u);
}

TEST(BuildGuards, OnlyWhatABuildMadeIsOverwrittenOrDeleted) {
    FakeFolder folder("");
    folder.SetIni(L"KVXA64", L"AsmFlag", L"-L{asm}");
    const std::wstring source = folder.Write(L"main.bas", kHello);
    for (const wchar_t* name : {L"main.asm", L"main.log", L"main.buildlog"}) folder.Write(name, "by hand");
    folder.Script("args\nmake\ntally " + Utf8(folder.File(L"main.log")) + "\ntouch " + Utf8(folder.File(L"main.err")) +
                  "\n");
    const std::wstring notMade = L" (no build of this editor has made it)\n";
    {
        Editor editor(folder, OpenArgument(source) + L" --compiler kvxa64");
        editor.Do(IDM_VIEW_ASM);
        const std::wstring text = Build(editor);
        EXPECT_FALSE(Has(text, L"-L\"")) << "the listing would overwrite the user's file\n" << Utf8(text);
        EXPECT_TRUE(
            Has(text, L"No assembly listing, because no build of this editor has made " + folder.File(L"main.asm\n")))
            << Utf8(text);
        EXPECT_TRUE(Has(text, L"which is kept as " + folder.File(L"main.log.kvx-kept1\n"))) << Utf8(text);
        EXPECT_EQ(folder.Read(L"main.log.kvx-kept1"), "by hand");
        EXPECT_TRUE(WaitFor([&] {
            return Has(editor.TextOf(editor.Child(IDC_ASM)), L"main.asm is no listing: no build");
        })) << Utf8(editor.TextOf(editor.Child(IDC_ASM)));
        editor.Do(IDM_BUILD_CLEAN);
        EXPECT_TRUE(editor.AwaitOutput(L"Not deleted: " + folder.File(L"main.asm") + notMade));
        EXPECT_TRUE(editor.AwaitOutput(L"Not deleted: " + folder.File(L"main.buildlog") + notMade));
        for (const wchar_t* name : {L"main.asm", L"main.buildlog"}) EXPECT_EQ(folder.Read(name), "by hand");
        for (const wchar_t* name : {L"main.exe", L"main.log", L"main.err"})
            EXPECT_FALSE(Exists(folder.File(name))) << Utf8(name);
        DeleteFileW(folder.File(L"main.asm").c_str());
        folder.Script("args\nmake\ntouch " + Utf8(folder.File(L"main.asm")) + "\n");
        EXPECT_TRUE(Has(Build(editor), L" -L\"")) << Utf8(editor.Output());
        EXPECT_EQ(editor.Close(), 0u);
    }
    Editor again(folder, OpenArgument(source) + L" --compiler kvxa64");
    again.Do(IDM_BUILD_CLEAN);
    EXPECT_TRUE(again.AwaitOutput(L"Cleaned build outputs.\n"));
    EXPECT_FALSE(Exists(folder.File(L"main.asm"))) << "made by a build of the run before";
    EXPECT_EQ(again.Close(), 0u);
}

// The line keeps its commands for the next run, completes names, and Escape takes one thing after the other.
TEST(Terminal, RemembersCompletesAndStops) {
    ProgramFolder folder;
    folder.SetIni(L"Editor", L"ShowTerminal", L"1");
    folder.KeepNoSession();
    const std::wstring file = folder.Write(L"one.bas", kHello);
    folder.Write(L"list me.txt", "");
    folder.Write(L"list other.txt", "");
    const auto press = [](const Editor& editor, WPARAM key) {
        editor.Send(editor.Child(IDC_TERMINAL), WM_KEYDOWN, key);
    };
    {
        Editor editor(folder, OpenArgument(file));
        const HWND line = editor.Child(IDC_TERMINAL);
        const auto shows = [&](const wchar_t* text) { return WaitFor([&] { return editor.TextOf(line) == text; }); };
        SendMessageW(line, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"type LIST"));
        editor.Send(line, EM_SETSEL, 9, 9);
        press(editor, VK_TAB);
        EXPECT_TRUE(shows(L"type \"list me.txt\""));
        press(editor, VK_TAB);
        EXPECT_TRUE(shows(L"type \"list other.txt\""));
        press(editor, VK_ESCAPE);
        EXPECT_TRUE(shows(L"")) << "the line first";
        TypeInTerminal(editor, L"echo kept-%OS%");
        EXPECT_TRUE(editor.AwaitOutput(L"kept-Windows_NT"));
        TypeInTerminal(editor, L"ping -n 60 127.0.0.1 >nul & echo over");
        EXPECT_TRUE(WaitFor([&] { return editor.Status() == L"Running command..."; }));
        press(editor, VK_ESCAPE);
        EXPECT_TRUE(editor.AwaitOutput(L"--- Command stopped ---")) << Utf8(editor.Output());
        press(editor, VK_ESCAPE);
        EXPECT_TRUE(WaitFor([&] { return editor.Focus() == editor.Sci(); }));
        EXPECT_EQ(editor.Close(), 0u);
    }
    Editor editor(folder, OpenArgument(file));
    const HWND line = editor.Child(IDC_TERMINAL);
    SendMessageW(line, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"half"));
    for (const auto& [key, text] : {std::pair{VK_UP, L"ping -n 60 127.0.0.1 >nul & echo over"},
                                    {VK_UP, L"echo kept-%OS%"},
                                    {VK_DOWN, L"ping -n 60 127.0.0.1 >nul & echo over"},
                                    {VK_DOWN, L"half"}}) {
        press(editor, static_cast<WPARAM>(key));
        EXPECT_EQ(editor.TextOf(line), text);
    }
}
