// What the project tree shows of a folder, what a new listing changes in it, and which names can be given.
#include "base/path.h"
#include "project/tree_actions.h"
#include "project/tree_model.h"
#include "project/tree_rules.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

std::string Narrow(std::wstring_view text) { return {text.begin(), text.end()}; }

TEST(TreeRules, FiltersDecideWhatIsShown) {
    constexpr TreeFilter kSources{}, kAll{.sourcesOnly = false}, kHidden{.hidden = true},
        kBinaries{.sourcesOnly = false, .binaries = true};
    const struct {
        TreeFilter filter;
        const wchar_t* name;
        bool isFolder, isHidden, shown;
    } cases[] = {{kSources, L"src", true, false, true},       {kSources, L"a.BAS", false, false, true},
                 {kSources, L"a.exe", false, false, false},   {kSources, L"readme.md", false, false, false},
                 {kSources, L".git", true, false, false},     {kSources, L"a.bas", false, true, false},
                 {kHidden, L".git", true, false, true},       {kHidden, L"a.bas", false, true, true},
                 {kHidden, L"..", true, false, false},        {kAll, L"readme.md", false, false, true},
                 {kAll, L"a.EXE", false, false, false},       {kBinaries, L"a.EXE", false, false, true},
                 {kBinaries, L".hidden", false, false, false}};
    for (const auto& each : cases)
        EXPECT_EQ(TreeShows(each.filter, each.name, each.isFolder, each.isHidden), each.shown) << Narrow(each.name);
    EXPECT_EQ(TreePictureOf(L"x.kxa"), TreePicture::Basic);
    EXPECT_EQ(TreePictureOf(L"x.INC"), TreePicture::Include);
    EXPECT_EQ(TreePictureOf(L"x.exe"), TreePicture::Other);
}

TEST(TreeRules, NamesAndPaths) {
    EXPECT_EQ(TreeRootLabel(L"C:\\work\\demo\\"), L"demo");
    EXPECT_EQ(TreeRootLabel(L"C:\\"), L"C:");
    EXPECT_EQ(TreeRootOf(L"C:\\work\\\\"), L"C:\\work");
    EXPECT_EQ(TreeRootOf(L"C:\\"), L"C:\\");
    EXPECT_EQ(TreeRelative(L"C:\\", L"c:\\a\\b"), L"a\\b");
    EXPECT_EQ(TreeRelative(L"C:\\work", L"C:\\workshop\\b"), L"C:\\workshop\\b") << "not below it";
    EXPECT_EQ(PathAfterMove(L"C:\\a\\in\\x.bas", L"c:\\A", L"C:\\b"), L"C:\\b\\in\\x.bas");
    EXPECT_EQ(PathAfterMove(L"C:\\ab\\x.bas", L"C:\\a", L"C:\\b"), L"C:\\ab\\x.bas");
    EXPECT_EQ(TreeFirstWidth(401), 200);
    EXPECT_EQ(TreeNameTyped(L"  a b.bas \t"), L"a b.bas");
    EXPECT_EQ(TreeStemLength(L"a.b.bas", false), 3u);
    EXPECT_EQ(TreeStemLength(L"a.b", true), 3u);
    EXPECT_EQ(TreeStemLength(L".gitignore", false), 10u);
    for (const wchar_t* name : {L"a.bas", L"console.bas", L"com0", L".x", L"\xD83D\xDE00.bas"})
        EXPECT_EQ(TreeNameProblem(L"C:\\d", name), L"") << Narrow(name);
    for (const wchar_t* name : {L"", L"a/b", L"a\\b", L"a?", L"con", L"NUL.bas", L"lpt1.txt", L"a.", L"a\x1F"})
        EXPECT_NE(TreeNameProblem(L"C:\\d", name), L"") << Narrow(name);
    EXPECT_NE(TreeNameProblem(std::wstring(900, L'd'), std::wstring(200, L'n')), L"") << "too long for the editor";
}

struct TreeModel : testing::Test {
    TreeNode root{.name = L"C:\\p", .kind = NodeKind::Folder};

    static TreeListing Listing(std::vector<TreeEntry> entries, bool more = false) {
        TreeSort(entries);
        return {.readable = true, .more = more, .entries = std::move(entries)};
    }
    static std::string Names(const TreeNode& folder) {
        std::string names;
        for (const auto& child : folder.children) names += Narrow(child->name) + " ";
        return names;
    }
};

TEST_F(TreeModel, AListingChangesOnlyWhatHasChanged) {
    TreeMerge merge = TreeTakeListing(root, Listing({{L"b.bas"}, {L"sub", true}, {L"A.bas"}, {L"Z", true}}));
    EXPECT_EQ(Names(root), "sub Z A.bas b.bas ");
    EXPECT_EQ(merge.added.size(), 4u);
    EXPECT_EQ(merge.added[0].after, nullptr);
    TreeNode* const sub = root.children[0].get();
    TreeTakeListing(*sub, Listing({{L"in.bas"}}));
    TreeNode* const inner = TreeFind(&root, L"c:\\P\\SUB\\In.bas");
    ASSERT_NE(inner, nullptr);
    EXPECT_EQ(TreePathOf(*inner), L"C:\\p\\sub\\in.bas");

    merge = TreeTakeListing(root, Listing({{L"a.bas"}, {L"sub", true}, {L"c.bas"}, {L"Z", false}}));
    EXPECT_EQ(Names(root), "sub a.bas c.bas Z ") << "a file took the name of a folder";
    EXPECT_EQ(root.children[0].get(), sub) << "kept, with what was read of it";
    EXPECT_EQ(TreeFind(&root, L"C:\\p\\sub\\in.bas"), inner);
    EXPECT_EQ(merge.removed.size(), 2u);
    EXPECT_EQ(merge.added.size(), 2u);
    ASSERT_EQ(merge.relabeled.size(), 1u);
    EXPECT_EQ(TreeFindAbove(&root, L"C:\\p\\sub\\deeper\\x.bas"), sub);
    EXPECT_EQ(TreeFind(&root, L"C:\\px\\a.bas"), nullptr);

    merge = TreeTakeListing(root, Listing({{L"d.bas"}}, true));
    EXPECT_TRUE(merge.removed.empty()) << "the rest is not read yet";
    root.children[1]->name = L"x.bas";
    TreeSortChildren(root);
    EXPECT_EQ(Names(root).substr(0, 4), "sub ");
    merge = TreeTakeListing(root, {.readable = false});
    EXPECT_EQ(Names(root), "(cannot be read) ");
    EXPECT_TRUE(TreeFolderOpens(root)) << "it holds the note that says so";
    TreeTakeListing(root, Listing({}));
    EXPECT_FALSE(TreeFolderOpens(root));
}

TEST_F(TreeModel, ALargeFolderIsShownPageByPage) {
    std::vector<TreeEntry> entries;
    for (std::size_t i = 0; i < 2 * kTreePage + 3; ++i) entries.push_back({L"f" + std::to_wstring(10'000 + i)});
    TreeTakeListing(root, Listing(entries), L"F14001");
    ASSERT_EQ(root.children.size(), kTreePage + 2);
    EXPECT_EQ(root.children[kTreePage]->name, L"f14001") << "it is wanted";
    EXPECT_EQ(root.children.back()->name, L"(2002 more...)");
    EXPECT_EQ(TreeEnterOn(root.children.back().get()), TreeEnter::ShowMore);
    root.shown += kTreePage;
    const TreeMerge merge = TreeShowMore(root, L"f14001");
    EXPECT_EQ(merge.added.size(), kTreePage + 1) << "and the row for the rest";
    root.shown += kTreePage;
    TreeShowMore(root);
    EXPECT_EQ(root.children.size(), entries.size());
    EXPECT_EQ(root.children.back()->kind, NodeKind::File);
}

TEST_F(TreeModel, ReadingsFindTheirFolderOrNobody) {
    TreeRequests requests;
    std::vector<TreeNode> folders(kTreeMaxPending + 1);
    for (TreeNode& folder : folders) {
        TreeRequestAsk(requests, &folder);
        TreeRequestAsk(requests, &folder);
    }
    for (std::size_t i = 0; i < kTreeMaxPending; ++i) ASSERT_EQ(TreeRequestNext(requests)->folder, &folders[i]);
    EXPECT_FALSE(TreeRequestNext(requests)) << "each of these may hang";
    EXPECT_EQ(TreeRequestTake(requests, 1, false), &folders[0]);
    TreeRequestAsk(requests, &folders[0]);  // it has changed while it was read
    EXPECT_EQ(TreeRequestTake(requests, 1, true), &folders[0]);
    EXPECT_EQ(TreeRequestTake(requests, 1, true), nullptr) << "taken";
    TreeRequestForget(requests, &folders[1]);
    EXPECT_EQ(TreeRequestTake(requests, 2, true), nullptr);
    EXPECT_EQ(TreeRequestNext(requests)->folder, &folders.back());
    EXPECT_EQ(TreeRequestNext(requests)->folder, &folders[0]) << "read again";
}

TEST_F(TreeModel, WhatCanBeDoneDependsOnTheItem) {
    TreeTakeListing(root, Listing({{L"a.bas"}, {L"sub", true}}));
    const TreeNode &sub = *root.children[0], &file = *root.children[1];
    EXPECT_EQ(TreeCommandsOf(nullptr), TreeItemCommands{});
    EXPECT_EQ(TreeCommandsOf(&root), (TreeItemCommands{.place = true, .create = true})) << "its name stays";
    EXPECT_EQ(TreeCommandsOf(&sub), (TreeItemCommands{.place = true, .create = true, .change = true}));
    EXPECT_EQ(TreeCommandsOf(&file), (TreeItemCommands{.open = true, .place = true, .create = true, .change = true}));
    EXPECT_EQ(TreeFolderFor(&file), &root);
    EXPECT_EQ(TreeEnterOn(&sub), TreeEnter::Toggle);
    TreeTakeListing(root, {.readable = false});
    EXPECT_EQ(TreeCommandsOf(root.children[0].get()), TreeItemCommands{.create = true});
}

}  // namespace
