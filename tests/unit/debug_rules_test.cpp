// The pure rules of a session: what events mean, where steps and pauses end, stacks, the table of breakpoints,
// registers.
#include "debugger/breakpoint_table.h"
#include "debugger/exception_rules.h"
#include "debugger/registers.h"
#include "debugger/stack_walk.h"
#include "debugger/step_rules.h"
#include "debugger/stop_rules.h"

#include <gtest/gtest.h>

#include <cstring>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using Place = std::pair<std::uint32_t, std::uint32_t>;  // line, file
Place OfTrap(const SdbgMap& map, std::uint64_t address) {
    const SourcePlace place = PlaceOfTrap(map, address);
    return {place.line, place.fileId};
}
Place Of(const SdbgMap& map, std::uint64_t address) {
    const SourcePlace place = PlaceOf(map, address);
    return {place.line, place.fileId};
}

TEST(DebugRules, BreakpointsAndSingleStepsOf32BitProgramsMayHaveCodesOfTheirOwn) {
    const struct {
        std::uint32_t code;
        ExceptionKind kind;
    } cases[] = {
        {0x80000003, ExceptionKind::Breakpoint}, {0x4000001F, ExceptionKind::Breakpoint},
        {0x80000004, ExceptionKind::SingleStep}, {0x4000001E, ExceptionKind::SingleStep},
        {0xC0000005, ExceptionKind::Fault},      {0xC0000094, ExceptionKind::Fault},
        {0xC000001D, ExceptionKind::Fault},      {0x80000002, ExceptionKind::Fault},
        {0xC000008D, ExceptionKind::Fault},      {0xC000008E, ExceptionKind::Fault},
        {0xC0000093, ExceptionKind::Fault},      {0xC00002B4, ExceptionKind::Fault},
        {0xE06D7363, ExceptionKind::Other},      {0x406D1388, ExceptionKind::Other},
        {0x40000020, ExceptionKind::Other},      {0, ExceptionKind::Other},
    };
    for (const auto& one : cases) EXPECT_EQ(ExceptionKindOf(one.code), one.kind) << std::hex << one.code;
}

// A map with two records, at 0x1010 and 0x1020; the code lies at 0x1000 to 0x1030.
struct TwoLines {
    SdbgLine lines[2] = {{.fileId = 1, .line = 7, .rva = 0x1010}, {.fileId = 2, .line = 9, .rva = 0x1020}};
    SdbgMap map;
    explicit TwoLines(bool native) {
        map.lines = lines;
        map.lineCount = 2;
        map.imageBase = 0x140000000;
        map.textRva = 0x1000;
        map.textSize = native ? 0x30 : 0;
        map.nativeTrapMap = native ? 1 : 0;
    }
};

TEST(DebugRules, PlaceOfATrapIsLookedForAroundIt) {
    const TwoLines native(true), section(false);
    const struct {
        std::uint64_t rva;
        Place native;
    } cases[] = {
        {0x1010, {7, 1}},  {0x101F, {7, 1}}, {0x1020, {9, 2}}, {0x102F, {9, 2}},
        {0x1030, {}},      {0x0FFF, {}},     {0x100F, {7, 1}},  // one byte before the record
        {0x100E, {7, 1}},                                       // two bytes
        {0x100D, {}},                                           // three bytes are too many
        {0x100001010, {}},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(OfTrap(native.map, 0x140000000 + one.rva), one.native) << std::hex << one.rva;
        EXPECT_EQ(OfTrap(section.map, 0x140000000 + one.rva), Place()) << std::hex << one.rva;
    }
    EXPECT_EQ(OfTrap(native.map, 0x1010), Place()) << "below the image";
    EXPECT_EQ(Of(section.map, 0x140001015), Place(7, 1));
    EXPECT_EQ(Of(section.map, 0x14000100F), Place());
    EXPECT_EQ(Of(section.map, 0x24000100F), Place()) << "4 GB further on";
}

TEST(DebugRules, ARunOfTrapsOnOneLineStopsOnce) {
    const TwoLines native(true), section(false);
    EXPECT_TRUE(IsRepeatedTrap(native.map, {7, 1}, 0x140001011, 7, 0x140001010));
    EXPECT_FALSE(IsRepeatedTrap(native.map, {7, 1}, 0x140001010, 7, 0x140001010)) << "the same one again: a loop";
    EXPECT_FALSE(IsRepeatedTrap(native.map, {9, 2}, 0x140001020, 7, 0x140001010));
    EXPECT_FALSE(IsRepeatedTrap(native.map, {}, 0x140009000, 0, 0x140008000)) << "no line twice is no repetition";
    EXPECT_FALSE(IsRepeatedTrap(section.map, {7, 1}, 0x140001011, 7, 0x140001010));
}

TEST(DebugRules, WhatATrapMeans) {
    const TwoLines native(true), section(false);
    constexpr std::uint64_t kBase = 0x140000000;
    const auto ofSystem = [](DebugPause pause) { return TrapEvent{.address = 1, .bytes = {}, .pause = pause}; };
    const auto at = [](std::uint64_t rva, std::uint8_t before, std::uint8_t there, bool runs = false) {
        return TrapEvent{.address = kBase + rva,
                         .inImage = true,
                         .ipAfter = true,
                         .bytes = {{before, there}},
                         .runsToUserBreakpoint = runs};
    };
    TrapEvent library = at(0x9010, 0x90, 0x55), libraryKnown = library, onIt = at(0x1011, 0x55, 0x90);
    library.inImage = libraryKnown.inImage = onIt.ipAfter = false;
    libraryKnown.removedAt = true;
    TrapEvent onItKnown = onIt;
    onItKnown.removedBefore = true;
    EXPECT_EQ(LateHitAddress(onItKnown), kBase + 0x1010) << "reported with the address after the trap";
    TrapEvent paused = at(0x1010, 0x90, 0xCC), unread = paused, second = at(0x1011, 0xCC, 0xCC);
    paused.pause = DebugPause::Wanted;
    unread.bytes.reset();
    second.lastLine = 7;
    second.lastAddress = kBase + 0x1010;
    const struct {
        const char* name;
        bool native;
        TrapEvent trap;
        TrapMeaning meaning;
    } cases[] = {
        {"of the system, when a pause is wanted", false, ofSystem(DebugPause::Wanted), TrapMeaning::Pause},
        {"the same after another stop", false, ofSystem(DebugPause::Overtaken), TrapMeaning::PauseLate},
        {"of the program, when a pause is wanted", false, paused, TrapMeaning::Stop},
        {"the byte is back", false, at(0x1010, 0x90, 0x55), TrapMeaning::LateHit},
        {"the byte is back, and CC is before it", false, at(0x1010, 0xCC, 0x55), TrapMeaning::LateHit},
        {"no trap in a library", false, library, TrapMeaning::Stop},
        {"a breakpoint that was removed from a library", false, libraryKnown, TrapMeaning::LateHit},
        {"raised on an address", false, onIt, TrapMeaning::Stop},
        {"one removed before the address", false, onItKnown, TrapMeaning::LateHit},
        {"a trap of two bytes", false, at(0x1010, 0xCD, 0x03), TrapMeaning::Stop},
        {"not readable", false, unread, TrapMeaning::Stop},
        {"a statement's", true, at(0x1010, 0x90, 0xCC), TrapMeaning::Stop},
        {"a statement's, on the way to a breakpoint", true, at(0x1010, 0x90, 0xCC, true), TrapMeaning::PassedOver},
        {"of no statement, on that way", true, at(0x5000, 0x90, 0xCC, true), TrapMeaning::Stop},
        {"the second of a run", true, second, TrapMeaning::PassedOver},
    };
    for (const auto& one : cases)
        EXPECT_EQ(MeaningOfTrap(one.native ? native.map : section.map, one.trap), one.meaning) << one.name;
}

TEST(DebugRules, APauseInACallIsOnTheStatementThatHoldsIt) {
    const TwoLines program(false);
    const std::uint64_t base = program.map.imageBase;
    const PausePlace stands = PlaceOfPause(program.map, 0x2000, base + 0x1020, true);
    EXPECT_EQ(std::pair(stands.address, stands.place.line), std::pair(base + 0x1020, 9U));
    const PausePlace called = PlaceOfPause(program.map, 0x2000, base + 0x1020, false);
    EXPECT_EQ(std::pair(called.address, called.place.line), std::pair(base + 0x1010, 7U));
    const PausePlace library = PlaceOfPause(program.map, 0x2000, base + 0x9000, false);
    EXPECT_EQ(std::pair(library.address, library.place.line), std::pair(base + 0x9000, 0U));
}

TEST(DebugRules, AStartResumesAfterStopsThatAreNotItsOwn) {
    using enum DebugAwaits;
    EXPECT_TRUE(IsFalseStart({.awaits = FirstLine, .tries = 1, .ofLoader = true}));
    EXPECT_FALSE(IsFalseStart({.awaits = FirstLine, .tries = 2, .ofLoader = true}))
        << "a loader stops once more at most";
    EXPECT_FALSE(IsFalseStart({.awaits = FirstLine, .tries = 1}));
    EXPECT_TRUE(IsFalseStart({.awaits = FirstTrap, .tries = 63}));
    EXPECT_FALSE(IsFalseStart({.awaits = FirstTrap, .tries = 64}));
    EXPECT_FALSE(IsFalseStart({.awaits = FirstTrap, .tries = 1, .line = 5}));
    EXPECT_EQ(StartText(FirstLine, kDebugStopped, 5), L"[Debug] Reached line 5.\n");
    EXPECT_EQ(StartText(FirstLine, kDebugTimeout, 0), L"[Debug] Did not reach first source breakpoint (event 3).\n");
    EXPECT_EQ(StartText(FirstLine, kDebugNoSession, 0), L"");
}

TEST(DebugRules, ExceptionRulesSurviveTheirText) {
    using Rules = std::vector<ExceptionRule>;
    const Rules rules = ParseExceptionRules(L"C0000005:ps;zz:p;C0000094:;other:s;123456789:p;C0000005:;x;:p;0:p");
    EXPECT_EQ(rules, (Rules{{0xC0000005, {true, true}}, {0xC0000094, {}}, {kOtherExceptions, {false, true}}}));
    EXPECT_EQ(ParseExceptionRules(ExceptionRulesText(rules)), rules);
    EXPECT_EQ(ExceptionRulesText(Rules{{0xC0000094, {}}}), L"") << "as without a rule";
    EXPECT_EQ(ActionOfException(rules, 0xC0000094), ExceptionAction());
    EXPECT_EQ(ActionOfException(rules, 0xC0000096), (ExceptionAction{false, true}));
    ExceptionReport report = {.code = 0xC0000005, .information = {1, 0x10}, .x64 = false, .place = L"a.bas:7"};
    report.called = report.passed = true;
    EXPECT_EQ(ExceptionText(report),
              L"Access violation: writing 0x00000010, called from a.bas:7, passed to the program");
    EXPECT_EQ(ExceptionText({.code = 1, .firstChance = false, .place = {}}),
              L"Exception, which the program does not handle");
}

TEST(DebugRules, AnInstructionThatKeepsFailingIsHeld) {
    DebugFaults faults;
    int held = 0;
    for (int i = 0; i < 40; ++i) held += HoldAtFault(&faults, true, 0x1000) ? 1 : 0;
    EXPECT_EQ(held, 2);
    for (int i = 0; i < 40; ++i) EXPECT_FALSE(HoldAtFault(&faults, false, 0x1000)) << "no fault";
    for (std::uint64_t i = 0; i < 40; ++i) EXPECT_FALSE(HoldAtFault(&faults, true, 0x2000 + i % 2)) << "in turns";
}

TEST(DebugRules, StepsGoToTheNextAddress) {
    using Kind = StepTarget::Kind;
    const TwoLines program(false), native(true);
    const std::uint64_t base = program.map.imageBase;
    const StepTarget next = StepOverTarget(program.map, base + 0x1012);
    EXPECT_EQ(std::tuple(next.kind, next.address, next.line), std::tuple(Kind::Address, base + 0x1020, 9U));
    EXPECT_EQ(StepOverTarget(program.map, base + 0x1020).kind, Kind::NoFurtherLine);
    EXPECT_EQ(StepOverTarget(program.map, base + 0x1000).kind, Kind::None);
    EXPECT_EQ(StepOverTarget(program.map, 0x1000).kind, Kind::None) << "below the image";
    EXPECT_EQ(StepOverTarget(native.map, base + 0x1000).kind, Kind::NextTrap);
    EXPECT_EQ(StepTargetAt(program.map, 0).kind, Kind::None);
    EXPECT_EQ(StepTargetAt(program.map, base + 0x1014).line, 7U);
    EXPECT_EQ(RunTarget(program.map, 0, 7).kind, Kind::None);
}

// Memory that holds `words`, from the address `base` on.
struct Words {
    std::uint64_t base;
    std::vector<std::uint64_t> words;
    MemoryReader Reader(std::size_t width = 8) const {
        return [this, width](std::uint64_t address, void* out, std::size_t count) {
            const std::uint64_t index = (address - base) / width;
            if (address < base || count != width || index >= words.size()) return false;
            std::memcpy(out, &words[index], count);
            return true;
        };
    }
};

TEST(DebugStack, FollowsTheFramePointersUpwards) {
    RegisterSet registers;
    registers.ip = 0x100;
    registers.general[kBp] = 0x8000;
    const auto addresses = [&](const Words& stack, std::size_t width = 8) {
        std::vector<std::uint64_t> all;
        for (const FrameLink& frame : WalkFrames(registers, stack.Reader(width))) all.push_back(frame.address);
        return all;
    };
    using List = std::vector<std::uint64_t>;
    EXPECT_EQ(addresses({0x8000, {0x8010, 0x200, 0x9000, 0x300}}), (List{0x100, 0x200, 0x300}));
    EXPECT_EQ(addresses({0x8000, {0x8000, 0x200}}), (List{0x100, 0x200})) << "it leads back to itself";
    EXPECT_EQ(addresses({0x8000, {0x8010, 0}}), (List{0x100})) << "no return address";
    EXPECT_EQ(addresses({0x4000, {}}), (List{0x100}));
    Words endless{0x8000, {}};
    for (std::uint64_t i = 0; i < 100; ++i) endless.words.insert(endless.words.end(), {0x8010 + 16 * i, 0x200 + i});
    EXPECT_EQ(addresses(endless).size(), kMostFrames);
    const std::wstring most = CallStackText(SdbgMap(), 0x8000, 0x100, endless.Reader());
    EXPECT_TRUE(most.ends_with(L"  #31  0x21D  (no source info)\r\n"));
    registers.x64 = false;
    EXPECT_EQ(addresses({0x8000, {0x8008, 0x200, 0, 0x300}}, 4), (List{0x100, 0x200, 0x300}));

    const TwoLines program(false);
    EXPECT_EQ(CallStackText(program.map, 0x8000, 0x40001010, Words{0x8000, {0x8010, 0x40001024, 0, 0}}.Reader()),
              L"Call Stack:\r\n  #0  0x40001010  line 7\r\n  #1  0x40001010  line 7\r\n  #2  0x40001024  line 9\r\n");
}

TEST(DebugStack, FindsAReturnAddressByItsCall) {
    using Bytes = std::vector<std::uint8_t>;
    const struct {
        const char* name;
        Bytes bytes;
        bool call;
    } cases[] = {
        {"direct", {0, 0, 0xE8, 1, 2, 3, 4}, true},
        {"through a register", {0, 0, 0, 0, 0, 0xFF, 0xD0}, true},
        {"through memory", {0, 0xFF, 0x15, 1, 2, 3, 4}, true},
        {"a jump through a register", {0, 0, 0, 0, 0, 0xFF, 0xE0}, false},
        {"nothing", {0, 0, 0, 0, 0, 0, 0}, false},
        {"too few", {0xFF, 0xD0}, false},
    };
    for (const auto& one : cases) EXPECT_EQ(EndsWithCall(one.bytes), one.call) << one.name;
    const Bytes stack = {1, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 9, 9};
    const auto isTwo = [](std::uint64_t value) { return value == 2; };
    EXPECT_EQ(FindReturnAddress(stack, 8, isTwo)->value, 2U);
    EXPECT_EQ(FindReturnAddress(stack, 8, [](std::uint64_t value) { return value > 2; }).has_value(), false)
        << "half a word is none";
}

TEST(DebugTable, HidesItsTrapsFromWhoeverReadsAndWrites) {
    BreakpointTable table{};
    for (int i = 0; i < 3; ++i) {
        DebugBreakpoint& entry = table[static_cast<std::size_t>(i)];
        entry.address = 0x1000 + static_cast<std::uint64_t>(i) * 4;
        entry.originalByte = static_cast<std::uint8_t>(0x50 + i);
        entry.armed = i != 1 ? 1 : 0;
    }
    std::array<std::uint8_t, 8> bytes{};
    ShowOriginalBytes(table, 3, 0x1001, bytes);
    EXPECT_EQ(bytes, (std::array<std::uint8_t, 8>{0, 0, 0, 0, 0, 0, 0, 0x52})) << "only armed ones cover a byte";
    bytes.fill(0x77);
    EXPECT_EQ(NoteOverwritten(&table, 3, 0x1004, bytes), 0b100U);
    EXPECT_EQ(table[0].originalByte, 0x50);
    EXPECT_EQ(table[1].originalByte, 0x77);
    EXPECT_EQ(FindInTable(table, 3, 0x1008), 2);
    EXPECT_EQ(FindInTable(table, 2, 0x1008), -1) << "not in use";
    EXPECT_EQ(RemoveFromTable(&table, 3, 0), 2);
    EXPECT_EQ(FindInTable(table, 2, 0x1008), 1);
    EXPECT_EQ(table[2].address, 0U);
}

TEST(DebugRegisters, AreShownInTheirWidthAndOrder) {
    RegisterSet registers;
    registers.general[0] = 0x2A;
    registers.segments[5] = 0x2B;
    registers.xmmHigh[0] = 1;
    const auto shown = [&](std::wstring_view name) {
        for (const RegisterRow& row : RegisterRows(registers))
            if (row.name == name) return row.value;
        return std::wstring(L"none");
    };
    EXPECT_EQ(RegisterRows(registers).size(), 16U + 2 + 6 + 16);
    EXPECT_EQ(shown(L"RAX"), L"000000000000002A");
    EXPECT_EQ(shown(L"SS"), L"002B");
    EXPECT_EQ(shown(L"XMM0"), L"00000000000000010000000000000000");
    EXPECT_EQ(shown(L"EAX"), L"none");
    registers.x64 = false;
    EXPECT_EQ(RegisterRows(registers).size(), 8U + 2 + 6 + 8);
    EXPECT_EQ(shown(L"EAX"), L"0000002A");
    EXPECT_EQ(shown(L"EIP"), L"00000000");
    EXPECT_EQ(shown(L"RAX"), L"none");
}

TEST(BreakpointHits, StopByConditionCountAndStep) {
    const struct {
        const char* name;
        BreakpointHit hit;
        bool counts, stops;
    } cases[] = {{"plain", {}, true, true},
                 {"a false condition", {.holds = false}, false, false},
                 {"a step's target whose condition is false", {.mustStop = true, .holds = false}, true, true},
                 {"of a step", {.temporary = true}, false, true},
                 {"the second of three", {.hits = 1, .stopFrom = 3}, true, false},
                 {"the third", {.hits = 2, .stopFrom = 3}, true, true},
                 {"a step's target before the third", {.mustStop = true, .hits = 1, .stopFrom = 3}, true, true}};
    for (const auto& each : cases) {
        const HitVerdict verdict = VerdictOfHit(each.hit);
        EXPECT_EQ(verdict.counts, each.counts) << each.name;
        EXPECT_EQ(verdict.stops, each.stops) << each.name;
    }
}

}  // namespace
