// The row of tabs: mouse and keys, order by recent use, names, pins, closing and opening again, the list of all.
#include "drag_back.h"
#include "harness.h"
#include "held_control.h"

#include <commctrl.h>

#include "resources/ids.h"

namespace {

std::wstring Initials(const Editor& editor) {
    std::wstring labels;
    for (int i = 0; i < editor.Tabs(); ++i) labels += editor.TabLabel(i).substr(0, 1);
    return labels;
}

std::wstring Files(const ProgramFolder& folder, std::initializer_list<const wchar_t*> names) {
    std::wstring arguments;
    for (const wchar_t* name : names) arguments += OpenArgument(folder.Write(name, Utf8(name)));
    return arguments;
}

TEST(Tabs, ByMouseAndKeyboard) {
    ProgramFolder folder;
    std::wstring arguments;
    for (const wchar_t* name : {L"a.bas", L"b.bas", L"c.bas", L"d.bas"})
        arguments += OpenArgument(folder.Write(name, Utf8(name)));
    Editor editor(folder, arguments);
    editor.Foreground();
    const HWND tabs = editor.Child(IDC_TABS);
    const auto order = [&] { return Initials(editor); };
    EXPECT_EQ(editor.ActiveTab(), 3);
    editor.Click(tabs, editor.TabCentre(1));
    EXPECT_TRUE(WaitFor([&] { return editor.ActiveTab() == 1 && editor.Text() == "b.bas"; }));
    EXPECT_TRUE(WaitFor([&] { return editor.Focus() == editor.Sci(); })) << "a click brings the focus to the editor";
    editor.Drag(tabs, editor.TabCentre(0), {editor.TabCentre(2).x + 20, editor.TabCentre(2).y});
    EXPECT_TRUE(WaitFor([&] { return order() == L"bcad"; })) << Utf8(order());
    EXPECT_EQ(editor.Text(), "a.bas") << "the document goes with its tab";
    DragAndTakeBack(editor, tabs, editor.TabCentre(2), editor.TabCentre(0));
    EXPECT_EQ(order(), L"bcad") << "Esc takes the drag back";
    // A middle button that went down elsewhere closes nothing.
    const auto place = [&](int tab) { return MAKELPARAM(editor.TabCentre(tab).x, editor.TabCentre(tab).y); };
    editor.Send(tabs, WM_MBUTTONUP, 0, place(0));
    editor.Send(tabs, WM_MBUTTONDOWN, MK_MBUTTON, place(1));
    editor.Send(tabs, WM_MBUTTONUP, 0, place(0));
    editor.Click(tabs, editor.TabCentre(0), MOUSEEVENTF_MIDDLEDOWN);  // not a neighbour
    EXPECT_TRUE(WaitFor([&] { return order() == L"cad"; })) << Utf8(order());
    EXPECT_EQ(editor.Text(), "a.bas") << "closing another tab keeps the active one";
    editor.Keys({VK_CONTROL, VK_PRIOR});
    EXPECT_TRUE(WaitFor([&] { return editor.Text() == "c.bas"; }));
    for (const char* text : {"a.bas", "d.bas"}) {
        editor.Keys({VK_CONTROL, VK_NEXT});
        EXPECT_TRUE(WaitFor([&] { return editor.Text() == text; })) << text;
    }
    editor.Type("x");
    editor.Click(tabs, editor.TabCentre(2), MOUSEEVENTF_MIDDLEDOWN);
    // A letter alone does not discard; with Alt it does.
    const auto answer = [&](const wchar_t* text, UINT message, wchar_t letter) {
        const Dialog question = editor.AwaitDialog(kUnsaved);
        EXPECT_EQ(question.text.find(text), 0U) << Utf8(question.text);
        PostMessageW(editor.Focus(), message, letter, message == WM_SYSCHAR ? 1 << 29 : 0);  // Alt is down
        PostMessageW(editor.Focus(), WM_KEYDOWN, VK_ESCAPE, 0);
        EXPECT_TRUE(WaitFor([&] { return !IsWindow(question.window); }));
    };
    answer(L"Save changes to d.bas?", WM_CHAR, L'n');
    EXPECT_EQ(order(), L"cad");
    for (const bool discards : {false, true}) {
        editor.Do(IDM_NEXT_TAB);  // from the last to the first
        EXPECT_EQ(editor.Text(), "c.bas");
        editor.Post(IDM_TAB_CLOSE_OTHERS);  // all or, after a refusal, none
        answer(L"d.bas has unsaved changes.", discards ? WM_SYSCHAR : WM_CHAR, L'd');
        const std::wstring left = discards ? L"c" : L"cad";
        const std::string shown = discards ? "c.bas" : "xd.bas";
        EXPECT_TRUE(WaitFor([&] { return order() == left && editor.Text() == shown; })) << Utf8(order());
    }
    for (int i = 0; i < 3; ++i) editor.Do(IDM_FILE_NEW);
    EXPECT_EQ(editor.TabLabel(2), L"Untitled 2");
    const RECT tab = editor.TabRect(2);
    // Its close button, twice: the second quick click is for the next tab's.
    editor.Click(tabs, {tab.right - 14, (tab.top + tab.bottom) / 2}, MOUSEEVENTF_LEFTDOWN, 2);
    EXPECT_TRUE(WaitFor([&] { return order() == L"cU"; })) << Utf8(order());
    editor.Keys({VK_CONTROL, 'W'});
    EXPECT_TRUE(WaitFor([&] { return editor.Tabs() == 1; })) << Utf8(order());
    editor.Keys({VK_CONTROL, 'W'});
    EXPECT_TRUE(WaitFor([&] { return editor.Tabs() == 0; })) << Utf8(order());
    EXPECT_EQ(editor.Close(), 0u);
}

TEST(Tabs, WalkByRecentUseAndByNumber) {
    ProgramFolder folder;
    Editor editor(folder, Files(folder, {L"a.bas", L"b.bas", L"c.bas", L"d.bas"}));
    editor.Foreground();
    const auto shows = [&](const char* text) {
        return WaitFor([&] { return editor.Text() == text && editor.Focus() == editor.Sci(); });
    };
    editor.Keys({VK_CONTROL, '2'});
    EXPECT_TRUE(shows("b.bas"));
    editor.Keys({VK_CONTROL, '7'});  // there is none
    editor.Keys({VK_CONTROL, '9'});
    EXPECT_TRUE(shows("d.bas")) << "the last one";
    editor.Keys({VK_CONTROL, VK_TAB});
    EXPECT_TRUE(shows("b.bas")) << "the one before";
    editor.Keys({VK_CONTROL, VK_TAB});
    EXPECT_TRUE(shows("d.bas")) << "and back";
    const auto list = [&] { return FindWindowExW(editor.Child(IDC_TAB_SWITCHER), nullptr, L"LISTBOX", nullptr); };
    {
        const HeldControl control(editor);
        HeldControl::Press(VK_TAB);
        ASSERT_TRUE(WaitFor([&] { return list() != nullptr && editor.Focus() == list(); })) << editor.Describe();
        EXPECT_EQ(editor.Send(list(), LB_GETCURSEL), 1) << "d b c a";
        EXPECT_EQ(editor.Text(), "d.bas") << "not yet";
        HeldControl::Press(VK_TAB);
        EXPECT_TRUE(WaitFor([&] { return editor.Send(list(), LB_GETCURSEL) == 2; }));
    }
    EXPECT_TRUE(shows("c.bas")) << editor.Describe();
    EXPECT_EQ(list(), nullptr);
    {
        const HeldControl control(editor);
        HeldControl::Press(VK_TAB);
        ASSERT_TRUE(WaitFor([&] { return list() != nullptr && editor.Focus() == list(); }));
        HeldControl::Press(VK_ESCAPE);
        EXPECT_TRUE(WaitFor([&] { return list() == nullptr && editor.Focus() == editor.Sci(); })) << editor.Describe();
    }
    EXPECT_TRUE(shows("c.bas"));
    editor.Keys({VK_CONTROL, VK_SHIFT, VK_TAB});
    EXPECT_TRUE(shows("a.bas")) << "not shown for the longest time";

    editor.Keys({VK_CONTROL, 'E'});
    ASSERT_TRUE(WaitFor([&] { return IsWindowVisible(editor.Child(IDC_QUICK_OPEN)) != FALSE; }));
    editor.Keys({'D'});
    editor.Keys({VK_RETURN});
    EXPECT_TRUE(shows("d.bas")) << "chosen from the list of all";

    // The menu of a tab is about that tab.
    const auto choose = [&](int tab, int letter) {
        editor.Click(editor.Child(IDC_TABS), editor.TabCentre(tab), MOUSEEVENTF_RIGHTDOWN);
        editor.AwaitMenu(true);
        editor.Keys({letter});
        editor.AwaitMenu(false);
    };
    for (const auto& [letter, text] : {std::pair{'F', folder.File(L"a.bas")}, {'N', std::wstring(L"a.bas")}}) {
        ClipboardEmpty();
        choose(0, letter);
        EXPECT_TRUE(WaitFor([&, text = text] { return ClipboardText() == text; })) << Utf8(ClipboardText());
    }
    editor.Type("x");
    choose(2, 'R');
    EXPECT_TRUE(WaitFor([&] { return Initials(editor) == L"abc"; })) << Utf8(Initials(editor));
    choose(1, 'S');
    EXPECT_TRUE(WaitFor([&] { return Initials(editor) == L"a"; }))
        << "what has changes stays: " << Utf8(Initials(editor));
    editor.Do(IDM_EDIT_UNDO);
    EXPECT_EQ(editor.Close(), 0u);
}

TEST(Tabs, NamesPinsAndClosingAgain) {
    ProgramFolder folder;
    const std::wstring arguments = Files(folder, {L"app\\main.bas", L"lib\\main.bas", L"x.bas"});
    {
        Editor editor(folder, arguments);
        EXPECT_EQ(editor.TabLabel(0) + editor.TabLabel(1) + editor.TabLabel(2), L"main.bas (app)main.bas (lib)x.bas");
        EXPECT_EQ(editor.Title(), folder.File(L"x.bas") + L" - KVXE Editor");
        editor.Do(IDM_TAB_PIN);
        EXPECT_EQ(Initials(editor), L"xmm") << "pinned ones stand first";
        editor.Drag(editor.Child(IDC_TABS), editor.TabCentre(0), {editor.TabCentre(2).x + 30, editor.TabCentre(2).y});
        EXPECT_EQ(Initials(editor), L"xmm") << "and are not dragged behind others";
        editor.Do(IDM_TAB_NUMBER_FIRST + 1);
        editor.Do(IDM_TAB_CLOSE_OTHERS);
        EXPECT_TRUE(WaitFor([&] { return Initials(editor) == L"xm"; })) << Utf8(Initials(editor));
        EXPECT_EQ(editor.TabLabel(1), L"main.bas") << "the only one of its name by now";
        EXPECT_EQ(GetMenuState(GetMenu(editor.main), IDM_TAB_CLOSE_OTHERS, MF_BYCOMMAND) & MF_GRAYED, MF_GRAYED)
            << "only a pinned one is left";
        EXPECT_EQ(editor.Close(), 0u);
    }
    folder.SetIni(L"Editor", L"RestoreLastSession", L"1");
    Editor editor(folder, L"", Until::Started);
    editor.Answer(kRestore, L"", IDYES);
    ASSERT_TRUE(editor.AwaitReady());
    ASSERT_EQ(Initials(editor), L"xm");
    editor.Do(IDM_TAB_NUMBER_FIRST + 1);
    editor.Do(IDM_TAB_CLOSE_OTHERS);
    EXPECT_EQ(Initials(editor), L"xm") << "still pinned";

    // Closed and opened again: place and bookmarks; what was never saved comes back from memory.
    editor.Sci(SCI_GOTOPOS, 3);
    editor.Do(IDM_BOOKMARK_TOGGLE);
    editor.Do(IDM_FILE_CLOSE);
    editor.Do(IDM_FILE_NEW);
    editor.Type("never saved");
    editor.Post(IDM_FILE_CLOSE);
    editor.Answer(kUnsaved, L"Save changes to Untitled?", IDNO);
    EXPECT_TRUE(WaitFor([&] { return Initials(editor) == L"x"; }));
    editor.Do(IDM_TAB_REOPEN);
    EXPECT_EQ(editor.Text(), "never saved");
    editor.Do(IDM_USE_KVXC64);
    const std::wstring compiler = editor.Status(kPartCompiler);
    EXPECT_TRUE(editor.TabLabel(editor.ActiveTab()) == L"Untitled");
    editor.Do(IDM_TAB_REOPEN);
    EXPECT_EQ(editor.TabLabel(1), L"main.bas");
    EXPECT_EQ(editor.ActiveTab(), 1) << "at its old place";
    EXPECT_EQ(editor.Status(kPartCompiler), compiler) << "no other compiler for the rest";
    EXPECT_EQ(editor.Sci(SCI_GETCURRENTPOS), 3);
    EXPECT_NE(editor.Sci(SCI_MARKERGET, 0), 0) << "the bookmark";
    editor.Do(IDM_TAB_REOPEN);  // nothing is left
    EXPECT_EQ(Initials(editor), L"xmU");
    editor.Do(IDM_FILE_SAVE);
    editor.Post(IDM_FILE_EXIT);
    editor.Answer(kUnsaved, L"Untitled has unsaved changes.", IDC_CLOSE_DISCARD);
    EXPECT_EQ(editor.ExitCode(), 0u);
}

TEST(Tabs, OneQuestionAboutTheChangesOfSeveral) {
    ProgramFolder folder;
    Editor editor(folder, Files(folder, {L"a.bas", L"b.bas", L"c.bas"}));
    for (int i = 0; i < 3; ++i) {
        editor.Type("x");
        editor.Do(IDM_NEXT_TAB);
    }
    editor.Post(IDM_FILE_EXIT);
    editor.Press(editor.AwaitDialog(kUnsaved), IDCANCEL);
    EXPECT_EQ(editor.Tabs(), 3);
    EXPECT_EQ(folder.Read(L"a.bas"), "a.bas");

    // Two of them are saved, and the third loses its changes.
    editor.Post(IDM_FILE_CLOSE_ALL);
    const Dialog question = editor.AwaitDialog(kUnsaved);
    EXPECT_TRUE(question.text.starts_with(L"3 documents have unsaved changes.")) << Utf8(question.text);
    const HWND list = GetDlgItem(question.window, IDC_CLOSE_LIST);
    EXPECT_EQ(editor.CellOf(list, 1, 0), L"b.bas");
    const auto tick = [&](int row) {
        LVITEMW item = {};
        item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
        for (int i = 0; i < 3; ++i) {
            item.state = i == row ? item.stateMask : 0;
            editor.Ask(list, LVM_SETITEMSTATE, static_cast<WPARAM>(i), item);
        }
        editor.Send(list, WM_KEYDOWN, VK_SPACE);
    };
    const HWND save = GetDlgItem(question.window, IDC_CLOSE_SAVE);
    for (const int row : {0, 1, 2}) tick(row);
    EXPECT_FALSE(IsWindowEnabled(save)) << "nothing is ticked";
    for (const int row : {0, 2}) tick(row);
    EXPECT_TRUE(IsWindowEnabled(save));
    editor.Press(question, IDC_CLOSE_SAVE);
    EXPECT_TRUE(WaitFor([&] { return editor.Tabs() == 0; })) << editor.Describe();
    EXPECT_EQ(folder.Read(L"a.bas") + folder.Read(L"b.bas") + folder.Read(L"c.bas"), "xa.basb.basxc.bas");

    // A save that fails keeps everything open.
    editor.Do(IDM_TAB_REOPEN);
    editor.Type("y");
    SetFileAttributesW((folder.path + editor.TabLabel(0)).c_str(), FILE_ATTRIBUTE_READONLY);
    editor.Do(IDM_TAB_REOPEN);
    editor.Type("y");
    editor.Post(IDM_FILE_CLOSE_ALL);
    editor.Press(editor.AwaitDialog(kUnsaved), IDC_CLOSE_SAVE);
    editor.Answer(kProgramTitle, L"Failed to save file: ", IDCANCEL);
    EXPECT_EQ(editor.Tabs(), 2);
    editor.Post(IDM_FILE_EXIT);
    editor.Press(editor.AwaitDialog(kUnsaved), IDC_CLOSE_DISCARD);
    EXPECT_EQ(editor.ExitCode(), 0u);
}

TEST(Tabs, AStripWithoutRoomScrolls) {
    ProgramFolder folder;
    std::wstring arguments;
    for (int i = 10; i < 34; ++i) {
        const std::wstring name = L"a_rather_long_name_" + std::to_wstring(i) + L".bas";
        arguments += OpenArgument(folder.Write(name, Utf8(name)));
    }
    Editor editor(folder, arguments);
    const HWND strip = editor.Child(IDC_TABS);
    RECT client = {};
    GetClientRect(strip, &client);
    const auto isWhole = [&](int index) {
        const RECT tab = editor.TabRect(index);
        return tab.left >= 0 && tab.right <= client.right - 24;
    };
    ASSERT_TRUE(isWhole(23)) << "the active one";
    EXPECT_FALSE(isWhole(0));
    const int narrow = editor.TabRect(5).right - editor.TabRect(5).left;
    EXPECT_GT(editor.TabRect(23).right - editor.TabRect(23).left, narrow) << "it shows its whole name";
    for (int i = 0; i < 40; ++i) editor.Send(strip, WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA), 0);
    EXPECT_TRUE(isWhole(0)) << "by the wheel";
    EXPECT_EQ(editor.ActiveTab(), 23) << "which shows no other document";
    editor.Click(strip, editor.TabCentre(1));
    EXPECT_TRUE(WaitFor([&] { return editor.ActiveTab() == 1; }));
    editor.Do(IDM_TAB_LAST);
    EXPECT_TRUE(isWhole(23));

    // The keys of the strip itself.
    editor.Do(IDM_PREVIOUS_PANE);
    EXPECT_TRUE(WaitFor([&] { return editor.Focus() == strip; })) << editor.Describe();
    editor.Keys({VK_HOME});
    EXPECT_TRUE(WaitFor([&] { return editor.ActiveTab() == 0 && isWhole(0) && editor.Focus() == strip; }));
    editor.Keys({VK_CONTROL, VK_SHIFT, VK_RIGHT});
    EXPECT_TRUE(WaitFor([&] { return editor.TabLabel(1) == L"a_rather_long_name_10.bas"; })) << "moved";
    editor.Keys({VK_APPS});
    ASSERT_TRUE(editor.AwaitMenu(true));
    editor.Keys({'P'});
    EXPECT_TRUE(WaitFor([&] { return editor.TabLabel(0) == L"a_rather_long_name_10.bas"; })) << "pinned by its menu";
    EXPECT_EQ(editor.Close(), 0u);
}

}  // namespace
