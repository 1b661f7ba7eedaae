// Where compilers are looked for, decoding by the system's code pages, and staged copies on a real disk beside files of
// the user.
#include "base/decode.h"
#include "base/handles.h"
#include "base/path.h"
#include "compile/products.h"
#include "compile/staging.h"
#include "disasm/asm_feed.h"
#include "files/file_io.h"
#include "settings/compiler_table.h"
#include "settings/settings_state.h"

#include "support/deep_folder.h"
#include "support/temp_files.h"

#include <gtest/gtest.h>

#include <deque>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace {

std::wstring Decoded(std::string_view bytes) {
    const HeapBlock<wchar_t> text(DecodeCompilerText(bytes.data(), bytes.size()));
    return text ? text.get() : L"(none)";
}

// Two editors note their products at the same time.
TEST(Products, TwoEditorsKeepEachOthersNotes) {
    const TempFolder folder;
    wchar_t before[1024] = {};
    GetEnvironmentVariableW(L"LOCALAPPDATA", before, 1024);
    SetEnvironmentVariableW(L"LOCALAPPDATA", folder.path.c_str());
    const auto nameOf = [&](int editor, int i) {
        return (folder.path / (std::to_wstring(editor) + L"-" + std::to_wstring(i))).wstring();
    };
    const auto build = [&](int editor) {
        for (int i = 0; i < 25; ++i) {
            std::ofstream(std::filesystem::path(nameOf(editor, i))) << i;
            ProductNoteNow(nameOf(editor, i));
        }
    };
    std::thread other(build, 1);
    build(2);
    other.join();
    for (const int editor : {1, 2})
        for (int i = 0; i < 25; ++i) EXPECT_TRUE(IsBuildProduct(nameOf(editor, i))) << editor << " " << i;
    SetEnvironmentVariableW(L"LOCALAPPDATA", before);
}

TEST(DecodeCompilerText, EachChunkByItself) {
    EXPECT_EQ(Decoded("plain"), L"plain");
    EXPECT_EQ(Decoded("\xC3\xA9"), L"\xE9") << "UTF-8 first";
    EXPECT_EQ(Decoded(std::string_view("a\0b\0", 4)), L"ab") << "without NUL bytes";
    EXPECT_EQ(Decoded(""), L"(none)");
    if (GetACP() != CP_UTF8) {
        // A character that is cut by the border of a chunk: each half is read in the next code page that has it.
        EXPECT_EQ(Decoded("x\xC3").size(), 2U);
        EXPECT_EQ(Decoded("\xA9y").size(), 2U);
    }
}

// Running out of memory ends the text, and nothing else.
TEST(AsmFeed, SaysThatMemoryRanOut) {
    const AsmRenderer renderer = [](AsmFeed& feed, const AsmRequest&, const std::string*) {
        AsmFeedPut(feed, "before\r\n");
        std::vector<char> all(std::numeric_limits<std::ptrdiff_t>::max() / 2);
        AsmFeedPut(feed, std::string(all.begin(), all.end()));
    };
    const AsmFeedPtr feed = AsmFeedStart({.source = L"none", .listing = L"none"}, renderer);
    ASSERT_NE(feed, nullptr);
    std::wstring text;
    std::deque<std::wstring> pieces;
    const ULONGLONG end = GetTickCount64() + 15000;
    while (AsmFeedTake(*feed, &pieces) && GetTickCount64() < end) {
        for (const std::wstring& piece : pieces) text += piece;
        Sleep(1);
    }
    EXPECT_TRUE(text.ends_with(L"before\r\n(Not enough memory.)\r\n")) << text.size();
}

TEST(CompilerPaths, RelativeOnesBelongToTheProgramsFolder) {
    wchar_t own[MAX_PATH] = {}, before[MAX_PATH] = {}, elsewhere[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, own, MAX_PATH);
    GetCurrentDirectoryW(MAX_PATH, before);
    GetTempPathW(MAX_PATH, elsewhere);
    const CompilerSettings kept = g_settings.compilers[1];
    ASSERT_TRUE(SetCurrentDirectoryW(elsewhere));
    for (const auto& [path, resolved] : {std::pair{L"sub\\c.exe", FolderOf(own) + L"\\sub\\c.exe"},
                                         {L"D:\\sub\\c.exe", std::wstring(L"D:\\sub\\c.exe")}}) {
        SafeCopyW(g_settings.compilers[1].path, path);
        wchar_t out[kPathCapacity] = {};
        CompilerPathResolved(1, out, kPathCapacity);
        EXPECT_EQ(std::wstring(out), resolved);
    }
    SafeCopyW(g_settings.compilers[1].path, std::wstring_view(own).substr(FolderOf(own).size() + 1));
    EXPECT_TRUE(CompilerExists(1)) << "this very program, by its name alone";
    g_settings.compilers[1] = kept;
    SetCurrentDirectoryW(before);
}

class Staging : public testing::Test {
protected:
    std::wstring Path(const wchar_t* name) const { return (folder_.path / name).wstring(); }
    void Write(const wchar_t* name, std::string_view text) const { WriteBytes(folder_.path / name, text); }
    // "(none)" for a file that is not there.
    std::string Read(const wchar_t* name) const {
        return std::filesystem::exists(folder_.path / name) ? ReadBytes(folder_.path / name) : "(none)";
    }
    StagedSource Stage(const wchar_t* source, CommandStyle style) const {
        StagedSource staged;
        std::uint32_t error = 0;
        EXPECT_TRUE(StageSource(Path(source).c_str(), Path(L"x.exe").c_str(), style, &staged, &error)) << error;
        return staged;
    }

    TempFolder folder_;
};

TEST_F(Staging, TheCopyComesAndGoes) {
    Write(L"x.kxa", "mine");
    SetFileAttributesW(Path(L"x.kxa").c_str(), FILE_ATTRIBUTE_READONLY);
    StagedSource staged = Stage(L"x.kxa", CommandStyle::Kvx);
    SetFileAttributesW(Path(L"x.kxa").c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(staged.path, Path(L"x.pb"));
    EXPECT_EQ(Read(L"x.pb"), "mine");
    EXPECT_EQ(UnstageSource(&staged), L"");
    EXPECT_EQ(Read(L"x.pb"), "(none)");
    Write(L"x.pb", "later");
    UnstageSource(&staged);
    EXPECT_EQ(Read(L"x.pb"), "later") << "the second time there is nothing to delete";
}

TEST_F(Staging, KeldorPutsTheUsersFileBackOnPathsLongerThanMaxPath) {
    const DeepFolder deep(folder_.path.wstring());
    const std::wstring source = deep.File(L"x.kb"), target = deep.File(L"x.bas");
    WriteBytes(DeepFolder::LongForm(source), "source");
    WriteBytes(DeepFolder::LongForm(target), "the user's");
    StagedSource staged;
    std::uint32_t error = 0;
    EXPECT_TRUE(StageSource(source.c_str(), deep.File(L"x.exe").c_str(), CommandStyle::Keldor, &staged, &error))
        << error;
    EXPECT_TRUE(staged.copied);
    EXPECT_EQ(ReadBytes(DeepFolder::LongForm(target)), "source");
    EXPECT_EQ(ReadBytes(DeepFolder::LongForm(target + L".kvx-aside1")), "the user's");
    StagedSource other;
    EXPECT_FALSE(StageSource(source.c_str(), deep.File(L"x.exe").c_str(), CommandStyle::Keldor, &other, &error));
    EXPECT_EQ(error, kErrorStagedElsewhere) << "the copy of a build that runs is not the user's file";
    EXPECT_EQ(UnstageSource(&staged), L"");
    EXPECT_EQ(ReadBytes(DeepFolder::LongForm(target)), "the user's");
    EXPECT_TRUE(DeleteFileW(DeepFolder::LongForm(source).c_str()));
    EXPECT_TRUE(DeleteFileW(DeepFolder::LongForm(target).c_str()));
}

TEST_F(Staging, TheSourceItselfIsNeverTheCopy) {
    Write(L"x.bas", "source");
    StagedSource staged;
    std::uint32_t error = 0;
    std::wstring otherSpelling = Path(L"X.BAS");
    for (wchar_t& character : otherSpelling) character = character == L'\\' ? L'/' : character;
    ASSERT_TRUE(StageSource(otherSpelling.c_str(), Path(L"x.exe").c_str(), CommandStyle::Keldor, &staged, &error));
    EXPECT_FALSE(staged.copied);
    UnstageSource(&staged);
    EXPECT_EQ(Read(L"x.bas"), "source");
}

TEST_F(Staging, ACopyThatWasWrittenToIsKept) {
    Write(L"x.kb", "source");
    StagedSource staged = Stage(L"x.kb", CommandStyle::Keldor);
    Write(L"x.bas", "saved by the user meanwhile");
    EXPECT_NE(UnstageSource(&staged), L"");
    EXPECT_EQ(Read(L"x.bas"), "saved by the user meanwhile");
}

}  // namespace
