// Random work with breakpoints and steps, reproducible by a seed: whatever was planted, stepped and removed, the
// program's result is the same as without a debugger.
#include "debug_fixture.h"

#include <random>

namespace {

using namespace debugtest;

struct Victim {
    const char* name;
    DWORD exitCode;
    int lastLine;
};
constexpr Victim kVictims[] = {{"straight", 42, 7},   {"loop", 55, 6},   {"calls", 9, 7},
                               {"recursion", 40, 13}, {"threads", 5, 8}, {"single_step", 3, 8},
                               {"own_trap", 2, 4},    {"race", 100, 11}, {"repeats", 3 * 'x', 6}};

class DebugTorture : public DebugBothTest {
protected:
    using Random = std::mt19937;

    int Pick(Random& random, int from, int to) { return std::uniform_int_distribution<int>(from, to)(random); }

    std::uint64_t PlantedAddress(Random& random) {
        if (state.breakpointCount == 0) return 0;
        return state.breakpoints[static_cast<std::size_t>(Pick(random, 0, state.breakpointCount - 1))].address;
    }

    // Does one random thing to a stopped program. True: it was resumed.
    bool Act(Random& random, int lastLine) {
        constexpr const char* kConditions[] = {"1==1", "1==2", "RCX<3", "RAX>=RBX", "rip!=0", nullptr};
        const int line = Pick(random, 1, lastLine);
        switch (Pick(random, 0, 12)) {
            case 0: return DebugStepOver(&state);
            case 1: return DebugStepInto(&state);
            case 2: return DebugStepOut(&state);
            case 3: return DebugRunToLine(&state, line);
            case 4: return DebugRunToLineIn(&state, 2, line);
            case 5: return DebugContinue(&state);
            case 6: DebugSetBreakpoint(&state, line); break;
            case 7: DebugSetBreakpointIn(&state, 2, line); break;
            case 8: DebugSetConditionalBreakpoint(&state, line, kConditions[Pick(random, 0, 5)]); break;
            case 9: DebugRemoveBreakpoint(&state, PlantedAddress(random)); break;
            case 10: DebugRestoreBp(&state, PlantedAddress(random)); break;
            case 11: DebugRearmBreakpoints(&state); break;
            default: Take(DebugWalkStack(&state)); break;
        }
        return false;
    }

    void Torture(unsigned number) {
        Random random(number);
        const Victim& victim = kVictims[number % std::size(kVictims)];
        SCOPED_TRACE(FormatW(L"%hs, number %u", victim.name, number));
        g_deadline = GetTickCount64() + kTestMs;
        ASSERT_TRUE(Start(victim.name));
        int event = kDebugStopped;
        for (int i = 0; i < 80 && event == kDebugStopped; ++i)
            if (Act(random, victim.lastLine)) event = Wait(5000);
        if (event == kDebugStopped) DebugClearBreakpoints(&state);
        while (event == kDebugStopped && DebugContinue(&state)) event = Wait(5000);
        ASSERT_EQ(event, kDebugExited);
        EXPECT_EQ(state.exitCode, victim.exitCode);
        EXPECT_EQ(TimesSaid(L"Exception"), 0) << SaidText();
        End();
    }
};
FOR_BOTH_KINDS(DebugTorture);

TEST_P(DebugTorture, TheProgramNeverNotices) {
    for (unsigned number = 0; number < 64 && !HasFailure(); ++number) Torture(number);
}

}  // namespace
