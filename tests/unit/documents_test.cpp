// Recent lists, the open dialog's first folder, the go-to-line target, source file names.
#include "documents/open_directory.h"
#include "documents/recent_files.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct RecentCase {
    const char* name;
    std::vector<std::wstring> list;
    std::wstring added;
    RecentMatch match;
    std::vector<std::wstring> expected;
};

const RecentCase kRecentCases[] = {
    {"first entry", {}, L"a", RecentMatch::IgnoreCase, {L"a"}},
    {"new entry in a full list drops the oldest",
     {L"a", L"b", L"c"},
     L"d",
     RecentMatch::IgnoreCase,
     {L"d", L"a", L"b"}},
    {"third entry comes to the front", {L"a", L"b", L"c"}, L"c", RecentMatch::IgnoreCase, {L"c", L"a", L"b"}},
    {"second entry, other case, takes the new spelling",
     {L"a", L"C:\\X.BAS"},
     L"c:\\x.bas",
     RecentMatch::IgnoreCase,
     {L"c:\\x.bas", L"a"}},
    {"other case is another entry where case counts", {L"a", L"B"}, L"b", RecentMatch::Exact, {L"b", L"a", L"B"}},
    {"first entry again", {L"a", L"b"}, L"a", RecentMatch::Exact, {L"a", L"b"}},
    {"empty text is ignored", {L"a"}, L"", RecentMatch::Exact, {L"a"}},
    {"text that fits a row to the last place",
     {L"a"},
     L"123456789012345",
     RecentMatch::Exact,
     {L"123456789012345", L"a"}},
    {"text that no row can hold whole is ignored", {L"a"}, L"1234567890123456", RecentMatch::Exact, {L"a"}},
};

TEST(RecentList, PutsTheLatestFirst) {
    for (const RecentCase& test : kRecentCases) {
        wchar_t rows[3][16] = {};
        for (std::size_t i = 0; i < test.list.size(); ++i) test.list[i].copy(rows[i], 15);
        const int count = RecentListAdd(rows, static_cast<int>(test.list.size()), test.added, test.match);
        std::vector<std::wstring> found;
        for (int i = 0; i < count; ++i) found.emplace_back(rows[i]);
        EXPECT_EQ(found, test.expected) << test.name;
    }
}

TEST(RecentList, TakesOneOfItsOwnRows) {
    wchar_t rows[3][16] = {L"a", L"b", L"c"};
    EXPECT_EQ(RecentListAdd(rows, 3, rows[2], RecentMatch::Exact), 3);
    EXPECT_STREQ(rows[0], L"c");
    EXPECT_STREQ(rows[1], L"a");
    EXPECT_STREQ(rows[2], L"b");
}

std::wstring g_existing;
bool OnlyExisting(const wchar_t* path) { return path == g_existing; }

struct DirectoryCase {
    const char* name;
    OpenDirectoryInputs inputs;
    const wchar_t* existing;
    const wchar_t* expected;
};

const DirectoryCase kDirectoryCases[] = {
    {"active file", {L"C:\\a\\b.bas", L"D:\\last\\", L"E:\\exe\\"}, L"", L"C:\\a\\"},
    {"last directory", {L"", L"D:\\last\\", L"E:\\exe\\"}, L"E:\\exe\\KVX-Editor\\KVXB64\\Examples", L"D:\\last\\"},
    {"first examples folder",
     {L"", L"", L"E:\\exe\\"},
     L"E:\\exe\\TestUsage\\KVX-Editor\\KVXB64\\Examples",
     L"E:\\exe\\TestUsage\\KVX-Editor\\KVXB64\\Examples"},
    {"second examples folder",
     {L"", L"", L"E:\\exe\\"},
     L"E:\\exe\\KVX-Editor\\KVXB64\\Examples",
     L"E:\\exe\\KVX-Editor\\KVXB64\\Examples"},
    {"program's folder", {L"", L"", L"E:\\exe\\"}, L"", L"E:\\exe\\"},
};

TEST(OpenDirectory, FirstMatchWins) {
    for (const DirectoryCase& test : kDirectoryCases) {
        g_existing = test.existing;
        wchar_t out[1024] = {};
        EXPECT_TRUE(ResolveOpenDirectory(test.inputs, OnlyExisting, out, 1024)) << test.name;
        EXPECT_STREQ(out, test.expected) << test.name;
    }
}

TEST(GotoLine, ColumnStaysOnTheLine) {
    EXPECT_EQ(GotoLinePosition(100, 120, 5), 105);
    EXPECT_EQ(GotoLinePosition(100, 120, 500), 120);
    EXPECT_EQ(GotoLinePosition(100, 120, -3), 100);
    EXPECT_EQ(GotoLinePosition(100, 100, 1), 100);
}

}  // namespace
