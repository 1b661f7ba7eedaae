// The debug pane in the real program, over real programs under the debugger: what each view shows at a stop, what can be
// changed in it, how it is worked by keys.
#include "debug_driver.h"

#include "editor/margins.h"

namespace {

using namespace debug_driver;

const std::string kSource = std::string(kTwice) +
                            "FUNCTION PBMAIN () AS LONG\r\n"          // 6
                            "    LOCAL i AS LONG, total AS LONG\r\n"  // 7
                            "    FOR i = 1 TO 300\r\n"                // 8
                            "        total = total + Twice(i)\r\n"    // 9
                            "    NEXT i\r\n"                          // 10
                            "    FUNCTION = total\r\n"                // 11
                            "END FUNCTION\r\n";

// The session of these tests: over kSource.
struct Session : debug_driver::Session {
    explicit Session(const std::wstring& compiler = L"kvxa64")
        : debug_driver::Session(L"twice.bas", kSource, compiler) {}
};

bool HasLine(const std::wstring& text, const std::wstring& part) { return text.find(part) != std::wstring::npos; }

// Row of the disassembly that the instruction of a line's start stands in, or -1.
int FirstInstructionOf(const Session& session, const std::wstring& source) {
    const int row = session.RowOf(0, source);
    return row < 0 ? -1 : row + 1;
}

TEST(DebugPane, ViewsFollowTheStop) {
    const struct {
        const wchar_t *compiler, *pointer;
        int digits;
    } cases[] = {{L"kvxa64", L"RIP", 12}, {L"kvxa32", L"EIP", 8}};
    for (const auto& each : cases) {
        SCOPED_TRACE(Utf8(each.compiler));
        const Session session(each.compiler);
        ASSERT_TRUE(session.Start()) << session.editor.Describe();
        session.CaretTo(4);
        session.editor.Do(IDM_DEBUG_BREAKPOINT);  // on line 4
        session.RunToLine(3);
        session.Select(kStack);
        ASSERT_TRUE(session.Await(L"|twice.bas:3  result = n + n|")) << Utf8(session.All());
        EXPECT_TRUE(HasLine(session.All(), L"1|")) << "the caller";
        EXPECT_TRUE(HasLine(session.All(), L"twice.bas:9  total = total + Twice(i)|")) << Utf8(session.All());

        session.Select(kRegisters);
        ASSERT_TRUE(session.Await(std::wstring(each.pointer) + L"|"));
        EXPECT_EQ(session.Cell(session.RowOf(0, each.pointer), 2), L"twice.bas:3");
        const std::wstring address = session.Register(each.pointer);

        session.Select(kDisassembly);
        ASSERT_TRUE(session.Await(L"3: result = n + n"));
        const int row = FirstInstructionOf(session, L"3: result = n + n");
        EXPECT_EQ(session.Cell(row, 0), address.substr(address.size() - static_cast<std::size_t>(each.digits)));
        EXPECT_TRUE(session.Cell(FirstInstructionOf(session, L"4: FUNCTION = result"), 1).starts_with(L"8B"))
            << "a breakpoint's byte is not the program's: " << Utf8(session.All());
        EXPECT_EQ(session.PaneListRow(), row);

        session.Select(kThreads);
        ASSERT_TRUE(session.Await(L"|Main, shown|")) << Utf8(session.All());
        EXPECT_TRUE(HasLine(session.All(), L"|twice.bas:3\n"));

        // The next stop, with the view left as it is.
        session.editor.Do(IDM_DEBUG_STEP_OVER);
        EXPECT_TRUE(session.Await(L"|twice.bas:4\n")) << Utf8(session.All());
        session.Select(kDisassembly);
        EXPECT_TRUE(WaitFor([&] {
            return session.PaneListRow() == FirstInstructionOf(session, L"4: FUNCTION = result");
        })) << Utf8(session.All());

        session.editor.Do(IDM_DEBUG_STOP);
        EXPECT_TRUE(WaitFor([&] { return session.Rows() == 0; })) << "an ended program has no code to show";
    }
}

TEST(DebugPane, RegistersTakeValues) {
    const Session session;
    ASSERT_TRUE(session.Start()) << session.editor.Describe();
    session.editor.Foreground();
    session.Select(kRegisters);
    ASSERT_TRUE(session.Await(L"R12|"));
    const int row = session.RowOf(0, L"R12");
    session.SelectRow(row);
    session.Key(session.List(), VK_F2);
    session.Enter(L"nonsense");
    EXPECT_TRUE(WaitFor([&] { return HasLine(session.editor.Status(), L"nonsense"); }))
        << Utf8(session.editor.Status());
    session.Enter(L"0xAB0+12");
    EXPECT_TRUE(WaitFor([&] { return session.Register(L"R12") == L"0000000000000ABC"; }))
        << Utf8(session.Register(L"R12"));
    EXPECT_EQ(session.Cell(row, 2), L"2748");
    EXPECT_EQ(session.Field(), nullptr);
    session.editor.Do(IDM_DEBUG_STEP_OVER);
    session.editor.Do(IDM_DEBUG_REGISTERS);  // as the engine reads them, after the program went on with it
    EXPECT_TRUE(session.editor.AwaitOutput(L"R12=0000000000000ABC"));

    session.SelectRow(session.RowOf(0, L"RIP"));
    session.Key(session.List(), VK_F2);
    session.Key(session.List(), VK_RETURN);
    EXPECT_EQ(session.Field(), nullptr) << "the instruction pointer is not for editing";
    session.SelectRow(row);
    session.Key(session.List(), VK_RETURN);
    session.editor.Send(session.Field(), WM_CHAR, L'7', 1);
    session.Key(session.Field(), VK_ESCAPE);
    EXPECT_EQ(session.Register(L"R12"), L"0000000000000ABC") << "Escape drops what was typed";
}

TEST(DebugPane, WatchesShowAndWriteMemory) {
    const Session session;
    session.editor.Foreground();
    session.Select(kWatches);
    ASSERT_TRUE(session.Await(L"Type an address here"));
    // One after the other, as fast as they can be typed.
    for (const wchar_t* expression : {L"RBP-4", L"RBP-8", L"RBP-12", L"RBP-16", L"RBP-24", L"16", L"RBP-"})
        session.AddWatch(expression);
    ASSERT_TRUE(WaitFor([&] { return session.Rows() == 8; })) << Utf8(session.All());
    EXPECT_EQ(session.Cell(0, 2), L"") << "there is no program";
    ASSERT_TRUE(session.Start()) << session.editor.Describe();
    session.RunToLine(11);  // the loop is over: total is 300 * 301
    ASSERT_TRUE(session.Await(L"|90300 (0x000160BC)|")) << Utf8(session.All());
    EXPECT_TRUE(HasLine(session.All(), L"16|LONG|<unreadable>: the program has no memory at 0x10|"));
    EXPECT_FALSE(session.Cell(6, 2).empty()) << "an expression that is none says why";
    EXPECT_EQ(session.Cell(6, 2).find(L"0x"), std::wstring::npos);

    const int total = session.RowOf(2, L"90300 (0x000160BC)");
    session.SelectRow(total);
    session.Key(session.List(), VK_RETURN);
    session.Enter(L"99999999999");
    EXPECT_TRUE(WaitFor([&] { return HasLine(session.editor.Status(), L"32 bits"); })) << Utf8(session.editor.Status());
    session.Enter(L"-7");
    EXPECT_TRUE(WaitFor([&] { return session.Cell(total, 2) == L"-7 (0xFFFFFFF9)"; })) << Utf8(session.All());
    // A number that is shown rounded stays what it is when its field is left as it was.
    session.SelectRow(4);
    session.ChooseKind(4, 1);
    EXPECT_TRUE(WaitFor([&] { return session.Cell(4, 1) == L"QUAD"; })) << Utf8(session.All());
    session.Key(session.List(), VK_RETURN);
    session.Enter(L"0x3FF0000000000001");
    session.ChooseKind(4, 3);
    EXPECT_TRUE(WaitFor([&] { return session.Cell(4, 2) == L"1"; })) << Utf8(session.All());
    session.Key(session.List(), VK_RETURN);
    session.Enter(L"1");
    session.ChooseKind(4, 1);
    EXPECT_TRUE(WaitFor([&] { return session.Cell(4, 2).ends_with(L"(0x3FF0000000000001)"); })) << Utf8(session.All());

    session.SelectRow(6);
    session.Key(session.List(), VK_DELETE);
    EXPECT_TRUE(WaitFor([&] { return session.Rows() == 7; }));
    session.editor.Do(IDM_DEBUG_CONTINUE);
    EXPECT_TRUE(WaitFor([&] { return session.editor.Status() == L"Exited with code -7"; }))
        << Utf8(session.editor.Status());

    // The list outlives its program; an address alone is no value.
    EXPECT_TRUE(IsWindowVisible(session.pane)) << "the user had it open before the session";
    EXPECT_TRUE(WaitFor([&] { return session.Rows() == 7 && session.Cell(total, 2).empty(); })) << Utf8(session.All());
    EXPECT_EQ(session.Cell(5, 0), L"16");
}

TEST(DebugPane, MemoryIsTypedOver) {
    const Session session;
    ASSERT_TRUE(session.Start()) << session.editor.Describe();
    session.RunToLine(4);  // the first turn: result is 2
    session.editor.Foreground();
    session.Select(kMemory);
    const auto text = [&] { return session.editor.TextOf(session.Memory()); };
    ASSERT_TRUE(WaitFor([&] { return !text().empty(); })) << "the stack is shown without asking";
    session.GoTo(L"RBP-8");
    ASSERT_TRUE(WaitFor([&] { return text().substr(12).starts_with(L" 02 00 00 00 "); })) << Utf8(text());
    const std::wstring first = text().substr(0, 12);

    session.editor.Send(session.Memory(), WM_VSCROLL, SB_LINEDOWN);
    EXPECT_EQ(std::stoull(text().substr(0, 12), nullptr, 16), std::stoull(first, nullptr, 16) + 16);
    session.editor.Send(session.Memory(), WM_VSCROLL, SB_LINEUP);
    session.editor.Send(session.Memory(), WM_MOUSEWHEEL, static_cast<WPARAM>(WHEEL_DELTA << 16));
    EXPECT_EQ(std::stoull(text().substr(0, 12), nullptr, 16), std::stoull(first, nullptr, 16) - 48);

    session.GoTo(L"16");
    EXPECT_TRUE(WaitFor([&] { return HasLine(text(), L"000000000010 ?? ??"); })) << Utf8(text());
    session.editor.Send(session.Memory(), WM_CHAR, L'1', 1);
    EXPECT_TRUE(HasLine(session.editor.Status(), L"cannot be written")) << Utf8(session.editor.Status());
    session.GoTo(L"no such");
    session.Select(kStack);  // and back: what is shown is read anew
    session.Select(kMemory);
    EXPECT_EQ(session.editor.TextOf(session.Address()), L"no such");
    EXPECT_TRUE(text().starts_with(L"000000000010 ")) << Utf8(text());
    session.GoTo(L"RBP-8");
    ASSERT_TRUE(WaitFor([&] { return text().starts_with(first); })) << Utf8(text());
    for (const wchar_t digit : {L'0', L'5', L'g'}) session.editor.Send(session.Memory(), WM_CHAR, digit, 1);
    EXPECT_TRUE(text().starts_with(first + L" 05 00 00 00 ")) << Utf8(text());
    session.editor.Do(IDM_DEBUG_CONTINUE);
    EXPECT_TRUE(WaitFor([&] { return session.editor.Status() == L"Exited with code 90303"; }))
        << Utf8(session.editor.Status());
}

TEST(DebugPane, BreakpointsAreWorkedFromTheirList) {
    const Session session;
    // Without a program each view says how to begin.
    for (const Tab tab : {kStack, kRegisters, kMemory, kThreads, kDisassembly}) {
        session.Select(tab);
        EXPECT_TRUE(WaitFor([&] { return HasLine(session.editor.TextOf(session.pane), L"Start debugging with"); }))
            << tab;
        EXPECT_FALSE(IsWindowVisible(session.List())) << tab;
        EXPECT_FALSE(IsWindowVisible(session.Memory())) << tab;
    }
    session.Select(kBreakpoints);
    EXPECT_TRUE(WaitFor([&] { return HasLine(session.editor.TextOf(session.pane), L"No breakpoints"); }));
    for (const int line : {2, 4, 9}) {
        session.CaretTo(line);
        session.editor.Do(IDM_DEBUG_BREAKPOINT);
    }
    ASSERT_TRUE(WaitFor([&] { return session.Rows() == 3; })) << Utf8(session.All());
    EXPECT_EQ(session.Cell(1, 0), L"twice.bas:4");
    EXPECT_EQ(session.Checked(1), 2);
    ASSERT_TRUE(session.Start()) << session.editor.Describe();
    EXPECT_TRUE(WaitFor([&] { return session.Cell(1, 3) == L"Active"; })) << Utf8(session.All());
    EXPECT_TRUE(session.Cell(0, 3).starts_with(L"No code on this line")) << Utf8(session.All());

    session.editor.Foreground();
    session.SelectRow(1);
    session.Key(session.List(), VK_F2);
    session.Enter(L"1==1" + std::wstring(60, L' '));
    EXPECT_NE(session.Field(), nullptr) << "64 bytes are too many";
    session.Enter(L"1==1");
    EXPECT_TRUE(WaitFor([&] { return session.Cell(1, 1) == L"1==1"; })) << Utf8(session.All());
    session.SelectRow(2);
    session.Key(session.List(), VK_SPACE);
    EXPECT_TRUE(WaitFor([&] { return session.Cell(2, 3) == L"Disabled" && session.Checked(2) == 1; }))
        << Utf8(session.All());
    session.editor.Do(IDM_DEBUG_CONTINUE);
    EXPECT_TRUE(WaitFor([&] { return session.editor.Status() == L"Stopped at twice.bas:4"; }))
        << "line 9 comes first and is off: " << Utf8(session.editor.Status());
    EXPECT_TRUE(WaitFor([&] { return session.Cell(1, 2) == L"1"; })) << Utf8(session.All());

    session.SelectRow(2);
    session.Key(session.List(), VK_RETURN);
    EXPECT_TRUE(WaitFor([&] { return session.editor.Line() == 9; }));
    session.SelectRow(0);
    session.Key(session.List(), VK_DELETE);
    EXPECT_TRUE(WaitFor([&] { return session.Rows() == 2 && session.Cell(0, 0) == L"twice.bas:4"; }))
        << Utf8(session.All());
    EXPECT_EQ(session.editor.Sci(SCI_MARKERGET, 1) & (1 << kMarkBreakpoint), 0) << "its marker is gone";
}

TEST(DebugPane, KeysAloneWorkIt) {
    const Session session;
    ASSERT_TRUE(session.Start()) << session.editor.Describe();
    session.Select(kStack);
    ASSERT_TRUE(session.Await(L"twice.bas"));
    session.editor.Foreground();
    session.editor.Click(session.Tabs(), {10, 10});  // the first tab, and the focus into its view
    const auto selected = [&] { return static_cast<int>(session.editor.Send(session.Tabs(), TCM_GETCURSEL)); };
    const auto focus = [&](HWND window) { return WaitFor([&] { return session.editor.Focus() == window; }); };
    EXPECT_TRUE(WaitFor([&] { return selected() == kBreakpoints; }));
    EXPECT_TRUE(focus(session.Tabs())) << "there are no breakpoints: the row of tabs is all that can have it";
    for (int i = 0; i < kMemory; ++i) session.editor.Keys({VK_RIGHT});
    EXPECT_TRUE(WaitFor([&] { return selected() == kMemory; })) << selected();
    session.editor.Keys({VK_TAB});
    EXPECT_TRUE(focus(session.Address()));
    session.editor.Keys({VK_TAB});
    EXPECT_TRUE(focus(session.Memory()));
    session.editor.Keys({VK_TAB});
    EXPECT_TRUE(focus(session.Tabs()));
    session.editor.Keys({VK_SHIFT, VK_TAB});
    EXPECT_TRUE(focus(session.Memory()));
    session.editor.Keys({VK_ESCAPE});
    EXPECT_TRUE(focus(session.editor.Sci()));
}

TEST(DebugPane, WhileTheProgramRunsTheLastStopStays) {
    const Session session;
    session.folder.Write(L"endless.bas",
                         "FUNCTION PBMAIN () AS LONG\r\n    LOCAL i AS LONG\r\n    DO\r\n        SLEEP 1\r\n"
                         "        i = i + 1\r\n    LOOP UNTIL i < 0\r\nEND FUNCTION\r\n");
    session.editor.Post(IDM_FILE_OPEN);
    session.editor.AnswerFileDialog(session.folder.File(L"endless.bas"));
    ASSERT_TRUE(WaitFor([&] { return session.editor.Tabs() == 2; }));
    session.editor.Do(IDM_USE_KVXA64);
    session.editor.Do(IDM_DEBUG_BUILD_START);
    ASSERT_TRUE(
        WaitFor([&] { return session.editor.Status().starts_with(L"Stopped at endless.bas:"); }, kBuildDeadline));
    session.Select(kRegisters);
    ASSERT_TRUE(session.Await(L"|endless.bas:1|"));
    const std::wstring stopped = session.All();
    session.editor.Do(IDM_DEBUG_CONTINUE);
    ASSERT_TRUE(WaitFor([&] { return session.editor.Status() == L"Running"; })) << Utf8(session.editor.Status());
    EXPECT_EQ(session.All(), stopped);
    session.Key(session.List(), VK_F2);
    EXPECT_EQ(session.Field(), nullptr) << "a running program's registers are not for editing";
    session.Select(kThreads);
    EXPECT_TRUE(WaitFor([&] { return session.editor.TextOf(session.pane) == L"Running..."; }))
        << Utf8(session.editor.TextOf(session.pane)) << Utf8(session.All());
    session.editor.Do(IDM_DEBUG_PAUSE);
    EXPECT_TRUE(session.Await(L"|Main")) << "the view that is shown reads at the stop";
}

}  // namespace
