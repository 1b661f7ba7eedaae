// Files on disk: what is saved comes back byte for byte, and a failed save loses nothing. Shell registration in the
// real registry.
#include "app/app_state.h"
#include "base/handles.h"
#include "base/log.h"
#include "base/path.h"
#include "base/wide_format.h"
#include "files/file_identity.h"
#include "files/file_io.h"
#include "files/libraries.h"
#include "files/recovery.h"
#include "scintilla/scintilla_library.h"
#include "settings/file_types.h"
#include "ui/message.h"

#include "support/deep_folder.h"
#include "support/temp_files.h"

#include <gtest/gtest.h>

#include <shlwapi.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace {

using namespace std::string_view_literals;

std::string Bytes(const fs::path& path) { return ReadBytes(PathForSystem(path.c_str())); }

// Each test has its own folder, in which recovery copies are kept, too.
class FilesWin : public testing::Test {
protected:
    void SetUp() override {
        GetEnvironmentVariableW(L"LOCALAPPDATA", before_, MAX_PATH);
        fs::create_directories(root_ / L"appdata");
        SetEnvironmentVariableW(L"LOCALAPPDATA", (root_ / L"appdata").c_str());
    }
    void TearDown() override {
        SetEnvironmentVariableW(L"LOCALAPPDATA", before_);
        std::error_code failed;  // a handle that was left open
        fs::remove_all(root_, failed);
        EXPECT_FALSE(failed) << failed.message();
    }
    std::vector<fs::path> Copies() const {
        std::vector<fs::path> found;
        std::error_code none;
        for (const auto& entry : fs::directory_iterator{root_ / L"appdata" / L"KVX-Editor" / L"Recovery", none})
            found.push_back(entry.path());
        return found;
    }
    static bool Save(const fs::path& path, std::string_view text, TextEncoding encoding = TextEncoding::Utf8,
                     LineEnding ending = LineEnding::Lf) {
        return WriteSourceFileFromEditor(path.c_str(), text.data(), text.size(), encoding, ending);
    }

    TempFolder folder_;
    const fs::path root_ = folder_.path;

private:
    wchar_t before_[MAX_PATH] = {};
};

// The text of a key's default value; "(none)" when it has none.
std::wstring ReadDefault(const std::wstring& key) {
    wchar_t value[2048] = {};
    DWORD size = sizeof value;
    const LSTATUS status = RegGetValueW(HKEY_CURRENT_USER, (L"Software\\Classes\\" + key).c_str(), nullptr,
                                        RRF_RT_REG_SZ, nullptr, value, &size);
    return status == ERROR_SUCCESS ? value : L"(none)";
}

bool HasKey(const std::wstring& key) {
    UniqueRegistryKey opened;
    return RegOpenKeyExW(HKEY_CURRENT_USER, (L"Software\\Classes\\" + key).c_str(), 0, KEY_READ, opened.Put()) ==
           ERROR_SUCCESS;
}

}  // namespace

TEST_F(FilesWin, FailedSavesKeepOldAndNewContent) {
    const fs::path readOnly = root_ / L"read only.bas";
    const fs::path locked = root_ / L"locked.bas";
    WriteBytes(readOnly, "old");
    WriteBytes(locked, "old");
    SetFileAttributesW(readOnly.c_str(), FILE_ATTRIBUTE_READONLY);
    UniqueHandle lock{CreateFileW(locked.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr)};
    for (const fs::path& path : {readOnly, locked}) {
        EXPECT_FALSE(Save(path, "first")) << path;
        EXPECT_FALSE(Save(path, "second\n")) << path;
        EXPECT_EQ(Bytes(path), "old") << path;
        const std::wstring copy = RecoveryLastPath();
        EXPECT_EQ(fs::path{copy}.extension(), L".bas");
        EXPECT_EQ(Bytes(copy), "second\n");
        const HeapBlock<char> target{WideToUtf8(path.c_str())};
        EXPECT_TRUE(Bytes(copy + L".path").starts_with(std::string(target.get()) + "\n"));
        EXPECT_TRUE(RecoveryHasKept(path.c_str())) << path;
    }
    EXPECT_EQ(Copies().size(), 4U) << "of each target the newest failure's copy and its note";

    SetFileAttributesW(readOnly.c_str(), FILE_ATTRIBUTE_NORMAL);
    lock.Reset();
    EXPECT_TRUE(Save(readOnly, "third"));
    EXPECT_EQ(RecoveryLastPath(), L"");
    EXPECT_FALSE(RecoveryHasKept(readOnly.c_str()));
    EXPECT_TRUE(RecoveryHasKept(locked.c_str()));
    EXPECT_EQ(Copies().size(), 2U) << "a good save removes what failed saves of this target left, and nothing else";
    EXPECT_TRUE(Save(locked, "third"));
    EXPECT_TRUE(Copies().empty());
}

TEST_F(FilesWin, WithoutAUserFolderTheCopyStandsBesideTheTarget) {
    WriteBytes(root_ / L"file", "");
    SetEnvironmentVariableW(L"LOCALAPPDATA", (root_ / L"file").c_str());  // no folder can be made in a file
    const fs::path path = root_ / L"a.bas";
    WriteBytes(path, "old");
    EXPECT_TRUE(Save(path, "new"));
    EXPECT_EQ(Bytes(path), "new");
    EXPECT_EQ(std::distance(fs::directory_iterator{root_}, {}), 3) << "appdata, file, a.bas";

    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_FALSE(Save(path, "newer"));
    EXPECT_EQ(Bytes(path), "new");
    EXPECT_EQ(fs::path{RecoveryLastPath()}.parent_path(), root_);
    EXPECT_EQ(Bytes(RecoveryLastPath()), "newer");
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(FilesWin, SavingKeepsAttributesAndTakesAnEmptyText) {
    // Windows refuses CREATE_ALWAYS over a hidden file unless the attribute is given; Wine does not.
    const fs::path path = root_ / L"hidden.bas";
    WriteBytes(path, "old");
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE);
    EXPECT_TRUE(Save(path, "new"));
    EXPECT_EQ(GetFileAttributesW(path.c_str()), DWORD{FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE});
    EXPECT_TRUE(Save(path, "", TextEncoding::Ansi));
    EXPECT_EQ(Bytes(path), "");
}

TEST_F(FilesWin, ReadersDoNotKeepOneFromSaving) {
    const fs::path path = root_ / L"read.bas";
    WriteBytes(path, "old");
    const auto open = [&path](DWORD sharing) {
        return CreateFileW(path.c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING, 0, nullptr);
    };
    const UniqueHandle reader{open(FILE_SHARE_READ | FILE_SHARE_WRITE)};
    EXPECT_TRUE(Save(path, "new"));
    std::thread scanner;  // holds the file for a moment only
    {
        UniqueHandle held{open(FILE_SHARE_READ)};
        scanner = std::thread{[held = std::move(held)] { Sleep(150); }};
    }
    EXPECT_TRUE(Save(path, "newer"));
    scanner.join();
    EXPECT_EQ(Bytes(path), "newer");
}

TEST_F(FilesWin, AFileIsKnownUnderItsOtherNames) {
    const fs::path path = root_ / L"a long name.bas";
    const fs::path link = root_ / L"link.bas";
    WriteBytes(path, "x");
    WriteBytes(root_ / L"other.bas", "x");
    ASSERT_TRUE(CreateHardLinkW(link.c_str(), path.c_str(), nullptr));
    const FileIdentity identity = FileIdentityOf(path.c_str());
    EXPECT_TRUE(identity.IsKnown());
    EXPECT_EQ(FileIdentityOf(link.c_str()), identity);
    EXPECT_FALSE(FileIdentityOf((root_ / L"other.bas").c_str()) == identity);
    EXPECT_FALSE(FileIdentityOf((root_ / L"missing").c_str()).IsKnown());
}

// Code page 932: a cut pair, and a second place of a character, do not come back.
TEST_F(FilesWin, TellsWhatACodePageDoesNotGiveBack) {
    const struct {
        std::string bytes;
        bool exact;
    } cases[] = {{"abc\r\n", true},
                 {"\x93\xFA\x96\x7B \xB1", true},
                 {std::string(70000, 'x') + "\x93\xFA", true},
                 {"a\x93", false},
                 {"\x81\x20z", false},
                 {"\x87\x90", false}};
    for (const auto& test : cases) {
        std::string utf8 = "<";
        bool exact = true;
        EXPECT_TRUE(DecodeCodePage(932, test.bytes, &utf8, &exact));
        EXPECT_EQ(exact, test.exact) << test.bytes.substr(0, 9);
        EXPECT_TRUE(utf8.starts_with('<') && utf8.size() > 1);
    }
}

TEST_F(FilesWin, ReadingRefusesWhatIsNoFile) {
    std::size_t length = 7;
    EXPECT_EQ(ReadFileUtf8((root_ / L"missing").c_str(), &length), nullptr);
    EXPECT_EQ(length, 0U);
    EXPECT_EQ(ReadFileUtf8(root_.c_str(), &length), nullptr);
    EXPECT_EQ(ReadFileUtf8(L"NUL", &length), nullptr);
    EXPECT_EQ(ReadFileUtf8(nullptr, &length), nullptr);
    EXPECT_FALSE(FileExists(root_.c_str()) || FileExists(nullptr));
    WriteBytes(root_ / L"open", "x");
    const UniqueHandle writer{CreateFileW((root_ / L"open").c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                          nullptr, OPEN_EXISTING, 0, nullptr)};
    EXPECT_EQ(ReadFileUtf8((root_ / L"open").c_str(), &length), nullptr) << "someone is writing it";
}

TEST_F(FilesWin, PathsLongerThanMaxPath) {
    const DeepFolder deep(root_.wstring(), 500);
    const std::wstring path = deep.File(L"\u00FCber.bas");
    EXPECT_TRUE(Save(path, "deep\n"));
    EXPECT_TRUE(FileExists(path.c_str()));
    EXPECT_EQ(Bytes(path), "deep\n");
    EXPECT_TRUE(
        FileExists((deep.path + L"/../" + fs::path(deep.path).filename().wstring() + L"/\u00FCber.bas").c_str()));
    EXPECT_TRUE(Copies().empty());
    EXPECT_TRUE(DeleteFileW(PathForSystem(path.c_str()).c_str()));
}

TEST_F(FilesWin, PathsAsUsersWriteThem) {
    wchar_t current[MAX_PATH];
    GetCurrentDirectoryW(MAX_PATH, current);
    SetCurrentDirectoryW(root_.c_str());
    struct Case {
        std::wstring input, path;
    };
    const Case cases[] = {
        {L"a.bas", root_.wstring() + L"\\a.bas"},
        {L"sub/../b c.bas", root_.wstring() + L"\\b c.bas"},
        {L"\"q.bas\"", root_.wstring() + L"\\q.bas"},
        {L"C:/x/./y.bas", L"C:\\x\\y.bas"},
        {L"\\\\server\\share/z.bas", L"\\\\server\\share\\z.bas"},
        {L"", L""},
        {L"\"\"", L""},
        {L"C:\\" + std::wstring(2000, L'n'), L""},
    };
    for (const Case& test : cases) {
        wchar_t out[kPathCapacity] = L"?";
        EXPECT_EQ(PathNormalizeInput(test.input.c_str(), out, kPathCapacity), !test.path.empty()) << test.input;
        EXPECT_STREQ(out, test.path.c_str()) << test.input;
    }
    SetCurrentDirectoryW(current);
}

TEST_F(FilesWin, CharactersWithoutAPlaceInTheCodePage) {
    if (GetACP() != 1252) GTEST_SKIP() << "the cases are for code page 1252";
    EXPECT_EQ(AnsiFirstUnmappable(""), -1);
    EXPECT_EQ(AnsiFirstUnmappable("caf\xC3\xA9 \xE2\x82\xAC"), -1);      // e acute, euro
    EXPECT_EQ(AnsiFirstUnmappable("ab\xE4\xB8\xADz"), 2);                // a Chinese character
    EXPECT_EQ(AnsiFirstUnmappable("\xCE\xB1"), 0);                       // an alpha must not become an "a"
    EXPECT_TRUE(AnsiCanHold(std::string(65535, 'x') + "\xE2\x82\xAC"));  // more than one block
}

TEST(WideFormat, TextIsWideAndCutToFit) {
    wchar_t out[8];
    EXPECT_EQ(FormatBufferW(out, L"%s=%d", L"ab", 12), 5U);
    EXPECT_STREQ(out, L"ab=12");
    EXPECT_EQ(FormatBufferW(out, L"%s", L"1234567"), 7U);
    EXPECT_STREQ(out, L"1234567");
    EXPECT_EQ(FormatBufferW(out, L"%s", L"12345678"), 7U);
    EXPECT_STREQ(out, L"1234567");
    const std::wstring longText(5000, L'x');
    EXPECT_EQ(FormatW(L"<%s>", longText.c_str()), L"<" + longText + L">");
    EXPECT_EQ(FormatW(L"%s", L""), L"");
}

TEST(FileTypes, OpenWithListsAndDefaultPrograms) {
    wchar_t executable[MAX_PATH];
    GetModuleFileNameW(nullptr, executable, MAX_PATH);
    const std::wstring command = FormatW(L"\"%s\" \"%%1\"", executable);
    for (const wchar_t* key : {L".kxa", L".kxb", L".b64", L".c", L".h", L"KVXA64.Source", L"KVXB64.Source"})
        SHDeleteKeyW(HKEY_CURRENT_USER, (std::wstring{L"Software\\Classes\\"} + key).c_str());
    auto& compilers = g_app.settings.compilers;
    compilers[kCompilerKvxa64].registerExtension = 0;
    compilers[kCompilerKvxb64].registerExtension = 0;
    RegisterFileExtensions();
    EXPECT_FALSE(HasKey(L".kxa") || HasKey(L".kxb") || HasKey(L"KVXA64.Source"));

    compilers[kCompilerKvxb64].registerExtension = 1;
    for (int run = 0; run < 2; ++run) {
        RegisterFileExtensions();
        EXPECT_FALSE(HasKey(L".kxa"));
        EXPECT_EQ(ReadDefault(L"KVXB64.Source\\shell\\open\\command"), command);
        for (const wchar_t* extension : {L".kxb", L".b64"}) {
            DWORD type = REG_SZ;
            DWORD size = 1;
            EXPECT_EQ(RegGetValueW(HKEY_CURRENT_USER,
                                   (std::wstring{L"Software\\Classes\\"} + extension + L"\\OpenWithProgids").c_str(),
                                   L"KVXB64.Source", RRF_RT_ANY, &type, nullptr, &size),
                      ERROR_SUCCESS);
            EXPECT_EQ(type, DWORD{REG_NONE});
            EXPECT_EQ(size, 0U);
            EXPECT_EQ(ReadDefault(extension), L"(none)") << "the default program is left alone";
        }
        EXPECT_TRUE(HasKey(L".c") && HasKey(L".h"));
        EXPECT_FALSE(HasKey(L".c\\OpenWithProgids") || HasKey(L".h\\OpenWithProgids"));
    }
    compilers[kCompilerKvxb64].registerExtension = 0;
    UnregisterFileExtensions(kCompilerKvxb64);
    EXPECT_FALSE(HasKey(L"KVXB64.Source"));
    EXPECT_NE(RegGetValueW(HKEY_CURRENT_USER, L"Software\\Classes\\.kxb\\OpenWithProgids", L"KVXB64.Source", RRF_RT_ANY,
                           nullptr, nullptr, nullptr),
              ERROR_SUCCESS);
    EXPECT_TRUE(HasKey(L".kxb")) << "others may use it";

    EXPECT_FALSE(FileExtIsRegistered(kCompilerKvxa32));
    EXPECT_EQ(FileExtRegisterCompiler(kCompilerKvxa32), 1);
    EXPECT_TRUE(FileExtIsRegistered(kCompilerKvxa32));
    EXPECT_EQ(FileExtClass(kCompilerKvxa32), L"KVXE.ka32");
    EXPECT_EQ(ReadDefault(L".ka32"), L"KVXE.ka32");
    EXPECT_EQ(ReadDefault(L"KVXE.ka32"), L"KVXA32 Source File");
    EXPECT_EQ(ReadDefault(L"KVXE.ka32\\DefaultIcon"), L"\"KA32.ico\",0");
    EXPECT_EQ(ReadDefault(L"KVXE.ka32\\shell\\open\\command"), command);
    FileExtUnregisterCompiler(kCompilerKvxa32);
    EXPECT_FALSE(HasKey(L".ka32") || HasKey(L"KVXE.ka32"));
    EXPECT_EQ(FileExtRegisterCompiler(5), 0);
}

// A folder in which somebody has put DLLs, and from which a source was opened.
TEST(Libraries, ACopyInTheCurrentFolderIsNotLoaded) {
    const TempFolder folder;
    wchar_t before[MAX_PATH] = {};
    GetCurrentDirectoryW(MAX_PATH, before);
    for (const wchar_t* name : {L"Scintilla.dll", L"Lexilla.dll"})
        ASSERT_TRUE(
            CopyFileW((std::wstring(L"" KVX_DIST_DIR "/") + name).c_str(), (folder.path / name).c_str(), FALSE));
    ASSERT_TRUE(SetCurrentDirectoryW(folder.path.c_str()));
    static std::vector<std::wstring> told;
    told.clear();
    g_answerInstead = [](const UserQuestion& question) {
        told.emplace_back(question.text);
        return Answer::Yes;
    };
    HMODULE scintilla = nullptr, lexilla = nullptr;
    EXPECT_EQ(ScintillaLoad(&scintilla, &lexilla, nullptr), 0);
    EXPECT_EQ(told, std::vector<std::wstring>{L"Could not load Scintilla.dll"});
    EXPECT_EQ(GetModuleHandleW(L"Lexilla.dll"), nullptr);
    ASSERT_TRUE(LibrariesLimitSearch());
    EXPECT_EQ(LoadLibraryW(L"Lexilla.dll"), nullptr) << "as a delay-loaded one is";
    g_answerInstead = nullptr;
    SetCurrentDirectoryW(before);
}

TEST(Log, IsBoundedAndWrittenInTime) {
    const TempFolder folder;
    OpenLog((folder.path.wstring() + L"\\").c_str());
    const auto current = [&] { return ReadBytes(folder.path / L"Editor_Detect.log"); };
    const auto holds = [&](const char* text) { return current().find(text) != std::string::npos; };
    AppLogMsg(L"FAIL: one");
    EXPECT_TRUE(holds("FAIL: one"));
    AppLogMsg(L"two");
    EXPECT_FALSE(holds("two")) << "within the same second";
    LogFlush();
    EXPECT_TRUE(holds("two"));
    AppLogMsg(L"three");
    const ULONGLONG end = GetTickCount64() + 10000;
    while (!holds("three") && GetTickCount64() < end) {  // a message loop that has nothing else to do
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 100, QS_ALLINPUT);
        for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE;) DispatchMessageW(&message);
    }
    EXPECT_TRUE(holds("three"));
    const std::wstring filler(4000, L'\u00E4');  // 8,000 bytes
    for (int i = 0; i < 1100; ++i) AppLogMsg(L"%s", filler.c_str());
    AppLogMsg(L"last");
    CloseLog();
    EXPECT_LT(current().size(), 5000000U);
    EXPECT_TRUE(holds("last"));
    const auto older = fs::file_size(folder.path / L"Editor_Detect.old.log");
    EXPECT_TRUE(older >= kLogLimit && older < kLogLimit + 10000) << older;
}
