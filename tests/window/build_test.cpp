// Building for real: the five compilers that the program finds, and one that does as it is told in their place.
#include "build_driver.h"
#include "harness.h"

#include <commctrl.h>
#include <richedit.h>

#include <algorithm>
#include <cstdlib>

#include "resources/ids.h"

namespace {

// Colour of the pane's text where `part` begins.
COLORREF ColourOf(const Editor& editor, const std::wstring& part) {
    const std::size_t at = editor.Output().find(part);
    EXPECT_NE(at, std::wstring::npos) << Utf8(part) << " is not in the output";
    return editor.ColourAt(editor.Child(IDC_OUTPUT), at);
}

// How far a pane is scrolled to the right, pixels.
LONG ScrolledRight(const Editor& editor, int pane) {
    return editor.Ask<POINT>(editor.Child(pane), EM_GETSCROLLPOS, 0).x;
}

// A pane of much text is told its new size some time after it has got it.
bool KnowsItsSize(const Editor& editor, int pane) {
    constexpr int kBlank = 8;  // the control's own around its text
    RECT client{}, text{};
    GetClientRect(editor.Child(pane), &client);
    editor.Send(editor.Child(pane), EM_GETRECT, 0, reinterpret_cast<LPARAM>(&text));  // the system passes the record on
    return std::abs(text.right - client.right) <= kBlank && std::abs(text.bottom - client.bottom) <= kBlank;
}

void DoubleClickOn(const Editor& editor, const std::wstring& part) {
    const std::size_t at = editor.Output().find(part);
    ASSERT_NE(at, std::wstring::npos) << Utf8(part) << " is not in the output";
    const HWND pane = editor.Child(IDC_OUTPUT);
    // The whole part is in view before its middle is clicked, however long the path before it is.
    for (const std::size_t end : {at, at + part.size()}) {
        editor.Send(pane, EM_SETSEL, end, static_cast<LPARAM>(end));
        editor.Send(pane, EM_SCROLLCARET);
    }
    const RemoteBlock block(editor.process, sizeof(POINTL));
    POINTL place{};
    editor.Send(pane, EM_POSFROMCHAR, static_cast<WPARAM>(block.At()), static_cast<LPARAM>(at + part.size() / 2));
    block.Get(&place, sizeof(place));
    editor.Foreground();
    editor.Click(pane, {place.x, place.y + 6}, MOUSEEVENTF_LEFTDOWN, 2);
}

}  // namespace

TEST(Build, EachCompilerBuildsASample) {
    ProgramFolder folder(kCompilers);
    folder.SetIni(L"KVXC64", L"IncludePath", folder.File(L"in c"));
    folder.Write(L"in c\\part.inc", "SUB Part()\r\n  PRINT \"part\"\r\nEND SUB\r\n");
    struct Case {
        const wchar_t *name, *source, *executable, *cwd;  // relative to the folder
        int select;
        const wchar_t *arguments, *syntax;  // {s} the source as compiled, {o} output, {a} listing, {i} include folder
        const wchar_t* staged;              // the copy that must be gone afterwards
        bool wine32;
    };
    const Case cases[] = {
        {L"KVXA64", L"a.kxa", L"KVXA64\\kvxa64.exe", L"KVXA64", IDM_USE_KVXA64, L" -o {o} --debug {s}",
         L" -o {o} -S {s}", L"a.pb", false},
        {L"KVXB64", L"b.kxb", L"KVXB64\\KVXB64.exe", L"KVXB64", IDM_USE_KVXB64, L" -o {o} --debug --asm:{a} {s}",
         L" -o {o} --syntax-only {s}", nullptr, false},
        {L"KVXA32", L"c.ka32", L"KVXA32\\KVXA32.exe", L"KVXA32", IDM_USE_KVXA32, L" -o {o} --debug /ASMOUT: {a} {s}",
         L" -o {o} -S {s}", L"c.bas", true},
        {L"KeldorBasic", L"d.bas", L"KELDORRBASIC\\KeldorrBASIC.exe", L"", IDM_USE_KELDORBASIC,
         L" {s} /L /Q /D /ASMOUT:{a}", L" {s} /Q", nullptr, true},
        {L"KVXC64", L"e.bas", L"KVXC64\\KVXC64.exe", L"KVXC64", IDM_USE_KVXC64, L" -o {o} --debug -I{i} --asm:{a} {s}",
         L" -o {o} --syntax-only -I{i} {s}", nullptr, false},
    };
    std::wstring arguments;
    for (const Case& c : cases)
        arguments += OpenArgument(
            folder.Write(c.source, c.source == std::wstring(L"e.bas") ? "#INCLUDE \"part.inc\"\r\n" + kHello : kHello));
    Editor editor(folder, arguments);
    editor.Do(IDM_VIEW_ASM);  // which asks for listings
    for (const Case& c : cases) {
        SCOPED_TRACE(Utf8(c.name));
        editor.Do(IDM_NEXT_TAB);  // from the last tab to the first, and on
        ASSERT_EQ(editor.TabLabel(editor.ActiveTab()), c.source);
        if (c.wine32 && !Variable(L"KVX_NO_WINE32").empty()) continue;
        editor.Do(c.select);
        EXPECT_TRUE(WaitFor([&] { return editor.Status(kPartCompiler) == c.name; }))
            << Utf8(editor.Status(kPartCompiler));
        const std::wstring source = folder.File(c.source), stem = source.substr(0, source.rfind(L'.'));
        const auto command = [&](std::wstring text) {
            const std::wstring compiled = c.staged ? folder.File(c.staged) : source;
            for (const auto& [token, path] : {std::pair{L"{s}", compiled},
                                              {L"{o}", stem + L".exe"},
                                              {L"{a}", stem + L".asm"},
                                              {L"{i}", folder.File(L"in c")}})
                if (const std::size_t at = text.find(token); at != std::wstring::npos)
                    text.replace(at, 3, Quoted(path));
            return L"Command: " + Quoted(folder.File(c.executable)) + text + L"\n";
        };
        std::wstring cwd = folder.File(c.cwd);
        if (cwd.ends_with(L'\\')) cwd.pop_back();
        const std::wstring header = L"--- Build started: " + std::wstring(c.name) + L" ---\nSource: " + source +
                                    L"\nOutput: " + stem + L".exe\nCWD: " + cwd + L"\n";
        std::wstring text = Build(editor);
        EXPECT_TRUE(text.starts_with(header)) << Utf8(text);
        EXPECT_NE(text.find(command(c.arguments)), std::wstring::npos) << Utf8(text);
        EXPECT_TRUE(folder.Read(std::wstring(c.source).substr(0, 1) + L".exe").starts_with("MZ")) << Utf8(text);
        EXPECT_FALSE(c.staged && Exists(folder.File(c.staged))) << "the copy stays behind";
        EXPECT_EQ(Exists(stem + L".asm"), std::wstring(c.arguments).find(L"{a}") != std::wstring::npos);
        for (const wchar_t* extension : {L".log", L".lst", L".err"}) WriteBytes(stem + extension, "x");
        editor.Do(IDM_BUILD_CLEAN);
        EXPECT_TRUE(editor.AwaitOutput(L"Cleaned build outputs.\n"));
        for (const wchar_t* extension : {L".exe", L".asm"}) EXPECT_FALSE(Exists(stem + extension)) << Utf8(extension);
        for (const wchar_t* extension : {L".log", L".lst", L".err"})
            EXPECT_TRUE(Exists(stem + extension)) << "no build has made it: " << Utf8(extension);
        EXPECT_TRUE(Exists(source));

        text = Build(editor, IDM_BUILD_SYNTAX);
        EXPECT_NE(text.find(command(c.syntax)), std::wstring::npos) << Utf8(text);
        EXPECT_FALSE(Exists(stem + L".exe")) << "a syntax check writes no program";
    }
    editor.Do(IDM_PROFILE_RELEASE);
    EXPECT_EQ(editor.Status(), L"Build profile: Release");
    EXPECT_NE(Build(editor).find(L" -O2 -I"), std::wstring::npos) << Utf8(editor.Output());
    EXPECT_EQ(editor.Output().find(L"--debug"), std::wstring::npos);
    EXPECT_EQ(editor.Close(), 0u);
    EXPECT_EQ(folder.Ini(L"Build", L"Profile"), L"1");
}

TEST(Build, RunStartsTheProgramAndOnlyAfterSuccess) {
    ProgramFolder folder(kCompilers);
    const std::wstring name = L"a & b^ 100%TEMP% \u00FC\\kvxruns.bas";  // the shell replaces %TEMP%
    const std::wstring file =
        folder.Write(name, "FUNCTION PBMAIN() AS LONG\r\n  DO\r\n    SLEEP 50\r\n  LOOP\r\nEND FUNCTION\r\n");
    Editor editor(folder, OpenArgument(file) + L" --compiler kvxa64");
    editor.Foreground();
    ASSERT_TRUE(WaitFor([&] { return editor.Focus() == editor.Sci(); }));
    editor.Keys({VK_F5});
    EXPECT_TRUE(WaitFor([] { return CountProcesses(L"kvxruns.exe") == 1; }, kBuildDeadline)) << Utf8(editor.Output());
    editor.Post(IDM_BUILD_RUN);
    editor.Answer(L"Build", L"kvxruns.exe is still running", IDNO);
    EXPECT_TRUE(editor.AwaitOutput(L"Not built: kvxruns.exe is still running. End it first.\n"));
    EXPECT_EQ(CountProcesses(L"kvxruns.exe"), 1);
    editor.Do(IDM_KEEP_CONSOLE);
    for (int round = 0; round < 2; ++round) {  // the first holds the console that the second ends
        editor.Post(IDM_BUILD_RUN);
        editor.Answer(L"Build", L"kvxruns.exe is still running", IDYES);
        EXPECT_TRUE(editor.AwaitOutput(L"--- Build succeeded", kBuildDeadline));
        EXPECT_TRUE(WaitFor([] { return CountProcesses(L"kvxruns.exe") == 1; }, kBuildDeadline));
        EXPECT_TRUE(WaitFor([] { return CountProcesses(L"KVX-Editor.exe") == 2; })) << "one console is held";
    }
    EXPECT_EQ(EndProcesses(L"kvxruns.exe"), 1);
    EXPECT_EQ(CountProcesses(L"KVX-Editor.exe"), 2) << "it waits for a key";
    TerminateJobObject(editor.job, 0);
    EXPECT_TRUE(WaitFor([] { return CountProcesses(L"kvxruns.exe") == 0; }));

    DeleteFileW(folder.File(kSessionFile).c_str());
    folder.Write(name, "FUNCTION PBMAIN() AS LONG\r\n  LOCAL a AS LONG\r\n  a = nonsense(1)\r\nEND FUNCTION\r\n");
    Editor again(folder, OpenArgument(file) + L" --compiler kvxb64");
    again.Do(IDM_VIEW_ASM);  // leaves less width than the longest line takes
    SetWindowPos(again.main, nullptr, 0, 0, 700, 420, SWP_NOZORDER);
    const std::wstring text = Build(again, IDM_BUILD_RUN);
    EXPECT_NE(text.find(L"kvxruns.bas(3,"), std::wstring::npos) << "the error's line, from the real compiler\n"
                                                                << Utf8(text);
    EXPECT_EQ(text.find(L"Run failed"), std::wstring::npos) << "no attempt to run what was not built";
    EXPECT_EQ(CountProcesses(L"kvxruns.exe"), 0);
    DoubleClickOn(again, L"kvxruns.bas(3,");
    EXPECT_TRUE(WaitFor([&] { return again.Line() == 3; })) << again.Line();
    EXPECT_EQ(again.Focus(), again.Sci());
    for (int pane : {IDC_OUTPUT, IDC_ASM, IDC_AI_CHAT}) EXPECT_EQ(ScrolledRight(again, pane), 0) << "pane " << pane;
}

TEST(Build, RefusalsSayWhy) {
    ProgramFolder folder;
    const std::wstring gone = folder.Write(L"gone.exe", "MZ");
    folder.SetIni(L"KVXA64", L"Path", L"gone.exe");
    const std::wstring file = folder.Write(L"a.bas", kHello);
    Editor editor(folder, OpenArgument(file) + L" --compiler kvxa64");
    DeleteFileW(gone.c_str());
    const std::wstring advice = L"\nOpen Project > Settings and run Auto-Detect or browse to the compiler.\n";
    EXPECT_EQ(Utf8(Build(editor)), Utf8(L"Compiler not found: KVXA64\nConfigured path: " + gone + advice));
    EXPECT_EQ(editor.Status(), L"Compiler not found");
    editor.Do(IDM_USE_KVXC64);
    EXPECT_EQ(folder.Ini(L"Editor", L"ActiveCompiler"), L"4") << "saved at once";
    EXPECT_EQ(editor.Status(kPartCompiler), L"KVXC64 (not found)");
    EXPECT_EQ(Utf8(Build(editor)), Utf8(L"Compiler not found: KVXC64\nConfigured path: (empty)" + advice));

    editor.Do(IDM_FILE_NEW);
    for (const auto& [command, text, status] :
         {std::tuple{IDM_BUILD, L"Build cancelled: save the active tab to a source file first.\n", L"Build cancelled"},
          {IDM_BUILD_RUN, L"Run cancelled: save the active tab to a source file first.\n", L"Run cancelled"}}) {
        editor.Post(command);
        editor.AnswerFileDialog(folder.File(L"never.bas"), IDCANCEL);
        EXPECT_TRUE(editor.AwaitOutput(text));
        EXPECT_TRUE(WaitFor([&, status = status] { return editor.Status() == status; })) << Utf8(editor.Status());
    }
    // A program that is none: the system's own words.
    folder.Write(L"gone.exe", "this is no program");
    editor.Do(IDM_PREVIOUS_TAB);
    editor.Do(IDM_USE_KVXA64);
    EXPECT_NE(Build(editor).find(L"Build launch failed (Win32 error "), std::wstring::npos) << Utf8(editor.Output());
    EXPECT_EQ(editor.Status(), L"Build launch failed");
    EXPECT_EQ(editor.Close(), 0u);
}

// Of a long output the pane has the first and the last lines; between them it leads to the rest, which the log has.
TEST(Build, EveryLineOfAFloodInOrder) {
    FakeFolder folder("");
    folder.Script("print first\nflood 20000\nprint last\nraw More? \nawait " + Utf8(folder.File(L"more")) +
                  "\nexit 0\n");
    Editor editor(folder, OpenArgument(folder.Write(L"a.bas", kHello)) + L" --compiler kvxa64");
    editor.Do(IDM_BUILD);
    EXPECT_TRUE(editor.AwaitOutput(L"\nlast\nMore? ", kBuildDeadline)) << "a question is shown with what is before it";
    folder.Write(L"more", "");
    EXPECT_TRUE(WaitFor([&] { return !Busy(editor); }, kBuildDeadline));
    const std::wstring text = editor.Output();
    std::size_t at = text.find(L"\nfirst\n");
    ASSERT_NE(at, std::wstring::npos) << Utf8(text.substr(0, 500));
    at += 7;
    std::string missing;  // the first line that the pane leaves out
    for (int i = 1; i <= 20000; ++i) {
        wchar_t line[32];
        swprintf(line, 32, L"output line %07d\n", i);
        if (text.compare(at, 4, L"... ") == 0) {
            missing = Utf8(line);
            at = text.find(L'\n', at) + 1;
            i = std::stoi(text.substr(at + 12)) - 1;
            continue;
        }
        ASSERT_EQ(text.compare(at, 20, line), 0) << "at line " << i << ": " << Utf8(text.substr(at, 60));
        at += 20;
    }
    EXPECT_EQ(text.compare(at, 5, L"last\n"), 0) << Utf8(text.substr(at, 60));
    // A pane that gets lower goes on to show its end, or what it was scrolled to.
    const auto firstLine = [&] { return editor.Send(editor.Child(IDC_OUTPUT), EM_GETFIRSTVISIBLELINE); };
    const LRESULT atEnd = firstLine();
    editor.Do(IDM_VIEW_TERMINAL);
    EXPECT_TRUE(WaitFor([&] { return KnowsItsSize(editor, IDC_OUTPUT); }));
    EXPECT_GT(firstLine(), atEnd);
    editor.Do(IDM_VIEW_TERMINAL);
    editor.Send(editor.Child(IDC_OUTPUT), EM_LINESCROLL, 0, -500);
    const LRESULT scrolled = firstLine();
    editor.Do(IDM_VIEW_TREE);
    EXPECT_TRUE(WaitFor([&] { return KnowsItsSize(editor, IDC_OUTPUT); })) << "the width";
    editor.Do(IDM_VIEW_TERMINAL);
    EXPECT_TRUE(WaitFor([&] { return KnowsItsSize(editor, IDC_OUTPUT); }));
    EXPECT_EQ(firstLine(), scrolled);
    DoubleClickOn(editor, L"... ");
    EXPECT_TRUE(WaitFor([&] { return editor.TabLabel(editor.ActiveTab()) == L"a.buildlog"; })) << editor.Describe();
    const auto line = static_cast<std::size_t>(editor.Line());
    std::string log = folder.Read(L"a.buildlog");
    for (std::size_t i = 1; i < line; ++i) log.erase(0, log.find('\n') + 1);
    EXPECT_EQ(log.substr(0, 19), missing.substr(0, 19)) << line;
    editor.Do(IDM_FILE_CLOSE);
    // The next build has a pane of its own, and the long one goes when there is time.
    const HWND longPane = editor.Child(IDC_OUTPUT);
    folder.Script("print again\nexit 0\n");
    const std::wstring next = Build(editor);
    EXPECT_NE(next.find(L"\nagain\n"), std::wstring::npos) << Utf8(next);
    EXPECT_EQ(next.find(L"output line"), std::wstring::npos);
    EXPECT_NE(editor.Child(IDC_OUTPUT), longPane);
    EXPECT_TRUE(WaitFor([&] { return !IsWindow(longPane); }));
    EXPECT_EQ(editor.Close(), 0u);
}

TEST(Build, OutputIsFilteredDecodedAndColoured) {
    const std::string long_line(4095, 'a');
    FakeFolder folder(
        "args\nprint error[E1]: same\nprint error[E1]: same\nprint help: h\nprint error[E1]: same\n"
        "print help: h\nprint fix: f\nprint fix: f\nprint error[E2]: other\nprint plain\nprint plain\n"
        "print x.bas(1,2): error: red\nprint x.bas:3:4: warning: yellow\n"
        "raw caf\\xC3\\xA9\\x0D\\x0A\nsettle\nraw ansi \\xE9\\x0D\\x0A\nsettle\nraw " +
        long_line + "\\xC3\\xA9\\x0D\\x0A\nexit 3\n");
    folder.SetIni(L"Build", L"PreBuildCmd", L"cmd /c echo pre>pre.txt");
    folder.SetIni(L"Build", L"PostBuildCmd", L"cmd /c echo post>" + folder.File(L"post.txt"));
    folder.SetIni(L"KVXA64", L"Flags", L"--mine --debug");
    const std::wstring file = folder.Write(L"a.bas", kHello);
    Editor editor(folder, OpenArgument(file) + L" --compiler kvxa64");
    const std::wstring text = Build(editor);
    EXPECT_NE(text.find(L"args: " + Quoted(folder.File(L"KVXA64\\kvxa64.exe")) + L" -o " +
                        Quoted(folder.File(L"a.exe")) + L" --mine --debug " + Quoted(file) + L"\n"),
              std::wstring::npos)
        << "what the compiler itself saw; a flag is not given twice\n"
        << Utf8(text);
    EXPECT_NE(text.find(L"cwd: " + folder.File(L"KVXA64")), std::wstring::npos);
    struct Times {
        const wchar_t* line;
        int count;
    };
    for (const Times& t : {Times{L"\nerror[E1]: same\n", 1}, Times{L"\nhelp: h\n", 1}, Times{L"\nfix: f\n", 1},
                           Times{L"\nerror[E2]: other\n", 1}, Times{L"plain\n", 2}, Times{L"\ncaf\u00E9\n", 1},
                           Times{L"\nansi \u00E9\n", 1}, Times{L"a\u00E9\n", 1}})
        EXPECT_EQ(Count(text, t.line), t.count) << Utf8(t.line);
    EXPECT_TRUE(text.starts_with(L"[Pre-build] cmd /c echo pre>pre.txt\n")) << Utf8(text.substr(0, 200));
    EXPECT_EQ(ColourOf(editor, L"x.bas(1,2)"), 0x0000FFu);
    EXPECT_EQ(ColourOf(editor, L"x.bas:3:4"), 0x00B4B4u);
    EXPECT_EQ(ColourOf(editor, L"[Pre-build]"), 0x808000u);
    EXPECT_FALSE(Exists(folder.File(L"post.txt"))) << "the build failed";

    folder.Script("print fine\ntouch " + Utf8(folder.File(L"a.exe")) + "\n");
    EXPECT_EQ(Count(Build(editor), L"error[E1]"), 0) << "each build starts with an empty pane";
    EXPECT_TRUE(WaitFor([&] { return Exists(folder.File(L"post.txt")) && !Busy(editor); })) << Utf8(editor.Output());
    EXPECT_EQ(editor.Close(), 0u);
    folder.SetIni(L"Build", L"PreBuildCmd", L"no-such-program.exe");
    Editor other(folder, OpenArgument(file) + L" --compiler kvxa64");
    EXPECT_NE(Build(other).find(L"[Pre-build] Failed to run.\n"), std::wstring::npos) << Utf8(other.Output());
    EXPECT_EQ(ColourOf(other, L"[Pre-build] Failed"), 0x0000FFu);
    EXPECT_NE(other.Output().find(L"\nfine\n"), std::wstring::npos) << "its result does not stop the build";
}

TEST(Build, OutputComesAsItIsPrinted) {
    FakeFolder folder("");
    const std::string more = Utf8(folder.File(L"more")), end = Utf8(folder.File(L"end"));
    const std::wstring file = folder.Write(L"a.bas", kHello);
    folder.Script("print fix: same\nraw fix: same\nawait " + more + "\nraw \\x0D\\x0A\nprint " + Utf8(file) +
                  "(2,1): error: listed\nraw Name? \nawait " + end + "\nraw Ann \\xC3\\xA9\\xE2\\x82\nexit 1\n");
    folder.SetIni(L"Editor", L"ShowTerminal", L"1");
    Editor editor(folder, OpenArgument(file) + L" --compiler kvxa64");
    editor.Do(IDM_BUILD);
    EXPECT_TRUE(editor.AwaitOutput(L"\nfix: same\nfix: same")) << "shown while its end is still to come";
    folder.Write(L"more", "");
    EXPECT_TRUE(editor.AwaitOutput(L"\nName? "));
    EXPECT_TRUE(Busy(editor)) << editor.Describe();
    EXPECT_EQ(Count(editor.Output(), L"fix: same"), 1) << "a repetition goes when it is known to be one";
    folder.Write(L"end", "");
    EXPECT_TRUE(editor.AwaitOutput(L"listed\nName? Ann \u00E9\u00E2\u201A\n--- Build")) << Utf8(editor.Output());

    TypeInTerminal(editor, L"echo " + file + L"(1,1): error: typed");
    EXPECT_TRUE(editor.AwaitOutput(L"typed\n" + file + L"(1,1): error: typed\n")) << Utf8(editor.Output());
    EXPECT_EQ(ColourOf(editor, file + L"(1,1): error: typed\n"), 0x0000FFu);
    editor.Do(IDM_ERROR_NEXT);
    EXPECT_EQ(editor.Line(), 2) << "the list is the build's";

    editor.Do(IDM_VIEW_OUTPUT);
    Build(editor);
    EXPECT_FALSE(IsWindowVisible(editor.Child(IDC_OUTPUT))) << "hidden by the user";
    EXPECT_EQ(editor.Close(), 0u);
}

TEST(Build, ASilentCompilersLogIsShown) {
    FakeFolder folder("");
    folder.Script("tally " + Utf8(folder.File(L"a.log")) + "\n");
    folder.SetIni(L"Build", L"PreBuildCmd", L"cmd /c echo x.bas(1,2): error: of the command");
    folder.Write(L"a.err", "of an earlier build");
    Editor editor(folder, OpenArgument(folder.Write(L"a.bas", kHello)) + L" --compiler kvxa64");
    const std::wstring text = Build(editor);
    EXPECT_NE(text.find(L"x.bas(1,2): error: of the command\n"), std::wstring::npos) << Utf8(text);
    EXPECT_NE(text.find(L"--- " + folder.File(L"a.log") + L" ---\n1\n--- Build succeeded: 0 errors, 0 warnings, "),
              std::wstring::npos)
        << "what a command printed is not the compiler's\n"
        << Utf8(text);
    EXPECT_EQ(text.find(L"earlier"), std::wstring::npos);
    folder.Script("tally " + Utf8(folder.File(L"a.log")) + "\nprint said\n");
    EXPECT_EQ(Build(editor).find(L"a.log"), std::wstring::npos) << "a compiler that speaks needs no log";
    EXPECT_EQ(editor.Close(), 0u);
}

TEST(Build, ErrorsLeadToTheirPlaces) {
    FakeFolder folder("");
    // In ANSI: a byte of the file is not a byte of the editor.
    const std::wstring main = folder.Write(L"main.bas", "1\r\nSUB a\r\n  \xE9\xE9\xE9 = 1\r\nEND SUB\r\n5\r\n");
    // Of another compiler, as the folder's name says.
    const std::wstring part = folder.Write(L"KA32\\part.bas", "a\r\nb bb\r\nc\r\n");
    folder.Script("print " + Utf8(main) + "(3,6): error: one\r\nprint nothing here\r\nprint   " + Utf8(part) +
                  ":2:30: warning: two\r\nprint " + Utf8(folder.File(L"gone.bas")) + "(9,9): error: three\r\nprint " +
                  Utf8(main) + "(5,0): fatal error: four\r\nprint " + Utf8(main) + "(12): error: not one\nexit 1\n");
    Editor editor(folder, OpenArgument(main) + L" --compiler kvxa64");
    Build(editor);
    const auto at = [&] {
        return editor.TabLabel(editor.ActiveTab()) + L":" + std::to_wstring(editor.Line()) + L":" +
               std::to_wstring(editor.Column());
    };
    const auto expectAt = [&](const wchar_t* place) {
        EXPECT_TRUE(WaitFor([&] { return at() == place; })) << Utf8(at()) << " instead of " << Utf8(place);
    };
    DoubleClickOn(editor, L"part.bas:2:30");
    expectAt(L"part.bas:2:5");  // opened for it; the line has no such column
    EXPECT_EQ(editor.Tabs(), 2);
    EXPECT_EQ(editor.Status(kPartCompiler), L"KVXA64") << "opened for the error, not by the user";
    EXPECT_EQ(folder.Ini(L"MRU", L"Count"), L"1");
    EXPECT_TRUE(WaitFor([&] { return editor.Focus() == editor.Sci(); }));
    editor.Do(IDM_PREVIOUS_TAB);
    editor.Sci(SCI_FOLDLINE, 1, SC_FOLDACTION_CONTRACT);
    ASSERT_EQ(editor.Sci(SCI_GETLINEVISIBLE, 2), 0);
    editor.Do(IDM_ERROR_PREVIOUS);
    expectAt(L"main.bas:3:9");
    EXPECT_NE(editor.Sci(SCI_GETLINEVISIBLE, 2), 0) << "a folded block opens for it";
    editor.Do(IDM_ERROR_PREVIOUS);
    expectAt(L"main.bas:5:1");  // wrapped to the last; no column was given
    editor.Do(IDM_ERROR_NEXT);
    expectAt(L"main.bas:3:9");  // and back round
    editor.Foreground();
    editor.Keys({VK_F4});
    expectAt(L"part.bas:2:5");
    editor.Post(IDM_ERROR_NEXT);  // the file is gone: a message, and nothing else
    editor.Answer(kProgramTitle, L"Failed to open file: " + folder.File(L"gone.bas"), IDOK);
    expectAt(L"part.bas:2:5");
    editor.Do(IDM_ERROR_NEXT);
    expectAt(L"main.bas:5:1");
    DoubleClickOn(editor, L"nothing here");
    DoubleClickOn(editor, L"main.bas(12)");
    expectAt(L"main.bas:5:1");

    // The 65th diagnostic is shown, but the walk ends at the 64th.
    std::string lines;
    for (int i = 0; i < 80; ++i) lines += "line\r\n";
    folder.Write(L"KA32\\many.bas", lines);
    folder.Script("errors 70 " + Utf8(folder.File(L"KA32\\many.bas")) + "\nexit 1\n");
    EXPECT_EQ(Count(Build(editor), L": error: number "), 70);
    EXPECT_EQ(ScrolledRight(editor, IDC_OUTPUT), 0) << "the file names are out of sight";
    EXPECT_EQ(ColourOf(editor, folder.File(L"KA32\\many.bas") + L"(65,1)"), 0x0000FFu);
    editor.Do(IDM_ERROR_PREVIOUS);
    expectAt(L"many.bas:64:1");
    editor.Do(IDM_ERROR_NEXT);
    expectAt(L"many.bas:1:1");
    // The dialog still starts where the user was last.
    editor.Do(IDM_FILE_CLOSE_ALL);
    folder.Write(L"beside.bas", "");
    editor.Post(IDM_FILE_OPEN);
    editor.AnswerFileDialog(L"beside.bas");
    EXPECT_TRUE(WaitFor([&] { return editor.Tabs() == 1 && editor.TabLabel(0) == L"beside.bas"; }));
    EXPECT_EQ(editor.Close(), 0u);
}

// A compiler names the copy that it saw, which is gone by then.
TEST(Build, ErrorsOfACopyLeadToItsSource) {
    FakeFolder folder("");
    const std::string text = "1\r\n2\r\n3\r\n";
    Editor editor(folder, OpenArgument(folder.Write(L"one.kxa", text)) + OpenArgument(folder.Write(L"two.ka32", text)) +
                              L" --compiler kvxa64");
    for (const auto& [source, copy] : {std::pair{L"two.ka32", "two.bas"}, {L"one.kxa", "one.pb"}}) {
        SCOPED_TRACE(copy);
        ASSERT_EQ(editor.TabLabel(editor.ActiveTab()), source);
        folder.Script(std::string("print ") + copy + "(2,1): error: by name\nprint " + Utf8(folder.File(Wide(copy))) +
                      "(3,1): error: by path\nexit 1\n");
        Build(editor);
        for (const int line : {2, 3}) {
            editor.Do(IDM_ERROR_NEXT);
            EXPECT_TRUE(WaitFor([&] { return editor.Line() == line; })) << editor.Line();
            EXPECT_EQ(editor.TabLabel(editor.ActiveTab()), source);
        }
        editor.Do(IDM_NEXT_TAB);
    }
    EXPECT_EQ(editor.Tabs(), 2) << "nothing was opened for them";
    EXPECT_EQ(editor.Close(), 0u);
}

TEST(Build, StopLeavesNothingRunning) {
    struct Case {
        const char *name, *script;
        bool preBuild;
    };
    for (const Case& c : {Case{"flooding with a child", "print begun\nspawn\nflood 0\n", false},
                          Case{"hanging", "print begun\nspawn\nsleep 60000\n", false},
                          Case{"during the pre-build command", "sleep 60000\n", true}}) {
        SCOPED_TRACE(c.name);
        FakeFolder folder(c.script);
        if (c.preBuild) folder.SetIni(L"Build", L"PreBuildCmd", Quoted(folder.File(L"KVXA64\\kvxa64.exe")));
        Editor editor(folder, OpenArgument(folder.Write(L"a.kxa", kHello)) + L" --compiler kvxa64");
        const auto stopEnabled = [&] { return editor.ButtonWorks(IDM_BUILD_STOP); };
        EXPECT_FALSE(stopEnabled());
        editor.Do(IDM_BUILD);
        EXPECT_TRUE(WaitFor(stopEnabled));
        ASSERT_TRUE(editor.AwaitOutput(c.preBuild ? L"[Pre-build]" : L"begun"));
        ASSERT_TRUE(WaitFor([&] { return CountProcesses(L"kvxa64.exe") == (c.preBuild ? 1 : 2); }));
        editor.Foreground();
        if (c.preBuild) {
            editor.Do(IDM_BUILD_STOP);
        } else {
            ASSERT_TRUE(WaitFor([&] { return editor.Focus() == editor.Sci(); }));
            editor.Keys({VK_CONTROL, VK_CANCEL});  // Ctrl+Break
        }
        EXPECT_TRUE(WaitFor([] { return CountProcesses(L"kvxa64.exe") == 0; })) << "still running";
        EXPECT_TRUE(WaitFor([&] { return editor.Status() == L"Build stopped"; })) << Utf8(editor.Status());
        EXPECT_TRUE(WaitFor([&] { return !Exists(folder.File(L"a.pb")); })) << "the staged copy stays behind";
        // The next build is none the worse for it.
        folder.Script("print second\n");
        EXPECT_NE(Build(editor).find(L"\nsecond\n"), std::wstring::npos) << Utf8(editor.Output());
        EXPECT_EQ(editor.Close(), 0u);
    }
    // Leaving the program ends a build as well.
    FakeFolder folder("spawn\nflood 0\n");
    Editor editor(folder, OpenArgument(folder.Write(L"a.bas", kHello)) + L" --compiler kvxa64");
    editor.Do(IDM_BUILD);
    ASSERT_TRUE(WaitFor([] { return CountProcesses(L"kvxa64.exe") == 2; }));
    EXPECT_EQ(editor.Close(), 0u);
    EXPECT_TRUE(WaitFor([] { return CountProcesses(L"kvxa64.exe") == 0; }));
}

TEST(Build, AllOpenDocumentsUntilOneFails) {
    FakeFolder folder("print ok\n");
    const std::wstring files =
        OpenArgument(folder.Write(L"a.bas", kHello)) + OpenArgument(folder.Write(L"note.txt", "")) +
        OpenArgument(folder.Write(L"b.bas", kHello)) + OpenArgument(folder.Write(L"c.bas", kHello));
    Editor editor(folder, files + L" --compiler kvxa64");
    editor.Post(IDM_BUILD_ALL);
    EXPECT_TRUE(editor.AwaitOutput(L"[3/3] Building ", kBuildDeadline));
    EXPECT_TRUE(WaitFor([&] {
        return editor.Output().find(L"Batch build: 3 succeeded, 0 failed.") != std::wstring::npos ||
               editor.Status() == L"Batch build: 3 succeeded, 0 failed.";
    })) << editor.Describe();
    folder.Script("print bad\nexit 1\n");
    editor.Post(IDM_BUILD_ALL);
    EXPECT_TRUE(editor.AwaitOutput(L"Build failed, stopping batch.\n", kBuildDeadline));
    EXPECT_TRUE(WaitFor([&] {
        return editor.Output().find(L"0 succeeded, 1 failed.") != std::wstring::npos ||
               editor.Status().find(L"0 succeeded, 1 failed.") != std::wstring::npos;
    }));
    EXPECT_EQ(editor.Close(), 0u);
}
