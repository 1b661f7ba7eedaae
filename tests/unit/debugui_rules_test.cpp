// Breakpoints and their markers, conditions, scrolling to a stop, paths of a line map.
#include "debugui/breakpoint_rules.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(Condition, IsCountedInBytes) {
    EXPECT_EQ(ConditionProblem(""), L"");
    EXPECT_EQ(ConditionProblem(std::string(63, 'x')), L"");
    EXPECT_NE(ConditionProblem(std::string(64, 'x')).find(L"64 bytes"), std::wstring::npos);
}

TEST(Condition, SaysWhatItWillNotDo) {
    const struct {
        const char* condition;
        const wchar_t* part;  // of the notice; empty: none
    } cases[] = {
        {"", L""},
        {"RAX==3", L""},
        {"0x10 >= rip", L""},
        {"7 > 3", L""},
        {"RAX", L"always"},
        {"RAX == 3", L"blank"},
        {"3 == RAX ", L"blank"},
        {"EAX==3", L"no number"},
        {"==3", L"no number"},
        {"total>5", L"no number"},
    };
    for (const auto& c : cases) {
        const std::wstring notice = ConditionNotice(c.condition);
        EXPECT_EQ(notice.empty(), c.part[0] == L'\0') << c.condition;
        EXPECT_NE(notice.find(c.part), std::wstring::npos) << c.condition;
    }
}

std::string Describe(const MarkerMatch& match) {
    std::string text;
    for (std::size_t i = 0; i < match.lines.size(); ++i)
        text += std::to_string(match.lines[i]) + "@" + std::to_string(match.handles[i]) + " ";
    text += "|";
    for (const int handle : match.surplus) text += " " + std::to_string(handle);
    text += " |";
    for (const MarkerPlace& marker : match.news)
        text += " " + std::to_string(marker.line) + "@" + std::to_string(marker.handle);
    return text;
}

TEST(Breakpoints, MeetTheirMarkersAgain) {
    const struct {
        const char* name;
        std::vector<KnownBreakpoint> known;
        std::vector<MarkerPlace> markers;
        const char* expected;  // line@handle of each known | surplus handles | new ones
    } cases[] = {
        {"moved by an edit", {{7, 3}, {8, 5}}, {{7, 4}, {8, 6}}, "4@7 6@8 | |"},
        {"taken away", {{7, 3}}, {}, "0@-1 | |"},
        {"someone else's marker", {{7, 3}}, {{7, 3}, {9, 12}}, "3@7 | | 12@9"},
        {"lines joined: one stays", {{7, 3}, {8, 4}}, {{7, 3}, {8, 3}}, "3@7 0@-1 | 8 |"},
        {"a stranger first on a known line", {{7, 3}}, {{9, 3}, {7, 3}}, "3@7 | 9 |"},
        {"a stranger where a known one stood", {{7, 3}}, {{9, 3}, {7, 5}}, "5@7 | | 3@9"},
        {"two strangers on one line", {}, {{4, 2}, {5, 2}}, "| 5 | 2@4"},
        {"of a closed file, by its line", {{-1, 3}, {-1, 9}}, {{4, 3}}, "3@4 0@-1 | |"},
    };
    for (const auto& c : cases) EXPECT_EQ(Describe(MatchMarkers(c.known, c.markers)), c.expected) << c.name;
}

TEST(Breakpoints, TheLookSaysTheWorstFirst) {
    EXPECT_EQ(LookOf(true, false, false), BreakpointLook::Plain);
    EXPECT_EQ(LookOf(true, false, true), BreakpointLook::Conditional);
    EXPECT_EQ(LookOf(true, true, true), BreakpointLook::Hollow);
    EXPECT_EQ(LookOf(false, true, true), BreakpointLook::Disabled);
}

TEST(Stop, ScrollsOnlyWhenLinesAroundItAreMissing) {
    const struct {
        const char* name;
        int first, count, stop, expected;
    } cases[] = {
        {"in view", 10, 30, 20, 10},          {"context above just there", 10, 30, 13, 10},
        {"too near the top", 10, 30, 12, 2},  {"context below just there", 10, 30, 36, 10},
        {"too near the end", 10, 30, 37, 27}, {"far below", 0, 30, 500, 490},
        {"at the start", 10, 30, 0, 0},       {"two lines high", 10, 2, 11, 10},
        {"no height yet", 5, 0, 9, 9},
    };
    for (const auto& c : cases) EXPECT_EQ(ScrollForStop(c.first, c.count, c.stop, 3), c.expected) << c.name;
}

TEST(Breakpoints, LinesMoveWithEdits) {
    const struct {
        int line, first, added, now;
    } cases[] = {{4, 5, 3, 4}, {5, 5, 3, 8}, {9, 5, -2, 7}, {6, 5, -2, 4}, {5, 5, -2, 4}, {4, 5, -2, 4}};
    for (const auto& each : cases)
        EXPECT_EQ(MovedLine(each.line, each.first, each.added), each.now) << each.line << " " << each.added;
}

}  // namespace
