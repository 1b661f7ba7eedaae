// Editor.ini: read, limited, used and written back by the real program.
#include "harness.h"

#include <filesystem>

#include "editor/margins.h"
#include "resources/ids.h"

namespace {

struct Value {
    const wchar_t *section, *key, *given, *kept;  // kept: what a save writes, null: the same
};

constexpr Value kValues[] = {
    // Out of range.
    {L"Editor", L"AutoCompleteTrigger", L"0", L"2"},
    {L"Editor", L"ActiveCompiler", L"7", L"3"},
    {L"Project", L"ProjectTreeWidth", L"201", L"200"},
    {L"Editor", L"WordWrap", L"7", L"1"},
    // In range, or without limits.
    {L"KVXB64", L"Flags", L"-x \"a b\" --y", nullptr},
    {L"Editor", L"Font", L"Tahoma", nullptr},
    {L"Editor", L"FontSize", L"6", nullptr},
    {L"Editor", L"EditorZoom", L"-4", nullptr},
    {L"Editor", L"TabWidth", L"3", nullptr},
    {L"Editor", L"UseTabs", L"1", nullptr},
    {L"Editor", L"ShowLineNumbers", L"0", nullptr},
    {L"Editor", L"EdgeColumn", L"120", nullptr},
    {L"Editor", L"ShowEdgeLine", L"1", nullptr},
    {L"Editor", L"EnableVirtualSpace", L"1", nullptr},
    {L"Editor", L"ShowToolbar", L"0", nullptr},
    {L"Editor", L"AutoSaveEnabled", L"0", nullptr},
    {L"AI", L"ShowAISidebar", L"1", nullptr},
    {L"AI", L"LMStudioEnabled", L"1", nullptr},
    {L"AI", L"Enabled", L"0", L"1"},  // derived
    {L"MRU", L"Count", L"1", nullptr},
    {L"MRU", L"File0", L"C:\\old\\file.bas", nullptr},
    {L"Meta", L"Version", L"1", L"2"},
    // Read but never written.
    {L"Colors", L"Keyword", L"255", L"(none)"},
    {L"Editor", L"NobodyKnows", L"1", L"(none)"},
};

}  // namespace

TEST(SettingsFile, IsReadUsedAndWrittenBack) {
    using namespace std::string_literals;
    ProgramFolder folder;
    for (const Value& v : kValues) folder.SetIni(v.section, v.key, v.given);
    folder.SetIni(L"Editor", L"BackupSettings", L"1");
    folder.SetIni(L"AI", L"OpenAIKey", L"sk-plain-0123456789");
    const std::wstring compiler = folder.Write(L"tools\\a.exe", "x");
    folder.SetIni(L"KVXA64", L"Path", L"tools\\a.exe");
    folder.SetIni(L"KVXB64", L"Path", compiler);
    folder.SetIni(L"KVXA32", L"Path", L"tools\\gone.exe");
    for (int run = 1; run <= 2; ++run) {
        SCOPED_TRACE("run " + std::to_string(run));
        Editor editor(folder);
        EXPECT_EQ(editor.Sci(SCI_GETZOOM), -4);
        EXPECT_EQ(editor.Sci(SCI_GETTABWIDTH), 3);
        EXPECT_EQ(editor.Sci(SCI_GETUSETABS), 1);
        EXPECT_EQ(editor.Sci(SCI_GETMARGINWIDTHN, kMarginNumbers), 0);
        EXPECT_EQ(editor.Sci(SCI_GETEDGECOLUMN), 80) << "the edge stands at 80, by design";
        EXPECT_EQ(editor.Sci(SCI_GETEDGEMODE), EDGE_LINE);
        EXPECT_EQ(editor.Sci(SCI_GETVIRTUALSPACEOPTIONS), 7);
        EXPECT_FALSE(IsWindowVisible(editor.Child(IDC_TOOLBAR)));
        EXPECT_TRUE(IsWindowVisible(editor.Child(IDC_AI_CHAT)));
        EXPECT_NE(editor.Log().find(L"After CLI: KVXA64=" + compiler), std::wstring::npos) << editor.Describe();
        EXPECT_NE(editor.Log().find(L"SettingsLoad: KVXA64 Path = 'tools\\a.exe'"), std::wstring::npos);
        EXPECT_EQ(editor.Close(), 0u);
        for (const Value& v : kValues)
            EXPECT_EQ(Utf8(folder.Ini(v.section, v.key)), Utf8(v.kept ? v.kept : v.given))
                << Utf8(v.section) << " " << Utf8(v.key) << " given as " << Utf8(v.given);
        EXPECT_EQ(folder.Ini(L"KVXB64", L"Path"), L"tools\\a.exe");
        EXPECT_EQ(folder.Ini(L"KVXA32", L"Path"), L"");
        // The key is in no file as it was given, the log included.
        EXPECT_TRUE(folder.Ini(L"AI", L"OpenAIKey").starts_with(L"[DPAPI]"));
        for (const auto& entry : std::filesystem::directory_iterator(folder.path)) {
            const std::string bytes = entry.is_regular_file() ? ReadBytes(entry.path().wstring()).value_or("") : "";
            EXPECT_EQ(bytes.find("sk-plain"), std::string::npos) << entry.path().string();
            EXPECT_EQ(bytes.find("s\0k\0-\0p\0l\0"s), std::string::npos) << entry.path().string();
        }
    }
    EXPECT_TRUE(Exists(folder.File(L"Editor.ini.bak")));
    EXPECT_FALSE(Exists(folder.File(L"Editor.ini.tmp")));
}

TEST(SettingsFile, StaysAsItIsWhenItCannotBeRead) {
    ProgramFolder folder;
    folder.SetIni(L"Editor", L"TabWidth", L"3");
    const std::string before = folder.Read(L"Editor.ini");
    {
        const HANDLE lock =
            CreateFileW(folder.File(L"Editor.ini").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        Editor editor(folder, L"", Until::Started);
        const Dialog told = editor.AwaitDialog(kProgramTitle);
        EXPECT_NE(told.text.find(L"cannot be read"), std::wstring::npos) << Utf8(told.text);
        editor.Press(told, IDOK);
        ASSERT_TRUE(editor.AwaitReady());
        CloseHandle(lock);
        editor.Do(IDM_VIEW_WORD_WRAP);
        EXPECT_EQ(editor.Close(), 0u);
    }
    EXPECT_EQ(folder.Read(L"Editor.ini"), before);
}

// Characters that the system's code page does not have, in a setting and in a recent file's name.
TEST(SettingsFile, ForeignCharactersSurviveRestarts) {
    ProgramFolder folder;
    const std::wstring file = folder.Write(L"\u65E5\u672C \u0416.bas", "");
    {
        Editor editor(folder, OpenArgument(file));
        EXPECT_EQ(editor.Close(), 0u);
    }
    EXPECT_EQ(folder.Ini(L"MRU", L"File0"), file);
    folder.SetIni(L"Editor", L"Font", L"\u0416\u65E5");
    folder.SetIni(L"Editor", L"AutoSaveEnabled", L"0");
    DeleteFileW(folder.File(kSessionFile).c_str());
    Editor editor(folder);
    EXPECT_EQ(editor.Tabs(), 1);
    EXPECT_EQ(editor.TabLabel(0), L"\u65E5\u672C \u0416.bas") << "reopened by the name in the file";
    EXPECT_EQ(editor.Close(), 0u);
    EXPECT_EQ(folder.Ini(L"Editor", L"Font"), L"\u0416\u65E5");
    EXPECT_EQ(folder.Ini(L"MRU", L"File0"), file);
}

TEST(SettingsFile, WindowGeometryIsReadFromTheSystemFolderAndWrittenBeside) {
    RECT work{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    const struct {
        int left, top;
        RECT expected;
    } cases[] = {{30, 40, {30, 40, 730, 540}},
                 {9000, 9000, {work.right - 700, work.bottom - 500, work.right, work.bottom}}};
    const auto put = [](const wchar_t* key, const wchar_t* value) {  // null removes it
        WritePrivateProfileStringW(L"Window", key, value, L"Editor.ini");
        WritePrivateProfileStringW(nullptr, nullptr, nullptr, L"Editor.ini");
    };
    put(L"Width", L"700"), put(L"Height", L"500"), put(L"Max", L"0");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.left);
        put(L"Left", std::to_wstring(c.left).c_str()), put(L"Top", std::to_wstring(c.top).c_str());
        ProgramFolder folder;
        Editor editor(folder);
        RECT is{};
        GetWindowRect(editor.main, &is);
        EXPECT_TRUE(EqualRect(&is, &c.expected)) << is.left << "," << is.top << "," << is.right << "," << is.bottom;
        EXPECT_EQ(editor.Close(), 0u);
        EXPECT_EQ(folder.Ini(L"Window", L"Left"), std::to_wstring(c.expected.left));
        EXPECT_EQ(folder.Ini(L"Window", L"Width"), L"700");
        EXPECT_EQ(folder.Ini(L"Window", L"Max"), L"0");
    }
    put(L"Max", L"1");
    ProgramFolder folder;
    {
        Editor editor(folder);
        EXPECT_TRUE(IsZoomed(editor.main));
        EXPECT_EQ(editor.Close(), 0u);
        EXPECT_EQ(folder.Ini(L"Window", L"Max"), L"1");
    }
    // Without a width nothing is applied.
    put(nullptr, nullptr);
    ProgramFolder fresh;
    Editor editor(fresh);
    RECT is{};
    GetWindowRect(editor.main, &is);
    EXPECT_EQ(is.right - is.left, 1200);
    EXPECT_EQ(is.bottom - is.top, 800);
}
