// Breakpoints in real programs: what the table holds, what stands in the program, and conditions.
#include "debug_fixture.h"

#include <cstring>

namespace {

using namespace debugtest;

constexpr int kTrap = 0xCC;

class DebugBreakpoints : public DebugBothTest {
protected:
    // Lines of the table, temporary ones negative.
    std::vector<int> Table() const {
        std::vector<int> lines;
        for (int i = 0; i < state.breakpointCount; ++i) {
            const DebugBreakpoint& bp = state.breakpoints[static_cast<std::size_t>(i)];
            lines.push_back(bp.temporary ? -static_cast<int>(bp.line) : static_cast<int>(bp.line));
        }
        return lines;
    }
};
FOR_BOTH_KINDS(DebugBreakpoints);

TEST_P(DebugBreakpoints, PlantingWritesATrapOnce) {
    ASSERT_TRUE(Start("straight"));
    const int before = RawByte(AddressOf(3));
    EXPECT_TRUE(DebugSetBreakpoint(&state, 3));
    EXPECT_EQ(RawByte(AddressOf(3)), kTrap);
    EXPECT_TRUE(DebugSetBreakpoint(&state, 3)) << "present already";
    EXPECT_TRUE(DebugSetTempBp(&state, AddressOf(3), 3));
    EXPECT_EQ(Table(), (std::vector<int>{2, 3}));
    EXPECT_FALSE(DebugSetBreakpoint(&state, 4)) << "a comment";
    EXPECT_FALSE(DebugSetBreakpoint(&state, 0));
    EXPECT_FALSE(DebugSetBreakpoint(&state, 99));
    EXPECT_FALSE(DebugSetTempBp(&state, 0x10, 3)) << "no memory there";
    EXPECT_EQ(Table(), (std::vector<int>{2, 3}));

    const DebugBreakpoint& made = state.breakpoints[1];
    EXPECT_EQ(made.address, AddressOf(3));
    EXPECT_EQ(made.originalByte, before);
    EXPECT_EQ(made.condition[0], '\0');
    EXPECT_EQ(DebugFindBp(&state, AddressOf(3)), 1);
    EXPECT_EQ(DebugFindBp(&state, AddressOf(3) + 1), -1);
}

TEST_P(DebugBreakpoints, RestoringRearmingAndClearing) {
    ASSERT_TRUE(Start("straight"));
    const int third = RawByte(AddressOf(3)), fifth = RawByte(AddressOf(5)), sixth = RawByte(AddressOf(6));
    ASSERT_TRUE(DebugSetBreakpoint(&state, 3));
    ASSERT_TRUE(DebugSetTempBp(&state, AddressOf(5), 5));
    ASSERT_TRUE(DebugSetBreakpoint(&state, 6));

    EXPECT_TRUE(DebugRestoreBp(&state, AddressOf(3)));
    EXPECT_TRUE(DebugRestoreBp(&state, AddressOf(5)));
    EXPECT_FALSE(DebugRestoreBp(&state, AddressOf(3) + 1));
    EXPECT_EQ(RawByte(AddressOf(3)), third);
    EXPECT_EQ(Table(), (std::vector<int>{2, 3, -5, 6})) << "entries stay";

    DebugRearmBreakpoints(&state);
    EXPECT_EQ(RawByte(AddressOf(3)), kTrap);
    EXPECT_EQ(RawByte(AddressOf(5)), fifth) << "temporary ones are not armed again";

    EXPECT_TRUE(DebugRemoveBreakpoint(&state, AddressOf(3)));
    EXPECT_EQ(RawByte(AddressOf(3)), third);
    EXPECT_EQ(Table(), (std::vector<int>{2, -5, 6}));

    DebugClearBreakpoints(&state);
    EXPECT_TRUE(Table().empty());
    EXPECT_EQ(RawByte(AddressOf(6)), sixth);
    EXPECT_EQ(RawByte(AddressOf(5)), fifth);
    ASSERT_TRUE(DebugContinue(&state));
    EXPECT_EQ(Wait(), kDebugExited) << "nothing is left to stop at";
    EXPECT_EQ(state.exitCode, 42u);
}

TEST_P(DebugBreakpoints, ATemporaryOneGoesWhenItIsHitAndLaterOnesMoveDown) {
    ASSERT_TRUE(Start("straight"));
    ASSERT_TRUE(DebugSetTempBp(&state, AddressOf(3), 3));
    ASSERT_TRUE(DebugSetBreakpoint(&state, 5));
    ASSERT_TRUE(DebugSetBreakpoint(&state, 6));
    EXPECT_EQ(Table(), (std::vector<int>{2, -3, 5, 6}));
    ASSERT_EQ(Step(), 3);
    EXPECT_EQ(Table(), (std::vector<int>{2, 5, 6}));
    EXPECT_NE(RawByte(AddressOf(3)), kTrap);
    EXPECT_EQ(Registers().ip, AddressOf(3));
    ASSERT_EQ(Step(), 5);
    EXPECT_EQ(Table(), (std::vector<int>{2, 5, 6})) << "this one stays, disarmed";
    EXPECT_NE(RawByte(AddressOf(5)), kTrap);
    EXPECT_EQ(Registers().ip, AddressOf(5));
}

TEST_P(DebugBreakpoints, The65thIsRefused) {
    ASSERT_TRUE(Start("many"));
    for (int line = 3; line <= 65; ++line) ASSERT_TRUE(DebugSetBreakpoint(&state, line)) << line;
    EXPECT_EQ(state.breakpointCount, 64);
    const int byte = RawByte(AddressOf(66));
    EXPECT_FALSE(DebugSetBreakpoint(&state, 66));
    EXPECT_FALSE(DebugSetBreakpointIn(&state, 1, 66));
    EXPECT_FALSE(DebugSetTempBp(&state, AddressOf(66), 66));
    EXPECT_FALSE(DebugSetBreakpoint(&state, 2)) << "what the start does, after it";
    EXPECT_FALSE(DebugSetConditionalBreakpoint(&state, 66, "1==1"));
    EXPECT_EQ(state.breakpointCount, 64);
    EXPECT_EQ(RawByte(AddressOf(66)), byte);
    EXPECT_EQ(Step(), -1) << "a step has no room either";
    EXPECT_EQ(RunTo(66), -1);
    EXPECT_EQ(Wait(50), kDebugTimeout);
    ASSERT_TRUE(DebugRemoveBreakpoint(&state, AddressOf(50)));
    EXPECT_EQ(Step(), 3);
}

// Breakpoints planted at the start stop the program like any other.
TEST_P(DebugBreakpoints, ThePlantHookMayPlantBeforeTheProgramRuns) {
    static int lines;
    lines = 0;
    DebugSetPlantHook([](DebuggerState* s) {
        lines = s->breakpointCount;
        DebugSetBreakpoint(s, 5);
    });
    ASSERT_TRUE(Start("straight"));
    EXPECT_EQ(lines, 1) << "the first line's stands already";
    ASSERT_TRUE(DebugContinue(&state));
    EXPECT_EQ(Arrive(), 5);
}

// Steps set no trap flag, so a breakpoint that they leave stays disarmed until the program raises a single step itself.
TEST_P(DebugBreakpoints, AHitOneIsArmedAgainByTheNextSingleStep) {
    ASSERT_TRUE(Start("single_step"));
    ASSERT_TRUE(DebugSetBreakpoint(&state, 3));
    ASSERT_EQ(RunTo(8), 3) << "the first turn";
    EXPECT_NE(RawByte(AddressOf(3)), kTrap);
    EXPECT_EQ(RunTo(8), 3) << "the second turn passes, then comes the single step, so the third stops";
    EXPECT_EQ(RunTo(8), 8);
    ContinueToTheEnd(3u);
}

TEST_P(DebugBreakpoints, OfTwoFilesTheFirstWinsUnlessTheFileIsNamed) {
    ASSERT_TRUE(Start("calls"));
    EXPECT_EQ(state.currentLine, 3);
    EXPECT_EQ(state.currentFileId, 1u);
    EXPECT_STREQ(SdbgFileIdToPath(&state.map, 1), "calls.bas");
    EXPECT_STREQ(SdbgFileIdToPath(&state.map, 2), "calls_part.inc");
    EXPECT_TRUE(DebugSetBreakpoint(&state, 3));
    EXPECT_EQ(state.breakpointCount, 1) << "the start's own";
    ASSERT_TRUE(DebugSetBreakpointIn(&state, 2, 3));
    EXPECT_EQ(state.breakpointCount, 2);
    EXPECT_EQ(state.breakpoints[1].fileId, 2u);
    EXPECT_FALSE(DebugSetBreakpointIn(&state, 2, 5));
    EXPECT_FALSE(DebugSetBreakpointIn(&state, 3, 3));
    ASSERT_TRUE(DebugContinue(&state));
    ASSERT_EQ(Arrive(), 3);
    EXPECT_EQ(state.currentFileId, 2u);
}

TEST_P(DebugBreakpoints, MemoryShowsWhatTheProgramHas) {
    ASSERT_TRUE(Start("straight"));
    const std::uint64_t place = AddressOf(3);
    std::uint8_t bytes[8] = {}, shown[8] = {};
    ASSERT_TRUE(DebugReadMem(&state, place - 2, bytes, sizeof bytes));
    ASSERT_TRUE(DebugSetBreakpoint(&state, 3));
    ASSERT_TRUE(DebugReadMem(&state, place - 2, shown, sizeof shown));
    EXPECT_EQ(std::memcmp(bytes, shown, sizeof bytes), 0) << "not the trap";

    std::uint8_t changed[3] = {bytes[1], 0x90, bytes[3]};
    ASSERT_TRUE(DebugWriteMem(&state, place - 1, changed, sizeof changed));
    EXPECT_EQ(RawByte(place), kTrap) << "it outlives a write over it";
    EXPECT_EQ(state.breakpoints[1].originalByte, 0x90);
    ASSERT_TRUE(DebugRemoveBreakpoint(&state, place));
    EXPECT_EQ(RawByte(place), 0x90);

    EXPECT_FALSE(DebugReadMem(&state, 0x10, bytes, 1));
    EXPECT_FALSE(DebugWriteMem(&state, 0x10, bytes, 1));
    // After the image of a 64-bit program, memory is unreadable. Wine can read what a 32-bit program has only reserved.
    if (Bits() == 32) return;
    const std::uint64_t end = state.map.imageBase + state.imageSize;
    EXPECT_FALSE(DebugReadMem(&state, end - 4, bytes, 8));
    EXPECT_EQ(DebugReadSome(&state, end - 4, bytes, 8), 4u);
}

// --- Conditions

TEST_P(DebugBreakpoints, ConditionsCompare) {
    ASSERT_TRUE(Start("loop"));
    ASSERT_TRUE(DebugSetConditionalBreakpoint(&state, 3, Bits() == 64 ? "RCX==5" : ""));
    for (int turn = Bits() == 64 ? 5 : 1; turn <= 5; ++turn) {
        ASSERT_TRUE(DebugContinue(&state));
        ASSERT_EQ(Arrive(), 3);
    }
    ASSERT_EQ(Count(), 5u);
    const struct {
        const char* text;
        bool wide, narrow;  // for the two kinds of program: a 32-bit register is 0
    } cases[] = {
        {"RCX>=5", true, false},    {"RCX>=6", false, false},
        {"rcx<=5", true, true},     {"Rcx<=4", false, true},
        {"RCX!=5", false, true},    {"RCX==5", true, false},
        {"RCX>4", true, false},     {"RCX>5", false, false},
        {"RCX<6", true, true},      {"RCX<5", false, true},
        {"ECX==5", false, false},  // not the name of a 64-bit register, so 0
        {"ECX==0", true, true},     {"2>3", false, false},
        {"", true, true},           {"RCX", true, true},  // no operator
        {"RCX=4", true, true},                            // "=" is no operator
        {"0x1F==31", true, true},   {"0X1f==31", true, true},
        {"12abc==12", true, true},  {"0xFFFFFFFFFFFFFFFF>1", true, true},  // unsigned
        {"RCX ==5", false, false},                                         // the blank belongs to the name
        {"RCX ==0", true, true},    {"RCX== \t5", true, false},            // a blank before a number does not count
        {" \tRCX==5", true, false}, {"5 ==5", true, true},                 // digits end at the blank
        {"1<2==3", false, false},                                          // read as "1<2" == 3: 1 and 3
        {"3==3>=4", false, false},                                         // read as "3==3" >= 4: 3 and 4
        {"1==2!=1", false, false},                                         // read as "1==2" != 1: 1 and 1
        {"RCX=>5", false, false},                                          // "RCX=" is no name
        {"==", true, true},                                                // 0 and 0
    };
    for (const auto& one : cases)
        EXPECT_EQ(DebugCheckCondition(&state, one.text), Bits() == 64 ? one.wide : one.narrow) << one.text;
    // Only the first 127 bytes are read.
    EXPECT_FALSE(DebugCheckCondition(&state, ("1==2" + std::string(200, ' ') + ">=").c_str()));
    EXPECT_TRUE(DebugCheckCondition(&state, (std::string(130, ' ') + "1==2").c_str()));
}

TEST_P(DebugBreakpoints, AConditionThatDoesNotHoldIsNoStop) {
    const struct {
        const char* condition;
        std::vector<std::uint64_t> wide;  // turns that stop a 64-bit program
        std::size_t narrow;               // number of stops of a 32-bit one
    } cases[] = {{"RCX>7", {8, 9, 10}, 0},
                 {"RCX<=2", {1, 2}, 10},
                 {"2>3", {}, 0},
                 {nullptr, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, 10}};
    for (const auto& one : cases) {
        const std::string name = one.condition != nullptr ? one.condition : "(none)";
        SCOPED_TRACE(name);
        ASSERT_TRUE(Start("loop"));
        ASSERT_TRUE(DebugSetConditionalBreakpoint(&state, 3, "1==1"));
        ASSERT_TRUE(DebugSetConditionalBreakpoint(&state, 3, one.condition));
        EXPECT_STREQ(state.breakpoints[1].condition, one.condition ? one.condition : "");
        std::vector<std::uint64_t> turns;
        int event = kDebugStopped;
        while (DebugContinue(&state) && (event = Wait()) == kDebugStopped && turns.size() < 20) {
            EXPECT_EQ(state.currentLine, 3);
            turns.push_back(Count());
            if (one.condition == nullptr) EXPECT_EQ(state.breakpoints[1].hits, turns.size());
        }
        EXPECT_EQ(event, kDebugExited);
        EXPECT_EQ(state.exitCode, 55u) << "no statement ran twice or was left out";
        if (Bits() == 64)
            EXPECT_EQ(turns, one.wide);
        else
            EXPECT_EQ(turns.size(), one.narrow);
        End();
    }
}

TEST_P(DebugBreakpoints, AConditionIsCutTo63Bytes) {
    ASSERT_TRUE(Start("loop"));
    const std::string text = "1==" + std::string(59, '0') + "12";
    ASSERT_EQ(text.size(), 64u);
    ASSERT_TRUE(DebugSetConditionalBreakpoint(&state, 3, text.c_str()));
    EXPECT_EQ(state.breakpoints[1].condition, text.substr(0, 63)) << "1 now, and not 12";
    EXPECT_FALSE(DebugSetConditionalBreakpoint(&state, 1, "1==1"));
    ASSERT_TRUE(DebugContinue(&state));
    EXPECT_EQ(Arrive(), 3);
    EXPECT_TRUE(DebugSetCondition(&state, AddressOf(3), "1==2"));
    EXPECT_FALSE(DebugSetCondition(&state, AddressOf(3) + 1, "1==2"));
    ASSERT_TRUE(DebugContinue(&state));
    EXPECT_EQ(Wait(), kDebugExited);
}

}  // namespace
