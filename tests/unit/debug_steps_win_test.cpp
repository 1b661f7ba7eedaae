// Steps through real programs: they follow the order of addresses, not the flow of control.
#include "debug_fixture.h"
#include "program/pe_headers.h"
#include "settings/compiler_id.h"

namespace {

using namespace debugtest;

class DebugSteps : public DebugBothTest {};
FOR_BOTH_KINDS(DebugSteps);

TEST_P(DebugSteps, OverGoesToTheNextAddressWhateverTheLoopDoes) {
    ASSERT_TRUE(Start("loop"));
    EXPECT_EQ(Step(), 3);
    EXPECT_EQ(Count(), 1u);
    EXPECT_EQ(Step(), 4);
    EXPECT_EQ(Step(), 5) << "nine more turns are over";
    ContinueToTheEnd(55u);
}

TEST_P(DebugSteps, IntoFollowsACallAndOutComesBack) {
    ASSERT_TRUE(Start("calls"));
    ASSERT_EQ(state.currentLine, 3);
    EXPECT_EQ(Step(DebugStepInto), 4) << "no CALL, so as step over";
    EXPECT_EQ(state.currentFileId, 1u);
    EXPECT_EQ(Step(DebugStepInto), 2);
    EXPECT_EQ(state.currentFileId, 2u);
    EXPECT_EQ(Registers().ip, state.map.imageBase + SdbgFileLineToRva(&state.map, 2, 2));
    const std::vector<DebugFrame> frames = DebugFrames(&state, 0);
    ASSERT_GE(frames.size(), 2u);
    EXPECT_EQ(frames[1].line, 4u) << "the caller, although the frame of the procedure does not stand yet";
    if (Bits() == 64) {
        EXPECT_EQ(Step(DebugStepOut), 5) << "the return address lies on the stack";
        EXPECT_EQ(state.currentFileId, 1u);
    } else {
        EXPECT_EQ(Step(DebugStepOut), 3) << "as step over in a 32-bit program";
        EXPECT_EQ(state.currentFileId, 2u);
    }
}

TEST_P(DebugSteps, OutIsAStepOverWithoutAReturnAddress) {
    ASSERT_TRUE(Start("calls"));
    ASSERT_TRUE(DebugRunToLineIn(&state, 2, 3));
    ASSERT_EQ(Arrive(), 3);
    EXPECT_EQ(state.currentFileId, 2u);
    EXPECT_EQ(Step(DebugStepOut), 4) << "the saved frame pointer is no code";
    EXPECT_EQ(state.currentFileId, 2u);
    g_said.clear();
    EXPECT_EQ(Step(), -1) << "the record after the last statement has line 0 and is no target";
    EXPECT_EQ(Step(DebugStepOut), -1);
    EXPECT_EQ(TimesSaid(L"[Debug] No further source lines.\n"), 2);
    EXPECT_EQ(Wait(50), kDebugTimeout);
}

TEST_P(DebugSteps, RunToALine) {
    ASSERT_TRUE(Start("calls"));
    EXPECT_EQ(RunTo(99), -1);
    EXPECT_EQ(RunTo(0), -1);
    EXPECT_EQ(Wait(50), kDebugTimeout) << "it was not resumed";
    EXPECT_EQ(RunTo(4), 4);
    EXPECT_EQ(Step(), 5) << "over a call, which stays in the procedure";
    EXPECT_EQ(RunTo(6), 6);
    EXPECT_EQ(state.currentFileId, 1u);
    EXPECT_EQ(state.breakpointCount, 1) << "the temporary one is gone";
    EXPECT_EQ(RunTo(5), -2) << "it does not come by there again";
    EXPECT_EQ(state.exitCode, 9u);
}

// A step that stopped at another breakpoint leaves its target in the table.
TEST_P(DebugSteps, TargetsOfEarlierStepsDoNotStopTheProgram) {
    ASSERT_TRUE(Start("loop"));
    ASSERT_TRUE(DebugSetTempBp(&state, AddressOf(3), 3));
    EXPECT_EQ(RunTo(5), 5) << "not at 3";
    End();
    ASSERT_TRUE(Start("many"));
    for (int line = 100; state.breakpointCount < kMaxBreakpoints; ++line)
        ASSERT_TRUE(DebugSetTempBp(&state, AddressOf(line), line));
    EXPECT_EQ(Step(), 3) << "nor do they fill the table";
    for (int line = 100; state.breakpointCount < kMaxBreakpoints; ++line) ASSERT_TRUE(DebugSetBreakpoint(&state, line));
    EXPECT_EQ(Step(), -1) << "the user's do";
}

TEST_P(DebugSteps, ARunningProgramCannotBeStepped) {
    ASSERT_TRUE(Start("sleeps"));
    ASSERT_TRUE(DebugContinue(&state));
    EXPECT_EQ(Wait(50), kDebugTimeout);
    EXPECT_FALSE(DebugStepOver(&state) || DebugStepInto(&state) || DebugStepOut(&state) || DebugContinue(&state));
    EXPECT_FALSE(DebugRunToLine(&state, 4));
    EXPECT_EQ(state.breakpointCount, 1) << "and nothing is left in it";
}

// A step does not stop where it begins, even when the breakpoint there was armed again.
TEST_P(DebugSteps, TheStatementUnderABreakpointRuns) {
    ASSERT_TRUE(Start("straight"));
    DebugRearmBreakpoints(&state);
    EXPECT_EQ(RawByte(AddressOf(2)), 0xCC);
    EXPECT_EQ(Step(), 3);
    ASSERT_TRUE(DebugSetBreakpoint(&state, 3));
    DebugRearmBreakpoints(&state);
    EXPECT_EQ(RunTo(6), 6);
    DebugRearmBreakpoints(&state);
    ContinueToTheEnd(42u);
}

// A step that ends on a breakpoint of the user leaves it there, and stops once.
TEST_P(DebugSteps, ABreakpointOnTheTargetStays) {
    ASSERT_TRUE(Start("loop"));
    ASSERT_TRUE(DebugSetBreakpoint(&state, 3));
    const int count = state.breakpointCount;
    EXPECT_EQ(Step(), 3);
    EXPECT_EQ(state.breakpointCount, count);
    ASSERT_GE(DebugFindBp(&state, AddressOf(3)), 0);
    EXPECT_EQ(state.breakpoints[static_cast<std::size_t>(DebugFindBp(&state, AddressOf(3)))].hits, 1u);
    ASSERT_TRUE(DebugContinue(&state));
    EXPECT_EQ(Arrive(), 3) << "in the next turn of the loop";
    EXPECT_EQ(Count(), 2u);
    EXPECT_EQ(Step(), 4);
}

// The target of a step is a stop even where the user's condition does not hold.
TEST_P(DebugSteps, AStepStopsOnABreakpointWhoseConditionIsFalse) {
    ASSERT_TRUE(Start("loop"));
    ASSERT_TRUE(DebugSetConditionalBreakpoint(&state, 3, "1==2"));
    ASSERT_TRUE(DebugSetConditionalBreakpoint(&state, 5, "1==2"));
    EXPECT_EQ(Step(), 3);
    EXPECT_EQ(Count(), 1u);
    EXPECT_EQ(RunTo(5), 5) << "not at 3 in the next turn";
    ContinueToTheEnd(55u);
}

// A stop in a library belongs to the line that called it, and every step leads back there.
TEST_P(DebugSteps, AStepLeavesALibrary) {
    for (const auto step : {DebugStepOver, DebugStepInto, DebugStepOut}) {
        ASSERT_TRUE(Start("breaks"));
        ASSERT_TRUE(DebugContinue(&state));
        ASSERT_EQ(Arrive(), 0) << "the library's trap";
        std::uint64_t caller = 0;
        ASSERT_TRUE(DebugCallerOfLibrary(&state, &caller));
        const std::vector<DebugFrame> frames = DebugFrames(&state, 0);
        ASSERT_GE(frames.size(), 2u);
        EXPECT_EQ(frames[1].address, caller);
        EXPECT_EQ(frames[1].line, 3u);
        EXPECT_EQ(Step(step), 3) << "after the call";
        EXPECT_EQ(state.currentAddress, caller);
        EXPECT_EQ(Step(), 4);
        End();
    }
}

// One stop for each arrival, however often the instruction repeats itself.
TEST_P(DebugSteps, ARepeatedInstructionIsLeftAsOne) {
    ASSERT_TRUE(Start("repeats"));
    ASSERT_TRUE(DebugSetBreakpoint(&state, 3));
    ASSERT_TRUE(DebugSetBreakpoint(&state, 4));
    for (int turn = 0; turn < 2; ++turn) {
        ASSERT_TRUE(DebugContinue(&state));
        EXPECT_EQ(Arrive(), 3);
        ASSERT_TRUE(DebugContinue(&state));
        EXPECT_EQ(Arrive(), 4) << "which begins right after it";
    }
    ASSERT_TRUE(DebugRemoveBreakpoint(&state, AddressOf(4)));
    ASSERT_TRUE(DebugContinue(&state));
    EXPECT_EQ(Arrive(), 3);
    ContinueToTheEnd(3 * 'x');
}

// --- Programs with trap bytes of their own

class DebugTraps : public DebugBothTest {
protected:
    TempFolder folder_;
    std::uint64_t run_ = 0;  // address of the run of three before the first statement

    // Starts a program whose side file says that PBMAIN begins at trap number `first` of the run.
    bool StartTraps(std::uint32_t first) {
        const auto program = folder_.path / "traps.exe";
        const std::string bytes = ReadBytes(Program("traps"));
        WriteBytes(program, bytes);
        const auto* file = reinterpret_cast<const std::uint8_t*>(bytes.data());
        constexpr std::uint64_t kBase = 0x400000;
        run_ = kBase + GetTextBaseRva(file, bytes.size()) + bytes.find("\xCC\xCC\xCC") - 0x400;
        std::string side = "PBMAIN";
        side.push_back('\0');
        for (int shift = 0; shift < 32; shift += 8) side.push_back(static_cast<char>((run_ + first) >> shift));
        WriteBytes(folder_.path / "traps.exe.pbd", side);
        DebugSetSourcePath((std::filesystem::path(KVX_TESTS_DIR) / "debuggees" / "traps.bas").c_str());
        return StartFile(program, kCompilerKeldorBasic);
    }
};
FOR_BOTH_KINDS(DebugTraps);

TEST_P(DebugTraps, EachStatementsTrapIsAStop) {
    ASSERT_TRUE(StartTraps(0));
    EXPECT_EQ(SaidText(), L"[Debug] Reached line 2.\n");
    EXPECT_EQ(state.currentAddress, run_);
    EXPECT_EQ(state.currentFileId, 1u);
    EXPECT_EQ(state.map.nativeTrapMap, 1u);
    EXPECT_EQ(state.breakpointCount, 0) << "nothing is planted";
    const std::wstring top = Bits() == 64
                                 ? FormatW(L"Call Stack:\r\n  #0  0x%llX  line 2\r\n", Registers().ip)
                                 : L"Call Stack:\r\n  #0  0x0  (no source info)\r\n  #1  0x0  (no source info)\r\n";
    EXPECT_EQ(Take(DebugWalkStack(&state)).substr(0, top.size()), top);

    EXPECT_EQ(Step(), 0) << "two more traps on that line are skipped, then one outside the code";
    EXPECT_EQ(state.currentFileId, 0u);
    EXPECT_EQ(Step(), 3);
    EXPECT_EQ(state.currentAddress, state.map.imageBase + SdbgLineToRva(&state.map, 3));
    EXPECT_EQ(Step(), 4);
    EXPECT_EQ(Step(), -2) << "steps have no end of lines here";
    EXPECT_EQ(state.exitCode, 6u);
}

// The first trap lies before the map's first record; its line is that of the record right after it.
TEST_P(DebugTraps, ALineIsLookedForAroundTheTrap) {
    for (const std::uint32_t first : {1u, 2u}) {
        SCOPED_TRACE(first);
        ASSERT_TRUE(StartTraps(first));
        EXPECT_EQ(state.map.lines[0].rva, run_ + first - state.map.imageBase);
        EXPECT_EQ(state.currentLine, 2);
        EXPECT_EQ(state.currentAddress, run_);
        EXPECT_EQ(Step(), 0);
        EXPECT_EQ(Step(), 3);
        End();
    }
}

TEST_P(DebugTraps, ContinueRunsPastTheTrapsToTheUsersBreakpoint) {
    ASSERT_TRUE(StartTraps(0));
    ASSERT_TRUE(DebugSetBreakpoint(&state, 4));
    EXPECT_EQ(state.breakpoints[0].originalByte, 0xCC);
    int line = 0;
    for (int i = 0; i < 2 && line == 0; ++i) {  // the trap outside the code has no line
        ASSERT_TRUE(DebugContinue(&state));
        line = Arrive();
    }
    EXPECT_EQ(line, 4);
    ContinueToTheEnd(6u);
}

// The start gives up when it meets no trap of the map.
TEST_P(DebugTraps, SaysWhenNoStatementIsReached) {
    StartTraps(0);
    End();
    const auto program = folder_.path / "traps.exe";
    std::string bytes = ReadBytes(program);
    for (char& byte : bytes)
        if (byte == '\xCC') byte = '\x90';
    ASSERT_TRUE(PbdLoad(program.c_str(), &state.map));
    WriteBytes(program, bytes);
    g_said.clear();
    EXPECT_FALSE(DebugStartLoaded(program.c_str(), &state));
    Watch();
    EXPECT_EQ(SaidText(), L"[Debug] PowerBASIC debug database contains no usable line map\n");
}

}  // namespace
