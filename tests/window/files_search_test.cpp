// Find in Files and Replace in Files: the dialog, the pane of results, replacing with undo.
#include "harness.h"

#include "resources/ids.h"
#include "window/readable.h"

#include <commctrl.h>

namespace {

struct FilesSearch {
    const Editor& editor;
    explicit FilesSearch(const Editor& program) : editor(program) {}

    HWND Pane() const { return editor.Child(IDC_FILES_PANE); }
    HWND List() const { return GetDlgItem(Pane(), IDC_FILES_LIST); }
    std::wstring Button(int id) const { return editor.TextOf(GetDlgItem(Pane(), id)); }
    void Press(int id) const { editor.Send(Pane(), WM_COMMAND, static_cast<WPARAM>(id)); }

    // Fills the dialog and starts; `folder` empty: in the open documents.
    void Start(int command, const wchar_t* what, const std::wstring& folder, const wchar_t* with = L"",
               bool regex = false) const {
        editor.Post(command);
        const bool replaces = command == IDM_FILES_REPLACE;
        const HWND dialog = editor.AwaitDialog(replaces ? L"Replace in Files" : L"Find in Files").window;
        const auto set = [&](int control, const std::wstring& text) {
            editor.Send(GetDlgItem(dialog, control), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
        };
        editor.Send(GetDlgItem(dialog, IDC_FILES_SCOPE), CB_SETCURSEL, folder.empty() ? 1 : 2);
        editor.Send(dialog, WM_COMMAND, MAKEWPARAM(IDC_FILES_SCOPE, CBN_SELCHANGE));
        const bool hasFile = editor.TabLabel(editor.ActiveTab()).find(L'.') != std::wstring::npos;
        if (!folder.empty() && hasFile)
            EXPECT_NE(editor.TextOf(GetDlgItem(dialog, IDC_FILES_FOLDER)), L"") << "the folder of the project";
        set(IDC_FILES_WHAT, what);
        set(IDC_FILES_WITH, with);
        set(IDC_FILES_FOLDER, folder);
        if (regex) editor.Send(GetDlgItem(dialog, IDC_FILES_REGEX), BM_CLICK);
        editor.Send(dialog, WM_COMMAND, IDOK);
    }
    bool Ended() const {
        return WaitFor([&] { return Button(IDC_FILES_AGAIN) == L"Search Again"; });
    }
    std::wstring Row(int row) const {
        const RemoteBlock block(editor.process, sizeof(LVITEMW) + 600);
        LVITEMW item = {};
        item.pszText = reinterpret_cast<wchar_t*>(block.At(sizeof(LVITEMW)));
        item.cchTextMax = 300;
        block.Put(&item, sizeof item);
        editor.Send(List(), LVM_GETITEMTEXTW, static_cast<WPARAM>(row), block.At());
        wchar_t text[300] = {};
        block.Get(text, sizeof text, sizeof(LVITEMW));
        return text;
    }
    // All rows, each with a bar behind it.
    std::wstring Rows() const {
        std::wstring text;
        const auto count = static_cast<int>(editor.Send(List(), LVM_GETITEMCOUNT));
        for (int i = 0; i < count; ++i) text += Row(i) + L"|";
        return text;
    }
    void Key(int key) const { editor.Send(List(), WM_KEYDOWN, static_cast<WPARAM>(key)); }
};

TEST(FilesSearch, FindsGoesAndFollowsEdits) {
    ProgramFolder folder;
    const std::wstring root = folder.File(L"p");
    const std::wstring open = folder.Write(L"p\\a.bas", "x\r\nneedle one\r\nNEEDLE two\r\n");
    folder.Write(L"p\\sub\\b.bas", "\xE4 needle\r\n");
    folder.Write(L"p\\c.exe", std::string_view("MZ\0 needle", 10));
    folder.Write(L"p\\gen\\d.bas", "needle");
    folder.Write(L"p\\.gitignore", "gen/\n");
    {
        Editor editor(folder, OpenArgument(open));
        const FilesSearch search(editor);
        EXPECT_EQ(search.Pane(), nullptr) << "a start does not pay for it";
        editor.Type("needle zero\r\n");
        search.Start(IDM_FILES_FIND, L"needle", root);
        ASSERT_TRUE(search.Ended());
        EXPECT_EQ(search.Rows(),
                  L"a.bas (3)|1: needle zero|3: needle one|4: NEEDLE two|sub\\b.bas (1)|1: \u00e4 needle|")
            << "the unsaved text, not its file";

        // Next result goes over the files; what is typed above a result moves it.
        for (int i = 0; i < 4; ++i) editor.Do(IDM_FILES_NEXT);
        EXPECT_EQ(editor.Text(), "\xC3\xA4 needle\r\n");
        EXPECT_EQ(editor.Sci(SCI_GETSELECTIONSTART), 3);
        editor.Do(IDM_FILES_PREVIOUS);
        EXPECT_EQ(editor.Line(), 4);
        editor.Sci(SCI_GOTOPOS, 0);
        editor.Type("above\r\n");
        EXPECT_TRUE(WaitFor([&] { return search.Row(3) == L"5: NEEDLE two"; }));
        search.Key(VK_RETURN);
        EXPECT_EQ(editor.Line(), 5);
        EXPECT_TRUE(WaitFor([&] { return editor.Focus() == editor.Sci(); }));
        search.Key(VK_DELETE);
        search.Key(VK_LEFT);
        EXPECT_EQ(search.Rows(), L"a.bas (2)|2: needle zero|4: needle one|sub\\b.bas (1)|")
            << "one left out, one folded";
        editor.Do(IDM_FILE_SAVE);
        editor.Do(IDM_FILE_CLOSE_ALL);
        EXPECT_EQ(search.Row(2), L"4: needle one") << "as it was saved";
        EXPECT_EQ(editor.Close(), 0u);
    }
    EXPECT_EQ(
        folder.Ini(L"Editor", L"FilesSearch0"), L"Fsg|needle||" + [&] {
            std::wstring escaped;
            for (const wchar_t c : root) escaped += c == L'\\' ? std::wstring(2, c) : std::wstring(1, c);
            return escaped;
        }() + L"||.git;.svn;.hg|");
}

TEST(FilesSearch, RowsHaveNothingLeftOfAnotherWidth) {
    ProgramFolder folder;
    folder.Write(L"p\\a.bas",
                 "' before the one and the only needle that is there comes this, and this stands behind it\r\n");
    Editor editor(folder);
    const FilesSearch search(editor);
    search.Start(IDM_FILES_FIND, L"needle", folder.File(L"p"));
    ASSERT_TRUE(search.Ended());
    for (const int command : {IDM_VIEW_ASM, IDM_VIEW_DEBUG_PANE, IDM_VIEW_DEBUG_PANE, IDM_VIEW_ASM}) {
        editor.Do(command);
        const Picture shown = PictureAtRest(search.List());
        InvalidateRect(search.List(), nullptr, TRUE);
        EXPECT_EQ(shown.pixels, PictureAtRest(search.List()).pixels) << command;
    }
}

TEST(FilesSearch, ReplacesOpenAndClosedFiles) {
    ProgramFolder folder;
    const std::wstring root = folder.File(L"p");
    const std::wstring open = folder.Write(L"p\\a.bas", "old old\r\nold\r\n");
    folder.Write(L"p\\ansi.bas", "\xE4 old\rold\nold\r\n");
    folder.Write(L"p\\wide.bas", std::string_view("\xFF\xFEo\0l\0d\0", 8));
    folder.Write(L"p\\read.bas", "old");
    const std::wstring late = folder.Write(L"p\\late.bas", "old");
    SetFileAttributesW(folder.File(L"p\\read.bas").c_str(), FILE_ATTRIBUTE_READONLY);
    Editor editor(folder, OpenArgument(open));
    const FilesSearch search(editor);
    search.Start(IDM_FILES_REPLACE, L"old", root, L"new");
    ASSERT_TRUE(search.Ended());
    EXPECT_EQ(search.Button(IDC_FILES_REPLACE_NOW), L"Replace 9...");
    search.Key(VK_SPACE);  // the first hit
    EXPECT_EQ(search.Button(IDC_FILES_REPLACE_NOW), L"Replace 8...");
    WriteBytes(late, "another old text");
    PostMessageW(search.Pane(), WM_COMMAND, IDC_FILES_REPLACE_NOW, 0);
    editor.Answer(L"Replace in Files", L"Replace 8 hits in 5 files?", IDOK);
    const Dialog told = editor.AwaitDialog(L"Replace in Files");
    editor.Press(told, IDOK);
    EXPECT_EQ(editor.Text(), "old new\r\nnew\r\n");
    EXPECT_EQ(folder.Read(L"p\\ansi.bas"), "\xE4 new\rnew\nnew\r\n") << "encoding and mixed breaks stay";
    EXPECT_EQ(folder.Read(L"p\\wide.bas"), std::string_view("\xFF\xFEn\0e\0w\0", 8));
    EXPECT_EQ(folder.Read(L"p\\late.bas"), "another old text") << "changed since the search";
    EXPECT_EQ(folder.Read(L"p\\read.bas"), "old");
    EXPECT_EQ(search.Rows(),
              L"a.bas (3)|1: old new|1: old new|2: new|ansi.bas (3)|1: \u00E4 new|2: new|3: new|late.bas (1)|1: old|"
              L"read.bas (1)|1: old|wide.bas (1)|1: new|")
        << "what was replaced, as it is now, and what was not";
    EXPECT_EQ(search.Button(IDC_FILES_REPLACE_NOW), L"Replace 2...") << "another try takes only what is left";
    editor.Do(IDM_EDIT_UNDO);
    EXPECT_EQ(editor.Text(), "old old\r\nold\r\n") << "one step";
    SetFileAttributesW(folder.File(L"p\\read.bas").c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST(FilesSearch, StopsAtOnce) {
    ProgramFolder folder;
    const std::wstring root = folder.File(L"p");
    const std::string text(3 << 20, 'e');
    for (int i = 0; i < 40; ++i) folder.Write(L"p\\" + std::to_wstring(i) + L".txt", text);
    Editor editor(folder);
    const FilesSearch search(editor);
    search.Start(IDM_FILES_FIND, L"e", root);
    ASSERT_TRUE(search.Ended());
    const LRESULT rows = editor.Send(search.List(), LVM_GETITEMCOUNT);
    EXPECT_GE(rows, 100'001) << "up to the limit";
    EXPECT_LE(rows, 100'002);
    search.Start(IDM_FILES_FIND, L"(e|ee)+f", root, L"", true);  // takes its time
    search.Press(IDC_FILES_AGAIN);
    EXPECT_EQ(search.Button(IDC_FILES_AGAIN), L"Search Again");
    // The field of the status bar that shows the search stops it as well. In these lines it would not end in time.
    std::string lines;
    while (lines.size() < text.size()) lines += std::string(30, 'e') + "\n";
    for (int i = 0; i < 40; ++i) folder.Write(L"p\\" + std::to_wstring(i) + L".txt", lines);
    search.Press(IDC_FILES_AGAIN);
    ASSERT_TRUE(WaitFor([&] { return editor.Status(kPartProgress).starts_with(L"Searching"); }));
    const HWND bar = editor.Child(IDC_STATUS_BAR);
    editor.Click(bar, Centre(editor.Ask<RECT>(bar, SB_GETRECT, kPartProgress)));
    EXPECT_TRUE(search.Ended());
    search.Press(IDC_FILES_AGAIN);
    EXPECT_EQ(editor.Close(), 0u) << "also while it searches";
}

}  // namespace

// The documents of a session are read when they are first shown.
TEST(FilesSearch, ReplacesInADocumentOfTheSession) {
    ProgramFolder folder;
    const std::wstring root = folder.File(L"p");
    const std::wstring one = folder.Write(L"p\\one.bas", "old one\n"), two = folder.Write(L"p\\two.bas", "two\n");
    EXPECT_EQ(Editor(folder, OpenArgument(one) + OpenArgument(two)).Close(), 0u);
    Editor editor(folder, L"", Until::Started);
    editor.Answer(kRestore, L"A previous session", IDYES);
    ASSERT_TRUE(editor.AwaitReady());
    const FilesSearch search(editor);
    search.Start(IDM_FILES_REPLACE, L"old", root, L"new");
    ASSERT_TRUE(search.Ended());
    PostMessageW(search.Pane(), WM_COMMAND, IDC_FILES_REPLACE_NOW, 0);
    editor.Answer(L"Replace in Files", L"Replace 1 hit in 1 file?", IDOK);
    editor.Do(IDM_PREVIOUS_TAB);
    EXPECT_TRUE(WaitFor([&] { return editor.Text() == "new one\n"; })) << editor.Text();
    EXPECT_EQ(folder.Read(L"p\\one.bas"), "old one\n") << "an open document is changed, not its file";
    EXPECT_TRUE(editor.Modified());
}
