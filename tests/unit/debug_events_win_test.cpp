// What the engine makes of a program's events: its debug strings, faults, its own traps, and how a wait ends.
#include "base/bounded_text.h"
#include "debug_fixture.h"
#include "settings/settings_state.h"

namespace {

using namespace debugtest;

class DebugEvents : public DebugBothTest {};
FOR_BOTH_KINDS(DebugEvents);

TEST_P(DebugEvents, DebugStringsGoToThePane) {
    ASSERT_TRUE(Start("strings"));
    g_said.clear();
    ASSERT_TRUE(DebugContinue(&state));
    EXPECT_EQ(Wait(), kDebugExited);

    std::wstring longText;
    for (int i = 0; i < 5000; ++i) longText += static_cast<wchar_t>(L'a' + i % 26);
    ASSERT_EQ(g_said.size(), 5u);
    EXPECT_EQ(g_said[0].text, L"[Debug] Gr\u00FC\u00DFe \u4E2D\u6587 100%s\n");
    EXPECT_EQ(g_said[1].text, L"[Debug] \n");
    EXPECT_EQ(g_said[2].text, L"[Debug] " + longText + L"\n");
    EXPECT_EQ(g_said[3].text.find(L"[Debug] "), 0u) << "bytes that are no UTF-8";
    EXPECT_NE(g_said[3].text.find(L"odd"), std::wstring::npos);
    EXPECT_EQ(g_said[4].text, L"[Debug] one\ntwo\n");
    for (const Said& one : g_said) EXPECT_EQ(one.colour, kTeal) << one.text;
}

TEST_P(DebugEvents, AFaultIsReportedAndTheInstructionRunsAgain) {
    ASSERT_TRUE(Start("fault"));
    ASSERT_EQ(Step(), 3);
    g_said.clear();
    ASSERT_TRUE(DebugContinue(&state));
    EXPECT_EQ(Wait(), kDebugStopped) << "held after a while, so that it can be looked at";
    EXPECT_EQ(state.currentLine, 3);
    const std::wstring report = FormatW(L"[Debug] Exception 0xC0000005 at 0x%p\n", Registers().ip);
    EXPECT_GE(TimesSaid(report), 2) << SaidText();
    g_said.clear();
    ASSERT_TRUE(DebugContinue(&state));
    EXPECT_EQ(Wait(), kDebugStopped);
    EXPECT_GE(TimesSaid(report), 2);
}

// A program that handles its own faults gets on when they are passed to it.
TEST_P(DebugEvents, ExceptionsGoWhereTheUserWantsThem) {
    const struct {
        const char* program;
        const wchar_t* rules;
        int stops;  // on line 3
        DWORD exitCode;
    } cases[] = {{"handles", L"C0000005:p", 0, 7},
                 {"handles", L"other:ps", 1, 7},
                 {"handles", L"other:ps;C0000005:p", 0, 7},
                 {"fault", L"C0000005:p", 1, 0xC0000005}};  // it is not handled, which stops
    for (const auto& one : cases) {
        SCOPED_TRACE(FormatW(L"%hs %s", one.program, one.rules));
        SafeCopyW(g_settings.exceptionRules, one.rules);
        ASSERT_TRUE(Start(one.program));
        ASSERT_TRUE(DebugSetBreakpoint(&state, 3));
        ASSERT_TRUE(DebugContinue(&state));
        ASSERT_EQ(Arrive(), 3);
        g_said.clear();
        for (int stop = 0; stop < one.stops; ++stop) {
            ASSERT_TRUE(DebugContinue(&state));
            ASSERT_EQ(Wait(), kDebugStopped);
            EXPECT_EQ(state.currentLine, 3);
        }
        ContinueToTheEnd(one.exitCode);
        EXPECT_GE(TimesSaid(L"[Debug] Access violation: reading 0x"), 1) << SaidText();
        EXPECT_EQ(TimesSaid(L":3, passed to the program\n"), 1) << SaidText();
        EXPECT_EQ(TimesSaid(L":3, which the program does not handle\n"), one.exitCode == 7 ? 0 : 1);
        End();
    }
    g_settings.exceptionRules[0] = L'\0';
}

TEST_P(DebugEvents, AFaultThatHealsGoesOn) {
    ASSERT_TRUE(Start("heals"));
    int event = kDebugStopped;
    while (event == kDebugStopped && DebugContinue(&state)) event = Wait();
    EXPECT_EQ(event, kDebugExited);
    EXPECT_EQ(state.exitCode, 7u);
    EXPECT_GE(TimesSaid(L"[Debug] Exception 0xC0000005 at 0x"), 2);
}

// A trap of the program's own, right after a breakpoint, must not run the breakpoint's instruction again.
TEST_P(DebugEvents, AProgramsOwnTrapAfterABreakpointIsAStopOfItsOwn) {
    ASSERT_TRUE(Start("own_trap"));
    ASSERT_TRUE(DebugSetBreakpoint(&state, 3));
    ASSERT_TRUE(DebugSetBreakpoint(&state, 4));
    ASSERT_TRUE(DebugContinue(&state));
    ASSERT_EQ(Arrive(), 3);
    const std::uint64_t serial = state.stopSerial;
    ASSERT_TRUE(DebugContinue(&state));
    ASSERT_EQ(Wait(), kDebugStopped);
    EXPECT_EQ(state.currentAddress, AddressOf(3) + 1);
    EXPECT_EQ(state.currentLine, 0);
    EXPECT_EQ(state.currentFileId, 0u);
    EXPECT_EQ(state.stopSerial, serial + 1);
    ASSERT_TRUE(DebugContinue(&state));
    EXPECT_EQ(Arrive(), 4) << "nor does it hide the one after it";
    ContinueToTheEnd(2u);
}

// Some systems report a breakpoint with the address after it.
TEST_P(DebugEvents, ABreakpointReportedAfterItsTrapIsFound) {
    ASSERT_TRUE(Start("reported_trap"));
    ASSERT_TRUE(DebugSetBreakpoint(&state, 3));
    const std::uint64_t address = AddressOf(3);
    ASSERT_TRUE(DebugContinue(&state));
    ASSERT_EQ(Arrive(), 3);
    EXPECT_EQ(state.currentAddress, address);
    EXPECT_EQ(Registers().ip, address) << "its instruction is still to come";
    EXPECT_EQ(state.breakpoints[static_cast<std::size_t>(DebugFindBp(&state, address))].hits, 1u);
    EXPECT_EQ(Step(), 4);
    ContinueToTheEnd(5u);
}

// No loader of maps sets `neutralizeTraps` yet, so the test sets it. The trap stands right before a record.
TEST_P(DebugEvents, TrapsBeforeRecordsAreOverwrittenWhereTheMapAsksForIt) {
    ASSERT_TRUE(SdbgLoad(Program("own_trap").c_str(), &state.map));
    state.map.neutralizeTraps = 1;
    ASSERT_TRUE(DebugStartLoaded(Program("own_trap").c_str(), &state));
    Watch();
    EXPECT_EQ(RawByte(AddressOf(4) - 1), 0x90);
    ContinueToTheEnd(2u);
}

// A breakpoint on a trap of the program's own makes one stop, and the trap is not run afterwards.
TEST_P(DebugEvents, ABreakpointOnAProgramsOwnTrapStopsOnce) {
    ASSERT_TRUE(Start("own_trap"));
    ASSERT_TRUE(DebugSetTempBp(&state, AddressOf(3) + 1, 3));
    ASSERT_TRUE(DebugSetBreakpoint(&state, 4));
    EXPECT_EQ(Step(), 3);
    EXPECT_EQ(Step(), 3) << "the trap";
    EXPECT_EQ(Step(), 4);
    ASSERT_TRUE(DebugContinue(&state));
    EXPECT_EQ(Wait(), kDebugExited);
}

// When threads reach a breakpoint together, none passes it unnoticed, runs its instruction twice, or is lost.
TEST_P(DebugEvents, ManyThreadsMayMeetAtOneBreakpoint) {
    for (const char* condition : {"1==1", "1==2"}) {
        SCOPED_TRACE(condition);
        ASSERT_TRUE(Start("race"));
        ASSERT_TRUE(DebugSetConditionalBreakpoint(&state, 9, condition));
        int event = kDebugStopped, stops = 0;
        while (DebugContinue(&state) && (event = Wait()) == kDebugStopped) {
            EXPECT_EQ(state.currentLine, 9);
            ++stops;
        }
        EXPECT_EQ(event, kDebugExited);
        EXPECT_EQ(state.exitCode, 100u);
        EXPECT_EQ(stops, condition[3] == '1' ? 100 : 0);
        EXPECT_EQ(TimesSaid(L"Exception"), 0) << SaidText();
        End();
    }
}

// What the other threads hit just before the breakpoint was removed is no stop, and no thread runs on inside an
// instruction.
TEST_P(DebugEvents, LateHitsOfARemovedBreakpointAreNoStops) {
    ASSERT_TRUE(Start("race"));
    ASSERT_TRUE(DebugSetBreakpoint(&state, 9));
    ASSERT_EQ(RawByte(AddressOf(9) - 1), 0xCC) << "the case to be tested";
    for (int i = 0; i < 40; ++i) {
        ASSERT_TRUE(DebugContinue(&state));
        ASSERT_EQ(Arrive(), 9);
    }
    ASSERT_TRUE(DebugRemoveBreakpoint(&state, AddressOf(9)));
    ContinueToTheEnd(100u);
}

// A thread whose instruction pointer cannot be put back is not let run.
TEST_P(DebugEvents, AnInstructionPointerThatCannotBeSetHoldsTheProgram) {
    ASSERT_TRUE(Start("loop"));
    ASSERT_TRUE(DebugSetConditionalBreakpoint(&state, 3, "1==2"));
    ASSERT_TRUE(DebugContinue(&state));
    HANDLE& thread = state.threads[0].handle;
    UniqueHandle readOnly(
        OpenThread(THREAD_GET_CONTEXT | THREAD_SUSPEND_RESUME | THREAD_QUERY_INFORMATION, FALSE, state.mainThreadId));
    const HANDLE whole = std::exchange(thread, readOnly.Get());
    EXPECT_EQ(Arrive(), 3) << "although the condition does not hold";
    EXPECT_EQ(TimesSaid(L"[Debug] The instruction pointer of thread "), 1) << SaidText();
    EXPECT_FALSE(DebugContinue(&state));
    thread = whole;
    ContinueToTheEnd(55u);
}

// Libraries lie after the program in memory, and so after the last line of its map.
TEST_P(DebugEvents, CodeOfALibraryHasNoLine) {
    ASSERT_TRUE(Start("outside"));
    ASSERT_TRUE(DebugContinue(&state));
    ASSERT_EQ(Wait(), kDebugStopped);
    EXPECT_EQ(TimesSaid(L"[Debug] The instruction has failed 16 times in a row"), 1) << SaidText();
    EXPECT_EQ(state.currentLine, 0);
    EXPECT_GE(state.currentAddress - state.map.imageBase, state.imageSize);
}

TEST_P(DebugEvents, WhatAProgramReportsIsLimitedBetweenStops) {
    ASSERT_TRUE(Start("flood"));
    ASSERT_TRUE(DebugContinue(&state));
    g_deadline += 3 * kTestMs;  // ten thousand events
    static const DebuggerState* watched;
    watched = &state;
    const DebugWaitHook previous =
        DebugSetWaitHook([] { return watched->reports.leftOut > 0 || GetTickCount64() > g_deadline; });
    EXPECT_EQ(Wait(INFINITE), kDebugTimeout);
    DebugSetWaitHook(previous);
    EXPECT_EQ(TimesSaid(L"again and again"), 5000);
    EXPECT_EQ(TimesSaid(L"[Debug] The program writes too much; its last lines are shown when it stops.\n"), 1);
    g_said.clear();
    ASSERT_TRUE(DebugSetBreakpoint(&state, 5));
    ASSERT_EQ(Arrive(), 5);
    EXPECT_EQ(TimesSaid(L" reports left out ...\n"), 1);
    EXPECT_EQ(TimesSaid(L"again and again"), 5000) << "the last ones";
    g_said.clear();
    ASSERT_TRUE(DebugContinue(&state));
    ASSERT_EQ(Arrive(), 5);
    EXPECT_EQ(TimesSaid(L"again and again"), 1) << "shown again";
}

// A time-out begins again with each event, so only the hook ends a wait while events pour in.
TEST_P(DebugEvents, TheHookEndsAWait) {
    static int asked;
    for (const char* program : {"flood", "busy"}) {
        SCOPED_TRACE(program);
        ASSERT_TRUE(Start(program));
        ASSERT_TRUE(DebugContinue(&state));
        asked = 0;
        const DebugWaitHook previous = DebugSetWaitHook([] { return ++asked == 5; });
        EXPECT_NE(previous, nullptr);
        EXPECT_EQ(Wait(INFINITE), kDebugTimeout);
        EXPECT_EQ(asked, 5);
        DebugSetWaitHook(previous);
        End();
    }
}

TEST_P(DebugEvents, ATimeoutLeavesTheProgramRunning) {
    ASSERT_TRUE(Start("sleeps"));
    ASSERT_TRUE(DebugSetConditionalBreakpoint(&state, 5, "1==2"));
    ASSERT_TRUE(DebugContinue(&state));
    DebugSetCondition(&state, AddressOf(5), "1==1");
    EXPECT_EQ(Arrive(), 5);
    ASSERT_TRUE(DebugRemoveBreakpoint(&state, AddressOf(5)));
    ASSERT_TRUE(DebugContinue(&state));
    const ULONGLONG begun = GetTickCount64();
    EXPECT_EQ(Wait(200), kDebugTimeout);
    EXPECT_GE(GetTickCount64() - begun, 190u);
    EXPECT_EQ(state.run, DebugRun::Running);
    EXPECT_EQ(state.active, 1u);
}

}  // namespace
