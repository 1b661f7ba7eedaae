// Steps that follow the program, through programs that a C compiler built.
#include "debugger/debug_follow.h"
#include "debug_fixture.h"
#include "debugger/at_address.h"
#include "debugui/pane_disassembly.h"
#include "debugui/pane_symbols.h"

namespace {

using namespace debugtest;
using Lines = std::vector<int>;

class DebugFollows : public DebugBothTest {
protected:
    int Go(FollowKind kind) { return DebugFollowStep(&state, kind) ? Arrive() : -1; }
    // The lines of up to `most` steps of one kind; -2 is the end of the program.
    Lines Steps(FollowKind kind, std::size_t most) {
        Lines lines;
        while (lines.size() < most && (lines.empty() || lines.back() > 0)) lines.push_back(Go(kind));
        return lines;
    }
    std::uint64_t Sp() const { return Registers().general[kSp]; }
};
FOR_BOTH_KINDS(DebugFollows);

TEST_P(DebugFollows, OverGoesThroughEveryTurnOfALoop) {
    ASSERT_TRUE(Start("loop"));
    Lines expected = {4};  // the compiler put the test of the loop behind its body
    for (int turn = 0; turn < 10; ++turn) expected.insert(expected.end(), {2, 3, 4});
    expected.insert(expected.end(), {5, -2});
    EXPECT_EQ(Steps(FollowKind::Over, 100), expected);
    EXPECT_EQ(state.exitCode, 55u);
}

TEST_P(DebugFollows, ARecursionDoesNotStopDeeper) {
    ASSERT_TRUE(Start("recursion"));
    EXPECT_EQ(Steps(FollowKind::Into, 6), (Lines{7, 8, 7, 8, 7, 8}));
    const std::uint64_t sp = Sp();
    EXPECT_EQ(Steps(FollowKind::Over, 2), (Lines{12, 8})) << "over 37 calls, then back in the caller's line";
    EXPECT_GT(Sp(), sp);
    EXPECT_EQ(Go(FollowKind::Into), 12) << "the call in the line is over";
    EXPECT_EQ(Steps(FollowKind::Out, 3), (Lines{8, 2, -2})) << "the first call's caller, then no caller with source";
    EXPECT_EQ(state.exitCode, 40u);
    End();

    ASSERT_TRUE(Start("recursion"));
    EXPECT_EQ(Steps(FollowKind::Into, 9), (Lines{7, 8, 7, 8, 7, 8, 7, 8, 7}));
    const std::vector<DebugFrame> frames = DebugFrames(&state, 0);
    ASSERT_GT(frames.size(), 4U);
    ASSERT_TRUE(DebugRunToFrame(&state, frames[3].address, state.stopThreadId, frames[2].framePointer));
    EXPECT_EQ(Arrive(), 8);
    EXPECT_EQ(DebugFrames(&state, 0).size(), frames.size() - 3) << "past the same address in the calls within";
    End();

    ASSERT_TRUE(Start("recursion"));
    EXPECT_EQ(Steps(FollowKind::Into, 3), (Lines{7, 8, 7}));
    ASSERT_TRUE(DebugSetConditionalBreakpoint(&state, 8, "2>3"));
    ASSERT_TRUE(DebugSetBreakpoint(&state, 10));
    EXPECT_EQ(Steps(FollowKind::Over, 2), (Lines{8, 10})) << "the step's own target stops, then the user's breakpoint";
    EXPECT_EQ(Steps(FollowKind::Out, 2), (Lines{8, 8})) << "from there a caller at a time";
    EXPECT_EQ(state.follow.kind, FollowKind::None);
    EXPECT_EQ(state.breakpointCount, 3) << "nothing of the steps is left: the start's and the two of this test";
}

// twists.c says what its lines are.
TEST_P(DebugFollows, OddCodeIsFollowed) {
    ASSERT_TRUE(Start("twists"));
    EXPECT_EQ(Steps(FollowKind::Over, 3), (Lines{4, 5, 6}));
    const std::uint64_t repeated = Registers().ip;
    EXPECT_EQ(Go(FollowKind::Instruction), 6);
    EXPECT_EQ(Registers().ip, repeated + 2) << "all repetitions";
    EXPECT_EQ(Go(FollowKind::Over), 7);
    EXPECT_EQ(Steps(FollowKind::Into, 2), (Lines{12, 7})) << "by way of code without lines";
    EXPECT_EQ(Go(FollowKind::InstructionOver), 7) << "one instruction";
    EXPECT_EQ(Steps(FollowKind::Into, 2), (Lines{8, 14}));
    EXPECT_EQ(Count(), 3u);
    EXPECT_EQ(Go(FollowKind::Into), 14);
    EXPECT_EQ(Count(), 2u) << "the same line, but deeper";
    EXPECT_EQ(Go(FollowKind::Into), 14);
    const std::uint64_t sp = Sp();
    EXPECT_EQ(Go(FollowKind::Over), 14);
    EXPECT_GT(Sp(), sp) << "the same line, but in the caller";
    ASSERT_TRUE(DebugSetBreakpoint(&state, 9));
    EXPECT_EQ(Steps(FollowKind::Over, 3), (Lines{14, 8, 9}));
    EXPECT_EQ(state.breakpoints[static_cast<std::size_t>(DebugFindBp(&state, AddressOf(9)))].hits, 1u);
    ContinueToTheEnd(3u);

    ASSERT_TRUE(Start("breaks"));
    ASSERT_TRUE(DebugContinue(&state));
    ASSERT_EQ(Arrive(), 0) << "the library's trap";
    EXPECT_EQ(Steps(FollowKind::Over, 2), (Lines{3, 4}));
}

TEST_P(DebugFollows, IntoAndOutAtTheFirstInstructionOfAProcedure) {
    ASSERT_TRUE(Start("calls"));
    EXPECT_EQ(Steps(FollowKind::Into, 2), (Lines{4, 2}));
    EXPECT_EQ(state.currentFileId, 2u);
    EXPECT_EQ(Registers().ip, state.map.imageBase + SdbgFileLineToRva(&state.map, 2, 2));
    EXPECT_EQ(Steps(FollowKind::Into, 2), (Lines{3, 4})) << "along a jump into another procedure";
    EXPECT_EQ(Go(FollowKind::Out), 5) << "the line that begins behind the call";
    EXPECT_EQ(state.currentFileId, 1u);
    EXPECT_EQ(Steps(FollowKind::Into, 3), (Lines{6, -2})) << "a system call has no lines";
    ASSERT_TRUE(Start("calls"));
    EXPECT_EQ(Steps(FollowKind::Into, 2), (Lines{4, 2}));
    EXPECT_EQ(Go(FollowKind::Out), 5) << "out of the first instruction, where no frame stands";
}

// Four threads pass the line of a false condition at once, while the main thread steps over its wait.
TEST_P(DebugFollows, OtherThreadsDoNotEndAStep) {
    ASSERT_TRUE(Start("race"));
    EXPECT_EQ(Go(FollowKind::Over), 3);
    EXPECT_EQ(Go(FollowKind::Over), 4);
    ContinueToTheEnd(100u);
    ASSERT_TRUE(Start("threads"));
    ASSERT_TRUE(DebugSetBreakpoint(&state, 7));
    int line = 0;
    for (int i = 0; i < 3 && line != 7; ++i) line = Go(FollowKind::Over);
    EXPECT_EQ(line, 7) << "a breakpoint in another thread stops";
    EXPECT_EQ(Steps(FollowKind::Over, 2), (Lines{8, -2})) << "and is stepped from there, to the end of the thread";
    EXPECT_EQ(state.exitCode, 5u);
}

TEST_P(DebugFollows, ALongLineIsPausedAndInstructionsAreStepped) {
    ASSERT_TRUE(Start("spins"));
    EXPECT_EQ(Go(FollowKind::Over), 4);
    ASSERT_TRUE(DebugFollowStep(&state, FollowKind::Over));
    g_deadline = GetTickCount64() + 200;
    EXPECT_EQ(Wait(), kDebugTimeout) << "the line never ends";
    g_deadline += kTestMs;
    ASSERT_TRUE(DebugBreakIn(&state));
    EXPECT_EQ(Arrive(), 4);
    EXPECT_EQ(state.stopThreadId, state.mainThreadId);
    const std::uint64_t before = Registers().ip;
    EXPECT_EQ(Go(FollowKind::Instruction), 4);
    EXPECT_NE(Registers().ip, before);
    const std::uint64_t line2 = AddressOf(2);
    EXPECT_FALSE(DebugSetNextStatement(&state, line2 - 1)) << "no line";
    ASSERT_TRUE(DebugSetNextStatement(&state, line2));
    EXPECT_EQ(Registers().ip, line2);
    EXPECT_EQ(state.currentLine, 2);
    EXPECT_EQ(Go(FollowKind::Over), 4);
    while (state.breakpointCount < kMaxBreakpoints)
        ASSERT_TRUE(DebugSetTempBp(&state, line2 + state.breakpointCount, 2));
    for (DebugBreakpoint& each : state.breakpoints) each.temporary = 0;
    EXPECT_EQ(Go(FollowKind::Out), -1) << "no caller, and no room";
}

TEST_P(DebugFollows, CallsOfImportsHaveNames) {
    ASSERT_TRUE(DebugStartForCompiler(Program("library").c_str(), 1, &g_debugger));
    std::vector<std::uint8_t> code(64);
    const std::uint64_t address = g_debugger.currentAddress;
    code.resize(DebugReadSome(&g_debugger, address, code.data(), code.size()));
    std::string texts;
    for (const auto& each : DisasmAround(code, address, address, Bits() == 64, {}, PaneSymbolAt)) texts += each.text;
    DebugStop(&g_debugger);
    EXPECT_NE(texts.find("!LoadLibraryA"), std::string::npos) << texts;
}

// That program waits for a file in its folder before its first line.
TEST_P(DebugFollows, AProgramStartsInTheFolderThatIsAskedFor) {
    const TempFolder folder;
    WriteBytes(folder.path / "go.txt", "");
    DebugSetLaunch(L"one \"two three\"", folder.path.c_str());
    EXPECT_TRUE(Start("early"));
    DebugSetLaunch(L"", L"");
    EXPECT_EQ(state.currentLine, 2);
}

TEST_P(DebugFollows, HitCountsAndBreakpointsOfInstructions) {
    ASSERT_TRUE(Start("loop"));
    ASSERT_TRUE(DebugSetBreakpoint(&state, 3));
    ASSERT_TRUE(DebugSetStopFrom(&state, AddressOf(3), 4));
    for (std::uint64_t turn = 4; turn <= 5; ++turn) {
        ASSERT_TRUE(DebugContinue(&state));
        ASSERT_EQ(Arrive(), 3);
        EXPECT_EQ(Count(), turn);
    }
    const std::uint64_t second = AddressOf(3) + 1;  // line 3 begins with a NOP
    EXPECT_FALSE(DebugSetBreakpointAt(&state, 16)) << "no code";
    ASSERT_TRUE(DebugSetBreakpointAt(&state, second));
    ASSERT_TRUE(DebugContinue(&state));
    ASSERT_EQ(Arrive(), 3);
    EXPECT_EQ(Registers().ip, second);
    ASSERT_TRUE(DebugRemoveBreakpoint(&state, second));
    ASSERT_TRUE(DebugRemoveBreakpoint(&state, AddressOf(3)));
    ASSERT_TRUE(DebugRunToAddress(&state, second));
    ASSERT_EQ(Arrive(), 3);
    EXPECT_EQ(Registers().ip, second);
    EXPECT_EQ(Count(), 6u);
    ContinueToTheEnd(55u);
}

}  // namespace
