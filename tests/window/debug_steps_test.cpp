// The two ways to step, through the samples: to the next line by address, and where the program goes.
#include "debug_driver.h"

#include <gtest/gtest.h>

namespace {

using namespace debug_driver;

struct Case {
    const wchar_t *compiler, *kind;  // the kind of source whose compiler it is
    bool x64, traps;
};

class StepsFollow : public ::testing::TestWithParam<Case> {
protected:
    void SetUp() override {
        if (!GetParam().x64 && !Variable(L"KVX_NO_WINE32").empty()) GTEST_SKIP() << "no 32-bit Wine";
    }
    static std::string Sample(const wchar_t* name) {
        const std::string_view root = KVX_ROOT_DIR;
        return ReadBytes(std::wstring(root.begin(), root.end()) + L"/samples/" + name).value_or("");
    }
    static bool StartHere(const Session& session) {
        session.editor.Do(IDM_DEBUG_START);
        return WaitFor([&] { return session.editor.Status().starts_with(L"Stopped at " + session.sourceName); },
                       kBuildDeadline);
    }
    static int Step(const Session& session, int command) {
        const std::wstring before = session.editor.Output();
        session.editor.Do(command);
        WaitFor([&] { return session.editor.Output().size() > before.size(); });
        WaitFor([&] { return session.editor.Status().starts_with(L"Stopped at "); });
        return static_cast<int>(session.editor.Sci(SCI_MARKERNEXT, 0, 1 << kMarkCurrent)) + 1;
    }
};

constexpr wchar_t kHint[] = L"Debug > Steps Follow the Program.";

TEST_P(StepsFollow, EveryLineInTheOrderOfTheProgram) {
    const Session session(std::wstring(L"steps.") + GetParam().kind, Sample(L"steps.bas"), GetParam().compiler);
    const std::wstring exit = L"Exited with code 3";
    ASSERT_TRUE(StartHere(session));
    std::vector<int> byAddress = session.StepOverToTheEnd(exit);
    std::vector<int> followed = {12, 13, 14, 15, 16, 12, 13, 14, 15, 16, 12, 13, 14, 15, 16, 12, 18, 20,
                                 22, 26, 27, 28, 29, 33, 34, 35, 33, 37, 38, 39, 37, 38, 40, 41, 42};
    EXPECT_EQ(session.editor.Output().find(kHint) == std::wstring::npos, GetParam().traps);
    if (GetParam().traps)
        followed = byAddress;  // traps stand in that order
    else
        EXPECT_EQ(byAddress, (std::vector<int>{12, 13, 14, 15, 16, 18}));

    session.editor.Do(IDM_DEBUG_STEPS_FOLLOW);
    EXPECT_EQ(session.folder.Ini(L"Editor", L"StepsFollowProgram"), L"1");
    ASSERT_TRUE(StartHere(session));
    EXPECT_EQ(session.StepOverToTheEnd(exit), followed);
    EXPECT_EQ(session.editor.Output().find(kHint), std::wstring::npos);
}

TEST_P(StepsFollow, IntoARecursionAndOut) {
    if (GetParam().traps) return;  // procedures have no lines there
    const Session session(std::wstring(L"recursion.") + GetParam().kind, Sample(L"recursion.bas"), GetParam().compiler);
    session.editor.Do(IDM_DEBUG_STEPS_FOLLOW);
    ASSERT_TRUE(StartHere(session));
    session.CaretTo(57);  // PRINT i; "! = "; Factorial(i)
    session.editor.Do(IDM_DEBUG_RUN_TO_CURSOR);
    ASSERT_TRUE(session.AwaitStop(57));
    const int into = IDM_DEBUG_STEP_INTO, over = IDM_DEBUG_STEP_OVER, out = IDM_DEBUG_STEP_OUT;
    std::vector<int> lines;
    for (const int command : {into, into, into, into, into, over, over, out, out})
        lines.push_back(Step(session, command));
    EXPECT_EQ(lines, (std::vector<int>{5, 6, 9, 5, 6, 9, 11, 9, 57}));
}

constexpr char kPart[] =
    "SUB Greet\r\n"            // 1
    "    PRINT \"hello\"\r\n"  // 2
    "    PRINT \"again\"\r\n"  // 3
    "END SUB\r\n";
constexpr char kMain[] =
    "#INCLUDE \"part.inc\"\r\n"       // 1
    "FUNCTION PBMAIN () AS LONG\r\n"  // 2
    "    LOCAL i AS LONG\r\n"         // 3
    "    FOR i = 1 TO 9\r\n"          // 4
    "        Greet\r\n"               // 5
    "    NEXT i\r\n"                  // 6
    "    FUNCTION = i\r\n"            // 7
    "END FUNCTION\r\n";

// A stop in an include, and what a session offers there.
TEST(DebugSession, GoesOnRestartsAndTellsTheLastOutput) {
    const Session session(L"main.kxa", kMain, L"kvxa64");
    const Editor& editor = session.editor;
    const auto awaitStatus = [&](const std::wstring& status) {
        EXPECT_TRUE(WaitFor([&] { return editor.Status() == status; }, kBuildDeadline)) << Utf8(editor.Status());
    };
    session.folder.Write(L"part.inc", kPart);
    session.CaretTo(5);
    editor.Do(IDM_DEBUG_BREAKPOINT);
    ASSERT_TRUE(session.Start());
    session.Select(kBreakpoints);
    session.SelectRow(0);
    editor.Click(session.List(), session.Place(0, 2), MOUSEEVENTF_LEFTDOWN, 1);  // the column of hits
    session.Enter(L"3");
    EXPECT_TRUE(session.Await(L"main.kxa:5||0 of 3|")) << Utf8(session.All());
    editor.Do(IDM_BUILD_RUN);  // F5
    awaitStatus(L"Stopped at main.kxa:5");
    EXPECT_TRUE(session.Await(L"main.kxa:5||3 of 3|")) << Utf8(session.All());
    editor.Foreground();
    editor.Sci(SCI_GRABFOCUS);
    editor.Sci(SCI_SELECTALL);
    editor.Send(editor.Sci(), WM_CHAR, 'x', 0);
    EXPECT_EQ(editor.Sci(SCI_MARKERNEXT, 0, 1 << kMarkCurrent), -1) << "its line is gone";
    editor.Do(IDM_EDIT_UNDO);
    for (const int marker : {kMarkCurrent, kMarkCurrentLine, kMarkBreakpoint})
        EXPECT_EQ(editor.Sci(SCI_MARKERNEXT, 0, LPARAM{1} << marker), 4) << marker;
    editor.Do(IDM_DEBUG_STEPS_FOLLOW);
    editor.Do(IDM_DEBUG_STEP_INTO);
    awaitStatus(L"Stopped at part.inc:1");
    EXPECT_EQ(editor.Tabs(), 2);
    session.CaretTo(3);
    editor.Do(IDM_DEBUG_SET_NEXT);
    EXPECT_TRUE(editor.AwaitOutput(L"The frame of the procedure does not stand here")) << Utf8(editor.Output());
    editor.Do(IDM_DEBUG_STEP_OVER);
    awaitStatus(L"Stopped at part.inc:2");
    session.CaretTo(3);
    editor.Do(IDM_DEBUG_SET_NEXT);
    awaitStatus(L"Stopped at part.inc:3");

    session.Select(kDisassembly);
    const int row = session.RowOf(0, session.Cell(session.RowOf(0, L"3: PRINT \"again\"") + 2, 0));
    const std::wstring address = session.Cell(row, 0);
    session.SelectRow(row);
    editor.Foreground();
    SetFocus(nullptr);
    editor.Click(session.List(), session.Place(row, 1));
    editor.Keys({VK_F9, VK_F10});
    EXPECT_TRUE(editor.AwaitOutput(L"Stopped at part.inc:3 (instruction)\n")) << "the disassembly has the keyboard";
    session.Select(kBreakpoints);
    EXPECT_TRUE(session.Await(L"Instruction at part.inc:3")) << Utf8(session.All());
    EXPECT_NE(session.All().find(address.substr(address.find_first_not_of(L'0'))), std::wstring::npos);
    session.SelectRow(0);
    editor.Keys({VK_DELETE});
    EXPECT_TRUE(WaitFor([&] { return session.All().find(L"main.kxa:5") == std::wstring::npos; }));
    EXPECT_NE(session.All().find(L"Instruction at part.inc:3"), std::wstring::npos) << Utf8(session.All());
    editor.Do(IDM_DEBUG_REMOVE_BREAKPOINTS);
    EXPECT_TRUE(WaitFor([&] { return session.All().find(L"Instruction") == std::wstring::npos; }));

    editor.Do(IDM_DEBUG_RESTART);
    awaitStatus(L"Stopped at main.kxa:2");
    EXPECT_EQ(editor.Sci(SCI_MARKERNEXT, 2, 1 << kMarkCurrent), -1) << "the mark that came back is known";
    EXPECT_EQ(editor.Output().find(L"Build started"), editor.Output().rfind(L"Build started"));
    editor.Do(IDM_DEBUG_CONTINUE);
    awaitStatus(L"Exited with code 10");
    EXPECT_TRUE(editor.AwaitOutput(L"[Debug] The program's last output:\n"));
    EXPECT_TRUE(editor.AwaitOutput(L"hello\nagain\nhello\nagain\n")) << Utf8(editor.Output());

    editor.Post(IDM_DEBUG_PROGRAM);
    const Dialog dialog = editor.AwaitDialog(L"Program Arguments");
    SetDlgItemTextW(dialog.window, IDC_PROGRAM_ARGUMENTS, L"one two");
    editor.Press(dialog, IDOK);
    EXPECT_TRUE(WaitFor([&] { return session.folder.Ini(L"Editor", L"ProgramArguments") == L"one two"; }));
}

INSTANTIATE_TEST_SUITE_P(Compilers, StepsFollow,
                         ::testing::Values(Case{L"kvxa64", L"kxa", true, false}, Case{L"kvxa32", L"ka32", false, false},
                                           Case{L"keldorbasic", L"bas", false, true}),
                         [](const auto& named) { return Utf8(named.param.compiler); });

}  // namespace
