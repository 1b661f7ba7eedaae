// The open project in the running program: what is built and with what, and what a start brings back.
#include "build_driver.h"

namespace {

constexpr int kPartProject = 7;  // of the status bar

struct DemoFolder : FakeFolder {
    std::wstring file, part, other;

    DemoFolder() : FakeFolder("args\nprint part.inc(2,1): error: broken\nmake\n") {
        file = Write(L"p\\demo.kvxproj",
                     "[Project]\nMain=src/main.bas\nNovel=1\n[Build]\nCompiler=KVXA64\nFlags=-DX=1 -DY\nInclude=inc\n"
                     "Include=../lib\n[Run]\nArguments=one \"two three\"\n[Exclude]\nFolder=old\n");
        Write(L"p\\src\\main.bas", kHello);
        Write(L"p\\src\\fake.txt", "args\n");  // for the program, which is a copy of the compiler
        Write(L"lib\\lib.inc", "' lib\r\n");
        part = Write(L"p\\inc\\part.inc", "' part\r\n' 2\r\n");
        other = Write(L"other.bas", kHello);
    }
};

}  // namespace

TEST(Project, BuildsItsMainSourceFromAnyOfItsFiles) {
    const DemoFolder folder;
    const Editor editor(folder, OpenArgument(folder.other) + OpenArgument(folder.file) + OpenArgument(folder.part));
    ASSERT_NE(editor.main, nullptr);
    ASSERT_EQ(editor.Tabs(), 3) << "the main source was opened with the project, the project file was not";
    EXPECT_EQ(editor.Status(kPartProject), L"Project: demo");
    EXPECT_EQ(editor.Status(kPartCompiler), L"KVXA64");
    editor.Type("' typed\r\n");
    const std::wstring built = Build(editor);
    EXPECT_NE(built.find(L" -DX=1 -DY -I" + Quoted(folder.File(L"p\\inc")) + L" -I" + Quoted(folder.File(L"lib")) +
                         L" " + Quoted(folder.File(L"p\\src\\main.bas"))),
              std::wstring::npos)
        << Utf8(built);
    EXPECT_NE(editor.Status().find(L" - demo: main.bas"), std::wstring::npos) << Utf8(editor.Status());
    EXPECT_EQ(folder.Read(L"p\\inc\\part.inc"), "' typed\r\n' part\r\n' 2\r\n");
    editor.Do(IDM_PREVIOUS_TAB);
    editor.Do(IDM_ERROR_NEXT);
    EXPECT_EQ(editor.TabLabel(editor.ActiveTab()), L"part.inc");
    EXPECT_EQ(editor.Line(), 2);
    editor.Do(IDM_RUN_IN_OUTPUT);
    EXPECT_TRUE(editor.AwaitOutput(L"main.exe\" one \"two three\"")) << editor.Describe();
    EXPECT_TRUE(editor.AwaitOutput(L"Program ended"));

    // A file from elsewhere is built as ever; another compiler holds for the project only.
    editor.Do(IDM_USE_KVXC64);
    EXPECT_EQ(editor.Status(kPartCompiler), L"KVXC64 (not found)");
    editor.Do(IDM_NEXT_TAB);
    ASSERT_EQ(editor.TabLabel(editor.ActiveTab()), L"other.bas");
    EXPECT_EQ(editor.Status(kPartCompiler), L"KVXA64");
    const std::wstring alone = Build(editor);
    EXPECT_EQ(alone.find(L"-DX=1"), std::wstring::npos) << Utf8(alone);
    EXPECT_NE(editor.Status().find(L" - other.bas, not of demo"), std::wstring::npos);
    EXPECT_EQ(folder.Ini(L"Editor", L"ActiveCompiler"), L"0");

    editor.Do(IDM_PROJECT_CLOSE);
    EXPECT_EQ(editor.Status(kPartProject), L"");
    EXPECT_EQ(folder.Ini(L"Project", L"File"), L"(none)");
    editor.Do(IDM_PREVIOUS_TAB);
    const std::wstring after = Build(editor);
    EXPECT_NE(after.find(L"Source: " + folder.part), std::wstring::npos) << Utf8(after);
    EXPECT_EQ(Count(editor.Status(), L"demo"), 0);
}

TEST(Project, IsReadAgainAndComesBack) {
    const DemoFolder folder;
    {
        folder.SetIni(L"Editor", L"ActiveCompiler", L"4");
        Editor editor(folder, OpenArgument(folder.file) + OpenArgument(folder.part));
        ASSERT_NE(editor.main, nullptr);
        editor.Do(IDM_PROJECT_EDIT);
        editor.Type("Broken\r\n");
        editor.Do(IDM_FILE_SAVE);
        EXPECT_TRUE(editor.AwaitOutput(folder.file + L"(1,1): error: neither")) << editor.Describe();
        EXPECT_TRUE(editor.AwaitOutput(folder.file + L"(4,1): warning: the key Novel")) << editor.Describe();
        editor.Do(IDM_FILE_CLOSE);
        WriteBytes(folder.file, "[Project]\nName=Changed\nMain=gone.bas\n");
        EXPECT_TRUE(WaitFor([&] { return editor.Status(kPartProject) == L"Project: Changed"; })) << editor.Describe();
        EXPECT_TRUE(editor.AwaitOutput(folder.file + L"(3,1): error: there is no file"));
        EXPECT_NE(Build(editor).find(L"Build cancelled: the project Changed has no file"), std::wstring::npos);
        editor.Do(IDM_PROJECT_SET_MAIN);
        EXPECT_EQ(folder.Read(L"p\\demo.kvxproj"), "[Project]\nName=Changed\nMain=inc/part.inc\n");
        EXPECT_EQ(editor.Close(), 0u);
        EXPECT_EQ(folder.Ini(L"Editor", L"ActiveCompiler"), L"4") << "neither the project nor its files choose";
    }
    DeleteFileW(folder.file.c_str());
    const Editor editor(folder);
    EXPECT_TRUE(editor.AwaitOutput(folder.file + L" is not there")) << editor.Describe();
    EXPECT_EQ(Count(editor.Output(), L"is not there"), 1);
    EXPECT_EQ(folder.Ini(L"Project", L"File"), folder.file);
    WriteBytes(folder.file, "[Project]\nName=Back\n");
    EXPECT_TRUE(WaitFor([&] { return editor.Status(kPartProject) == L"Project: Back"; })) << editor.Describe();
}
