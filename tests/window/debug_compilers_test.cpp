// The whole of debugging with each of the five compilers: two programs of its own, one stepped through to its end, one
// looked at from all sides.
#include "debug_driver.h"

#include <regex>

namespace {

using namespace debug_driver;

constexpr char kSource[] =
    "SUB Greet\r\n"                           // 1
    "    PRINT \"hello\"\r\n"                 // 2
    "END SUB\r\n"                             // 3
    "\r\n"                                    // 4
    "FUNCTION PBMAIN () AS LONG\r\n"          // 5
    "    LOCAL i AS LONG, total AS LONG\r\n"  // 6
    "    total = 5\r\n"                       // 7
    "    Greet\r\n"                           // 8
    "    FOR i = 1 TO 3\r\n"                  // 9
    "        total = total + i\r\n"           // 10
    "    NEXT i\r\n"                          // 11
    "    PRINT total\r\n"                     // 12
    "    FUNCTION = total\r\n"                // 13
    "END FUNCTION\r\n";                       // 14
constexpr int kLoopLine = 10, kAfterLoop = 12;
constexpr wchar_t kExit[] = L"Exited with code 11";

struct Case {
    const wchar_t *compiler, *file;  // a file of its own kind, of which the compiler may see a copy
    bool x64;
    bool traps;  // each statement carries a trap; steps go with the flow of control, and never into a procedure
    std::vector<int> over;  // lines of all the steps
    int into, out;          // where those from line 8 end
};

void SetCondition(const Session& session, int line, const wchar_t* condition) {
    session.CaretTo(line);
    session.editor.Post(IDM_DEBUG_CONDITIONAL);
    const Dialog dialog = session.editor.AwaitDialog(L"Conditional Breakpoint");
    SetDlgItemTextW(dialog.window, IDC_CONDITION_TEXT, condition);
    session.editor.Press(dialog, IDOK);
}

void ExpectTexts(const Session& session, const Case& c) {
    const struct {
        int command;
        const wchar_t* text;
    } rows[] = {
        {IDM_DEBUG_REGISTERS, c.x64 ? L"=== Registers ===\nRAX=" : L"=== Registers ===\nx86 registers not available"},
        {IDM_DEBUG_CALL_STACK, L"Call Stack:\n  #0  0x"},
        {IDM_DEBUG_DISASSEMBLY, L"=== Disassembly ===\n0x"},
        {IDM_DEBUG_MEMORY, L"=== Memory Dump ===\n"},
    };
    for (const auto& row : rows) {
        session.editor.Do(row.command);
        EXPECT_TRUE(session.editor.AwaitOutput(row.text)) << Utf8(row.text) << "\n" << Utf8(session.editor.Output());
    }
    const std::string shown = Utf8(session.editor.Output());
    EXPECT_TRUE(std::regex_search(
        shown, std::regex("=== Disassembly ===\n0x[0-9A-F]+: bytes( [0-9A-F]{2}){8}\n=== Memory Dump ===\n"
                          "([0-9A-F]{8,}  ([0-9A-F]{2} ){16} \\|.{16}\\|\n){4}$")))
        << shown;
}

void ExpectViews(const Session& session, const Case& c) {
    session.Select(kRegisters);
    EXPECT_TRUE(session.Await(c.x64 ? L"RIP|" : L"EIP|")) << Utf8(session.All());
    session.Select(kStack);
    EXPECT_TRUE(session.Await(session.sourceName + L":" + std::to_wstring(kAfterLoop))) << Utf8(session.All());
    session.Select(kWatches);
    EXPECT_TRUE(WaitFor([&] { return session.Rows() > 0; }));
    session.AddWatch(c.x64 ? L"RBP-16" : L"EBP-16");  // total
    EXPECT_TRUE(session.Await(L"11 (0x0000000B)")) << Utf8(session.All());
}

class DebugWith : public ::testing::TestWithParam<Case> {};

TEST_P(DebugWith, StepsLooksAndStops) {
    const Case& c = GetParam();
    if (!c.x64 && !Variable(L"KVX_NO_WINE32").empty()) GTEST_SKIP() << "no 32-bit Wine";
    const Session session(c.file, kSource, c.compiler);
    const Editor& editor = session.editor;
    const int first = c.traps ? 6 : 5;

    editor.Do(IDM_DEBUG_START);
    ASSERT_TRUE(session.AwaitStop(first, kBuildDeadline));
    EXPECT_EQ(session.StepOverToTheEnd(kExit), c.over);
    EXPECT_EQ(editor.Status(), kExit);
    EXPECT_TRUE(editor.AwaitOutput(L"[Debug] Process exited.\n"));

    session.CaretTo(kLoopLine);
    editor.Foreground();
    editor.Keys({VK_F9});
    EXPECT_TRUE(WaitFor([&] { return (editor.Sci(SCI_MARKERGET, kLoopLine - 1) >> kMarkBreakpoint & 1) != 0; }));
    editor.Do(IDM_DEBUG_START);
    ASSERT_TRUE(session.AwaitStop(first, kBuildDeadline));
    EXPECT_EQ(editor.Sci(SCI_MARKERGET, kLoopLine - 1) >> kMarkHollow & 1, 0) << "there is code";
    editor.Do(IDM_DEBUG_STEP_OVER);
    ASSERT_TRUE(session.AwaitStop(7));
    editor.Do(IDM_DEBUG_STEP_OVER);
    ASSERT_TRUE(session.AwaitStop(8));
    editor.Do(IDM_DEBUG_STEP_INTO);
    ASSERT_TRUE(session.AwaitStop(c.into));
    EXPECT_TRUE(editor.AwaitOutput(session.sourceName + L":" + std::to_wstring(c.into) + L" (step into)\n"));
    editor.Do(IDM_DEBUG_STEP_OUT);
    ASSERT_TRUE(session.AwaitStop(c.out));
    EXPECT_TRUE(editor.AwaitOutput(session.sourceName + L":" + std::to_wstring(c.out) + L" (step out)\n"));
    if (c.out != kLoopLine) {
        editor.Do(IDM_DEBUG_CONTINUE);
        ASSERT_TRUE(session.AwaitStop(kLoopLine));
    }
    SetCondition(session, kLoopLine, L"2>3");  // never holds: the loop's other turns pass
    session.CaretTo(kAfterLoop);
    editor.Do(IDM_DEBUG_RUN_TO_CURSOR);
    ASSERT_TRUE(session.AwaitStop(kAfterLoop));
    EXPECT_TRUE(editor.AwaitOutput(session.sourceName + L":12 (run to cursor)\n"));
    ExpectTexts(session, c);
    ExpectViews(session, c);
    editor.Do(IDM_DEBUG_STOP);
    EXPECT_TRUE(editor.AwaitOutput(L"[Debug] Stopped.\n"));
    EXPECT_TRUE(WaitFor([] { return CountProcesses(L"flow.exe") == 0; }));
    EXPECT_EQ(editor.Tabs(), 1) << "no copy was opened";
}

const std::vector<int> kByAddress = {7, 8, 9, 10, 11, 12, 13, 14};
INSTANTIATE_TEST_SUITE_P(
    Compilers, DebugWith,
    ::testing::Values(
        Case{L"kvxa64", L"flow.kxa", true, false, kByAddress, 1, 9},
        Case{L"kvxb64", L"flow.kxb", true, false, kByAddress, 1, 9},
        Case{L"kvxa32", L"flow.ka32", false, false, kByAddress, 1, 2},
        Case{L"keldorbasic", L"flow.bas", false, true, {7, 8, 9, 10, 11, 10, 11, 10, 11, 12, 13, 14}, 9, 10},
        Case{L"kvxc64", L"flow.bas", true, false, kByAddress, 1, 9}),
    [](const auto& named) { return Utf8(named.param.compiler); });

}  // namespace
