// What the debugger and its pane say of a stopped program: values, frames with their lines, watches, lines of source.
#include "debugger/program_places.h"
#include "debugger/saved_registers.h"
#include "debugger/watch_value.h"
#include "debugui/pane_program.h"
#include "debugui/pane_watches.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <span>
#include <string>
#include <vector>

namespace {

// A stretch of readable memory.
struct Stretch {
    std::uint64_t base = 0;
    std::string bytes;
    std::size_t ReadSome(std::uint64_t address, void* out, std::size_t count) const {
        if (address < base || address >= base + bytes.size()) return 0;
        count = std::min<std::size_t>(count, base + bytes.size() - address);
        std::memcpy(out, bytes.data() + (address - base), count);
        return count;
    }
    ProgramMemory Memory() const {
        return {
            .read = [this](auto address, void* out,
                           std::size_t count) { return ReadSome(address, out, count) == count; },
            .readSome = [this](auto address, void* out, std::size_t count) { return ReadSome(address, out, count); }};
    }
};

template <typename Value>
std::string Bytes(Value value) {
    std::string bytes(sizeof(value), '\0');
    std::memcpy(bytes.data(), &value, sizeof(value));
    return bytes;
}

TEST(WatchValue, IsReadInItsKind) {
    const struct {
        const char* name;
        int kind;
        std::string bytes;
        const wchar_t* text;
    } cases[] = {
        {"LONG", 0, Bytes(std::int32_t{-5}), L"-5 (0xFFFFFFFB)"},
        {"LONG, small", 0, Bytes(std::int32_t{10}), L"10 (0x0000000A)"},
        {"LONG, too few bytes", 0, "abc", L"<unreadable>"},
        {"QUAD", 1, Bytes(std::int64_t{-6}), L"-6 (0xFFFFFFFFFFFFFFFA)"},
        {"QUAD, too few bytes", 1, "abcdefg", L"<unreadable>"},
        {"text up to its NUL", 2, std::string("Gr\xC3\xBC\0more", 9), L"\"Gr\u00FC\""},
        {"text up to the end of memory", 2, "abc", L"\"abc\""},
        {"empty text", 2, std::string(1, '\0'), L"\"\""},
        {"no UTF-8", 2, std::string("\xFF\0", 2), L"\"<encoding error>\""},
        {"a character that is cut", 2, std::string(126, 'a') + "\xC3\xBC", L"\"<encoding error>\""},
        {"no memory", 2, "", L"<unreadable>"},
        {"DOUBLE", 3, Bytes(1.5), L"(1500)"},
        {"DOUBLE, too few bytes", 3, "abc", L"<unreadable>"},
        {"BYTE", 4, "\xFE", L"254 (0xFE)"},
        {"WORD", 5, "\xFE\xFF", L"65534 (0xFFFE)"},
        {"DWORD", 6, Bytes(std::int32_t{-2}), L"4294967294 (0xFFFFFFFE)"},
        {"INTEGER", 7, "\xFE\xFF", L"-2 (0xFFFE)"},
        {"SINGLE", 8, Bytes(-0.5F), L"(-500)"},
        {"wide text", 9, std::string("a\0\xE9\0\0\0b\0", 8), L"\"a\u00E9\""},
        {"the address itself", 10, "", L"4096 (0x1000)"},
        {"a text by its address", 11, Bytes(std::uint64_t{0x1008}) + "abc", L"\"abc\""},
        {"no text", 11, Bytes(std::uint64_t{0}), L"\"\""},
        {"an address of nothing", 11, Bytes(std::uint64_t{0x10}), L"<unreadable>"},
        {"after the last kind", kWatchKinds, "", L"<unknown kind>"},
        {"before the first", -1, "", L"<unknown kind>"},
    };
    const auto write = [](double value) { return L"(" + std::to_wstring(static_cast<int>(value * 1000)) + L")"; };
    for (const auto& each : cases) {
        const Stretch stretch = {.base = 0x1000, .bytes = each.bytes};
        EXPECT_EQ(WatchValueText(each.kind, 0x1000, stretch.Memory(), write), each.text) << each.name;
    }
    const Stretch longer = {.base = 0, .bytes = std::string(200, 'a')};
    EXPECT_EQ(WatchValueText(2, 0, longer.Memory(), write), L"\"" + std::wstring(kLongestWatchText, L'a') + L"\"");
}

TEST(PaneExpressions, NameMemory) {
    const Stretch stretch = {.base = 0x1000, .bytes = Bytes(std::int64_t{0x1008}) + Bytes(std::int64_t{-2})};
    RegisterSet registers;
    registers.general[kSp] = 0xFF8;
    const MemoryReader read = stretch.Memory().read;
    const struct {
        const char* text;
        bool x64;
        std::optional<std::uint64_t> value;
    } cases[] = {
        {"[RSP+8]", true, 0x1008},
        {"[[RSP+8]]+1", true, 0xFFFFFFFFFFFFFFFF},
        {"byte [ 0x1008 ] * 2", true, 0x1FC},
        {"Word[0x1008]", true, 0xFFFE},
        {"DWORD[0x1008]", true, 0xFFFFFFFE},
        {"[0x1008]", false, 0xFFFFFFFE},
        {"QWORD[0x1000]", false, 0x1008},
        {"[0x1009]", true, std::nullopt},
        {"[RSP+8", true, std::nullopt},
        {"WORD", true, std::nullopt},
        {"[]", true, std::nullopt},
    };
    for (const auto& each : cases) {
        registers.x64 = each.x64;
        const Evaluation got = EvaluatePaneExpression(registers, each.text, read);
        EXPECT_EQ(got.value, each.value) << each.text;
        EXPECT_EQ(got.problem.empty(), each.value.has_value()) << each.text;
    }
    EXPECT_FALSE(EvaluatePaneExpression(registers, "[0x1000]").problem.empty()) << "without memory";
}

TEST(SavedRegisters, StandInTheirArea) {
    std::vector<std::uint8_t> area(512);
    for (std::size_t i = 0; i < area.size(); ++i) area[i] = static_cast<std::uint8_t>(i / 8);
    RegisterSet registers;
    ReadSavedXmm(area, 8, &registers);
    EXPECT_EQ(registers.xmmLow[0], 0x1414141414141414U);
    EXPECT_EQ(registers.xmmHigh[7], 0x2323232323232323U);
    EXPECT_EQ(registers.xmmLow[8], 0U);
    ReadSavedXmm(std::span(area).first(160 + 9 * 16 - 1), 16, &registers);
    EXPECT_EQ(registers.xmmLow[8], 0U) << "cut";
    ReadSavedXmm(area, 99, &registers);
    EXPECT_EQ(registers.xmmHigh[15], 0x3333333333333333U);
}

// Line 7 at 0x1010 and line 9 at 0x1020 of an image that is loaded at 0x400000.
struct Program {
    SdbgLine lines[2] = {{.fileId = 1, .line = 7, .rva = 0x1010}, {.fileId = 2, .line = 9, .rva = 0x1020}};
    SdbgMap map;
    Program() {
        map.lines = lines;
        map.lineCount = 2;
        map.imageBase = 0x400000;
    }
    ProgramImage Image() const { return {.map = &map, .size = 0x2000}; }
};

TEST(ProgramPlaces, ACallersLineIsThatOfItsCall) {
    const Program program;
    RegisterSet registers;
    registers.ip = 0x401020;
    registers.general[kBp] = 0x8000;
    const Stretch stack = {.base = 0x8000,
                           .bytes = Bytes<std::uint64_t>(0x8010) + Bytes<std::uint64_t>(0x401020) +
                                    Bytes<std::uint64_t>(0x8020) + Bytes<std::uint64_t>(0x77000000)};
    EXPECT_EQ(FramesWithLines(program.Image(), registers, stack.Memory()),
              (std::vector<DebugFrame>{{.address = 0x401020, .framePointer = 0x8000, .line = 9, .fileId = 2},
                                       {.address = 0x401020, .framePointer = 0x8010, .line = 7, .fileId = 1},
                                       {.address = 0x77000000, .framePointer = 0x8020}}));
}

// A frame that does not stand yet, or no longer, hides the caller from the chain of frame pointers.
TEST(ProgramPlaces, TheCallerOfAProcedureWithoutAFrameIsFound) {
    const Program program;
    const std::string call("\xE8\x0B\0\0\0", 5);  // at 0x401015, of 0x401025
    const struct {
        const char* name;
        std::string code;  // at 0x401024
        std::uint64_t ip;
        std::vector<std::uint64_t> stack;
        bool found;
    } cases[] = {{"before PUSH", std::string("\x90\x55", 2), 0x401025, {0x40101A, 5}, true},
                 {"before MOV", std::string("\x55\x48\x89\xE5", 4), 0x401025, {5, 0x40101A}, true},
                 {"at RET", std::string("\x5D\xC3", 2), 0x401025, {0x40101A, 5}, true},
                 {"no frame at all, at its start", std::string("\x90\x48\x83\xEC", 4), 0x401025, {0x40101A, 5}, true},
                 {"the same further on", std::string("\x90\x90\x90\x90", 4), 0x401026, {0x40101A, 5}, false},
                 {"at RET without a return address", std::string("\x5D\xC3", 2), 0x401025, {5, 0x40101A}, false}};
    for (const auto& one : cases) {
        Stretch code = {.base = 0x401000, .bytes = std::string(0x15, '\x90') + call};
        code.bytes += std::string(0x24 - code.bytes.size(), '\x90') + one.code + std::string(16, '\x90');
        Stretch stack = {.base = 0x8000, .bytes = {}};
        for (const std::uint64_t word : one.stack) stack.bytes += Bytes(word);
        RegisterSet registers;
        registers.ip = one.ip;
        registers.general[kSp] = 0x8000;
        const auto read = [&](std::uint64_t at, void* out, std::size_t count) {
            return code.ReadSome(at, out, count) == count || stack.ReadSome(at, out, count) == count;
        };
        const auto frames =
            FramesWithLines(program.Image(), registers, {.read = read, .readSome = stack.Memory().readSome});
        EXPECT_EQ(frames.size(), one.found ? 2U : 1U) << one.name;
        if (frames.size() == 2)
            EXPECT_EQ(std::pair(frames[1].address, frames[1].line), std::pair(std::uint64_t{0x40101A}, 7U)) << one.name;
    }
}

TEST(ProgramPlaces, AThreadInTheSystemIsWhereItWillReturnTo) {
    const Program program;
    RegisterSet registers;
    registers.general[kSp] = 0x8000;
    const std::string image = std::string(0x1022 - 5, '\x90') + "\xE8" + std::string(20, '\0');
    const auto place = [&](std::uint64_t ip, std::vector<std::uint64_t> words) {
        Stretch stack = {.base = 0x8000, .bytes = {}};
        for (const std::uint64_t word : words) stack.bytes += Bytes(word);
        const Stretch code = {.base = 0x400000, .bytes = image};
        registers.ip = ip;
        return AddressInProgram(program.Image(), registers,
                                {.read = [&](std::uint64_t at, void* out,
                                             std::size_t count) { return code.ReadSome(at, out, count) == count; },
                                 .readSome = stack.Memory().readSome});
    };
    constexpr std::uint64_t kAfterCall = 0x400000 + 0x1022;
    EXPECT_EQ(place(0x401010, {kAfterCall}), 0x401010U) << "it is in the program";
    EXPECT_EQ(place(0x77000000, {1, kAfterCall - 1, kAfterCall, kAfterCall + 1}), kAfterCall);
    EXPECT_EQ(place(0x77000000, {0x77000010, 0x401018}), std::nullopt) << "no call ends there";
    EXPECT_EQ(place(0x77000000, {}), std::nullopt);
}

// A library of two procedures at 0x70000000: one pushes RBX and takes 32 bytes; the other pushes RBP, takes 1 kB and
// lets RBP point 16 bytes above the end of it.
std::string Library() {
    std::string bytes(0x3000, '\x90');
    const auto put = [&](std::size_t at, const std::string& what) { bytes.replace(at, what.size(), what); };
    const auto words = [](std::initializer_list<std::uint32_t> values) {
        std::string text;
        for (const std::uint32_t value : values) text += Bytes(value);
        return text;
    };
    put(60, Bytes<std::uint32_t>(0x80));
    put(0x80 + 24, "\x0B\x02");
    put(0x80 + 160, words({0x1000, 24}));
    put(0x1000, words({0x2000, 0x2040, 0x1100, 0x2100, 0x2200, 0x1120}));
    put(0x1100, std::string("\x01\x05\x02\0\x05\x32\x01\x30", 8));
    put(0x1120, std::string("\x01\x10\x04\x15\x10\x03\x08\x01\x80\0\x01\x50", 12));
    put(0x2030, "\x48\x83\xC4\x20\x5B\xC3");
    return bytes;
}

// The stack of a library may hold a return address of an earlier call, above the stack pointer and below the true one.
TEST(ProgramPlaces, LibrariesAreUnwound) {
    const Program program;
    constexpr std::uint64_t kOld = 0x401022, kTrue = 0x401016;  // of lines 9 and 7
    std::string image(0x1100, '\x90');
    for (const std::uint64_t after : {kOld, kTrue}) image[after - 0x400000 - 5] = '\xE8';
    Stretch stack = {.base = 0x8000, .bytes = {}};
    for (const std::uint64_t word :
         {std::uint64_t{0x70002020}, kOld, kOld, kOld, kOld, std::uint64_t{5}, std::uint64_t{0x70002180}})
        stack.bytes += Bytes(word);
    for (int i = 0; i < 128; ++i) stack.bytes += Bytes(kOld);
    for (const std::uint64_t word : {std::uint64_t{0x8480}, kTrue, kOld, kOld}) stack.bytes += Bytes(word);
    stack.bytes += std::string(0x8480 - 0x8458, '\0') + Bytes<std::uint64_t>(0) + Bytes(kOld);
    const Stretch parts[] = {{.base = 0x70000000, .bytes = Library()}, {.base = 0x400000, .bytes = image}, stack};
    const auto some = [&](std::uint64_t at, void* out, std::size_t count) {
        std::size_t most = 0;
        for (const Stretch& part : parts) most = std::max(most, part.ReadSome(at, out, count));
        return most;
    };
    const ProgramMemory memory = {
        .read = [&](std::uint64_t at, void* out, std::size_t count) { return some(at, out, count) == count; },
        .readSome = some,
        .moduleBase = [](std::uint64_t at) { return std::uint64_t{at >> 16 == 0x7000 ? 0x70000000U : 0U}; }};
    RegisterSet registers;
    registers.general[kBp] = 0x8038 + 16;
    const auto from = [&](std::uint64_t ip, std::uint64_t sp) {
        registers.ip = ip;
        registers.general[kSp] = sp;
        return AddressInProgram(program.Image(), registers, memory);
    };
    EXPECT_EQ(from(0x70002800, 0x8000), kTrue) << "a procedure without a record";
    EXPECT_EQ(from(0x70002020, 0x8008), kTrue) << "in the body";
    EXPECT_EQ(from(0x70002001, 0x8028), kTrue) << "behind the first instruction of the prologue";
    EXPECT_EQ(from(0x70002034, 0x8028), kTrue) << "in the epilogue";
    EXPECT_EQ(from(0x70002150, 0x8000), kTrue) << "with a frame pointer";
    const auto frames = FramesWithLines(program.Image(), registers, memory);
    ASSERT_EQ(frames.size(), 3U);
    EXPECT_EQ(frames[1].line, 7U);
    EXPECT_EQ(frames[1].framePointer, 0x8480U) << "the library has kept it on the stack";
    EXPECT_EQ(frames[2].line, 9U);
    EXPECT_EQ(from(0x60000000, 0x8000), kOld) << "in no module the stack is searched";
}

// Watches over values that a test sets.
struct WatchedProgram {
    WatchProgram program = {.session = true, .stopped = true, .serial = 1, .evaluate = {}, .read = {}};
    std::wstring value = L"1";
    WatchedProgram() {
        program.evaluate = [](const std::wstring& expression) {
            return expression == L"bad" ? Evaluation{.value = {}, .problem = L"No such name"}
                                        : Evaluation{.value = 16, .problem = {}};
        };
        program.read = [this](const Watch&, std::uint64_t) { return value; };
    }
};

TEST(WatchRows, TellAChangeByTheStopBefore) {
    WatchedProgram now;
    WatchList list = {.watches = {{.expression = L"RSP"}}};
    const auto row = [&] { return WatchRows(list, now.program).front(); };
    EXPECT_EQ(row(), (ListRow{.cells = {L"RSP", L"LONG", L"1"}})) << "the first value is no change";
    now.program.serial = 2;
    now.value = L"2";
    EXPECT_EQ(row().changed, 1U << kWatchValue);
    EXPECT_EQ(row().changed, 1U << kWatchValue) << "a refresh of the same stop";
    now.program.serial = 3;
    EXPECT_EQ(row().changed, 0U);
    now.program.stopped = false;
    EXPECT_EQ(row().cells[2], L"2") << "while it runs, the last value stays";
    now.program.session = false;
    EXPECT_EQ(row().cells[2], L"");
    now.program = WatchedProgram().program;
    now.program.read = [](const Watch&, std::uint64_t) { return std::wstring(L"3"); };
    EXPECT_EQ(row().changed, 0U) << "of another program";
}

TEST(WatchValue, WhyItCannotBeRead) {
    const std::string pointers = Bytes(std::uint64_t{0x20});
    const Stretch stretch = {.base = 0x1000, .bytes = pointers};
    const struct {
        WatchKind kind;
        std::uint64_t address;
        const wchar_t* why;
    } cases[] = {{WatchKind::Long, 0, L"its address is 0, so it is not set yet"},
                 {WatchKind::Long, 0x10, L"the program has no memory at 0x10"},
                 {WatchKind::TextPointer, 0x1000, L"the program has no memory at 0x20"},
                 {WatchKind::TextPointer, 0x30, L"the program has no memory at 0x30"}};
    for (const auto& each : cases)
        EXPECT_EQ(WhyUnreadable(each.kind, each.address, stretch.Memory()), each.why) << each.address;
}

TEST(WatchRows, SayWhatIsWrongAndEndWithTheNewOne) {
    WatchedProgram now;
    now.value = kUnreadableWatch;
    WatchList list = {.watches = {{.expression = L"bad", .kind = WatchKind::Quad}, {.expression = L"RSP"}}};
    const std::vector<ListRow> rows = WatchRows(list, now.program);
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0], (ListRow{.cells = {L"bad", L"QUAD", L"No such name"}, .tone = ListTone::Problem}));
    EXPECT_EQ(rows[1].tone, ListTone::Problem);
    EXPECT_EQ(rows[1].cells[2], kUnreadableWatch);
    EXPECT_EQ(rows[2].tone, ListTone::Quiet);
    now.program.x64 = false;
    EXPECT_EQ(WatchRows(list, now.program)[2].cells[0],
              L"Type an address here, or a name: ESP+8, [EBP+16], i = EBP-4, LONG");
    EXPECT_EQ(WatchAt(list.watches, 1), &list.watches[1]);
    EXPECT_EQ(WatchAt(list.watches, 2), nullptr);
    EXPECT_EQ(WatchAt(list.watches, -1), nullptr);
}

TEST(WatchRows, WhatAClickDoesAndWhatIsWritten) {
    const Watch known = {.expression = L"RSP", .value = L"1"};
    const Watch unread = {.expression = L"RSP", .value = kUnreadableWatch};
    const struct {
        int column;
        const Watch* watch;
        bool stopped;
        WatchAction action;
    } cases[] = {
        {kWatchExpression, &known, true, WatchAction::EditExpression},
        {kWatchKind, &known, true, WatchAction::ChooseKind},
        {kWatchKind, nullptr, true, WatchAction::ChooseKind},
        {kWatchValue, &known, true, WatchAction::EditValue},
        {kWatchValue, nullptr, true, WatchAction::EditExpression},
        {-1, &known, true, WatchAction::EditValue},
        {-1, &known, false, WatchAction::EditExpression},
        {-1, &unread, true, WatchAction::EditExpression},
        {-1, nullptr, true, WatchAction::EditExpression},
    };
    for (const auto& each : cases)
        EXPECT_EQ(WatchActionOf(each.column, each.watch, each.stopped), each.action) << each.column;
    EXPECT_TRUE(WatchHasValue(&known, true));
    EXPECT_FALSE(WatchHasValue(&unread, true));

    const Stretch memory = {.base = 0x10, .bytes = std::string("abc\0def", 7)};
    const Evaluation place = {.value = 0x10, .problem = {}};
    EXPECT_EQ(WatchInput(WatchKind::Text, place, "xyz", memory.Memory()).bytes.size(), 3U);
    EXPECT_FALSE(WatchInput(WatchKind::Text, place, "wxyz", memory.Memory()).problem.empty()) << "over the text's end";
    EXPECT_EQ(WatchInput(WatchKind::Long, place, "7", memory.Memory()).bytes.size(), 4U);
    EXPECT_EQ(WatchInput(WatchKind::Long, {.value = {}, .problem = L"why"}, "7", memory.Memory()).problem, L"why");
}

TEST(PaneProgram, ShowsTheThreadThatStoppedUntilAnotherIsChosen) {
    PaneProgram program;
    std::uint64_t rax = 1;
    std::vector<std::uint32_t> read;
    const auto follow = [&](PaneSession session) {
        return PaneProgramFollow(&program, session, [&](std::uint32_t thread) {
            read.push_back(thread);
            RegisterSet registers;
            registers.general[0] = rax;
            return std::optional(registers);
        });
    };
    PaneSession session = {
        .active = true, .stopped = true, .serial = 1, .processId = 5, .stopThread = 0, .mainThread = 8};
    EXPECT_TRUE(follow(session)) << "a new program";
    EXPECT_FALSE(follow(session));
    EXPECT_EQ(program.thread, 8U) << "none has stopped: the main one";
    EXPECT_FALSE(program.before);

    rax = 2;
    session.serial = 2;
    session.stopThread = 8;
    follow(session);
    ASSERT_TRUE(program.before);
    EXPECT_EQ(program.before->general[0], 1U);
    EXPECT_EQ(program.registers->general[0], 2U);

    program.chosenThread = 9;
    follow(session);
    EXPECT_EQ(program.thread, 9U);
    EXPECT_FALSE(program.before) << "another thread's registers";
    session.serial = 3;
    follow(session);
    EXPECT_EQ(program.thread, 8U) << "chosen until the next stop";

    session.stopped = false;
    const std::size_t reads = read.size();
    follow(session);
    EXPECT_TRUE(program.session);
    EXPECT_FALSE(program.stopped);
    EXPECT_EQ(read.size(), reads) << "a running program is not read";
    session.active = false;
    EXPECT_TRUE(follow(session));
    EXPECT_FALSE(program.registers);
    session = {.active = true, .stopped = false, .serial = 3, .processId = 6, .stopThread = 0, .mainThread = 1};
    EXPECT_TRUE(follow(session)) << "the next program";
}

TEST(PaneProgram, LinesAndPlacesAsText) {
    const SourceLines source = SourceLinesOf("  one\r\n\tFOR i\t= 1\n\n\xC3\xBC");
    const wchar_t* const lines[] = {L"", L"one", L"FOR i = 1", L"", L"\u00FC", L""};
    for (std::uint32_t i = 0; i < std::size(lines); ++i) EXPECT_EQ(SourceLineText(source, i), lines[i]) << i;
    EXPECT_EQ(SourceLineText(SourceLinesOf("one\n"), 2), L"");
    EXPECT_EQ(SourceLineText(SourceLinesOf(""), 1), L"");
    EXPECT_EQ(LinePlaceText(L"steps.bas", 12), L"steps.bas:12");
    EXPECT_EQ(LinePlaceText(L"", 12), L"line 12");
    EXPECT_EQ(ModulePlaceText(L"ntdll.dll", 0x1F2C), L"ntdll.dll+0x1F2C");
    EXPECT_EQ(ModulePlaceText(L"", 0x1F2C), L"");
}

}  // namespace
