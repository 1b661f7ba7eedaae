// The walk over real folders, and the threads of a search.
#include "base/handles.h"
#include "search/file_walk.h"
#include "search/files_search_job.h"
#include "support/deep_folder.h"
#include "support/temp_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <iterator>

namespace {

// The names of the files that a walk finds, below its root, in order, with blanks between them.
std::wstring Walked(const WalkRules& rules, std::wstring* unreadable = nullptr) {
    FileWalk walk{rules};
    std::vector<WalkedFile> files;
    std::wstring failed;
    while (walk.Next(&files, &failed) == WalkStep::Listed)
        if (unreadable != nullptr && !failed.empty()) *unreadable = failed;
    std::vector<std::wstring> names;
    for (const WalkedFile& file : files) names.push_back(file.path.substr(rules.root.size() + 1));
    std::ranges::sort(names);
    std::wstring text;
    for (const std::wstring& name : names) text += name + L' ';
    return text;
}

std::vector<FoundFile> TakenToTheEnd(const FilesSearchHandle& search, FilesTally* tally) {
    std::vector<FoundFile> all;
    std::deque<FoundFile> some;
    const ULONGLONG start = GetTickCount64();
    for (; FilesSearchTake(search, &some, tally) && GetTickCount64() - start < 20'000; Sleep(5))
        std::ranges::move(some, std::back_inserter(all));
    EXPECT_TRUE(tally->ended);
    return all;
}

TEST(FileWalk, FindsFilesOfRealFolders) {
    const TempFolder temp;
    const std::filesystem::path& root = temp.path;
    for (const wchar_t* folder : {L"repo\\.git\\info", L"repo\\src\\gen", L"repo\\\u00fcber"})
        std::filesystem::create_directories(root / folder);
    for (const wchar_t* file : {L"repo\\a.bas", L"repo\\a.o", L"repo\\src\\b.bas", L"repo\\src\\gen\\c.bas",
                                L"repo\\src\\keep.o", L"repo\\\u00fcber\\d.tmp", L"repo\\\u00fcber\\d.bas"})
        WriteBytes(root / file, "x");
    WriteBytes(root / "repo/.gitignore", "*.o\n/src/gen/\n");
    WriteBytes(root / "repo/src/.gitignore", "!keep.o\n");
    WriteBytes(root / "repo/.git/info/exclude", "*.tmp\n");
    EXPECT_EQ(Walked({.root = root / "repo"}), L"a.bas src\\b.bas src\\keep.o \u00fcber\\d.bas ");
    EXPECT_EQ(Walked({.root = root / "repo\\src"}), L"b.bas keep.o ") << "the rules of the folders around it hold too";
    EXPECT_EQ(Walked({.root = root / "repo\\src", .gitIgnore = false}), L"b.bas gen\\c.bas keep.o ");

    std::wstring unreadable;
    EXPECT_EQ(Walked({.root = root / "nothing"}, &unreadable), L"");
    EXPECT_EQ(unreadable, (root / "nothing\\").wstring());

    const DeepFolder deep{root / "repo\\src"};
    const std::wstring file = DeepFolder::LongForm(deep.File(L"long.bas"));
    CloseHandle(CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
    EXPECT_NE(Walked({.root = root / "repo"}).find(L"\\long.bas "), std::wstring::npos);
    DeleteFileW(file.c_str());
}

TEST(FilesSearch, NamesWhatCannotBeReadAndReadsTheRest) {
    const TempFolder temp;
    std::filesystem::create_directories(temp.path / "sub");
    WriteBytes(temp.path / "a.bas", "needle");
    WriteBytes(temp.path / "held.bas", "needle");
    WriteBytes(temp.path / "open.bas", "needle needle");
    WriteBytes(temp.path / "b.bin", std::string_view("\0needle", 7));
    WriteBytes(temp.path / "sub/large.bas", std::string(20 << 20, 'x') + "\nneedle");
    const UniqueHandle held{
        CreateFileW((temp.path / "held.bas").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr)};
    FilesJob job{.query = {.text = "needle"}, .walk = WalkRules{.root = temp.path}};
    job.texts = {{7, temp.path / "open.bas", "needle in the editor"}, {8, L"", "a needle without a file"}};
    const FilesSearchHandle search = FilesSearchStart(job, nullptr, WM_NULL, 0, nullptr);
    ASSERT_NE(search, nullptr);
    std::wstring found;
    FilesTally tally;
    std::vector<FoundFile> all = TakenToTheEnd(search, &tally);
    std::ranges::sort(all, {}, &FoundFile::path);
    for (const FoundFile& file : all)
        found += std::filesystem::path(file.path).filename().wstring() + L":" + std::to_wstring(file.document) + L":" +
                 std::to_wstring(file.hits.size()) + L":" + std::to_wstring(file.hits[0].line) + L" ";
    EXPECT_EQ(found, L":8:1:0 a.bas:0:1:0 open.bas:7:1:0 large.bas:0:1:1 ") << "a text in place of its file";
    EXPECT_EQ(tally.files, 4U);
    EXPECT_EQ(tally.hits, 4U);
    EXPECT_EQ(tally.binary, 1U);
    ASSERT_EQ(tally.unreadable, 1U);
    EXPECT_EQ(tally.unreadableNames.at(0), (temp.path / "held.bas").wstring() + L" - in use by another program");
}

TEST(FilesSearch, SaysThatThereAreMoreHitsThanItKeeps) {
    FilesJob job{.query = {.text = "x"}, .texts = {{7, L"", std::string(kMaxHits, 'x')}, {8, L"", "no hit"}}};
    FilesTally tally;
    EXPECT_EQ(TakenToTheEnd(FilesSearchStart(job, nullptr, WM_NULL, 0, nullptr), &tally).size(), 1U);
    EXPECT_FALSE(tally.limited);
    job.texts.push_back({9, L"", "x"});
    TakenToTheEnd(FilesSearchStart(job, nullptr, WM_NULL, 0, nullptr), &tally);
    EXPECT_TRUE(tally.limited);
    EXPECT_EQ(tally.hits, kMaxHits);
}

}  // namespace
