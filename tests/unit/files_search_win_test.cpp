// The walk over real folders.
#include "search/file_walk.h"
#include "support/deep_folder.h"
#include "support/temp_files.h"

#include <gtest/gtest.h>

#include <algorithm>

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

}  // namespace
