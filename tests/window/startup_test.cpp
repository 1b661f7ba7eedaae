// Start-up: the command line, the log, the detection report, what happens with a library missing, the restore question.
#include "harness.h"

#include <regex>
#include <sstream>

#include "app/command_line.h"
#include "resources/ids.h"

namespace {

// Every line carries the time, and the wanted texts come in this order, others between them.
void ExpectLog(const std::wstring& log, const std::vector<std::wstring>& wanted) {
    static const std::wregex kStamp(LR"(\[\d\d:\d\d:\d\d\] .*\r)");
    std::size_t next = 0;
    std::wistringstream lines(log);
    for (std::wstring line; std::getline(lines, line);) {
        EXPECT_TRUE(std::regex_match(line, kStamp)) << "no time in: " << Utf8(line);
        if (next < wanted.size() && line.ends_with(L"] " + wanted[next] + L"\r")) ++next;
    }
    EXPECT_EQ(next, wanted.size()) << "missing in the log, or out of order: "
                                   << (next < wanted.size() ? Utf8(wanted[next]) : "");
}

}  // namespace

TEST(Startup, WithoutArgumentsOneEmptyTabAndACompleteSettingsFile) {
    ProgramFolder folder;
    Editor editor(folder);
    EXPECT_EQ(editor.Tabs(), 1);
    EXPECT_EQ(editor.TabLabel(0), L"Untitled");
    EXPECT_EQ(editor.Title(), L"Untitled - KVXE Editor");
    EXPECT_EQ(editor.Text(), "");
    EXPECT_TRUE(WaitFor([&] { return editor.Focus() == editor.Sci(); })) << "the editor has no focus";
    ExpectLog(editor.Log(), {L"=== KVX-Editor Startup ===", L"After CLI: activeCompiler=3", L"After CLI: KVXA64=",
                             L"After CLI: KVXB64=", L"After CLI: KVXA32=", L"After CLI: KVXC64=",
                             L"After CLI: KELDORBASIC=", L"DBG WM_USER+200 ENTER"});
    EXPECT_NE(editor.Log().find(L"EXE dir: " + folder.path.substr(0, folder.path.size() - 1)), std::wstring::npos);

    // The first run writes the whole file at once, before anyone closes anything.
    struct Default {
        const wchar_t *section, *key, *value;
    };
    static constexpr Default kDefaults[] = {
        {L"KVXA64", L"Path", L""},
        {L"KVXA32", L"AsmFlag", L"/ASMOUT: {asm}"},
        {L"KELDORBASIC", L"Flags", L"/L /Q"},
        {L"KELDORBASIC", L"RegisterExtension", L"0"},
        {L"Editor", L"Font", L"Segoe UI"},
        {L"Editor", L"FontSize", L"12"},
        {L"Editor", L"ActiveCompiler", L"3"},
        {L"Editor", L"RestoreLastSession", L"1"},
        {L"AI", L"OpenAICodeModel", L"gpt-4o-mini"},
        {L"Window", L"Splitter", L"400"},
        {L"Meta", L"Version", L"2"},
    };
    for (const Default& row : kDefaults)
        EXPECT_EQ(folder.Ini(row.section, row.key), row.value) << Utf8(row.section) << " " << Utf8(row.key);
    EXPECT_EQ(editor.Close(), 0u);
}

TEST(Startup, OptionsOfTheCommandLineFromLeftToRight) {
    ProgramFolder folder(kCompilers);
    const std::string source = "FUNCTION PBMAIN\n";
    std::wstring forward = folder.Write(L"sub\\one.bas", source);
    for (wchar_t& c : forward)
        if (c == L'\\') c = L'/';
    const std::wstring foreign = folder.Write(L"Gr\u00F6\u00DFe \u65E5\u672C.bas", "' two\r\n");
    const std::wstring missing = folder.File(L"missing.bas");
    Editor editor(folder,
                  L"--bogus --help --compiler kvxc64" + OpenArgument(forward) +
                      L" --fontsize 6 --fontsize 73 --fontsize x" + OpenArgument(foreign) + OpenArgument(missing) +
                      OpenArgument(forward) + L" --compiler Kvxa64 --font \"Courier New\" --fontsize",
                  Until::Started);
    editor.Answer(L"Editor Help", CommandLineHelp(), IDOK);
    const Dialog failed = editor.AwaitDialog(kProgramTitle);
    const std::wstring said = L"Failed to open file: " + missing + L"\n\n";
    EXPECT_TRUE(failed.text.starts_with(said) && failed.text.size() > said.size())
        << Utf8(failed.text) << " (no reason)";
    EXPECT_NE(editor.Log().find(L"DBG WM_USER+200 EXIT"), std::wstring::npos) << "the box keeps the start waiting";
    editor.Press(failed, IDOK);
    ASSERT_TRUE(editor.AwaitReady()) << "the help box must not end the program";

    ASSERT_EQ(editor.Tabs(), 2) << "two files, one of them named twice, one missing, no untitled tab";
    EXPECT_EQ(editor.TabLabel(0), L"one.bas");
    EXPECT_EQ(editor.TabLabel(1), L"Gr\u00F6\u00DFe \u65E5\u672C.bas");
    EXPECT_EQ(editor.ActiveTab(), 0) << "opening an open file selects its tab";
    EXPECT_EQ(editor.Text(), source);
    EXPECT_NE(editor.Title().find(L"one.bas"), std::wstring::npos) << Utf8(editor.Title());
    EXPECT_EQ(editor.Sci(SCI_STYLEGETSIZE, STYLE_DEFAULT), 6);
    EXPECT_NE(editor.Sci(SCI_GETSTYLEAT, 0), 0) << "a keyword has the style of keywords";
    const RemoteBlock font(editor.process, 128);
    char name[128] = {};
    editor.Sci(SCI_STYLEGETFONT, STYLE_DEFAULT, font.At());
    font.Get(name, sizeof(name) - 1);
    EXPECT_STREQ(name, "Courier New");
    EXPECT_NE(editor.Log().find(L"After CLI: activeCompiler=4"), std::wstring::npos);
    EXPECT_EQ(editor.Status(kPartCompiler), L"KVXC64");
    EXPECT_EQ(folder.Ini(L"MRU", L"Count"), L"2");
    EXPECT_EQ(folder.Ini(L"MRU", L"File0"), foreign) << "newest first; the missing file is not remembered";
    EXPECT_EQ(editor.Close(), 0u);
    EXPECT_EQ(folder.Ini(L"Editor", L"FontSize") + L" " + folder.Ini(L"Editor", L"ActiveCompiler"), L"12 3")
        << "options are for one run";
}

TEST(Startup, DetectReportsAndLeaves) {
    static constexpr const wchar_t* kFiles[][2] = {{L"KeldorBasic", L"KELDORRBASIC\\KeldorrBASIC.exe"},
                                                   {L"KVXA32", L"KVXA32\\KVXA32.exe"},
                                                   {L"KVXA64", L"KVXA64\\kvxa64.exe"},
                                                   {L"KVXB64", L"KVXB64\\KVXB64.exe"},
                                                   {L"KVXC64", L"KVXC64\\KVXC64.exe"}};
    for (const bool installed : {true, false}) {
        SCOPED_TRACE(installed);
        ProgramFolder folder(installed ? kCompilers : kBare);
        Editor editor(folder, L"--detect --open ignored.bas", Until::Started);
        const std::wstring found = installed ? L"5" : L"0";
        std::wstring text = L"Compiler Auto-Detect Results\n================================\n\n";
        for (const auto& [name, file] : kFiles)
            text += std::wstring(name) + L": " + (installed ? folder.File(file) : L"(not found)") + L"\n\n";
        editor.Answer(L"KVX-Editor Detect", text + L"Found: " + found + L"/5\n\nLog file: Editor_Detect.log", IDOK);
        EXPECT_EQ(editor.ExitCode(), 0u);
        ExpectLog(editor.Log(),
                  {L"=== KVX-Editor Compiler Auto-Detect ===", L"EXE path:  " + folder.File(L"KVX-Editor.exe"),
                   L"=== Auto-Detect Compilers ===", L"=== Summary: " + found + L"/5 compilers found ==="});
        EXPECT_FALSE(Exists(folder.File(kSessionFile))) << "nothing is saved on this way out";
    }
}

TEST(Startup, WithoutScintillaTwoBoxesAndExitCodeOne) {
    ProgramFolder folder(kNoScintilla);
    Editor editor(folder, L"", Until::Started);
    editor.Answer(L"Error", L"Could not load Scintilla.dll", IDOK);
    EXPECT_TRUE(WaitFor([&] {
        const auto boxes = editor.Dialogs();
        return boxes.size() == 1 && boxes[0].text == L"Failed to load Scintilla.dll";
    })) << editor.Describe();
    editor.Answer(L"Error", L"Failed to load Scintilla.dll", IDOK);
    EXPECT_EQ(editor.ExitCode(), 1u);
}

TEST(Startup, WithoutLexillaPlainTextThatCanBeEdited) {
    ProgramFolder folder(kNoLexilla);
    const std::wstring file = folder.Write(L"a.bas", "FUNCTION PBMAIN\r\n");
    Editor editor(folder, OpenArgument(file));
    EXPECT_EQ(editor.Sci(SCI_GETSTYLEAT, 0), 0) << "no lexer, no colours";
    editor.Type("' ");
    EXPECT_EQ(editor.Text(), "' FUNCTION PBMAIN\r\n");
    editor.Do(IDM_FILE_SAVE);
    EXPECT_EQ(folder.Read(L"a.bas"), "' FUNCTION PBMAIN\r\n");
    EXPECT_EQ(editor.Close(), 0u);
}

TEST(Startup, LogGoesToTheTemporaryFolderWhenItsOwnRefuses) {
    ProgramFolder folder;
    CreateDirectoryW(folder.File(L"Editor_Detect.log").c_str(), nullptr);  // no file can be opened under that name
    wchar_t temp[1024];
    GetTempPathW(1024, temp);
    const std::wstring fallback = std::wstring(temp) + L"Editor_Detect.log";
    DeleteFileW(fallback.c_str());
    Editor editor(folder, L"", Until::Started);
    EXPECT_TRUE(WaitFor([&] {
        const std::string log = ReadBytes(fallback).value_or("");
        return log.starts_with("\xEF\xBB\xBF[") && log.find("DBG WM_USER+200 EXIT") != std::string::npos;
    })) << "no log in the temporary folder";
    // "--log" starts the file again.
    Editor verbose(folder, L"--log", Until::Started);
    EXPECT_TRUE(WaitFor([&] {
        const std::string log = ReadBytes(fallback).value_or("");
        return log.find("=== KVX-Editor Session Started (verbose log) ===") != std::string::npos &&
               log.find("After CLI: activeCompiler=3") != std::string::npos;
    }));
}

TEST(Startup, AutoSavedSessionIsOfferedAndObeyed) {
    ProgramFolder folder;
    const std::wstring one = folder.Write(L"one.bas", "1\r\n2\r\n3\r\n4\r\n"),
                       two = folder.Write(L"two.bas", "a\r\nb\r\n");
    const std::wstring three = folder.Write(L"three.bas", "");
    const wchar_t* question = L"A previous session was auto-saved. Would you like to restore it?";
    {
        Editor editor(folder, OpenArgument(one) + OpenArgument(two));
        editor.Sci(SCI_GOTOPOS, 3);
        EXPECT_EQ(editor.Close(), 0u);
    }
    ASSERT_TRUE(Exists(folder.File(kSessionFile)));
    {
        // Refused with tabs open already: they stay, and no workspace joins them.
        Editor editor(folder, OpenArgument(three), Until::Started);
        editor.Answer(kRestore, question, IDNO);
        ASSERT_TRUE(editor.AwaitReady());
        EXPECT_EQ(editor.Tabs(), 1);
        EXPECT_EQ(editor.TabLabel(0), L"three.bas");
        TerminateProcess(editor.process, 9);  // leaves the session file as it was
    }
    {
        // Who has switched restoring off and names a file is not asked.
        folder.SetIni(L"Editor", L"RestoreLastSession", L"0");
        Editor editor(folder, OpenArgument(three));
        EXPECT_EQ(editor.Tabs(), 1);
        TerminateProcess(editor.process, 9);
        folder.SetIni(L"Editor", L"RestoreLastSession", L"1");
    }
    {
        Editor editor(folder, L"", Until::Started);
        editor.Answer(kRestore, question, IDYES);
        ASSERT_TRUE(editor.AwaitReady());
        ASSERT_EQ(editor.Tabs(), 2);
        EXPECT_EQ(editor.TabLabel(0), L"one.bas");
        EXPECT_EQ(editor.ActiveTab(), 1);
        EXPECT_EQ(editor.Sci(SCI_GETCURRENTPOS), 3) << "caret of the second file";
        EXPECT_EQ(editor.Close(), 0u);
    }
    ASSERT_TRUE(Exists(folder.File(L"workspace.json")));
    {
        Editor editor(folder, L"", Until::Started);
        editor.Answer(kRestore, question, IDNO);
        ASSERT_TRUE(editor.AwaitReady());
        ASSERT_EQ(editor.Tabs(), 2) << "the workspace comes back when the session is refused";
        EXPECT_EQ(editor.TabLabel(1), L"two.bas");
        EXPECT_EQ(editor.Close(), 0u);
    }
    DeleteFileW(folder.File(kSessionFile).c_str());
    DeleteFileW(folder.File(L"workspace.json").c_str());
    DeleteFileW(two.c_str());
    {
        Editor editor(folder);
        EXPECT_EQ(editor.Tabs(), 2) << "without a workspace the recent files that still exist";
        EXPECT_EQ(editor.Close(), 0u);
    }
}
