// What leaves the panes by the clipboard, and the menus of the debug pane's views.
#include "debug_driver.h"

namespace {

using namespace debug_driver;

const std::string kSource = std::string(kTwice) +
                            "FUNCTION PBMAIN () AS LONG\r\n"  // 6
                            "    LOCAL total AS LONG\r\n"     // 7
                            "    total = Twice(21)\r\n"       // 8
                            "    FUNCTION = total\r\n"        // 9
                            "END FUNCTION\r\n";

struct MenuSession : Session {
    MenuSession() : Session(L"twice.bas", kSource, L"kvxa64") {}

    std::wstring RowText(int row) const {  // cells with a tab between them
        const auto header = reinterpret_cast<HWND>(editor.Send(List(), LVM_GETHEADER));
        const auto columns = static_cast<int>(editor.Send(header, HDM_GETITEMCOUNT));
        std::wstring text;
        for (int i = 0; i < columns; ++i) text += (i > 0 ? L"\t" : L"") + Cell(row, i);
        return text;
    }
    void ClickRow(int row) const {  // right of what marks it
        const POINT place = Place(row, 0);
        editor.Click(List(), {place.x + 30, place.y});
        EXPECT_TRUE(WaitFor([&] { return PaneListRow() == row && editor.Focus() == List(); }))
            << "row " << row << ", selected: " << PaneListRow();
    }
    std::wstring MemoryRow(int row) const {
        std::wstring text = editor.TextOf(Memory());
        for (; row > 0; --row) text.erase(0, text.find(L'\n') + 1);
        return text.substr(0, text.find(L'\r'));
    }
};

// The text that an action puts on the clipboard.
template <typename Action>
std::wstring Copied(const Action& action) {
    ClipboardEmpty();
    action();
    std::wstring text;
    EXPECT_TRUE(WaitFor([&] { return !(text = ClipboardText()).empty(); })) << "nothing was copied";
    return text;
}

TEST(DebugMenus, TheSelectedRowIsCopied) {
    const MenuSession session;
    session.CaretTo(4);
    session.editor.Do(IDM_DEBUG_BREAKPOINT);
    ASSERT_TRUE(session.Start()) << session.editor.Describe();
    session.RunToLine(3);
    const struct {
        Tab tab;
        const wchar_t* awaited;
        int row, columns;
    } cases[] = {{kBreakpoints, L"twice.bas:4||", 0, 4}, {kStack, L"twice.bas:8", 1, 3}, {kRegisters, L"RCX|", 2, 3},
                 {kWatches, L"RBP-8|LONG|", 0, 3},       {kThreads, L"|Main", 0, 4},     {kDisassembly, L"3: ", 1, 3}};
    session.Select(kWatches);
    ASSERT_TRUE(WaitFor([&] { return session.Rows() == 1; }));
    session.editor.Foreground();
    session.AddWatch(L"RBP-8");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tab);
        session.Select(c.tab);
        ASSERT_TRUE(session.Await(c.awaited)) << Utf8(session.All());
        const int first = c.tab == kDisassembly ? session.RowOf(0, L"3: result = n + n") : 0;
        session.ClickRow(first + c.row);
        const std::wstring expected = session.RowText(first + c.row);
        const std::wstring text = Copied([&] { session.editor.Keys({VK_CONTROL, 'C'}); });
        EXPECT_EQ(Utf8(text), Utf8(expected));
        EXPECT_EQ(Count(text, L"\t"), c.columns - 1);
        const auto lit = [&](int command) { return session.editor.ButtonWorks(command); };
        EXPECT_TRUE(WaitFor([&] { return lit(IDM_EDIT_COPY) && !lit(IDM_EDIT_CUT) && !lit(IDM_EDIT_UNDO); }));
        EXPECT_EQ(Copied([&] { session.editor.Do(IDM_EDIT_COPY); }), text) << "by the Edit menu";
    }
    // An item of the row's menu for each view that has no test of its menu alone.
    const auto shown = [&](Tab tab) { return session.editor.Send(session.Tabs(), TCM_GETCURSEL) == tab; };
    const auto address = [&] { return session.editor.TextOf(session.Address()); };
    const struct {
        Tab tab;
        const wchar_t* name;
        int column, letter;
        std::function<bool()> done;
    } menus[] = {
        {kStack, L"1", 0, 'G', [&] { return session.editor.Line() == 8; }},
        {kThreads, L"Main, shown", 1, 'G', [&] { return session.editor.Line() == 3; }},
        {kStack, L"1", 0, 'D', [&] { return shown(kDisassembly); }},
        {kLocals, L"total", 0, 'N', [&] { return session.Field() != nullptr; }},
        {kRegisters, L"RBX", 0, 'M', [&] { return shown(kMemory) && address().starts_with(L"0x"); }},
    };
    for (const auto& menu : menus) {
        SCOPED_TRACE(menu.tab);
        session.Select(menu.tab);
        ASSERT_TRUE(WaitFor([&] { return session.RowOf(menu.column, menu.name) >= 0; })) << Utf8(session.All());
        session.ChooseByMouse(session.List(), session.Place(session.RowOf(menu.column, menu.name), 0), {menu.letter});
        EXPECT_TRUE(WaitFor(menu.done)) << Utf8(session.All()) << Utf8(address());
    }
    session.Select(kMemory);
    session.GoTo(L"RBP-8");
    session.editor.Click(session.Memory(), {10, 8});
    ASSERT_TRUE(WaitFor([&] { return session.editor.Focus() == session.Memory(); }));
    session.editor.Keys({VK_DOWN});
    const std::wstring text = Copied([&] { session.editor.Keys({VK_CONTROL, 'C'}); });
    EXPECT_EQ(Utf8(text), Utf8(session.MemoryRow(1)));
    EXPECT_EQ(Copied([&] { session.editor.Do(IDM_EDIT_COPY); }), text) << "by the Edit menu";
}

TEST(DebugMenus, TheOutputIsCopied) {
    const MenuSession session;
    const Editor& editor = session.editor;
    editor.Do(IDM_BUILD);
    ASSERT_TRUE(editor.AwaitOutput(L"--- Build succeeded", kBuildDeadline));
    ASSERT_TRUE(WaitFor([&] { return editor.Output().ends_with(L"\n"); }));
    const HWND pane = editor.Child(IDC_OUTPUT);
    editor.Foreground();
    editor.Click(pane, {40, 8});
    ASSERT_TRUE(WaitFor([&] { return editor.Focus() == pane; }));
    const std::wstring output = editor.Output();
    std::wstring whole;
    for (const wchar_t c : output) whole += c == L'\n' ? L"\r\n" : std::wstring(1, c);
    session.ChooseByKeys('A');
    EXPECT_EQ(Utf8(Copied([&] { editor.Keys({VK_CONTROL, 'C'}); })), Utf8(whole));

    const std::wstring part = L"Source: " + session.folder.File(session.sourceName);
    const std::size_t at = output.find(part);
    ASSERT_NE(at, std::wstring::npos) << Utf8(output);
    const auto select = [&] { editor.Send(pane, EM_SETSEL, at, static_cast<LPARAM>(at + part.size())); };
    select();
    EXPECT_EQ(Utf8(Copied([&] { session.ChooseByKeys('C'); })), Utf8(part));
    select();
    EXPECT_EQ(Utf8(Copied([&] { editor.Do(IDM_EDIT_COPY); })), Utf8(part)) << "the menu's copies where the keyboard is";
    session.ChooseByKeys('L');
    EXPECT_TRUE(WaitFor([&] { return editor.Output().empty(); })) << Utf8(editor.Output());
}

TEST(DebugMenus, OfTheWatches) {
    const MenuSession session;
    session.Select(kWatches);
    ASSERT_TRUE(WaitFor([&] { return session.Rows() == 1; }));
    session.editor.Foreground();
    session.ChooseByMouse(session.List(), session.Place(0, 0), {'A'});
    session.Enter(L"RBP-4");
    ASSERT_TRUE(WaitFor([&] { return session.Rows() == 2; })) << Utf8(session.All());
    session.AddWatch(L"RBP-32");
    ASSERT_TRUE(WaitFor([&] { return session.Rows() == 3; })) << Utf8(session.All());
    ASSERT_TRUE(session.Start()) << session.editor.Describe();
    session.RunToLine(4);

    session.SelectRow(0);
    session.ChooseByMouse(session.List(), session.Place(1, 0),
                          {VK_DOWN, VK_DOWN, VK_DOWN, VK_DOWN, VK_RETURN});  // the row under the mouse
    EXPECT_TRUE(WaitFor([&] { return session.Cell(1, 1) == L"QUAD"; })) << Utf8(session.All());
    EXPECT_EQ(session.Cell(0, 1), L"LONG");
    session.SelectRow(0);
    POINT place = session.Place(1, 0);
    ClientToScreen(session.List(), &place);  // asked for at a place, whatever is selected
    PostMessageW(session.List(), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(session.List()),
                 MAKELPARAM(place.x, place.y));
    session.editor.AwaitMenu(true);
    session.editor.Keys({'E'});
    session.editor.AwaitMenu(false);
    session.Enter(L"RBP-24");
    EXPECT_TRUE(WaitFor([&] { return session.Cell(1, 0) == L"RBP-24"; })) << Utf8(session.All());
    session.ChooseByMouse(session.List(), session.Place(1, 0), {'V'});
    session.Enter(L"0x123456789A");
    EXPECT_TRUE(WaitFor([&] { return session.Cell(1, 2) == L"78187493530 (0x000000123456789A)"; }))
        << Utf8(session.All());
    session.SelectRow(0);
    session.ChooseByKeys('R');  // the selected row
    EXPECT_TRUE(WaitFor([&] { return session.Rows() == 2 && session.Cell(0, 0) == L"RBP-24"; })) << Utf8(session.All());
}

TEST(DebugMenus, OfTheMemory) {
    const MenuSession session;
    ASSERT_TRUE(session.Start()) << session.editor.Describe();
    session.RunToLine(3);
    session.Select(kMemory);
    session.editor.Foreground();
    session.GoTo(L"RBP");
    ASSERT_TRUE(
        WaitFor([&] { return session.editor.TextOf(session.Address()) == L"RBP" && !session.MemoryRow(0).empty(); }));
    session.Select(kRegisters);
    ASSERT_TRUE(session.Await(L"RBP|"));
    const std::wstring frame = session.Register(L"RBP");
    session.Select(kMemory);
    ASSERT_TRUE(WaitFor([&] { return session.MemoryRow(0).starts_with(frame.substr(4)); }))
        << Utf8(session.MemoryRow(0));

    // The row under the mouse.
    RECT client{};
    GetClientRect(session.Memory(), &client);
    const std::wstring start = session.MemoryRow(0);
    const std::wstring copied = Copied([&] {
        session.ChooseByMouse(session.Memory(), {client.right / 3, client.bottom / 2}, {'C'});
    });
    EXPECT_NE(copied, start);
    EXPECT_EQ(Count(session.editor.TextOf(session.Memory()), copied), 1) << Utf8(copied);

    // What the frame pointer points to is that of the caller, which lies above it.
    session.editor.Keys({VK_CONTROL, VK_HOME});
    std::wstring caller;
    for (int i = 5; i >= 0; --i) caller += start.substr(static_cast<std::size_t>(13 + 3 * i), 2);
    session.ChooseByKeys('F');
    EXPECT_TRUE(WaitFor([&] { return session.MemoryRow(0).starts_with(caller + L" "); }))
        << Utf8(caller) << " in " << Utf8(start) << ", shown " << Utf8(session.MemoryRow(0));
    EXPECT_EQ(std::stoull(session.editor.TextOf(session.Address()), nullptr, 16), std::stoull(caller, nullptr, 16));
    EXPECT_GT(caller, frame.substr(4));

    session.editor.Send(session.Memory(), WM_VSCROLL, SB_PAGEDOWN);
    ASSERT_FALSE(session.MemoryRow(0).starts_with(caller));
    session.ChooseByKeys('B');
    EXPECT_TRUE(WaitFor([&] { return session.MemoryRow(0).starts_with(caller + L" "); })) << Utf8(session.MemoryRow(0));
}

TEST(DebugMenus, OfTheBreakpoints) {
    const MenuSession session;
    for (const int line : {3, 4, 9}) {
        session.CaretTo(line);
        session.editor.Do(IDM_DEBUG_BREAKPOINT);
    }
    session.Select(kBreakpoints);
    ASSERT_TRUE(WaitFor([&] { return session.Rows() == 3; })) << Utf8(session.All());
    session.editor.Foreground();
    const auto choose = [&](char letter) {
        const POINT place = session.Place(1, 0);
        session.ChooseByMouse(session.List(), {place.x + 30, place.y}, {letter});
    };
    choose('D');
    EXPECT_TRUE(WaitFor([&] { return session.Checked(1) == 1; })) << Utf8(session.All());
    choose('E');
    EXPECT_TRUE(WaitFor([&] { return session.Checked(1) == 2; })) << Utf8(session.All());
    choose('C');
    session.Enter(L"1==1");
    EXPECT_TRUE(WaitFor([&] { return session.Cell(1, 1) == L"1==1"; })) << Utf8(session.All());
    choose('G');
    EXPECT_TRUE(WaitFor([&] { return session.editor.Line() == 4; })) << session.editor.Line();

    // The mouse alone.
    session.editor.Click(session.List(), session.Place(2, 0));
    EXPECT_TRUE(WaitFor([&] { return session.Checked(2) == 1; })) << "a click on its box switches it off";
    EXPECT_EQ(session.Checked(0), 2);
    session.editor.Click(session.List(), session.Place(2, 1));
    session.Enter(L"2>1");
    EXPECT_TRUE(WaitFor([&] { return session.Cell(2, 1) == L"2>1"; })) << Utf8(session.All());
    const POINT place = session.Place(0, 0);
    session.editor.Click(session.List(), {place.x + 30, place.y}, MOUSEEVENTF_LEFTDOWN, 2);
    EXPECT_TRUE(WaitFor([&] { return session.editor.Line() == 3; })) << session.editor.Line();
    EXPECT_EQ(session.Checked(0), 2) << "a double-click on its name is no click on its box";

    session.SelectRow(1);
    choose('R');
    EXPECT_TRUE(WaitFor([&] { return session.Rows() == 2 && session.Cell(1, 0) == L"twice.bas:9"; }))
        << Utf8(session.All());
    choose('A');
    EXPECT_TRUE(WaitFor([&] { return session.Rows() == 0; })) << Utf8(session.All());
}

}  // namespace
