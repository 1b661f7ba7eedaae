// The project tree of the running program: what it shows, the files that it makes, renames and deletes, and what other
// programs do meanwhile.
#include "editor/margins.h"
#include "resources/ids.h"
#include "window/harness.h"
#include "window/readable.h"

#include <commctrl.h>

#include <cstring>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

// The folder "demo", shown in the tree of a program with one of its files open.
struct ProjectTree : testing::Test {
    ProgramFolder folder;
    std::optional<Editor> editor;
    HWND tree = nullptr;

    void Start(const std::wstring& arguments = L"") {
        folder.KeepNoSession();
        folder.SetIni(L"Project", L"Root", folder.File(L"demo"));
        folder.SetIni(L"Project", L"ShowProjectTree", L"1");
        editor.emplace(folder, arguments);
        tree = editor->Child(IDC_PROJECT_TREE);
    }
    HTREEITEM Next(UINT relation, HTREEITEM item) const {
        return reinterpret_cast<HTREEITEM>(
            editor->Send(tree, TVM_GETNEXTITEM, relation, reinterpret_cast<LPARAM>(item)));
    }
    std::wstring Label(HTREEITEM item, UINT* state = nullptr) const {
        constexpr std::size_t kTextAt = 256;
        const RemoteBlock block(editor->process, kTextAt + 256);
        TVITEMW wanted = {.mask = TVIF_TEXT | TVIF_STATE, .hItem = item, .stateMask = ~0u, .cchTextMax = 100};
        wanted.pszText = reinterpret_cast<wchar_t*>(block.At(kTextAt));
        block.Put(&wanted, sizeof(wanted));
        wchar_t text[128] = {};
        if (editor->Send(tree, TVM_GETITEMW, 0, block.At())) block.Get(text, 200, kTextAt);
        block.Get(&wanted, sizeof(wanted));
        if (state != nullptr) *state = wanted.state;
        return text;
    }
    // The rows that can be seen, the first hundred: folders with what is in them in brackets, the bold one with a star.
    std::string Rows(HTREEITEM item) const {
        std::string rows;
        for (int i = 0; item != nullptr && i < 100; ++i, item = Next(TVGN_NEXT, item)) {
            UINT state = 0;
            const std::string label = Utf8(Label(item, &state));
            rows += (rows.empty() ? "" : " ") + label + ((state & TVIS_BOLD) != 0 ? "*" : "");
            if ((state & TVIS_EXPANDED) != 0) rows += "[" + Rows(Next(TVGN_CHILD, item)) + "]";
        }
        return rows;
    }
    std::string Rows() const { return Rows(Next(TVGN_ROOT, nullptr)); }
    testing::AssertionResult Shows(const std::string& rows) const {
        if (WaitFor([&] { return Rows() == rows; })) return testing::AssertionSuccess();
        return testing::AssertionFailure() << Rows() << "\n  instead of\n" << rows;
    }
    LRESULT Count() const { return editor->Send(tree, TVM_GETCOUNT); }
    HTREEITEM Find(const std::wstring& label, HTREEITEM item) const {
        for (; item != nullptr; item = Next(TVGN_NEXT, item)) {
            if (Label(item) == label) return item;
            if (const HTREEITEM inner = Find(label, Next(TVGN_CHILD, item))) return inner;
        }
        return nullptr;
    }
    void Select(const std::wstring& label) const {
        const HTREEITEM item = Find(label, Next(TVGN_ROOT, nullptr));
        ASSERT_NE(item, nullptr) << Utf8(label);
        editor->Send(tree, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item));
    }
    std::wstring Selected() const { return Label(Next(TVGN_CARET, nullptr)); }
    void Key(WPARAM key) const { PostMessageW(tree, WM_KEYDOWN, key, 0); }
    HWND Field() const { return reinterpret_cast<HWND>(editor->Send(tree, TVM_GETEDITCONTROL)); }
    // Types a name into the field that is open over an item.
    void Name(const std::wstring& name, WPARAM end = VK_RETURN) const {
        ASSERT_TRUE(WaitFor([&] { return Field() != nullptr; })) << editor->Describe();
        const HWND field = Field();
        SendMessageTimeoutW(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name.c_str()), 0, kDeadline, nullptr);
        PostMessageW(field, WM_KEYDOWN, end, 0);
    }
};

TEST_F(ProjectTree, FillsFoldersWhenOpenedAndPageByPage) {
    const std::wstring a = folder.Write(L"demo\\a.bas", "a");
    folder.Write(L"demo\\readme.txt", "not a source");
    folder.Write(L"demo\\sub\\inner.bas", "inner text");
    folder.Write(L"demo\\big\\f.bas", "");
    for (int i = 1; i < 2050; ++i) {
        const std::wstring path = folder.File(L"demo\\big\\f" + std::to_wstring(i) + L".bas");
        CloseHandle(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
    }
    Start(OpenArgument(a));
    ASSERT_TRUE(Shows("demo[big sub a.bas*]"));
    Select(L"big");
    Key(VK_RIGHT);
    EXPECT_TRUE(WaitFor([&] { return Count() == 4 + 2000 + 1; })) << Count() << ": the rest is one row";
    Select(L"(50 more...)");
    Key(VK_RETURN);
    EXPECT_TRUE(WaitFor([&] { return Count() == 4 + 2050; })) << Count();
    Select(L"big");
    Key(VK_LEFT);
    Select(L"sub");
    editor->Foreground();
    for (int i = 0; i < 8 && editor->Focus() != tree; ++i) {
        const HWND before = editor->Focus();
        editor->Keys({VK_F6});
        ASSERT_TRUE(WaitFor([&] { return editor->Focus() != before; }));
    }
    for (const bool menuKey : {true, false}) {
        menuKey ? editor->Keys({VK_APPS}) : editor->Keys({VK_SHIFT, VK_F10});
        ASSERT_TRUE(editor->AwaitMenu(true)) << menuKey;
        editor->Keys({VK_ESCAPE});
        ASSERT_TRUE(editor->AwaitMenu(false)) << menuKey;
    }
    Key(VK_RETURN);
    ASSERT_TRUE(Shows("demo[big sub[inner.bas] a.bas*]"));
    Select(L"inner.bas");
    Key(VK_RETURN);
    ASSERT_TRUE(WaitFor([&] { return editor->Tabs() == 2; })) << editor->Describe();
    EXPECT_EQ(editor->Text(), "inner text");
    EXPECT_TRUE(Shows("demo[big sub[inner.bas*] a.bas]"));
    const HTREEITEM inner = Find(L"inner.bas", Next(TVGN_ROOT, nullptr));
    RECT row = {};
    std::memcpy(&row, &inner, sizeof(inner));
    row = editor->Ask(tree, TVM_GETITEMRECT, TRUE, row);
    editor->Click(tree, Centre(row), MOUSEEVENTF_LEFTDOWN, 0);
    EXPECT_EQ(editor->TextOf(AwaitPopup(*editor, TOOLTIPS_CLASSW)), folder.File(L"demo\\sub\\inner.bas"));
    EXPECT_EQ(editor->Close(), 0u);
}

TEST_F(ProjectTree, NewRenamedAndDeletedFilesAndTheirTabs) {
    const std::wstring a = folder.Write(L"demo\\a.bas", "one\r\ntwo\r\nthree\r\n");
    folder.Write(L"demo\\sub\\in.bas", "in");
    Start(OpenArgument(a));
    ASSERT_TRUE(Shows("demo[sub a.bas*]"));

    // The document of a renamed file goes on with its unsaved text, its bookmark and its breakpoint.
    editor->Type("changed ");
    editor->Do(IDM_BOOKMARK_TOGGLE);
    editor->Do(IDM_DEBUG_BREAKPOINT);
    const LRESULT markers = editor->Sci(SCI_MARKERGET, 0);
    Select(L"a.bas");
    Key(VK_F2);
    Name(L"con.bas");
    editor->Answer(kProgramTitle, L"con.bas", IDOK);
    Name(L"renamed.bas");
    ASSERT_TRUE(Shows("demo[sub renamed.bas*]"));
    EXPECT_EQ(editor->TabLabel(0), L"renamed.bas");
    EXPECT_EQ(editor->Sci(SCI_MARKERGET, 0), markers);
    EXPECT_TRUE(editor->Modified());
    editor->Do(IDM_FILE_SAVE);
    EXPECT_EQ(folder.Read(L"demo\\renamed.bas"), "changed one\r\ntwo\r\nthree\r\n");
    EXPECT_FALSE(Exists(a));

    Select(L"renamed.bas");
    Key(VK_F2);
    Name(L"in vain.bas", VK_ESCAPE);
    EXPECT_TRUE(WaitFor([&] { return Field() == nullptr; }));

    // A new file in a folder that was not read yet; one that is there already is not touched.
    Select(L"sub");
    Key(VK_INSERT);
    Name(L"in.bas");
    editor->Answer(kProgramTitle, folder.File(L"demo\\sub\\in.bas"), IDOK);
    EXPECT_EQ(folder.Read(L"demo\\sub\\in.bas"), "in");
    Select(L"sub");
    Key(VK_INSERT);
    Name(L"new.bas");
    ASSERT_TRUE(Shows("demo[sub[in.bas new.bas*] renamed.bas]"));
    EXPECT_TRUE(WaitFor([&] { return editor->Tabs() == 2; }));

    // Its changes are asked about before it is deleted.
    editor->Type("not saved");
    Select(L"new.bas");
    Key(VK_DELETE);
    editor->Answer(kProgramTitle, L"Delete \"new.bas\"", IDOK);
    editor->Answer(kUnsaved, L"", IDCANCEL);
    EXPECT_TRUE(Exists(folder.File(L"demo\\sub\\new.bas")));
    EXPECT_EQ(editor->Text(), "not saved");
    Select(L"sub");
    Key(VK_DELETE);
    editor->Answer(kProgramTitle, L"Delete the folder \"sub\"", IDOK);
    editor->Answer(kUnsaved, L"", IDC_CLOSE_DISCARD);
    EXPECT_TRUE(Shows("demo[renamed.bas*]"));
    EXPECT_FALSE(Exists(folder.File(L"demo\\sub")));
    EXPECT_EQ(editor->Tabs(), 1);
    EXPECT_EQ(editor->Close(), 0u);
}

TEST_F(ProjectTree, FollowsOtherProgramsFiltersAndTheActiveFile) {
    const std::wstring a = folder.Write(L"demo\\a.bas", "");
    const std::wstring deep = folder.Write(L"demo\\sub\\deep\\d.bas", "");
    folder.Write(L"demo\\sub\\s.bas", "");
    folder.Write(L"demo\\.gitignore", "out\n");
    folder.Write(L"demo\\.git\\HEAD", "");
    folder.Write(L"demo\\out\\notes.txt", "");
    folder.Write(L"demo\\program.exe", "");
    Start(OpenArgument(a));
    ASSERT_TRUE(Shows("demo[out sub a.bas*]"));

    editor->Do(IDM_FILE_CLOSE);
    folder.Write(L"demo\\later.bas", "");
    fs::rename(a, folder.File(L"demo\\b.bas"));
    EXPECT_TRUE(Shows("demo[out sub b.bas later.bas]"));
    Select(L"sub");
    Key(VK_RIGHT);
    ASSERT_TRUE(Shows("demo[out sub[deep s.bas] b.bas later.bas]"));
    Select(L"s.bas");
    folder.Write(L"demo\\sub\\other.bas", "");
    EXPECT_TRUE(Shows("demo[out sub[deep other.bas s.bas] b.bas later.bas]")) << "an inner folder";
    EXPECT_EQ(Selected(), L"s.bas");

    // A folder goes and comes back: what was open in it is open again.
    fs::rename(folder.File(L"demo"), folder.File(L"away"));
    EXPECT_TRUE(Shows("demo[(cannot be read)]"));
    fs::rename(folder.File(L"away"), folder.File(L"demo"));
    EXPECT_TRUE(Shows("demo[out sub[deep other.bas s.bas] b.bas later.bas]"));

    // Nothing is read while it is hidden.
    editor->Do(IDM_VIEW_TREE);
    fs::remove(folder.File(L"demo\\later.bas"));
    editor->Do(IDM_VIEW_TREE);
    EXPECT_TRUE(Shows("demo[out sub[deep other.bas s.bas] b.bas]"));
    EXPECT_EQ(editor->Close(), 0u);

    folder.SetIni(L"Project", L"TreeSourcesOnly", L"0");
    folder.SetIni(L"Project", L"TreeGitIgnore", L"1");
    folder.SetIni(L"Project", L"TreeHidden", L"1");
    editor.reset();
    Start(OpenArgument(deep));
    ASSERT_TRUE(Shows("demo[.git sub .gitignore b.bas]"));
    editor->Do(IDM_TREE_REVEAL);
    EXPECT_TRUE(Shows("demo[.git sub[deep[d.bas*] other.bas s.bas] .gitignore b.bas]"));
    EXPECT_EQ(Selected(), L"d.bas");
    EXPECT_EQ(editor->Close(), 0u);
}

}  // namespace

// What the project leaves out is not shown, and its file follows a main source that gets another name.
TEST_F(ProjectTree, ShowsAndFollowsTheProject) {
    folder.Write(L"demo\\sub\\main.bas", "'\r\n");
    folder.Write(L"demo\\made\\x.bas", "");
    const std::wstring file =
        folder.Write(L"demo\\demo.kvxproj", "[Project]\nMain=sub/main.bas\n[Exclude]\nFolder=made\n");
    Start(OpenArgument(file));
    ASSERT_TRUE(Shows("demo[sub]"));
    Select(L"sub");
    Key(VK_F2);
    Name(L"src");
    EXPECT_TRUE(WaitFor([&] { return folder.Read(L"demo\\demo.kvxproj").find("Main=src") != std::string::npos; }))
        << folder.Read(L"demo\\demo.kvxproj") << editor->Describe();
    EXPECT_TRUE(WaitFor([&] { return editor->Status() == L"demo.kvxproj now names main.bas"; }))
        << Utf8(editor->Status());
    editor->Do(IDM_PROJECT_CLOSE);
    EXPECT_TRUE(WaitFor([&] { return Rows().find("made") != std::string::npos; })) << Rows();
}
