// Editor.ini: every key read, limited, used and written back by the real program.
#include "harness.h"

#include <filesystem>

#include "resources/ids.h"

namespace {

struct Value {
    const wchar_t *section, *key, *given, *kept;
};

// They come back as they are; the last column, where there is one, is what a save writes instead.
constexpr Value kKept[] = {
    {L"KVXA32", L"AsmFlag", L"/LIST: {asm} /Z", nullptr},
    {L"Editor", L"Font", L"Tahoma", nullptr},
    {L"Editor", L"FontSize", L"6", nullptr},
    {L"Editor", L"EditorZoom", L"-4", nullptr},
    {L"Editor", L"ShowWhitespace", L"1", nullptr},
    {L"Editor", L"TabWidth", L"3", nullptr},
    {L"Editor", L"UseTabs", L"1", nullptr},
    {L"Editor", L"ShowLineNumbers", L"0", nullptr},
    {L"Editor", L"ShowEdgeLine", L"1", nullptr},
    {L"Editor", L"EnableVirtualSpace", L"1", nullptr},
    {L"Editor", L"ShowToolbar", L"0", nullptr},
    {L"Editor", L"ActiveCompiler", L"7", L"3"},  // no such compiler
    {L"Editor", L"AutoSaveEnabled", L"0", nullptr},
    {L"Editor", L"RestoreLastSession", L"0", nullptr},
    {L"AI", L"ShowAISidebar", L"1", nullptr},
    {L"AI", L"LMStudioEnabled", L"1", nullptr},
    {L"AI", L"Enabled", L"0", L"1"},  // derived
    {L"Build", L"PostBuildCmd", L"cmd /c echo \"done\"", nullptr},
    {L"MRU", L"Count", L"1", nullptr},
    {L"MRU", L"File0", L"C:\\old\\file.bas", nullptr},
    {L"Meta", L"Version", L"1", L"2"},
    // Read but never written.
    {L"Colors", L"Keyword", L"255", L"(none)"},
    {L"Editor", L"ErrorListHeight", L"90", L"(none)"},
    {L"Editor", L"NobodyKnows", L"1", L"(none)"},
};

void ExpectKept(const ProgramFolder& folder) {
    for (const Value& v : kKept)
        EXPECT_EQ(Utf8(folder.Ini(v.section, v.key)), Utf8(v.kept != nullptr ? v.kept : v.given))
            << Utf8(v.section) << " " << Utf8(v.key) << " given as " << Utf8(v.given);
}

}  // namespace

TEST(SettingsFile, ReadAndWrittenBack) {
    ProgramFolder folder;
    folder.SetIni(L"Editor", L"BackupSettings", L"1");
    for (const Value& v : kKept) folder.SetIni(v.section, v.key, v.given);
    {
        Editor editor(folder);
        EXPECT_EQ(editor.Close(), 0u);
    }
    ExpectKept(folder);
    EXPECT_TRUE(Exists(folder.File(L"Editor.ini.bak")));
    EXPECT_FALSE(Exists(folder.File(L"Editor.ini.tmp")));
    SCOPED_TRACE("a second round trip");
    Editor editor(folder);
    EXPECT_EQ(editor.Sci(2374), -4) << "zoom";                              // SCI_GETZOOM
    EXPECT_EQ(editor.Sci(2121), 3) << "tab width";                          // SCI_GETTABWIDTH
    EXPECT_EQ(editor.Sci(2125), 1) << "tabs";                               // SCI_GETUSETABS
    EXPECT_EQ(editor.Sci(2243, 0), 0) << "line numbers";                    // SCI_GETMARGINWIDTHN
    EXPECT_EQ(editor.Sci(2360), 80) << "the edge stands at 80, by design";  // SCI_GETEDGECOLUMN
    EXPECT_EQ(editor.Sci(2362), 1) << "edge line";                          // SCI_GETEDGEMODE
    EXPECT_EQ(editor.Sci(2597), 7) << "virtual space";                      // SCI_GETVIRTUALSPACEOPTIONS
    EXPECT_FALSE(IsWindowVisible(editor.Child(IDC_TOOLBAR)));
    EXPECT_TRUE(IsWindowVisible(editor.Child(IDC_AI_CHAT)));
    EXPECT_EQ(editor.Close(), 0u);
    ExpectKept(folder);
}

TEST(SettingsFile, CompilerPathsAreRelativeOnDiskAndStaleOnesGo) {
    ProgramFolder folder;
    const std::wstring inside = folder.Write(L"tools\\a.exe", "x");
    // The folder's own name is the start of this one's.
    const std::wstring outside = folder.path.substr(0, folder.path.size() - 1) + L"-beside.exe";
    WriteBytes(outside, "x");
    folder.SetIni(L"KVXA64", L"Path", L"tools\\a.exe");
    folder.SetIni(L"KVXB64", L"Path", inside);
    folder.SetIni(L"KVXC64", L"Path", outside);
    folder.SetIni(L"KVXA32", L"Path", L"tools\\gone.exe");
    Editor editor(folder);
    EXPECT_NE(editor.Log().find(L"After CLI: KVXA64=" + inside), std::wstring::npos) << editor.Describe();
    EXPECT_NE(editor.Log().find(L"SettingsLoad: KVXA64 Path = 'tools\\a.exe'"), std::wstring::npos);
    EXPECT_EQ(editor.Close(), 0u);
    EXPECT_EQ(folder.Ini(L"KVXA64", L"Path"), L"tools\\a.exe");
    EXPECT_EQ(folder.Ini(L"KVXB64", L"Path"), L"tools\\a.exe");
    EXPECT_EQ(folder.Ini(L"KVXC64", L"Path"), outside);
    EXPECT_EQ(folder.Ini(L"KVXA32", L"Path"), L"");
    DeleteFileW(outside.c_str());
}

// Characters that the system's code page does not have, in a setting and in a recent file's name.
TEST(SettingsFile, ForeignCharactersSurviveRestarts) {
    ProgramFolder folder;
    const std::wstring file = folder.Write(L"\u65E5\u672C \u0416.bas", "");
    {
        Editor editor(folder, L"--open \"" + file + L"\"");
        EXPECT_EQ(editor.Close(), 0u);
    }
    EXPECT_EQ(folder.Ini(L"MRU", L"File0"), file);
    folder.SetIni(L"Editor", L"Font", L"\u0416\u65E5");
    folder.SetIni(L"KVXA32", L"Description", L"\u03A9 \u4E2D");
    folder.SetIni(L"Editor", L"AutoSaveEnabled", L"0");
    DeleteFileW(folder.File(L"Editor.ini_autosave.kvxsess").c_str());
    for (int run = 1; run <= 2; ++run) {
        SCOPED_TRACE(run);
        Editor editor(folder);
        EXPECT_EQ(editor.Tabs(), 1);
        EXPECT_EQ(editor.TabLabel(0), L"\u65E5\u672C \u0416.bas") << "reopened by the name in the file";
        EXPECT_EQ(editor.Close(), 0u);
        EXPECT_EQ(folder.Ini(L"Editor", L"Font"), L"\u0416\u65E5");
        EXPECT_EQ(folder.Ini(L"KVXA32", L"Description"), L"\u03A9 \u4E2D");
        EXPECT_EQ(folder.Ini(L"MRU", L"File0"), file);
    }
}

TEST(SettingsFile, KeysAreProtectedOnDisk) {
    ProgramFolder folder;
    using namespace std::string_literals;
    const std::wstring secret = L"sk-plain-0123456789";
    folder.SetIni(L"AI", L"OpenAIKey", secret);
    std::wstring stored[2];
    for (std::wstring& text : stored) {
        Editor editor(folder);
        EXPECT_EQ(editor.Close(), 0u);
        text = folder.Ini(L"AI", L"OpenAIKey");
        EXPECT_TRUE(text.starts_with(L"[DPAPI]")) << Utf8(text);
        for (const auto& entry : std::filesystem::directory_iterator(folder.path)) {
            const std::string bytes = entry.is_regular_file() ? ReadBytes(entry.path().wstring()).value_or("") : "";
            EXPECT_EQ(bytes.find("sk-plain"), std::string::npos) << entry.path().string();
            EXPECT_EQ(bytes.find("s\0k\0-\0p\0l\0"s), std::string::npos) << entry.path().string();
        }
    }
    EXPECT_EQ(folder.Ini(L"AI", L"LMStudioKey"), L"");
}

TEST(SettingsFile, WindowGeometryIsReadFromTheSystemFolderAndWrittenBeside) {
    struct Case {
        const char* name;
        int left, top, width, height, max;
        RECT expected;
    };
    RECT work{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    const Case cases[] = {
        {"as stored", 30, 40, 800, 600, 0, {30, 40, 830, 640}},
        {"left of the screen", -5000, -5000, 700, 500, 0, {work.left, work.top, work.left + 700, work.top + 500}},
        {"right of the screen",
         9000,
         9000,
         700,
         500,
         0,
         {work.right - 700, work.bottom - 500, work.right, work.bottom}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ProgramFolder folder;
        const auto put = [](const wchar_t* key, int value) {
            WritePrivateProfileStringW(L"Window", key, std::to_wstring(value).c_str(), L"Editor.ini");
        };
        put(L"Left", c.left), put(L"Top", c.top), put(L"Width", c.width), put(L"Height", c.height), put(L"Max", c.max);
        WritePrivateProfileStringW(nullptr, nullptr, nullptr, L"Editor.ini");
        Editor editor(folder);
        RECT is{};
        GetWindowRect(editor.main, &is);
        EXPECT_TRUE(EqualRect(&is, &c.expected)) << is.left << "," << is.top << "," << is.right << "," << is.bottom;
        EXPECT_EQ(editor.Close(), 0u);
        EXPECT_EQ(folder.Ini(L"Window", L"Left"), std::to_wstring(c.expected.left));
        EXPECT_EQ(folder.Ini(L"Window", L"Width"), std::to_wstring(c.width));
        EXPECT_EQ(folder.Ini(L"Window", L"Max"), L"0");
    }
    WritePrivateProfileStringW(L"Window", L"Max", L"1", L"Editor.ini");
    WritePrivateProfileStringW(nullptr, nullptr, nullptr, L"Editor.ini");
    ProgramFolder folder;
    {
        Editor editor(folder);
        EXPECT_TRUE(IsZoomed(editor.main));
        EXPECT_EQ(editor.Close(), 0u);
        EXPECT_EQ(folder.Ini(L"Window", L"Max"), L"1");
    }
    // Without a width nothing is applied.
    WritePrivateProfileStringW(L"Window", nullptr, nullptr, L"Editor.ini");
    WritePrivateProfileStringW(nullptr, nullptr, nullptr, L"Editor.ini");
    ProgramFolder fresh;
    Editor editor(fresh);
    RECT is{};
    GetWindowRect(editor.main, &is);
    EXPECT_EQ(is.right - is.left, 1200);
    EXPECT_EQ(is.bottom - is.top, 800);
}
