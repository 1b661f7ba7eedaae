// The phases of a debug session in the window, and what is done only once or for a limited time.
#include "debugui/debug_flow.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

TEST(Flow, APaneThatTheUserHadOpenStays) {
    DebugFlow flow;
    FlowStart(&flow, 0);
    EXPECT_FALSE(FlowOpensPane(&flow, true));
    EXPECT_FALSE(FlowClosesPane(&flow, true)) << "it was open before";
    EXPECT_TRUE(FlowOpensPane(&flow, false));
    EXPECT_FALSE(FlowClosesPane(&flow, false)) << "the user has closed it";
    FlowOpensPane(&flow, false);
    EXPECT_TRUE(FlowClosesPane(&flow, true));
    EXPECT_FALSE(FlowClosesPane(&flow, true)) << "opened since, by the user";
}

TEST(Flow, CommandsAreAllowedByPhase) {
    DebugFlow flow;
    const auto state = [&] { return std::pair{FlowIsStopped(flow), FlowIsRunning(flow)}; };
    constexpr std::pair kNeither{false, false}, kStands{true, false}, kRuns{false, true};
    EXPECT_EQ(state(), kNeither);
    FlowStart(&flow, 1000);
    EXPECT_EQ(state(), kRuns);
    flow.waiting = true;
    EXPECT_EQ(state(), kNeither) << "nothing but Stop";
    flow.waiting = false;
    FlowResume(&flow, L"", 2000);
    EXPECT_EQ(flow.phase, DebugPhase::Starting) << "its first line is still to come";
    FlowStartGivenUp(&flow);
    EXPECT_EQ(flow.phase, DebugPhase::Running);
    FlowStopped(&flow);
    EXPECT_EQ(state(), kStands);
    FlowStartGivenUp(&flow);
    EXPECT_EQ(state(), kStands);
    FlowResume(&flow, L" (step into)", 3000);
    EXPECT_EQ(state(), kRuns);
    FlowEnding(&flow);
    EXPECT_EQ(state(), kNeither);
    FlowWantStop(&flow, true);
    FlowEnded(&flow);
    EXPECT_FALSE(flow.stopWanted || flow.closeWanted || !flow.suffix.empty()) << "nothing is left for the next session";
}

TEST(Flow, TimesAreLimited) {
    DebugFlow flow;
    FlowStart(&flow, 1000);
    EXPECT_FALSE(FlowStartWaitIsOver(flow, true, 1999));
    EXPECT_TRUE(FlowStartWaitIsOver(flow, true, 2000));
    EXPECT_FALSE(FlowStartWaitIsOver(flow, false, 90000)) << "the system's own first stop must come";
    FlowWantStop(&flow, false);
    EXPECT_TRUE(FlowStartWaitIsOver(flow, false, 1000) && !flow.closeWanted);

    FlowResume(&flow, L"", 2000);
    EXPECT_FALSE(FlowTakeLongRun(&flow, false, 31999));
    EXPECT_TRUE(FlowTakeLongRun(&flow, false, 32000));
    EXPECT_FALSE(FlowTakeLongRun(&flow, false, 90000)) << "once";
    FlowResume(&flow, L"", 90000);
    EXPECT_FALSE(FlowTakeLongRun(&flow, true, 90001));
    EXPECT_FALSE(FlowTakeLongRun(&flow, false, 990000)) << "a start has a text of its own";

    flow.lastSeen = 5000;
    EXPECT_TRUE(FlowMayPassUnseen(flow, 5049));
    EXPECT_FALSE(FlowMayPassUnseen(flow, 5050));
}

TEST(Flow, LooksForTheConsoleForALimitedTime) {
    DebugFlow flow;
    FlowWatchConsole(&flow);
    int looks = 0;
    while (!FlowLookForConsole(&flow, false).raise) ++looks;
    EXPECT_EQ(looks, 34);
    FlowWatchConsole(&flow);
    EXPECT_TRUE(FlowLookForConsole(&flow, true).raise);
    for (looks = 1; !FlowLookForConsole(&flow, false).last;) ++looks;
    EXPECT_EQ(looks, 5);
    EXPECT_TRUE(FlowLookForConsole(&flow, false).last) << "a timer message that was under way";
}

}  // namespace
