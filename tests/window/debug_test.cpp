// Debugging a sample for real: breakpoints, the stops and what the window shows of them, the end.
#include "harness.h"

#include <commctrl.h>

#include "editor/margins.h"
#include "resources/ids.h"

namespace {

std::string Sample() {
    const std::optional<std::string> text = ReadBytes(Wide(KVX_ROOT_DIR "/samples/steps.bas"));
    EXPECT_TRUE(text) << "samples/steps.bas is missing";
    return text.value_or("");
}

struct DebugFolder : ProgramFolder {
    std::wstring source;
    explicit DebugFolder(std::string_view text = "") : ProgramFolder(kCompilers) {
        KeepNoSession();
        source = Write(L"steps.bas", text.empty() ? Sample() : text);
    }
    std::wstring Arguments() const { return OpenArgument(source) + L" --compiler kvxa64"; }
};

// A folder in which a build does nothing, so that the program that is debugged is the one put there.
struct ReadyFolder : DebugFolder {
    explicit ReadyFolder(const wchar_t* debuggee) {
        FakeCompiler("renew " + Utf8(File(L"steps.exe")) + "\nprint ok\n");
        const std::wstring program = Wide(KVX_DEBUGGEES_DIR) + L"\\" + debuggee;
        EXPECT_TRUE(CopyFileW(program.c_str(), File(L"steps.exe").c_str(), FALSE)) << Utf8(program);
    }
};

// Marker bits of a line (from 1) of the active editor.
int Markers(const Editor& editor, int line) {
    return static_cast<int>(editor.Sci(SCI_MARKERGET, static_cast<WPARAM>(line - 1)));
}
bool Marked(const Editor& editor, int line, int marker) { return (Markers(editor, line) >> marker & 1) != 0; }
int LineMarked(const Editor& editor, int marker) {
    return static_cast<int>(editor.Sci(SCI_MARKERNEXT, 0, LPARAM{1} << marker)) + 1;
}

void GoTo(const Editor& editor, int line) { editor.Sci(SCI_GOTOLINE, static_cast<WPARAM>(line - 1)); }
void ToggleBreakpoint(const Editor& editor, int line) {
    GoTo(editor, line);
    editor.Do(IDM_DEBUG_BREAKPOINT);
}

bool AwaitStatus(const Editor& editor, const std::wstring& text, int milliseconds = kDeadline) {
    const bool came = WaitFor([&] { return editor.Status() == text; }, milliseconds);
    EXPECT_TRUE(came) << "status: " << Utf8(editor.Status()) << "\n" << editor.Describe();
    return came;
}

// The program stands at the line, and the window says so everywhere.
void ExpectStopAt(const Editor& editor, int line, const std::wstring& file = L"steps.bas") {
    SCOPED_TRACE("line " + std::to_string(line));
    ASSERT_TRUE(AwaitStatus(editor, L"Stopped at " + file + L":" + std::to_wstring(line), kBuildDeadline));
    EXPECT_EQ(editor.TabLabel(editor.ActiveTab()), file);
    EXPECT_EQ(LineMarked(editor, kMarkCurrent), line);
    EXPECT_EQ(LineMarked(editor, kMarkCurrentLine), line);
    EXPECT_EQ(editor.Line(), line);
}

bool AwaitProcesses(int count) {
    return WaitFor([count] { return CountProcesses(L"steps.exe") == count; });
}

const std::string kEndless =
    "FUNCTION PBMAIN () AS LONG\r\n    LOCAL i AS LONG\r\n    DO\r\n        i = i + 1\r\n        SLEEP 5\r\n"
    "    LOOP\r\n    FUNCTION = i\r\nEND FUNCTION\r\n";

}  // namespace

TEST(Debug, StepsThroughASample) {
    const DebugFolder folder;
    Editor editor(folder, folder.Arguments());
    EXPECT_TRUE(editor.ButtonShown(IDM_DEBUG_BUTTON_START) && !editor.ButtonWorks(IDM_DEBUG_BUTTON_STOP));
    ToggleBreakpoint(editor, 13);
    ToggleBreakpoint(editor, 11);  // a comment
    ToggleBreakpoint(editor, 33);
    ToggleBreakpoint(editor, 33);
    EXPECT_TRUE(Marked(editor, 13, kMarkBreakpoint) && !Marked(editor, 33, kMarkBreakpoint));

    editor.Do(IDM_DEBUG_START);
    ASSERT_TRUE(editor.AwaitOutput(L"[Debug] Stopped at steps.bas:9 (start)\n", kBuildDeadline)) << editor.Describe();
    ExpectStopAt(editor, 9);
    EXPECT_EQ(editor.Output().find(L"[Debug]"), editor.Output().rfind(L"[Debug]")) << "one line for one stop";
    EXPECT_EQ(CountProcesses(L"steps.exe"), 1);
    EXPECT_TRUE(Marked(editor, 11, kMarkHollow)) << "a comment has no code";
    EXPECT_FALSE(Marked(editor, 13, kMarkHollow));
    EXPECT_TRUE(IsWindowVisible(editor.Child(IDC_DEBUG_PANE)));
    EXPECT_TRUE(WaitFor([&] { return !editor.ButtonShown(IDM_DEBUG_BUTTON_START); }));
    EXPECT_TRUE(editor.ButtonShown(IDM_DEBUG_BUTTON_STOP) && editor.ButtonWorks(IDM_DEBUG_BUTTON_STEP_OVER));

    editor.Do(IDM_BUILD);
    EXPECT_TRUE(AwaitStatus(editor, L"End the debug session first (Shift+F5)"));
    EXPECT_TRUE(editor.AwaitOutput(L"Not built: "));

    editor.Do(IDM_DEBUG_CONTINUE);
    ExpectStopAt(editor, 13);
    editor.Do(IDM_DEBUG_STEP_INTO);
    EXPECT_TRUE(AwaitStatus(editor, L"The step went over a call; Debug > Steps Follow the Program goes into it"));
    EXPECT_EQ(LineMarked(editor, kMarkCurrent), 14);
    GoTo(editor, 15);
    editor.Do(IDM_DEBUG_RUN_TO_CURSOR);
    ExpectStopAt(editor, 15);
    EXPECT_TRUE(editor.AwaitOutput(L"[Debug] Stopped at steps.bas:15 (run to cursor)\n"));

    ToggleBreakpoint(editor, 5);  // at once, in a running session
    editor.Do(IDM_DEBUG_CONTINUE);
    ExpectStopAt(editor, 13);
    editor.Do(IDM_DEBUG_CONTINUE);
    ExpectStopAt(editor, 5);
    editor.Do(IDM_DEBUG_STEP_OUT);
    EXPECT_TRUE(editor.AwaitOutput(L" (step out)\n"));
    editor.Do(IDM_DEBUG_REGISTERS);
    EXPECT_TRUE(editor.AwaitOutput(L"=== Registers ===\n"));
    editor.Do(IDM_DEBUG_REMOVE_BREAKPOINTS);
    EXPECT_EQ(LineMarked(editor, kMarkBreakpoint), 0);

    editor.Do(IDM_DEBUG_CONTINUE);
    EXPECT_TRUE(AwaitStatus(editor, L"Exited with code 3"));
    EXPECT_TRUE(editor.AwaitOutput(L"[Debug] Process exited.\n"));
    EXPECT_EQ(LineMarked(editor, kMarkCurrent), 0);
    EXPECT_EQ(LineMarked(editor, kMarkCurrentLine), 0);
    EXPECT_FALSE(IsWindowVisible(editor.Child(IDC_DEBUG_PANE))) << "it was hidden before the session";
    EXPECT_TRUE(WaitFor([&] { return editor.ButtonShown(IDM_DEBUG_BUTTON_START); }));
    EXPECT_EQ(editor.Close(), 0u);
}

TEST(Debug, FollowsARunningProgramAndEndsIt) {
    const DebugFolder folder(kEndless);
    Editor editor(folder, folder.Arguments());
    editor.Do(IDM_DEBUG_BUILD_START);
    ExpectStopAt(editor, 1);
    editor.Do(IDM_DEBUG_CONTINUE);
    ASSERT_TRUE(AwaitStatus(editor, L"Running"));
    EXPECT_EQ(LineMarked(editor, kMarkCurrent), 0) << "it stands nowhere";
    EXPECT_TRUE(WaitFor([&] { return editor.ButtonShown(IDM_DEBUG_PAUSE); }));
    EXPECT_FALSE(editor.ButtonShown(IDM_DEBUG_CONTINUE));
    const std::wstring before = editor.Output();
    editor.Do(IDM_DEBUG_STEP_OVER);  // refused
    EXPECT_EQ(editor.Status(), L"Running");
    EXPECT_EQ(editor.Output(), before);

    ToggleBreakpoint(editor, 4);  // planted while it runs; the stop comes by itself
    ExpectStopAt(editor, 4);
    ToggleBreakpoint(editor, 4);
    editor.Foreground();
    editor.Keys({VK_CONTROL, VK_F5});
    ASSERT_TRUE(AwaitStatus(editor, L"Running"));
    editor.Do(IDM_DEBUG_PAUSE);
    EXPECT_TRUE(editor.AwaitOutput(L" (paused)\n")) << editor.Describe();
    editor.Do(IDM_DEBUG_START);  // ends a session
    EXPECT_TRUE(AwaitStatus(editor, L"Debugging stopped"));
    EXPECT_TRUE(editor.AwaitOutput(L"[Debug] Stopped.\n"));
    EXPECT_TRUE(WaitFor([] { return CountProcesses(L"steps.exe") == 0; }));

    // Closing the window ends it as well.
    editor.Do(IDM_DEBUG_BUILD_START);
    ExpectStopAt(editor, 1);
    editor.Do(IDM_DEBUG_CONTINUE);
    ASSERT_TRUE(AwaitStatus(editor, L"Running"));
    EXPECT_EQ(editor.Close(), 0u);
    EXPECT_TRUE(WaitFor([] { return CountProcesses(L"steps.exe") == 0; }));
}

TEST(Debug, AProgramThatWasEndedFromOutsideIsNoticed) {
    const DebugFolder folder(kEndless);
    Editor editor(folder, folder.Arguments());
    editor.Do(IDM_DEBUG_BUILD_START);
    ExpectStopAt(editor, 1);
    EXPECT_EQ(EndProcesses(L"steps.exe"), 1);  // while it is stopped, and nothing more is asked of it
    EXPECT_TRUE(editor.AwaitOutput(L"[Debug] The program has been ended from outside.\n")) << editor.Describe();
    EXPECT_TRUE(WaitFor([&] { return editor.ButtonShown(IDM_DEBUG_BUTTON_START); }));
    EXPECT_EQ(LineMarked(editor, kMarkCurrent), 0);
    EXPECT_EQ(editor.Close(), 0u);
}

// A breakpoint belongs to its line's text, through whatever happens to the file.
TEST(Debug, BreakpointsStayWithTheirLines) {
    const DebugFolder folder;
    const std::wstring other = folder.Write(L"other.bas", "PRINT 1\r\n");
    Editor editor(folder, folder.Arguments() + OpenArgument(other));
    editor.Do(IDM_NEXT_TAB);
    ASSERT_EQ(editor.TabLabel(editor.ActiveTab()), L"steps.bas");
    ToggleBreakpoint(editor, 13);
    editor.Sci(SCI_GOTOPOS, 0);
    editor.Type("' one more line\r\n");
    EXPECT_EQ(LineMarked(editor, kMarkBreakpoint), 14);
    editor.Sci(SCI_SETLINEINDENTATION, 13, 1);
    editor.Do(IDM_EDIT_FORMAT_DOCUMENT);
    EXPECT_TRUE(AwaitStatus(editor, L"Formatted: 2 lines changed"));
    editor.Do(IDM_EDIT_FORMAT_DOCUMENT);
    EXPECT_TRUE(AwaitStatus(editor, L"Formatted: nothing had to be changed"));
    EXPECT_EQ(editor.Sci(SCI_GETLINEINDENTATION, 13), 8);
    EXPECT_EQ(LineMarked(editor, kMarkBreakpoint), 14) << "after formatting";
    editor.Do(IDM_EDIT_UNDO);
    EXPECT_EQ(editor.Sci(SCI_GETLINEINDENTATION, 13), 1);
    EXPECT_EQ(LineMarked(editor, kMarkBreakpoint), 14) << "after undoing that";
    editor.Do(IDM_FILE_SAVE);
    editor.Do(IDM_FILE_RELOAD);
    EXPECT_EQ(LineMarked(editor, kMarkBreakpoint), 14) << "after reloading";
    editor.Do(IDM_FILE_CLOSE);
    ASSERT_EQ(editor.Tabs(), 1);
    editor.Post(IDM_FILE_OPEN);
    editor.AnswerFileDialog(folder.source);
    ASSERT_TRUE(WaitFor([&] { return editor.Tabs() == 2; }));
    EXPECT_EQ(LineMarked(editor, kMarkBreakpoint), 14) << "after closing and opening";

    // Clicks into the margin do as F9 does.
    GoTo(editor, 16);  // the line may be below the window's edge
    const LRESULT y = editor.Sci(SCI_POINTYFROMPOSITION, 0, editor.Sci(SCI_POSITIONFROMLINE, 15));
    const LRESULT x = editor.Sci(SCI_GETMARGINWIDTHN, kMarginNumbers) + 8;
    editor.Foreground();
    editor.Click(editor.Sci(), {static_cast<LONG>(x), static_cast<LONG>(y) + 6});
    EXPECT_TRUE(WaitFor([&] { return Marked(editor, 16, kMarkBreakpoint); }));

    // A condition: too long a one is refused in the dialog; a good one shows.
    GoTo(editor, 16);
    editor.Post(IDM_DEBUG_CONDITIONAL);
    Dialog dialog = editor.AwaitDialog(L"Conditional Breakpoint");
    SetDlgItemTextW(dialog.window, IDC_CONDITION_TEXT, std::wstring(40, L'\u00E4').c_str());
    SendMessageW(dialog.window, WM_COMMAND, IDOK, 0);
    EXPECT_TRUE(IsWindow(dialog.window));
    EXPECT_NE(editor.TextOf(GetDlgItem(dialog.window, IDC_CONDITION_PROBLEM)).find(L"80 bytes"), std::wstring::npos);
    SetDlgItemTextW(dialog.window, IDC_CONDITION_TEXT, L"2 > 3");
    editor.Press(dialog, IDOK);
    EXPECT_TRUE(WaitFor([&] { return Marked(editor, 16, kMarkConditional); }));

    // It never holds, so only the other one stops.
    editor.Do(IDM_USE_KVXA64);
    editor.Do(IDM_DEBUG_BUILD_START);
    ExpectStopAt(editor, 10);
    editor.Do(IDM_DEBUG_CONTINUE);
    ExpectStopAt(editor, 14);
    editor.Do(IDM_DEBUG_CONTINUE);
    EXPECT_TRUE(editor.AwaitOutput(L"[Debug] Stopped at steps.bas:14\n"));
    ExpectStopAt(editor, 14);
    EXPECT_EQ(editor.Output().find(L"steps.bas:16"), std::wstring::npos);

    // A stop opens its file again, and the mark put there goes with the next one.
    editor.Do(IDM_FILE_CLOSE);
    ASSERT_EQ(editor.Tabs(), 1);
    editor.Do(IDM_DEBUG_CONTINUE);
    ASSERT_TRUE(WaitFor([&] { return editor.Tabs() == 2; }));
    ExpectStopAt(editor, 14);
    editor.Type("'");
    editor.Do(IDM_DEBUG_STEP_OVER);
    ExpectStopAt(editor, 15);
    EXPECT_TRUE(editor.AwaitOutput(L"[Debug] steps.bas has changes that are not saved"));
    editor.Do(IDM_EDIT_UNDO);

    // The arrow stands over the sign of a breakpoint, beside the plus sign of a condition.
    EXPECT_EQ(LineMarked(editor, kMarkStopOver), 15);
    editor.Do(IDM_DEBUG_STEP_OVER);
    ExpectStopAt(editor, 16);
    EXPECT_EQ(LineMarked(editor, kMarkStopConditional), 16);
    EXPECT_EQ(LineMarked(editor, kMarkStopOver), 0);
    editor.Do(IDM_DEBUG_BREAKPOINT);
    EXPECT_EQ(LineMarked(editor, kMarkStopConditional), 0);
    EXPECT_EQ(LineMarked(editor, kMarkStopOver), 16);
    EXPECT_EQ(editor.Close(), 0u);
    EXPECT_TRUE(WaitFor([] { return CountProcesses(L"steps.exe") == 0; }));
}

TEST(Debug, StopIsHeardWhileAProgramStarts) {
    const ReadyFolder folder(L"early64.exe");  // does not get to its first line
    Editor editor(folder, folder.Arguments());
    const auto startUp = [&] {
        editor.Do(IDM_DEBUG_BUILD_START);
        ASSERT_TRUE(AwaitStatus(editor, L"Starting the program..."));
        ASSERT_TRUE(WaitFor([] { return CountProcesses(L"steps.exe") == 1; }));
    };
    const auto stopped = [&] {
        EXPECT_TRUE(AwaitStatus(editor, L"Debugging stopped"));
        EXPECT_TRUE(WaitFor([] { return CountProcesses(L"steps.exe") == 0; }));
        EXPECT_TRUE(WaitFor([&] { return editor.ButtonWorks(IDM_DEBUG_BUTTON_START); }));
    };
    // For a second no other command gets in. Once the pane is shown that second is over, and another try has to tell.
    bool looked = false;
    for (int tries = 0; tries < 10 && !looked; ++tries) {
        startUp();
        editor.Do(IDM_FILE_NEW);
        const int tabs = editor.Tabs();
        looked = !IsWindowVisible(editor.Child(IDC_DEBUG_PANE));
        EXPECT_TRUE(tabs == 1 || !looked);
        editor.Do(IDM_DEBUG_STOP);
        stopped();
        if (tabs == 2) editor.Do(IDM_FILE_CLOSE);
    }
    EXPECT_TRUE(looked);

    // A program that takes longer leaves the window free, and arrives all the same.
    startUp();
    EXPECT_TRUE(WaitFor([&] { return editor.ButtonShown(IDM_DEBUG_PAUSE) && editor.ButtonWorks(IDM_DEBUG_PAUSE); }));
    editor.Do(IDM_FILE_NEW);
    EXPECT_EQ(editor.Tabs(), 2);
    editor.Type("typed");
    EXPECT_EQ(editor.Text(), "typed");
    EXPECT_EQ(editor.Status(), L"Starting the program...");
    editor.Do(IDM_EDIT_UNDO);
    editor.Do(IDM_FILE_CLOSE);
    PostMessageW(editor.main, WM_SYSCOMMAND, SC_MINIMIZE, 0);
    EXPECT_TRUE(WaitFor([&] { return IsIconic(editor.main) != FALSE; }));
    folder.Write(L"go.txt", "");
    ExpectStopAt(editor, 2);
    EXPECT_TRUE(WaitFor([&] { return IsIconic(editor.main) == FALSE; })) << "a stop wants to be seen";
    EXPECT_TRUE(editor.AwaitOutput(L":2 (start)\n"));
    editor.Do(IDM_DEBUG_STOP);
    stopped();
    DeleteFileW(folder.File(L"go.txt").c_str());

    startUp();
    editor.Foreground();
    const std::string textBefore = editor.Text();
    editor.Keys({'X'});
    EXPECT_TRUE(WaitFor([&] { return editor.Text().size() == textBefore.size() + 1; })) << "what is typed is not lost";
    EXPECT_TRUE(editor.ButtonShown(IDM_DEBUG_BUTTON_STOP) && editor.ButtonWorks(IDM_DEBUG_BUTTON_STOP));
    editor.Keys({VK_CONTROL, 'N'});
    editor.Keys({VK_SHIFT, VK_F5});
    stopped();
    EXPECT_TRUE(WaitFor([&] { return editor.Tabs() == 2; })) << "nor is a command";
    editor.Do(IDM_FILE_CLOSE);
    editor.Do(IDM_EDIT_UNDO);

    startUp();
    editor.Foreground();
    editor.Click(editor.Child(IDC_TOOLBAR), editor.ButtonPlace(IDM_DEBUG_BUTTON_STOP));
    stopped();

    startUp();
    PostMessageW(editor.main, WM_CLOSE, 0, 0);
    EXPECT_EQ(editor.ExitCode(), 0u);
    EXPECT_TRUE(WaitFor([] { return CountProcesses(L"steps.exe") == 0; }));
}

TEST(Debug, AFloodOfEventsLeavesTheWindowFree) {
    const ReadyFolder folder(L"flood64.exe");
    Editor editor(folder, folder.Arguments());
    editor.Do(IDM_DEBUG_BUILD_START);
    ASSERT_TRUE(editor.AwaitOutput(L":2 (start)\n", kBuildDeadline)) << editor.Describe();
    editor.Do(IDM_DEBUG_CONTINUE);
    ASSERT_TRUE(AwaitStatus(editor, L"Running"));
    EXPECT_TRUE(WaitFor([&] { return editor.Output().find(L"again and again") != std::wstring::npos; }));
    editor.Do(IDM_FILE_NEW);
    EXPECT_EQ(editor.Tabs(), 2);
    editor.Type("still here");
    EXPECT_EQ(editor.Text(), "still here");
    editor.Do(IDM_DEBUG_STOP);
    EXPECT_TRUE(AwaitStatus(editor, L"Debugging stopped"));
    EXPECT_TRUE(WaitFor([] { return CountProcesses(L"steps.exe") == 0; }));
    editor.Do(IDM_EDIT_UNDO);  // so that closing asks nothing
    EXPECT_EQ(editor.Close(), 0u);
}

// Lines 3 and 4 of this program are one address, and it comes by its first line three times.
TEST(Debug, LinesOfOneAddressShareItsBreakpoint) {
    const ReadyFolder folder(L"again64.exe");
    Editor editor(folder, folder.Arguments());
    ToggleBreakpoint(editor, 3);
    ToggleBreakpoint(editor, 4);
    editor.Do(IDM_DEBUG_BUILD_START);
    ExpectStopAt(editor, 2);
    EXPECT_FALSE(Marked(editor, 3, kMarkHollow));
    EXPECT_TRUE(Marked(editor, 4, kMarkHollow)) << "the program stops for the other one";
    editor.Do(IDM_DEBUG_CONTINUE);
    const auto stoppedThere = [&] {
        return WaitFor([&] {
            return editor.Status() == L"Stopped at steps.bas:3" || editor.Status() == L"Stopped at steps.bas:4";
        });
    };
    ASSERT_TRUE(stoppedThere()) << editor.Describe();

    ToggleBreakpoint(editor, 3);  // off
    EXPECT_FALSE(Marked(editor, 3, kMarkBreakpoint));
    EXPECT_FALSE(Marked(editor, 4, kMarkHollow)) << "takes its place";
    editor.Do(IDM_DEBUG_CONTINUE);
    EXPECT_TRUE(WaitFor([&] { return Count(editor.Output(), L"[Debug] Stopped at ") == 3; })) << Utf8(editor.Output());
    ASSERT_TRUE(stoppedThere()) << "and not at the first line, which has no breakpoint";

    editor.Do(IDM_DEBUG_REMOVE_BREAKPOINTS);
    editor.Do(IDM_DEBUG_CONTINUE);
    EXPECT_TRUE(AwaitStatus(editor, L"Exited with code 3"));
    EXPECT_EQ(editor.Close(), 0u);
}

TEST(Debug, OnlyABuildThatSucceedsIsDebugged) {
    const DebugFolder folder("FUNCTION PBMAIN () AS LONG\r\n    nothing = 1\r\nEND FUNCTION\r\n");
    Editor editor(folder, folder.Arguments());
    editor.Do(IDM_PROFILE_RELEASE);  // its own flags ask for no line map
    editor.Do(IDM_DEBUG_BUTTON_START);
    ASSERT_TRUE(editor.AwaitOutput(L"--- Build failed", kBuildDeadline)) << editor.Describe();
    EXPECT_TRUE(WaitFor([&] { return editor.Status().starts_with(L"Build failed"); }));
    EXPECT_TRUE(editor.ButtonShown(IDM_DEBUG_BUTTON_START));

    editor.Sci(SCI_SETSEL, 0, -1);
    editor.Type("FUNCTION PBMAIN () AS LONG\r\n    PRINT 1\r\n    PRINT 2\r\nEND FUNCTION\r\n");
    editor.Do(IDM_BUILD);  // the start that failed is over: nothing is debugged behind this
    ASSERT_TRUE(editor.AwaitOutput(L"--- Build succeeded", kBuildDeadline)) << editor.Describe();
    EXPECT_EQ(editor.Output().find(L"[Debug]"), std::wstring::npos);

    editor.Do(IDM_DEBUG_BUTTON_START);
    ExpectStopAt(editor, 1);
    EXPECT_NE(editor.Output().find(L"--debug"), std::wstring::npos);
    EXPECT_NE(editor.Output().find(L"-O2"), std::wstring::npos) << "the profile's flag stays";
    for (const auto& [button, line] : {std::pair{IDM_DEBUG_BUTTON_STEP_OVER, 2}, {IDM_DEBUG_BUTTON_STEP_INTO, 3}}) {
        editor.Do(button);
        ExpectStopAt(editor, line);
    }
    editor.Do(IDM_DEBUG_BUTTON_STEP_OUT);
    EXPECT_TRUE(editor.AwaitOutput(L" (step out)\n"));
    editor.Do(IDM_DEBUG_BUTTON_STOP);
    EXPECT_TRUE(AwaitStatus(editor, L"Debugging stopped"));
    EXPECT_EQ(editor.Close(), 0u);
}

TEST(Debug, SourcesNewerThanTheProgramAreToldOf) {
    const ReadyFolder folder(L"calls64.exe");  // of two files; the first is not there by its name: the source it is
    const std::wstring part = folder.Write(L"calls_part.inc", "SUB Twice\r\n");
    Editor editor(folder, OpenArgument(part) + folder.Arguments());
    const struct {
        int source, part;  // minutes by which they are newer
    } cases[] = {{1, -1}, {0, 1}, {-1, 0}, {1, 1}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.source) + ", " + std::to_string(c.part));
        WrittenFromNow(folder.source, c.source);  // the build renews the program a moment later
        WrittenFromNow(part, c.part);
        editor.Do(IDM_DEBUG_BUILD_START);
        ASSERT_TRUE(AwaitStatus(editor, L"Stopped at steps.bas:3", kBuildDeadline));
        ASSERT_TRUE(editor.AwaitOutput(L"[Debug] Stopped at steps.bas:3 (start)\n"));
        const std::wstring atStart = editor.Output();
        editor.Do(IDM_DEBUG_STEP_OVER);
        ASSERT_TRUE(editor.AwaitOutput(L"[Debug] Stopped at steps.bas:4\n"));
        const std::wstring later = editor.Output();
        for (const auto& [file, minutes] : {std::pair{L"steps.bas", c.source}, {L"calls_part.inc", c.part}}) {
            const std::wstring warning = L"[Debug] " + std::wstring(file) +
                                         L" is newer than the program: its lines may not be those that run.\n";
            EXPECT_EQ(Count(atStart, warning), minutes > 0) << Utf8(warning + atStart);
            EXPECT_EQ(Count(later, warning), minutes > 0) << "once is enough";
        }
        editor.Do(IDM_DEBUG_STOP);
        ASSERT_TRUE(AwaitStatus(editor, L"Debugging stopped"));
    }
    EXPECT_EQ(editor.Close(), 0u);
}

// The system asks all programs whether it may end. Then it may end each at any moment, and does not close its window.
TEST(Debug, TheEndOfTheSystemIsTheEndOfTheProgram) {
    for (const std::wstring state : {L"Stopped at steps.bas:2", L"Running", L"Starting the program..."}) {
        SCOPED_TRACE(Utf8(state));
        const ReadyFolder folder(state.starts_with(L"Starting") ? L"early64.exe" : L"sleeps64.exe");
        Editor editor(folder, folder.Arguments());
        editor.Do(IDM_VIEW_WORD_WRAP);
        ASSERT_NE(folder.Ini(L"Editor", L"WordWrap"), L"1") << "it is saved at the end";
        editor.Do(IDM_DEBUG_BUILD_START);
        if (state == L"Running") {
            ASSERT_TRUE(AwaitStatus(editor, L"Stopped at steps.bas:2", kBuildDeadline));
            editor.Do(IDM_DEBUG_CONTINUE);
        }
        ASSERT_TRUE(AwaitStatus(editor, state, kBuildDeadline));
        ASSERT_TRUE(AwaitProcesses(1));

        EXPECT_EQ(editor.Send(editor.main, WM_QUERYENDSESSION), TRUE);
        editor.Send(editor.main, WM_ENDSESSION, FALSE);  // another program has refused
        editor.Send(editor.main, WM_NULL);
        EXPECT_EQ(editor.Status(), state);
        EXPECT_EQ(CountProcesses(L"steps.exe"), 1);

        EXPECT_EQ(editor.Send(editor.main, WM_QUERYENDSESSION), TRUE);
        editor.Send(editor.main, WM_ENDSESSION, TRUE);
        EXPECT_EQ(folder.Ini(L"Editor", L"WordWrap"), L"1");
        EXPECT_TRUE(AwaitProcesses(0));
        EXPECT_EQ(editor.Close(), 0u) << "where the system leaves the time for it";
    }
}

TEST(Debug, ADoubleClickOnStartIsOneStart) {
    const ReadyFolder folder(L"early64.exe");
    folder.FakeCompiler("renew " + Utf8(folder.File(L"steps.exe")) + "\ntally builds.txt\nsleep 300\n");
    folder.Write(L"go.txt", "");
    Editor editor(folder, folder.Arguments());
    const HWND bar = editor.Child(IDC_TOOLBAR);
    const auto startedOnce = [&] {
        ASSERT_TRUE(AwaitStatus(editor, L"Stopped at steps.bas:2", kBuildDeadline));
        ASSERT_TRUE(editor.AwaitOutput(L"[Debug] Stopped at steps.bas:2 (start)\n"));
        EXPECT_EQ(Count(editor.Output(), L"(start)"), 1) << Utf8(editor.Output());
        EXPECT_EQ(CountProcesses(L"steps.exe"), 1);
    };
    const auto stop = [&] {
        editor.Do(IDM_DEBUG_BUTTON_STOP);
        ASSERT_TRUE(AwaitStatus(editor, L"Debugging stopped"));
        ASSERT_TRUE(AwaitProcesses(0));
        ASSERT_TRUE(WaitFor([&] { return editor.ButtonShown(IDM_DEBUG_BUTTON_START); }));
    };
    // What the second click of a slow double-click is when Continue has come in the place of Start.
    const auto secondClick = [&](const auto& give) {
        const POINT at = editor.ButtonPlace(IDM_DEBUG_CONTINUE);
        give(bar, WM_LBUTTONDBLCLK, WPARAM{MK_LBUTTON}, MAKELPARAM(at.x, at.y));
        give(bar, WM_LBUTTONUP, WPARAM{0}, MAKELPARAM(at.x, at.y));
    };
    editor.Post(IDM_DEBUG_BUTTON_START);
    editor.Post(IDM_DEBUG_BUTTON_START);
    startedOnce();
    secondClick([&](auto... message) { editor.Send(message...); });
    EXPECT_EQ(editor.Status(), L"Stopped at steps.bas:2");
    stop();

    editor.Foreground();
    editor.Click(bar, editor.ButtonPlace(IDM_DEBUG_BUTTON_START), MOUSEEVENTF_LEFTDOWN, 2);
    startedOnce();
    stop();

    DeleteFileW(folder.File(L"go.txt").c_str());
    editor.Do(IDM_DEBUG_BUTTON_START);
    ASSERT_TRUE(AwaitStatus(editor, L"Starting the program..."));
    ASSERT_TRUE(AwaitProcesses(1));
    secondClick([&](auto... message) { PostMessageW(message...); });
    for (int i = 0; i < 2; ++i) {  // it paints behind the clicks; the first time it may have been painting already
        InvalidateRect(bar, nullptr, FALSE);
        EXPECT_TRUE(WaitFor([&] { return !GetUpdateRect(bar, nullptr, FALSE); }));
    }
    folder.Write(L"go.txt", "");
    startedOnce();
    EXPECT_EQ(editor.Close(), 0u);
    EXPECT_EQ(folder.Read(L"KVXA64\\builds.txt").size(), 3u) << "one build for each";
}
