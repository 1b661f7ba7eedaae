// Which compiler a file belongs to, and where its results go.
#include "settings/compiler_table.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr unsigned kNone = 0;
constexpr unsigned kAll = 31;
constexpr std::uint32_t kActive = 4;

struct PickCase {
    const wchar_t* path;
    unsigned installed;  // bit n: compiler n
    std::uint32_t picked;
};

constexpr PickCase kPickCases[] = {
    {L"C:\\src\\demo", kAll, 3},
    {L"C:\\kvxa64\\demo.bas", kAll, 0},
    {L"C:\\kvxa64\\demo.bas", 0b00010, 1},
    {L"C:\\kvxa64\\demo.bas", kNone, 0},
    {L"C:\\LIB64\\demo.bas", kAll, 1},
    {L"C:\\LIB64\\demo.bas", 0b11101, 0},
    {L"C:\\LIB64\\KXA64.txt", kAll, 0},  // the first marker wins over the second
    {L"C:\\lib64\\demo.kb", kAll, 1},    // and a marker over the extension
    {L"C:\\Lib64\\demo.kb", kAll, 1},    // "b64" is there
    {L"C:\\LiB_64\\demo.kb", kAll, 3},
    {L"C:\\KA32\\demo.kb", kNone, 2},
    {L"C:\\keldorbasic\\demo.kxa", kAll, 3},
    {L"C:\\Keldorbasic\\demo.kxa", kAll, 0},  // markers are case-sensitive
    {L"C:\\KXC64\\demo.kxa", kAll, 4},
    {L"C:\\src\\demo.KB", kAll, 3},
    {L"C:\\src\\demo.Kxa", kAll, 0},
    {L"C:\\src\\demo.c64", kAll, 4},
    {L"C:\\src\\demo.kxc", kAll, 4},
    {L"C:\\src\\demo.kxb", kAll, 1},
    {L"C:\\src\\demo.C", kNone, 1},
    {L"C:\\src\\demo.h", kAll, 1},
    {L"C:\\src\\demo.bas", kAll, 3},
    {L"C:\\src\\demo.PBI", 0b00111, 2},
    {L"C:\\src\\demo.inc", 0b00001, 0},
    {L"C:\\src\\demo.pba", 0b10010, 1},
    {L"C:\\src\\demo.pb", 0b10000, 4},
    {L"C:\\src\\demo.bas", kNone, 3},
    {L"C:\\src\\demo.txt", kAll, kActive},
    {L"C:\\src.kb\\demo", kAll, kActive},
    {L"", kAll, 3},
};

}  // namespace

TEST(Compilers, FileGoesToTheFirstRuleThatApplies) {
    for (const PickCase& test : kPickCases) {
        const auto installed = [&test](std::uint32_t id) { return ((test.installed >> id) & 1U) != 0; };
        EXPECT_EQ(PickCompilerForFile(test.path, kActive, installed), test.picked)
            << test.path << " with " << test.installed;
    }
}

TEST(Compilers, UnknownIdsReadTheFirst) {
    EXPECT_EQ(CompilerNext(2), 3U);
    EXPECT_EQ(CompilerNext(4), 0U);
    EXPECT_EQ(CompilerNext(9), 0U);
    EXPECT_EQ(Profile(5).id, 0U);
    EXPECT_EQ(CompilerEntry(0xFFFFFFFF).id, 0U);
    EXPECT_EQ(CompilerEntryByCommand(1252), nullptr);
    EXPECT_EQ(CompilerEntryByCommand(1320)->id, 4U);
    EXPECT_TRUE(CompilerCandidates(5).empty());
}

TEST(Compilers, ResultPaths) {
    struct Case {
        const wchar_t *source, *executable, *listing;
    };
    constexpr Case kCases[] = {
        {L"C:\\x\\file.bas", L"C:\\x\\file.exe", L"C:\\x\\file.asm"},
        {L"C:\\x\\two.dots.kb", L"C:\\x\\two.dots.exe", L"C:\\x\\two.dots.asm"},
        {L"C:\\a.b\\file", L"C:\\a.b\\file.exe", L"C:\\a.asm"},  // the dot of the folder counts for the listing
        {L"C:\\x\\file", L"C:\\x\\file.exe", L"C:\\x\\file"},
        {L"file.bas", L"file.exe", L"file.asm"},
    };
    for (const Case& test : kCases) {
        wchar_t out[64] = L"?";
        CompilerMakeOutputPath(test.source, out, 64);
        EXPECT_STREQ(out, test.executable);
        CompilerMakeAsmPath(test.source, out, 64);
        EXPECT_STREQ(out, test.listing);
    }
    wchar_t small[8];
    CompilerMakeOutputPath(L"C:\\x\\file.bas", small, 8);
    EXPECT_STREQ(small, L"C:\\x\\") << "a name that does not fit is dropped";
}
