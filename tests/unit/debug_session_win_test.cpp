// Start and end of sessions with real programs: what is said, what is left, and that a program can be ended in every
// state.
#include "debugger/debug_session.h"

#include "debug_fixture.h"

#include <algorithm>

namespace {

using namespace debugtest;

class DebugSession : public DebugBothTest {};
FOR_BOTH_KINDS(DebugSession);

TEST_P(DebugSession, StartsAtTheFirstLineAndRunsToTheEnd) {
    ASSERT_TRUE(Start("straight"));
    EXPECT_EQ(SaidText(), L"[Debug] Started. Breakpoint at line 2.\n[Debug] Reached line 2.\n");
    EXPECT_EQ(state.active, 1u);
    EXPECT_EQ(state.isX64, Bits() == 64 ? 1u : 0u);
    EXPECT_EQ(state.currentLine, 2);
    EXPECT_EQ(state.currentFileId, 1u);
    EXPECT_EQ(state.currentAddress, AddressOf(2));
    EXPECT_EQ(Registers().ip, AddressOf(2)) << "the statement is still to run";
    EXPECT_EQ(state.breakpointCount, 1);

    EXPECT_EQ(Step(), 3);
    EXPECT_EQ(Step(), 5);
    EXPECT_EQ(Step(), 6);
    g_said.clear();
    EXPECT_EQ(Step(), -1) << "the last statement";
    ASSERT_EQ(SaidText(), L"[Debug] No further source lines.\n");
    EXPECT_EQ(g_said[0].colour, kOrange);
    EXPECT_EQ(Wait(50), kDebugTimeout) << "it was not resumed";
    EXPECT_EQ(Registers().ip, AddressOf(6));

    ContinueToTheEnd(42u);
    const DebuggerState& s = state;
    EXPECT_EQ(s.active, 0u);
    EXPECT_EQ(s.currentLine, 0);
    EXPECT_EQ(s.currentAddress, 0u);
    EXPECT_EQ(s.processId, 0u);
    EXPECT_EQ(s.threadId, 0u);
    EXPECT_EQ(s.breakpointCount, 0);
    EXPECT_EQ(s.process, nullptr);
    EXPECT_EQ(s.thread, nullptr);
    EXPECT_EQ(s.map.lines, nullptr);
    EXPECT_EQ(s.map.lineCount, 0);
    EXPECT_EQ(Wait(50), kDebugNoSession);
}

TEST_P(DebugSession, WithoutRecordsItStandsAtTheSystemsFirstStop) {
    ASSERT_TRUE(DebugStartLoaded(Program("plain").c_str(), &state));
    Watch();
    EXPECT_EQ(SaidText(), L"[Debug] Started (no source line info).\n");
    EXPECT_EQ(state.currentLine, 0);
    EXPECT_NE(state.currentAddress, 0u);
    int event = kDebugStopped;
    // The loader of a 32-bit program may stop once more.
    for (int i = 0; i < 2 && event == kDebugStopped; ++i) {
        ASSERT_TRUE(DebugContinue(&state));
        event = Wait();
    }
    EXPECT_EQ(event, kDebugExited);
    EXPECT_EQ(state.exitCode, 5u);
}

TEST_P(DebugSession, SaysWhenTheProgramEndsBeforeItsFirstLine) {
    EXPECT_FALSE(Start("ends"));
    EXPECT_EQ(SaidText(),
              L"[Debug] Started. Breakpoint at line 2.\n[Debug] Did not reach first source breakpoint (event 2).\n");
    EXPECT_EQ(state.active, 0u);
    EXPECT_EQ(state.exitCode, 3u);
}

TEST_P(DebugSession, AStartCanBeGivenUp) {
    DebugSetWaitHook([] { return !g_said.empty(); });
    Start("early");
    EXPECT_EQ(state.active, 1u) << "it runs, and may still be stopped";
    // The start goes on after its wait was ended: another wait continues it, and ends it when its time is over.
    DebugSetWaitHook(nullptr);
    EXPECT_EQ(DebugWaitStart(&state, 1), kDebugTimeout);
    EXPECT_EQ(SaidText(), L"[Debug] Started. Breakpoint at line 2.\n");
    state.startDeadline = GetTickCount64();
    EXPECT_EQ(DebugWaitStart(&state, 1), kDebugTimeout);
    EXPECT_EQ(SaidText(),
              L"[Debug] Started. Breakpoint at line 2.\n[Debug] Did not reach first source breakpoint (event 3).\n");
    EXPECT_EQ(state.awaits, DebugAwaits::Nothing);
}

TEST_P(DebugSession, AConditionDoesNotKeepTheStartFromItsLine) {
    DebugSetPlantHook([](DebuggerState* session) { DebugSetCondition(session, session->startAddress, "1 > 2"); });
    ASSERT_TRUE(Start("loop"));
    EXPECT_EQ(TimesSaid(L"[Debug] Reached line "), 1) << SaidText();
    EXPECT_STREQ(state.breakpoints[0].condition, "1 > 2");
}

TEST_P(DebugSession, TheFolderMayHaveAnyName) {
    const TempFolder folder;
    const auto place = folder.path / L"\u043F\u0440\u043E\u0435\u043A\u0442 \u00E9 100%s" / L"\u7A0B\u5E8F 1.exe";
    std::filesystem::create_directories(place.parent_path());
    std::filesystem::copy_file(Program("straight"), place);
    ASSERT_TRUE(StartFile(place)) << SaidText();
    EXPECT_EQ(state.currentLine, 2);
    End();
}

TEST_P(DebugSession, TakesTheAddressWhereTheProgramWasLoaded) {
    ASSERT_TRUE(SdbgLoad(Program("anywhere").c_str(), &state.map));
    state.map.imageBase = 0x1234;
    ASSERT_TRUE(DebugStartLoaded(Program("anywhere").c_str(), &state));
    Watch();
    EXPECT_EQ(state.currentLine, 2);
    EXPECT_EQ(RawByte(state.map.imageBase), 'M');
    EXPECT_EQ(RawByte(state.map.imageBase + 1), 'Z');
}

TEST_P(DebugSession, SaysWhyItDoesNotStart) {
    const TempFolder folder;
    std::string bytes = ReadBytes(Program("straight"));
    bytes[static_cast<unsigned char>(bytes[60]) + std::size_t{4}] = 0x11;  // a machine that does not exist
    WriteBytes(folder.path / "damaged.exe", bytes);
    EXPECT_FALSE(StartFile(folder.path / "damaged.exe"));
    EXPECT_TRUE(SaidText().starts_with(L"[Debug] Failed to launch process.\n")) << SaidText();  // a reason follows
    EXPECT_EQ(state.active, 0u);
    EXPECT_EQ(state.map.lines, nullptr);
    g_said.clear();
    EXPECT_FALSE(Start("plain"));
    EXPECT_EQ(SaidText(), L"[Debug] No .sdbg section found in EXE.\n");
    EXPECT_EQ(state.active, 0u);
}

TEST_P(DebugSession, GivesTheExitCodeOfWhateverThreadEndsTheProgram) {
    struct Case {
        const char* name;
        DWORD code;
    };
    for (const Case& one : {Case{"thread_ends", 9}, Case{"threads", 5}, Case{"library", 1}}) {
        SCOPED_TRACE(one.name);
        ASSERT_TRUE(Start(one.name));
        ContinueToTheEnd(one.code);
    }
}

TEST_P(DebugSession, StopsInTheThreadThatRunsOntoTheBreakpoint) {
    ASSERT_TRUE(Start("threads"));
    const std::uint32_t mainThread = state.mainThreadId;
    EXPECT_EQ(state.stopThreadId, mainThread);
    ASSERT_TRUE(DebugSetBreakpoint(&state, 7));
    ASSERT_TRUE(DebugContinue(&state));
    ASSERT_EQ(Arrive(), 7);
    EXPECT_NE(state.stopThreadId, mainThread);
    EXPECT_EQ(Count(), 77u) << "registers of the thread that stopped";
    ASSERT_GE(state.threads.size(), 2u);  // some systems load libraries with threads of their own
    EXPECT_EQ(state.threads[0].id, mainThread);
    EXPECT_NE(std::ranges::find(state.threads, state.stopThreadId, &DebugThread::id), state.threads.end());
    RegisterSet waiting;
    EXPECT_TRUE(DebugGetRegisters(&state, mainThread, &waiting));
    EXPECT_NE(waiting.ip, Registers().ip);
    EXPECT_EQ(Registers().ip, AddressOf(7));
    EXPECT_EQ(Step(), 8);
    EXPECT_NE(state.stopThreadId, mainThread);
    ContinueToTheEnd(5u);
}

// --- The end

TEST_P(DebugSession, StopEndsItFromEveryState) {
    const struct {
        const char* program;
        int breakpoint;  // 0: runs freely
    } cases[] = {{"straight", 3}, {"threads", 7}, {"sleeps", 0}, {"busy", 0}, {"input", 0}, {"flood", 0}, {"fault", 0}};
    for (const auto& one : cases) {
        SCOPED_TRACE(one.program);
        g_deadline = GetTickCount64() + kTestMs;
        ASSERT_TRUE(Start(one.program));
        EXPECT_FALSE(StartFile(Program("straight"))) << "one session at a time";
        if (one.breakpoint) ASSERT_TRUE(DebugSetBreakpoint(&state, one.breakpoint));
        ASSERT_TRUE(DebugContinue(&state));
        const bool held = one.breakpoint != 0 || std::string_view(one.program) == "fault";
        if (!held) g_deadline = GetTickCount64() + 150;  // the wait of a flood has no end of its own
        EXPECT_EQ(Wait(held ? kWaitMs : 100), held ? kDebugStopped : kDebugTimeout);
        Watch();
        g_said.clear();
        DebugStop(&state);
        EXPECT_EQ(SaidText(), L"[Debug] Stopped.\n");
        EXPECT_EQ(g_said.back().colour, kRed);
        EXPECT_TRUE(Gone());
        EXPECT_EQ(state.active, 0u);
        EXPECT_EQ(state.process, nullptr);
        EXPECT_EQ(state.breakpointCount, 0);
        EXPECT_EQ(state.map.lines, nullptr);
        g_said.clear();
        DebugStop(&state);
        EXPECT_TRUE(g_said.empty()) << "there is nothing to stop any more";
    }
}

TEST_P(DebugSession, BreakInStopsARunningProgram) {
    for (const char* program : {"sleeps", "busy"}) {
        SCOPED_TRACE(program);
        ASSERT_TRUE(Start(program));
        EXPECT_FALSE(DebugBreakIn(&state)) << "it stands already";
        ASSERT_TRUE(DebugContinue(&state));
        EXPECT_EQ(Wait(50), kDebugTimeout);
        EXPECT_EQ(state.run, DebugRun::Running);
        ASSERT_TRUE(DebugBreakIn(&state));
        EXPECT_EQ(Wait(), kDebugStopped);
        EXPECT_EQ(state.run, DebugRun::Stopped);
        ASSERT_TRUE(DebugContinue(&state));
        EXPECT_EQ(Wait(50), kDebugTimeout) << "and goes on";
        ASSERT_TRUE(DebugSetBreakpoint(&state, 4)) << "while it runs";
        EXPECT_EQ(Arrive(), 4);
        EXPECT_EQ(state.stopThreadId, state.mainThreadId);
        ASSERT_TRUE(DebugRemoveBreakpoint(&state, AddressOf(4)));
        ASSERT_TRUE(DebugContinue(&state));
        // Waits a moment first, because Wine 8 sometimes ends a program that is broken into just as it resumes.
        EXPECT_EQ(Wait(50), kDebugTimeout);
        ASSERT_TRUE(DebugBreakIn(&state));
        ASSERT_TRUE(DebugBreakIn(&state)) << "impatient, but one pause";
        ASSERT_EQ(Wait(), kDebugStopped);
        EXPECT_EQ(state.stopThreadId, state.mainThreadId) << "not the thread that the system makes for it";
        if (std::string_view(program) == "sleeps") {
            EXPECT_EQ(state.currentLine, 4) << "it waits in that line";
            EXPECT_EQ(Step(), 5) << "where the call returns to";
            ASSERT_TRUE(DebugContinue(&state));
            EXPECT_EQ(Wait(50), kDebugTimeout);
            ASSERT_TRUE(DebugBreakIn(&state));
            ASSERT_EQ(Wait(), kDebugStopped);
            EXPECT_EQ(RunTo(4), 4) << "in the next turn";
        } else {
            const int other = Registers().ip == AddressOf(5) ? 4 : 5;
            EXPECT_EQ(RunTo(other), other);
        }
        End();
    }
}

TEST_P(DebugSession, NothingHappensWithoutASession) {
    EXPECT_EQ(Wait(1000), kDebugNoSession);
    EXPECT_FALSE(DebugSetBreakpoint(&state, 2));
    EXPECT_FALSE(DebugSetConditionalBreakpoint(&state, 2, "1==1"));
    EXPECT_FALSE(DebugSetTempBp(&state, 0x401000, 2));
    EXPECT_EQ(DebugFindBp(&state, 0x401000), -1);
    EXPECT_FALSE(DebugStepOver(&state) || DebugStepInto(&state) || DebugStepOut(&state) || DebugContinue(&state));
    EXPECT_FALSE(DebugRunToLine(&state, 2) || DebugBreakIn(&state));
    std::uint8_t byte = 0;
    EXPECT_FALSE(DebugReadMem(&state, 0x401000, &byte, 1) || DebugWriteMem(&state, 0x401000, &byte, 1));
    DebugStop(&state);
    EXPECT_TRUE(g_said.empty());
}

// Asks for each handle, because GetProcessHandleCount always gives 0 under Wine 8.
int OpenHandles() {
    int open = 0;
    for (std::uintptr_t value = 4; value < 0x10000; value += 4) {
        DWORD flags = 0;
        open += GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) ? 1 : 0;
    }
    return open;
}

TEST_P(DebugSession, AHundredSessionsLeaveNoHandle) {
    const auto session = [this](int number) {
        g_deadline = GetTickCount64() + kTestMs;
        const bool threads = number % 2 == 1;
        ASSERT_TRUE(Start(threads ? "threads" : "straight"));
        if (number % 4 >= 2) {
            ASSERT_TRUE(DebugContinue(&state));
            ASSERT_EQ(Wait(), kDebugExited);
        }
        End();
    };
    for (int i = 0; i < 4; ++i) session(i);  // first, because the system opens some handles once
    const int before = OpenHandles();
    ASSERT_GT(before, 0);
    for (int i = 0; i < 100 && !HasFailure(); ++i) session(i);
    EXPECT_LE(OpenHandles(), before);
}

// Stands for a program whose end does not come in time: it stays attached until its events are continued.
TEST_P(DebugSession, AProgramThatWasLeftBehindIsDrained) {
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    ASSERT_TRUE(CreateProcessW(Program("sleeps").c_str(), nullptr, nullptr, nullptr, FALSE, DEBUG_ONLY_THIS_PROCESS,
                               nullptr, nullptr, &startup, &process));
    const UniqueHandle program(process.hProcess), thread(process.hThread);
    DebugLeaveBehind(process.dwProcessId);
    TerminateProcess(program.Get(), 0);
    for (int i = 0; i < 500 && DebugHasLeftBehind(); ++i, Sleep(10)) DebugDrainLeftBehind();
    EXPECT_FALSE(DebugHasLeftBehind());
    EXPECT_EQ(WaitForSingleObject(program.Get(), 3000), WAIT_OBJECT_0);
}

}  // namespace
