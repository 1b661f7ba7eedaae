// Breakpoints as data, conditions, texts and scrolling of a stop.
#include "debugui/breakpoint_rules.h"
#include "debugui/breakpoints.h"
#include "debugui/next_statement.h"
#include "debugui/stop_view.h"
#include "debugui/wait_keys.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace {

TEST(Condition, IsCountedInBytes) {
    EXPECT_EQ(ConditionProblem(""), L"");
    EXPECT_EQ(ConditionProblem(std::string(63, 'x')), L"");
    EXPECT_NE(ConditionProblem(std::string(64, 'x')).find(L"64 bytes"), std::wstring::npos);
}

TEST(Condition, WarnsOfWhatItDoesNotDo) {
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
        {"total>5", L"total has no place here"},
        {"i > 5", L""},
        {"i > j", L"j is not known"},
        {"i > 5 AND j < 3", L"j is not known"},  // found at once, not where i is first above 5
        {"k > 5 AND j < 3", L"j is not known"},
        {"total = 5", L"total has no place here"},
        {"RAX = 5", L"has =="},
        {"RAX>5 AND total<3", L"AND total<3"},
        {"i = \"a\"", L"cannot be compared"},
    };
    const NamedPlaces names = {{.name = "i", .place = "EBP-4"}, {.name = "k", .place = "RBP-4"}};
    for (const auto& c : cases) {
        const std::wstring notice = ConditionNotice(c.condition, names);
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

TEST(Breakpoints, AreMatchedWithTheirMarkers) {
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

// A program with code on some lines of "a.bas", and room for `room` breakpoints.
struct FakeProgram {
    std::map<int, std::uint64_t> code;  // of "a.bas", which is file 1
    std::size_t room = 64;
    bool writable = true;
    std::map<std::uint64_t, std::string> planted;  // conditions by address
    std::map<std::uint64_t, std::uint32_t> stopFrom;

    BreakpointTarget Target() {
        return {.find = [this](const std::wstring& path, int line) -> CodePlace {
                    if (path != L"a.bas") return {};
                    return {.fileId = 1, .address = code.contains(line) ? code[line] : 0};
                },
                .plant =
                    [this](std::uint32_t, int line) {
                        if (planted.size() >= room) return PlantResult::TableFull;
                        if (!writable) return PlantResult::NotWritable;
                        planted[code[line]];
                        return PlantResult::Planted;
                    },
                .remove = [this](std::uint64_t address) { planted.erase(address); },
                .setCondition = [this](std::uint64_t address, const std::string& text) { planted[address] = text; },
                .setStopFrom = [this](std::uint64_t address, std::uint32_t count) { stopFrom[address] = count; },
                .hits = [this](std::uint64_t address) { return planted.contains(address) ? 2 : -1; }};
    }
};

UserBreakpoints ListOf(std::initializer_list<int> lines, const std::wstring& path = L"a.bas", DocumentId document = 1) {
    UserBreakpoints list;
    for (const int line : lines) {
        list.emplace_back();
        list.back().path = path;
        list.back().line = line;
        list.back().document = document;
        list.back().handle = 100 + line;
    }
    return list;
}

// Line and look of each breakpoint; P plain, H hollow, D disabled, C conditional.
std::wstring Shown(const UserBreakpoints& list) {
    std::wstring text;
    for (const UserBreakpoint& each : list)
        text += std::to_wstring(each.line) + L"PHDC"[static_cast<int>(LookOfBreakpoint(each))] + L" ";
    return text;
}

TEST(Breakpoints, AreRefusedWhereTheProgramCannotTakeThem) {
    FakeProgram program{.code = {{2, 0x1002}, {3, 0x1003}, {4, 0x1003}, {7, 0x1007}}};
    UserBreakpoints list = ListOf({2, 3, 4, 5, 7});
    list[0].condition = "RAX==1";
    list[4].enabled = false;
    list.push_back(ListOf({2}, L"other.bas", 2).front());
    PlantAllBreakpoints(&list, program.Target());
    EXPECT_EQ(Shown(list), L"2C 3P 4H 5H 7D 2H ");
    EXPECT_EQ(program.planted, (std::map<std::uint64_t, std::string>{{0x1002, "RAX==1"}, {0x1003, ""}}));
    EXPECT_EQ(list[2].reason, L"Has the same code as line 3, which stops there.");
    EXPECT_EQ(BreakpointTipText(list[3], L""), L"No code on this line: never stops here.");
    EXPECT_EQ(BreakpointTipText(list[5], L""), L"This file is not part of the program.");
    BreakpointTarget partly = program.Target();
    partly.find = [](const std::wstring&, int) { return CodePlace{.fileId = 1, .untold = true}; };
    UserBreakpoints outside = ListOf({3});
    PlantAllBreakpoints(&outside, partly);
    EXPECT_NE(outside[0].reason.find(L"lines of PBMAIN only"), std::wstring::npos);
    ReadHits(&list, program.Target());
    EXPECT_EQ(BreakpointTipText(list[0], L"RAX==1"), L"Stops if RAX==1. Hit 2 times.");
    EXPECT_EQ(list[2].hits, 0U);
    EXPECT_EQ(BreakpointTipText(list[4], L"x"), L"Switched off (Debug > Enable or Disable Breakpoint).");

    ForgetBreakpoint(&list, 1, program.Target());
    EXPECT_EQ(PlantSharers(&list, program.Target()), std::vector<DocumentId>{1}) << "line 4 takes the place of line 3";
    EXPECT_EQ(Shown(list), L"2C 4P 5H 7D 2H ");
    EXPECT_EQ(program.planted.size(), 2U);

    IdleBreakpoints(&list);
    EXPECT_EQ(Shown(list), L"2C 4P 5P 7D 2P ");
    for (const UserBreakpoint& each : list) EXPECT_TRUE(each.address == 0 && each.shares == 0 && each.reason.empty());
    EXPECT_EQ(program.planted.size(), 2U) << "its program is gone, with all that was planted there";

    FakeProgram full{.code = {{2, 1}, {4, 2}}, .room = 1}, readOnly{.code = {{2, 1}, {4, 2}}, .writable = false};
    PlantAllBreakpoints(&list, full.Target());
    EXPECT_EQ(list[0].status, BreakpointStatus::Planted);
    EXPECT_EQ(list[1].reason, L"Not set: the program has 64 breakpoints already.");
    PlantAllBreakpoints(&list, readOnly.Target());
    EXPECT_EQ(list[0].reason, L"Not set: the program's memory could not be written.");
}

TEST(Breakpoints, FollowTheMarkersOfTheirDocuments) {
    FakeProgram program{.code = {{3, 3}, {6, 6}, {9, 9}}};
    UserBreakpoints list = ListOf({3, 5});
    PlantAllBreakpoints(&list, program.Target());
    // The second marker is gone, the first has moved, one is new, and one line has two.
    const MarkerMerge merge =
        MergeMarkers(&list, {.document = 1, .path = L"a.bas", .markers = {{103, 6}, {8, 9}, {9, 9}}}, program.Target());
    EXPECT_TRUE(merge.changed);
    EXPECT_EQ(merge.surplus, std::vector<int>{9});
    SortBreakpoints(&list);
    EXPECT_EQ(Shown(list), L"6P 9P ");
    EXPECT_TRUE(program.planted.contains(9)) << "a new one is planted at once";
    EXPECT_FALSE(MergeMarkers(&list, {.document = 2, .path = L"b.bas", .markers = {}}, {}).changed);

    EXPECT_TRUE(MoveBreakpointLines(&list, 1, 6, 2));
    EXPECT_FALSE(MoveBreakpointLines(&list, 2, 0, 5)) << "of another document";
    EXPECT_EQ(FindBreakpoint(list, 1, 11), 1);
    EXPECT_EQ(FindBreakpoint(list, 2, 11), -1);

    // Breakpoints of a closed file keep their lines; those of an untitled document are removed.
    list.push_back(ListOf({4}, L"", 3).front());
    DetachClosedDocuments(&list, [](DocumentId document) { return document != 1; });
    EXPECT_TRUE(BelongsToDocument(list[0], 7, L"A.BAS"));
    EXPECT_FALSE(BelongsToDocument(list[0], 7, L""));
    EXPECT_FALSE(BelongsToDocument(list[2], 7, L"a.bas")) << "it is in document 3";
    DetachDocument(&list, 3, program.Target());
    EXPECT_EQ(Shown(list), L"6P 11P ");
    MergeMarkers(&list, {.document = 7, .path = L"A.bas", .markers = {{1, 6}, {2, 11}}}, {});
    EXPECT_EQ(FindBreakpoint(list, 7, 11), 1);
}

TEST(Breakpoints, GoAwayAndComeBackWithTheirMarkers) {
    FakeProgram program{.code = {{3, 3}, {5, 5}, {6, 6}}};
    UserBreakpoints list = ListOf({3, 5}), away;
    list[0].condition = "RAX==1";
    list[0].stopFrom = 4;
    PlantAllBreakpoints(&list, program.Target());
    const auto renew = [&](int before, int after, int line, DocumentId document = 1) {
        return RenewMarker(&list, &away, {.document = document, .before = before, .after = after, .line = line},
                           program.Target());
    };
    EXPECT_TRUE(renew(103, 7, 4));
    EXPECT_EQ(Shown(list), L"4C 5P ") << "on another line, with its condition";
    EXPECT_FALSE(renew(103, 8, 4)) << "a bookmark";
    EXPECT_FALSE(renew(7, 8, 4, 2)) << "of another document";
    EXPECT_TRUE(renew(7, -1, 0));
    EXPECT_EQ(Shown(list), L"5P ");
    EXPECT_EQ(program.planted.size(), 1U) << "the program does not stop at a line that is gone";
    EXPECT_TRUE(renew(7, 9, 3));
    EXPECT_EQ(Shown(list), L"5P 3C ");
    EXPECT_EQ(program.planted[3], "RAX==1");
    EXPECT_EQ(program.stopFrom[3], 4U);
    EXPECT_EQ(list[1].handle, 9);
    EXPECT_FALSE(renew(7, 9, 3)) << "it comes back once";
}

TEST(Breakpoints, FoldedOnesAreNamed) {
    EXPECT_EQ(FoldedTipText({}), L"");
    EXPECT_EQ(FoldedTipText(std::vector{4}), L"Breakpoint on the folded line 5.");
    EXPECT_EQ(FoldedTipText(std::vector{4, 8}), L"Breakpoints on the folded lines 5, 9.");
}

TEST(Stop, IsNamedByItsLineOrItsAddress) {
    EXPECT_EQ(StopPlaceOf(12, 3, false, 0, 0).line, 12);
    EXPECT_EQ(StopPlaceOf(0, 0, true, 4, 9).fileId, 4U) << "a trap of the program's own, on a line";
    EXPECT_EQ(StopPlaceOf(0, 0, true, 4, 0x80000000).line, 0) << "no line of a source";
    EXPECT_EQ(StopPlaceText(L"a.bas", 12, false, 0x1000, true), L"a.bas:12");
    EXPECT_EQ(StopPlaceText(L"", 0, false, 0x140001000, true), L"0x0000000140001000, no source");
    EXPECT_EQ(StopPlaceText(L"", 0, false, 0x401000, false), L"0x00401000, no source");
    EXPECT_EQ(StopPlaceText(L"a.bas", 12, true, 0x401000, false), L"0x00401000, called from a.bas:12");
}

TEST(Stop, WarnsOnceOfASourceThatDoesNotMatchTheProgram) {
    StaleWarnings warnings;
    EXPECT_TRUE(NewStaleWarnings(&warnings, L"a.bas", {}).empty());
    EXPECT_EQ(NewStaleWarnings(&warnings, L"a.bas", {.newer = true}).size(), 1U);
    EXPECT_EQ(
        NewStaleWarnings(&warnings, L"a.bas", {.newer = true, .unsaved = true}),
        std::vector<std::wstring>{L"[Debug] a.bas has changes that are not saved: the program runs without them.\n"});
    EXPECT_TRUE(NewStaleWarnings(&warnings, L"a.bas", {.newer = true, .unsaved = true}).empty());
    EXPECT_EQ(NewStaleWarnings(&warnings, L"b.bas", {.newer = true}).size(), 1U);
    const auto looks = [&](const wchar_t* path, std::uint64_t now) { return TakeStaleLook(&warnings, path, now); };
    EXPECT_TRUE(looks(L"a", 5000) && !looks(L"a", 5999) && looks(L"a", 6000) && looks(L"b", 6001) && looks(L"a", 6002));
}

TEST(NextStatement, StaysInItsProcedureWithItsFrame) {
    const std::vector<std::string> source = {"SUB First", " a = 1", " a = 2", "END SUB", "SUB Second", " b = 1"};
    const auto text = [&](int line) { return source[static_cast<std::size_t>(line - 1)]; };
    constexpr wchar_t kOther[] = L"is in another procedure", kNoFrame[] = L"(F10) first", kSetsUp[] = L"sets up";
    const struct {
        const char* name;
        NextStatement wanted;
        const wchar_t* problem;  // a part of it; empty: none
    } cases[] = {
        {"within", {.from = 3, .to = 2, .hasCode = true}, L""},
        {"no code", {.from = 3, .to = 4}, L"No code on line 4."},
        {"the next procedure", {.from = 3, .to = 6, .hasCode = true}, kOther},
        {"the one before", {.from = 6, .to = 2, .hasCode = true}, kOther},
        {"another file", {.from = 3, .to = 2, .otherFile = true, .hasCode = true}, kOther},
        {"from a heading", {.from = 1, .to = 2, .hasCode = true}, kNoFrame},
        {"from a return", {.from = 4, .to = 2, .hasCode = true, .frameMissing = true}, kNoFrame},
        {"to a heading", {.from = 2, .to = 1, .hasCode = true}, kSetsUp},
        {"where it stands", {.from = 1, .to = 1, .hasCode = true, .standsThere = true, .frameMissing = true}, L""},
    };
    for (const auto& each : cases) {
        const std::wstring problem = NextStatementProblem(each.wanted, text);
        EXPECT_EQ(problem.empty(), *each.problem == L'\0') << each.name;
        EXPECT_NE(problem.find(each.problem), std::wstring::npos) << each.name;
    }
}

TEST(WaitKeys, TextGoesOnAndCommandsComeAfterwards) {
    using Action = WaitKeyAction;
    constexpr std::uint32_t kEscape = 0x1B, kEnter = 0x0D, kUp = 0x26, kDelete = 0x2E, kF5 = 0x74, kF10 = 0x79;
    const struct {
        const char* name;
        WaitKey key;
        Action action;
    } cases[] = {
        {"Escape", {.key = kEscape, .inField = true}, Action::Stop},
        {"Shift+F5", {.key = kF5, .shift = true}, Action::Stop},
        {"F5", {.key = kF5}, Action::PutOff},
        {"F10", {.key = kF10, .system = true, .inEditor = true}, Action::PutOff},
        {"a letter", {.key = 'A', .inEditor = true, .makesCharacter = true}, Action::Translate},
        {"AltGr", {.key = 'Q', .control = true, .alt = true, .makesCharacter = true}, Action::Translate},
        {"Ctrl+V", {.key = 'V', .control = true, .inEditor = true, .makesCharacter = true}, Action::EditorCommand},
        {"Ctrl+V elsewhere", {.key = 'V', .control = true, .makesCharacter = true}, Action::PutOff},
        {"Ctrl+B", {.key = 'B', .control = true, .inEditor = true, .makesCharacter = true}, Action::PutOff},
        {"Up", {.key = kUp, .inEditor = true}, Action::Handle},
        {"Up in a field", {.key = kUp, .inField = true}, Action::PutOff},
        {"Enter in a field", {.key = kEnter, .inField = true, .makesCharacter = false}, Action::PutOff},
        {"Delete in a field", {.key = kDelete, .inField = true}, Action::Handle},
        {"Delete after Enter", {.key = kDelete, .inField = true, .earlierKeyWaits = true}, Action::PutOff},
        {"Control", {.key = 0x11}, Action::Drop},
    };
    for (const auto& each : cases) EXPECT_EQ(ActionOfWaitKey(each.key), each.action) << each.name;
    EXPECT_EQ(ActionOfWaitCharacter('a', true, false, true), WaitCharacter::Handle);
    EXPECT_EQ(ActionOfWaitCharacter('a', false, true, true), WaitCharacter::PutOff) << "an Enter may come first";
    EXPECT_EQ(ActionOfWaitCharacter('a', false, false, false), WaitCharacter::Drop) << "no list searches by it";
}

}  // namespace
