// The settings file through the system's own INI functions, and secrets through its data protection.
#include "app/app_state.h"
#include "base/events.h"
#include "base/handles.h"
#include "base/path.h"
#include "base/utf8.h"
#include "base/wide_format.h"
#include "files/file_io.h"
#include "files/utf16.h"
#include "settings/compiler_table.h"
#include "settings/secrets.h"
#include "settings/settings_place.h"
#include "settings/settings_schema.h"
#include "settings/settings_store.h"

#include "support/temp_files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>

namespace fs = std::filesystem;
using namespace std::string_literals;

namespace {

class SettingsWin : public testing::Test {
protected:
    void SetUp() override {
        ini_ = (root_ / L"Editor.ini").wstring();
        SettingsDefaults(g_app.settings);
    }
    void TearDown() override { SettingsDefaults(g_app.settings); }
    void Save() { SettingsSave(ini_.c_str()); }
    void Load() {
        // Resets first, so that no value only in memory seems to be loaded.
        SettingsReset(g_app.settings);
        SettingsLoad(ini_.c_str());
    }
    std::wstring Stored(const wchar_t* section, const wchar_t* key) const {
        wchar_t value[4096] = {};
        GetPrivateProfileStringW(section, key, L"(none)", value, 4096, ini_.c_str());
        return value;
    }
    std::ptrdiff_t FilesBeside() const { return std::distance(fs::directory_iterator(root_), {}); }
    // The file's name until it is put in place.
    std::wstring Aside() const { return ini_ + L"." + std::to_wstring(GetCurrentProcessId()) + L".tmp"; }
    TempFolder folder_;
    const fs::path root_ = folder_.path;
    std::wstring ini_;
};

// A text that is hard to store, for a field of `capacity` characters; a different one for each number.
std::wstring Awkward(std::size_t number, std::size_t capacity) {
    constexpr const wchar_t* kTexts[] = {L" both ends ",  L"\"in quotes\"", L"\u4E2D\u6587 \u03B1\u00DF",
                                         L"; no comment", L"a\r\nb\\n",     L"'x'",
                                         L"[Editor]",     L"k=v\t",         L"\"-x\" \"y\""};
    std::wstring text = kTexts[number % std::size(kTexts)];
    text += L" #" + std::to_wstring(number);
    if (number % 7 == 0) text.resize(capacity - 1, L'\u0416');  // filled to the last place
    if (number % 3 == 0) text.back() = text.front();
    return text;
}

}  // namespace

// The values of a row, as one text.
std::wstring Shown(Settings& settings, const SettingRow& row) {
    if (row.type == SettingType::Text) return SettingText(settings, row);
    if (row.type != SettingType::List) return std::to_wstring(SettingNumber(settings, row.offset));
    std::wstring text;
    for (int i = 0; i < SettingNumber(settings, row.countOffset); ++i) text += SettingText(settings, row, i) + L"|"s;
    return text;
}

// What is no settings file is kept before it is written anew, and told.
TEST_F(SettingsWin, AFileOfOtherBytesIsKeptAside) {
    static std::wstring told;
    g_events.noticeWanted = [](const wchar_t* text) { told += text; };
    const struct {
        const char* name;
        std::string bytes;
        const wchar_t* kept;  // where; empty: it is a settings file, or nothing
    } cases[] = {{"nothing", "", L""},
                 {"settings", "[Editor]\r\nTabWidth=3\r\n", L""},
                 {"zeros", std::string(3000, '\0'), L".bad"},
                 {"text", "; a list\r\nmilk\r\n", L".bad2"},
                 {"zeros again", std::string(3000, '\0'), L".bad"},
                 {"of another program", "[Fonts]\r\nName=x\r\n", L".bad3"}};
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        told.clear();
        WriteBytes(ini_, test.bytes);
        WritePrivateProfileStringW(nullptr, nullptr, nullptr, ini_.c_str());
        Load();
        const std::wstring aside = ini_ + test.kept;
        EXPECT_EQ(told.find(aside) != std::wstring::npos, test.kept[0] != L'\0');
        EXPECT_EQ(told.empty(), test.kept[0] == L'\0');
        EXPECT_EQ(ReadBytes(aside), test.bytes);
    }
    EXPECT_EQ(FilesBeside(), 4) << "the same bytes are kept once";
    g_events.noticeWanted = {};
}

TEST_F(SettingsWin, EverySettingComesBackAsItWas) {
    Settings& settings = g_app.settings;
    std::size_t number = 0;
    const auto before = std::make_unique<Settings>();
    for (const SettingRow& row : SettingRows()) {
        ++number;
        if ((row.flags & (kSettingLoadOnly | kSettingSaveOnly | kSettingExeRelative)) != 0) continue;
        switch (row.type) {
            case SettingType::Text:
                SafeCopyW(SettingText(settings, row), row.capacity, Awkward(number, row.capacity));
                break;
            case SettingType::Bool: SettingNumber(settings, row.offset) = 1 - row.number; break;
            case SettingType::Int:
                SettingNumber(settings, row.offset) = ApplyLimits(row.limits, row.number != 0 ? row.number - 1 : 4);
                break;
            case SettingType::List:
                for (int i = 0; i < SettingNumber(settings, row.countOffset); ++i) {
                    SafeCopyW(SettingText(settings, row, i), row.rowCapacity,
                              Awkward(number + static_cast<std::size_t>(i), row.rowCapacity));
                }
                break;
        }
    }
    settings.sessionMruCount = 2;
    SafeCopyW(settings.sessionMruFiles[0], L"C:\\\u00E9\u4E2D.kvxsess");
    SafeCopyW(settings.sessionMruFiles[1], L" odd ");
    wchar_t own[kPathCapacity];
    GetModuleFileNameW(nullptr, own, kPathCapacity);
    SafeCopyW(settings.compilers[kCompilerKvxa64].path, own);
    Save();
    EXPECT_EQ(Stored(L"KVXA64", L"Path"), fs::path(own).filename().wstring()) << "beside the program";
    *before = settings;
    Load();
    EXPECT_STREQ(settings.compilers[kCompilerKvxa64].path, own);
    for (const SettingRow& row : SettingRows()) {
        const std::wstring name = std::wstring{row.section} + L" " + row.key;
        if ((row.flags & (kSettingLoadOnly | kSettingExeRelative)) != 0) continue;
        EXPECT_EQ(Shown(settings, row), Shown(*before, row)) << name;
    }
    EXPECT_EQ(settings.sessionMruCount, 2);
    EXPECT_STREQ(settings.sessionMruFiles[0], L"C:\\\u00E9\u4E2D.kvxsess");
    EXPECT_STREQ(settings.sessionMruFiles[1], L" odd ");
    EXPECT_EQ(FilesBeside(), 1) << "nothing is left beside it";
}

TEST_F(SettingsWin, ReadsWhatWasWrittenByHand) {
    // A file in the code page, with other spacing, comments and unknown keys.
    constexpr std::string_view kText =
        "; mine\r\n[Editor]\r\nFont =  \"Caf\xE9 Mono\"  \r\nFontSize=5\r\nUnknown=1\r\nUseTabs=-3\r\n"
        "ShowErrorList=1\r\n[Colors]\r\nKeyword=255\r\n[MRU]\r\nCount=15\r\nFile0=C:\\a.bas\r\n"
        "[AI]\r\nOpenAIKey=sk-in-clear-text\r\nOpenAIEnabled=1\r\n"
        "[KVXA64]\r\nPath=C:\\no such\\k.exe\r\n";
    ASSERT_TRUE(WriteFileUtf8(ini_.c_str(), kText.data(), kText.size()));
    Load();
    const Settings& settings = g_app.settings;
    wchar_t inCodePage[32] = {};
    MultiByteToWideChar(CP_ACP, 0, "Caf\xE9 Mono", -1, inCodePage, 32);
    EXPECT_STREQ(settings.fontName, inCodePage);
    EXPECT_EQ(settings.fontSize, 6);
    EXPECT_EQ(settings.useTabs, 1);
    EXPECT_EQ(settings.showErrorList, 1);
    EXPECT_EQ(settings.colors[0], 255);
    EXPECT_EQ(settings.mruCount, 10);
    EXPECT_STREQ(settings.mruFiles[0], L"C:\\a.bas");
    EXPECT_STREQ(settings.mruFiles[9], L"");
    EXPECT_STREQ(settings.openAIKey, L"sk-in-clear-text");
    EXPECT_EQ(settings.aiEnabled, 1);
    EXPECT_STREQ(settings.compilers[kCompilerKvxa64].path, L"") << "a path to nothing";
    EXPECT_STREQ(settings.compilers[kCompilerKeldorBasic].flags, L"/L /Q");

    Save();
    EXPECT_EQ(Stored(L"Colors", L"Keyword"), L"(none)");
    EXPECT_EQ(Stored(L"Editor", L"ShowErrorList"), L"(none)");
    EXPECT_EQ(Stored(L"Meta", L"Version"), L"2");
    EXPECT_EQ(Stored(L"AI", L"Enabled"), L"1");
    EXPECT_TRUE(Stored(L"AI", L"OpenAIKey").starts_with(L"[DPAPI]"));
    Load();
    EXPECT_STREQ(g_app.settings.openAIKey, L"sk-in-clear-text");
}

TEST_F(SettingsWin, AKeyOfAnotherAccountSurvivesASave) {
    const std::wstring foreign = L"[DPAPI]" + std::wstring(600, L'A');
    WritePrivateProfileStringW(L"AI", L"LMStudioKey", foreign.c_str(), ini_.c_str());
    WritePrivateProfileStringW(nullptr, nullptr, nullptr, ini_.c_str());
    Load();
    EXPECT_EQ(g_app.settings.lmStudioKey, foreign.substr(0, 255)) << "kept as the key, as far as it fits";
    Save();
    EXPECT_EQ(Stored(L"AI", L"LMStudioKey") + Stored(L"AI", L"LMStudioKey2"), foreign);
    SafeCopyW(g_app.settings.lmStudioKey, L"my own key");
    Save();
    Load();
    EXPECT_STREQ(g_app.settings.lmStudioKey, L"my own key");
}

TEST_F(SettingsWin, KeysStandInClearTextInNoFile) {
    const std::wstring key(255, L'\u4E2D');  // of three bytes each
    const std::wstring backup = ini_ + L".bak", exported = (root_ / L"exported.ini").wstring();
    g_app.settings.backupSettings = 1;
    Save();
    WritePrivateProfileStringW(L"AI", L"OpenAIKey", L"sk-by-hand", ini_.c_str());
    Load();
    EXPECT_STREQ(g_app.settings.openAIKey, L"sk-by-hand");
    SafeCopyW(g_app.settings.lmStudioKey, key);
    Save();
    EXPECT_NE(Stored(L"AI", L"LMStudioKey2"), L"(none)");
    WritePrivateProfileStringW(L"AI", L"OpenAIKey", L"sk-by-hand", (root_ / L"Editor.ini").c_str());
    SettingsFolderForTest(root_.wstring() + L"\\");
    EXPECT_TRUE(SettingsExport(exported.c_str()));
    SettingsFolderForTest(L"");
    for (const std::wstring& file : {backup, exported}) {
        wchar_t stored[600] = {};
        GetPrivateProfileStringW(L"AI", L"OpenAIKey", L"(none)", stored, 600, file.c_str());
        EXPECT_TRUE(std::wstring_view{stored}.starts_with(L"[DPAPI]")) << file;
    }
    Load();
    EXPECT_EQ(g_app.settings.lmStudioKey, key);
}

// A settings file as other editors save it.
TEST_F(SettingsWin, AnImportIsReadInEveryEncoding) {
    const std::wstring text = L"; by hand\r\n[Editor]\r\nTabWidth=9\r\nFont=\u0416\u00F6\r\nOutputFont=" +
                              std::wstring(32000, L'x') + L"\r\n";
    const std::string utf8 = ToUtf8(text);
    const std::string cases[] = {utf8, "\xEF\xBB\xBF" + utf8, Utf8AsUtf16(utf8, Utf16Order::Little, true),
                                 Utf8AsUtf16(utf8, Utf16Order::Big, true) + "\r",
                                 Utf8AsUtf16(utf8, Utf16Order::Little, false)};
    SettingsFolderForTest(root_.wstring() + L"\\");
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE(i);
        SettingsDefaults(g_app.settings);
        Save();
        const std::wstring file = (root_ / L"foreign.ini").wstring();
        WriteBytes(file, cases[i]);
        std::vector<std::wstring> strange;
        EXPECT_TRUE(SettingsImport(file.c_str(), &strange));
        EXPECT_EQ(g_app.settings.tabWidth, 9);
        EXPECT_STREQ(g_app.settings.fontName, L"\u0416\u00F6");
        EXPECT_STREQ(g_app.settings.outputFont, L"Consolas") << "a value that is too long is not taken in part";
        EXPECT_EQ(strange, std::vector<std::wstring>{L"[Editor] OutputFont"});
    }
    EXPECT_EQ(FilesBeside(), 3) << "Editor.ini, its copy and the imported file";
    SettingsFolderForTest(L"");
}

int g_notices = 0;

TEST_F(SettingsWin, AFailedSaveLeavesTheOldFile) {
    Save();
    const std::string old = ReadBytes(ini_);
    g_app.settings.tabWidth = 7;
    for (const std::wstring& locked : {Aside(), ini_}) {
        const UniqueHandle lock{
            CreateFileW(locked.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_ALWAYS, 0, nullptr)};
        ASSERT_TRUE(lock);
        EXPECT_EQ(SettingsSave(ini_.c_str()), 0) << locked;
        EXPECT_EQ(ReadBytes(ini_), old);
    }
    fs::remove(Aside());
    EXPECT_EQ(FilesBeside(), 1);
    // What a killed save has left beside the file, or another program has put there, is never read.
    fs::remove(ini_);
    WriteBytes(ini_ + L".tmp", old);
    WriteBytes(Aside(), old);
    Load();
    EXPECT_FALSE(FileExists(ini_.c_str()));
}

TEST_F(SettingsWin, AFileThatCannotBeReadIsNotEmpty) {
    const Events saved = g_events;
    g_events.noticeWanted = [](const wchar_t*) { ++g_notices; };
    g_notices = 0;
    g_app.settings.tabWidth = 7;
    Save();
    const std::string old = ReadBytes(ini_);
    {
        const UniqueHandle lock{CreateFileW(ini_.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr)};
        ASSERT_TRUE(lock);
        Load();
    }
    EXPECT_EQ(g_app.settings.tabWidth, 4) << "the default";
    EXPECT_EQ(g_notices, 1);
    EXPECT_EQ(SettingsSave(ini_.c_str()), 1);
    EXPECT_EQ(ReadBytes(ini_), old);
    Load();
    EXPECT_EQ(g_app.settings.tabWidth, 7);
    g_events = saved;
}

TEST_F(SettingsWin, AProgramFolderThatCannotBeWrittenGivesWayToTheUsersOwn) {
    const std::wstring locked = L"Z:\\sys\\";  // not even the administrator can make a file there
    if (FolderTakesFiles(locked) || !fs::exists(locked)) GTEST_SKIP() << "no such folder on this system";
    EXPECT_TRUE(FolderTakesFiles(root_.wstring() + L"\\"));
    wchar_t before[1024] = {};
    GetEnvironmentVariableW(L"LOCALAPPDATA", before, 1024);
    SetEnvironmentVariableW(L"LOCALAPPDATA", root_.c_str());
    const Events saved = g_events;
    g_events.noticeWanted = [](const wchar_t*) { ++g_notices; };
    g_notices = 0;
    for (const int width : {5, 6}) {
        SettingsFolderForTest(locked);  // a new start
        SettingsLoad(nullptr);
        EXPECT_EQ(g_app.settings.tabWidth, width == 5 ? 4 : 5);
        g_app.settings.tabWidth = width;
        EXPECT_EQ(SettingsSave(L"Editor.ini"), 1);
        EXPECT_EQ(SettingsFolder(), root_.wstring() + L"\\KVX-Editor\\" + InstallationFolderName(L"z:\\sys") + L"\\");
    }
    EXPECT_EQ(g_notices, 1) << "said when the folder changes, and not at each start";
    // Settings that an earlier version kept for all installations. Each begins with them and keeps its own.
    const std::wstring shared = root_.wstring() + L"\\KVX-Editor\\Editor.ini";
    fs::copy(SettingsFolder() + L"Editor.ini", shared);
    for (const auto& [other, width] : {std::pair{L"Z:\\proc\\", 6}, {L"Z:\\sys\\fs\\", 6}, {L"Z:\\proc\\", 7}}) {
        SettingsFolderForTest(other);
        SettingsLoad(nullptr);
        EXPECT_EQ(g_app.settings.tabWidth, width) << SettingsFolder().c_str();
        g_app.settings.tabWidth = 7;
        EXPECT_EQ(SettingsSave(L"Editor.ini"), 1);
    }
    EXPECT_EQ(GetPrivateProfileIntW(L"Editor", L"TabWidth", 0, shared.c_str()), 6U) << "of the earlier version";
    SettingsFolderForTest(root_.wstring() + L"\\");
    SettingsLoad(nullptr);
    EXPECT_EQ(g_app.settings.tabWidth, 4) << "a program in a folder of its own does not read the user's folder";
    SettingsFolderForTest(L"");
    SetEnvironmentVariableW(L"LOCALAPPDATA", before);
    g_events = saved;
}

TEST(SettingsEdit, TellsOnceOfWhatChangedAndEndsOverrides) {
    static int told = 0;
    static int sizeBefore = 0;
    const Events saved = g_events;
    g_events.settingsChanged = [](const Settings& before) {
        ++told;
        sizeBefore = before.fontSize;
    };
    SettingsDefaults(g_app.settings);
    g_app.overrides = {};
    SettingsChange([](Settings& settings) { settings.fontSize = 12; });
    EXPECT_EQ(told, 0) << "nothing changed";
    SettingsChange([](Settings& settings) { OverrideFontSize(g_app.overrides, settings, 20); });
    EXPECT_EQ(told, 1);
    EXPECT_TRUE(g_app.overrides.fontSize) << "the override itself does not end it";
    {
        const SettingsEdit outer;
        SettingsChange([](Settings& settings) { settings.fontSize = 21; });
        EXPECT_EQ(told, 1) << "not from within another";
        g_app.settings.wordWrap = 1;
    }
    EXPECT_EQ(told, 2);
    EXPECT_EQ(sizeBefore, 20);
    EXPECT_FALSE(g_app.overrides.fontSize);
    SettingsResetAll();
    EXPECT_EQ(told, 3) << "a reset is shown as any other change";
    g_events = saved;
    SettingsDefaults(g_app.settings);
}

TEST(Secrets, OnlyWhatIsProtectedIsUnprotected) {
    wchar_t sealed[1024];
    wchar_t clear[256];
    const std::wstring key = L"sk-\u00E4\u4E2D 0123456789";
    ASSERT_TRUE(EncryptString(key.c_str(), sealed, 1024));
    EXPECT_TRUE(std::wstring_view{sealed}.starts_with(L"[DPAPI]"));
    EXPECT_EQ(std::wstring_view{sealed}.find(L"sk-"), std::wstring_view::npos);
    EXPECT_EQ(DecryptString(sealed, clear, 256), 1);
    EXPECT_EQ(clear, key);
    EXPECT_EQ(DecryptString(sealed, clear, key.size()), 1) << "one place too few";
    EXPECT_STREQ(clear, L"");

    SafeCopyW(clear, L"before");
    std::wstring damaged = sealed;
    damaged[40] = damaged[40] == L'0' ? L'1' : L'0';
    for (const std::wstring& stored : {L"plain"s, L""s, damaged}) {
        EXPECT_EQ(DecryptString(stored.c_str(), clear, 256), 0) << stored;
        EXPECT_STREQ(clear, L"before");
    }
    EXPECT_TRUE(EncryptString(L"", sealed, 1));
    EXPECT_STREQ(sealed, L"");
    EXPECT_FALSE(EncryptString(key.c_str(), sealed, 64)) << "no room";
}

TEST(CompilerDetection, FindsCandidatesAndKeepsWhatIsValid) {
    SettingsDefaults(g_app.settings);
    wchar_t directory[kPathCapacity];
    AppExeDirectory(directory, kPathCapacity);
    const fs::path first = fs::path(directory) / L"KVXC64", keldor = fs::path(directory) / L"KELDORRBASIC";
    if (fs::exists(first) || fs::exists(keldor)) GTEST_SKIP() << "compilers are installed beside the tests";
    for (const fs::path& file : {first / L"KVXC64.exe", keldor / L"KeldorrBASIC.exe"}) {
        fs::create_directories(file.parent_path());
        WriteBytes(file, "x");
    }
    auto& compilers = g_app.settings.compilers;
    wchar_t own[kPathCapacity];
    GetModuleFileNameW(nullptr, own, kPathCapacity);
    SafeCopyW(compilers[kCompilerKeldorBasic].path, own);
    SafeCopyW(compilers[kCompilerKvxc64].path, L"C:\\gone\\KVXC64.exe");
    SettingsAutoDetectCompilers();
    EXPECT_STREQ(compilers[kCompilerKeldorBasic].path, own) << "a valid path is never replaced";
    EXPECT_EQ(fs::path{compilers[kCompilerKvxc64].path}, first / L"KVXC64.exe");
    EXPECT_STREQ(compilers[kCompilerKvxa64].path, L"");
    fs::remove_all(first);
    fs::remove_all(keldor);
    SettingsDefaults(g_app.settings);
}
