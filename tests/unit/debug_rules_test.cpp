// What an exception means to a session, and which line a program's own trap belongs to.
#include "debugger/stop_rules.h"

#include <gtest/gtest.h>

#include <utility>

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
    struct Case {
        std::uint32_t code;
        ExceptionKind kind;
    };
    const Case cases[] = {
        {0x80000003, ExceptionKind::Breakpoint}, {0x4000001F, ExceptionKind::Breakpoint},
        {0x80000004, ExceptionKind::SingleStep}, {0x4000001E, ExceptionKind::SingleStep},
        {0xC0000005, ExceptionKind::Fault},      {0xC0000094, ExceptionKind::Fault},
        {0xC000001D, ExceptionKind::Fault},      {0x80000002, ExceptionKind::Fault},
        {0xC000008D, ExceptionKind::Fault},      {0xC000008E, ExceptionKind::Fault},
        {0xC0000093, ExceptionKind::Fault},      {0xC00002B4, ExceptionKind::Fault},
        {0xE06D7363, ExceptionKind::Other},      {0x406D1388, ExceptionKind::Other},
        {0x40000020, ExceptionKind::Other},      {0, ExceptionKind::Other},
    };
    for (const Case& one : cases) EXPECT_EQ(ExceptionKindOf(one.code), one.kind) << std::hex << one.code;
}

// Two records, 0x1010 and 0x1020; the code lies at 0x1000 to 0x1030.
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
    struct Case {
        std::uint64_t rva;
        Place native;
    };
    const Case cases[] = {
        {0x1010, {7, 1}},  {0x101F, {7, 1}}, {0x1020, {9, 2}}, {0x102F, {9, 2}},
        {0x1030, {}},      {0x0FFF, {}},     {0x100F, {7, 1}},  // one before the record
        {0x100E, {7, 1}},                                       // two
        {0x100D, {}},                                           // three are too many
        {0x100001010, {}},
    };
    for (const Case& one : cases) {
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

}  // namespace
