// Rules of the debug pane: registers, flags, watches, rows of memory, instructions around an address.
#include "debugui/pane_disassembly.h"
#include "debugui/pane_memory.h"
#include "debugui/pane_rows.h"
#include "debugui/pane_watches.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace {

std::string Narrow(std::wstring_view text) { return {text.begin(), text.end()}; }

RegisterSet Registers(bool x64) {
    RegisterSet registers;
    registers.x64 = x64;
    for (std::size_t i = 0; i < (x64 ? 16U : 8U); ++i) registers.general[i] = 0x10 + i;
    registers.ip = 0x401000;
    return registers;
}

const ListRow* Row(const std::vector<ListRow>& rows, std::wstring_view name) {
    const auto row = std::ranges::find_if(rows, [&](const ListRow& each) { return each.cells[0] == name; });
    return row == rows.end() ? nullptr : &*row;
}

TEST(PaneRows, FlagsByName) {
    const struct {
        std::uint32_t flags;
        const wchar_t* text;
    } cases[] = {{0, L"-"},     {0x2, L"-"}, {0x246, L"PF ZF IF"}, {0x1, L"CF"}, {0xED7, L"CF PF AF ZF SF IF DF OF"},
                 {0x100, L"TF"}};
    for (const auto& each : cases) EXPECT_EQ(FlagsText(each.flags), each.text) << std::hex << each.flags;
}

TEST(PaneRows, RegistersSayWhatTheyMeanAndWhatChanged) {
    RegisterSet before = Registers(true);
    RegisterSet now = before;
    now.general[0] = ~std::uint64_t{0};
    now.flags = 0x40;
    now.xmmLow[3] = std::bit_cast<std::uint64_t>(1.5);
    const auto rows = RegisterPaneRows(now, &before);
    ASSERT_NE(Row(rows, L"RAX"), nullptr);
    EXPECT_EQ(Row(rows, L"RAX")->cells[2], L"-1");
    EXPECT_NE(Row(rows, L"RAX")->changed, 0U);
    EXPECT_EQ(Row(rows, L"RBX")->changed, 0U);
    EXPECT_EQ(Row(rows, L"EFL")->cells[2], L"ZF");
    EXPECT_EQ(Row(rows, L"XMM3")->cells[2], L"1.5");
    EXPECT_NE(Row(rows, L"XMM3")->changed, 0U);
    for (const ListRow& row : RegisterPaneRows(now, nullptr)) EXPECT_EQ(row.changed, 0U) << Narrow(row.cells[0]);
    const RegisterSet other = Registers(false);
    for (const ListRow& row : RegisterPaneRows(now, &other)) EXPECT_EQ(row.changed, 0U) << Narrow(row.cells[0]);

    RegisterSet narrow = Registers(false);
    narrow.general[0] = 0xFFFFFFFE;
    EXPECT_EQ(Row(RegisterPaneRows(narrow, nullptr), L"EAX")->cells[2], L"-2");
}

TEST(PaneRows, OnlyWholeGeneralRegistersAreWritten) {
    for (const wchar_t* name : {L"RAX", L"rsp", L"R8", L"R15"})
        EXPECT_TRUE(IsGeneralRegister(true, name)) << Narrow(name);
    for (const wchar_t* name : {L"EAX", L"ESP"}) EXPECT_TRUE(IsGeneralRegister(false, name)) << Narrow(name);
    for (const wchar_t* name : {L"RIP", L"EFL", L"XMM0", L"EAX", L"AL", L"R8D", L"CS", L""})
        EXPECT_FALSE(IsGeneralRegister(true, name)) << Narrow(name);
    for (const wchar_t* name : {L"EIP", L"AX", L"R8", L"BH"})
        EXPECT_FALSE(IsGeneralRegister(false, name)) << Narrow(name);
}

TEST(PaneRows, TypedRegisterValues) {
    const RegisterSet registers = Registers(true);
    EXPECT_EQ(RegisterInput(registers, " -1").value, ~std::uint64_t{0});
    EXPECT_EQ(RegisterInput(registers, "rbx+0x10").value, 0x21U);
    EXPECT_FALSE(RegisterInput(registers, "-").value);
    EXPECT_FALSE(RegisterInput(registers, "zzz").problem.empty());
}

TEST(PaneRows, TipsHaveTheWidthOfTheNamedPart) {
    RegisterSet wide = Registers(true);
    wide.general[0] = 0xFFFFFFFFFFFFFF85;
    wide.general[8] = 0x1234;
    const struct {
        const wchar_t *word, *tip;
    } cases[] = {{L"rax", L"RAX = FFFFFFFFFFFFFF85 (-123)"},
                 {L"EAX", L"EAX = FFFFFF85 (-123)"},
                 {L"ax", L"AX = FF85 (-123)"},
                 {L"al", L"AL = 85 (-123)"},
                 {L"AH", L"AH = FF (-1)"},
                 {L"r8", L"R8 = 0000000000001234 (4660)"},
                 {L"r8w", L"R8W = 1234 (4660)"},
                 {L"r8b", L"R8B = 34 (52)"},
                 {L"rip", L"RIP = 0000000000401000 (4198400)"},
                 {L"total", L""},
                 {L"", L""}};
    for (const auto& each : cases) EXPECT_EQ(RegisterTipText(wide, each.word), each.tip) << Narrow(each.word);
    EXPECT_EQ(RegisterTipText(Registers(false), L"eip"), L"EIP = 00401000 (4198400)");
}

TEST(Watches, ExpressionsAddChangeAndRemove) {
    std::vector<Watch> list;
    EXPECT_FALSE(WatchSetExpression(list, 0, L"  "));
    EXPECT_TRUE(WatchSetExpression(list, 0, L" RSP+8 "));
    EXPECT_TRUE(WatchSetExpression(list, 1, L"0x10"));
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list[0].expression, L"RSP+8");
    list[0].kind = WatchKind::Double;
    list[0].value = L"1";
    EXPECT_FALSE(WatchSetExpression(list, 0, L"RSP+8"));
    EXPECT_EQ(list[0].value, L"1");
    EXPECT_TRUE(WatchSetExpression(list, 0, L"RSP"));
    EXPECT_EQ(list[0].kind, WatchKind::Double);
    EXPECT_EQ(list[0].value, L"");  // the old value was of another place
    EXPECT_TRUE(WatchSetExpression(list, 0, L""));
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0].expression, L"0x10");
    EXPECT_EQ(list[0].kind, WatchKind::Long);
    EXPECT_TRUE(WatchSetExpression(list, 1, L"WORD [RSP+8]"));
    EXPECT_EQ(list[1].kind, WatchKind::Value) << "its value, not what is at the address it gives";
    EXPECT_TRUE(WatchSetExpression(list, 0, L"[RSP+8]"));
    EXPECT_EQ(list[0].kind, WatchKind::Value) << "nothing else was chosen for the address";
    EXPECT_TRUE(WatchSetExpression(list, 0, L"RSP+8"));
    EXPECT_EQ(list[0].kind, WatchKind::Long);
    list[0].kind = WatchKind::Text;
    EXPECT_TRUE(WatchSetExpression(list, 0, L"[RSP+8]"));
    EXPECT_EQ(list[0].kind, WatchKind::Text) << "the text that a pointer leads to";
}

TEST(Watches, WhatIsEditedOfAShownValue) {
    EXPECT_EQ(WatchEditText(WatchKind::Long, L"-42 (0xFFFFFFD6)"), L"-42");
    EXPECT_EQ(WatchEditText(WatchKind::Double, L"1.5"), L"1.5");
    EXPECT_EQ(WatchEditText(WatchKind::Text, L"\"a (b)\""), L"a (b)");
}

TEST(Watches, BytesOfTypedValues) {
    const struct {
        WatchKind kind;
        const char* text;
        std::size_t room;
        std::vector<int> bytes;  // none: refused
    } cases[] = {
        {WatchKind::Long, "42", 0, {42, 0, 0, 0}},
        {WatchKind::Long, " -1 ", 0, {255, 255, 255, 255}},
        {WatchKind::Long, "0xFFFFFFFF", 0, {255, 255, 255, 255}},
        {WatchKind::Long, "&h1F", 0, {31, 0, 0, 0}},
        {WatchKind::Long, "-2147483648", 0, {0, 0, 0, 128}},
        {WatchKind::Long, "-2147483649", 0, {}},
        {WatchKind::Long, "4294967296", 0, {}},
        {WatchKind::Long, "1x", 0, {}},
        {WatchKind::Long, "", 0, {}},
        {WatchKind::Quad, "-2", 0, {254, 255, 255, 255, 255, 255, 255, 255}},
        {WatchKind::Quad, "18446744073709551615", 0, {255, 255, 255, 255, 255, 255, 255, 255}},
        {WatchKind::Quad, "18446744073709551616", 0, {}},
        {WatchKind::Double, "1.5", 0, {0, 0, 0, 0, 0, 0, 0xF8, 0x3F}},
        {WatchKind::Double, "1.5.", 0, {}},
        {WatchKind::Double, "", 0, {}},
        {WatchKind::Text, "abc", 3, {'a', 'b', 'c'}},  // as long as the old one, so no terminator is written
        {WatchKind::Text, "\"ab\"", 3, {'a', 'b', 0}},
        {WatchKind::Text, "", 3, {0}},
        {WatchKind::Text, "abcd", 3, {}},
        {WatchKind::Byte, "255", 0, {255}},
        {WatchKind::Byte, "256", 0, {}},
        {WatchKind::Integer, "-2", 0, {254, 255}},
        {WatchKind::Single, "-0.5", 0, {0, 0, 0, 0xBF}},
        {WatchKind::WideText, "\xC3\xA9", 4, {0xE9, 0, 0, 0}},
        {WatchKind::WideText, "abc", 4, {}},
        {WatchKind::Value, "1", 0, {}},
    };
    for (const auto& each : cases) {
        const WatchBytes got = WatchBytesOf(each.kind, each.text, each.room);
        EXPECT_EQ(std::vector<int>(got.bytes.begin(), got.bytes.end()), each.bytes) << each.text;
        EXPECT_EQ(got.problem.empty(), !each.bytes.empty()) << each.text;
    }
}

TEST(Memory, RowsShowBytesTextAndGaps) {
    std::vector<MemoryByte> bytes(16);
    const char text[] = "Hello\x01~\x7F";
    for (std::size_t i = 0; i < 8; ++i) bytes[i] = static_cast<std::uint8_t>(text[i]);
    EXPECT_EQ(MemoryRowText(0x140001000, {12, 16}, bytes),
              L"000140001000 48 65 6C 6C 6F 01 7E 7F  ?? ?? ?? ?? ?? ?? ?? ?? Hello.~.        ");
    EXPECT_EQ(MemoryRowText(0x401000, {8, 8}, bytes), L"00401000 48 65 6C 6C  6F 01 7E 7F Hello.~.");
}

TEST(Memory, RowsAreAsLongAsThereIsRoomFor) {
    for (const int digits : {8, 12, 16}) {
        for (const auto& [bytes, fewer] : {std::pair{16, 8}, std::pair{8, 4}, std::pair{4, 4}}) {
            const int width = MemoryRowWidth({digits, bytes});
            EXPECT_EQ(MemoryShapeThatFits(digits, width), (MemoryShape{digits, bytes}));
            EXPECT_EQ(MemoryShapeThatFits(digits, width - 1), (MemoryShape{digits, fewer}));
        }
    }
}

TEST(Memory, ClicksFindTheirByte) {
    for (const MemoryShape shape : {MemoryShape{12, 16}, MemoryShape{8, 8}, MemoryShape{16, 4}}) {
        for (int i = 0; i < shape.bytes; ++i) {
            const int hex = MemoryHexColumn(shape, i);
            EXPECT_EQ(MemoryCaretAt(shape, hex), (MemoryCaret{i, false, false})) << i;
            EXPECT_EQ(MemoryCaretAt(shape, hex + 1), (MemoryCaret{i, false, true})) << i;
            EXPECT_EQ(MemoryCaretAt(shape, MemoryTextColumn(shape, i)), (MemoryCaret{i, true, false})) << i;
        }
        EXPECT_EQ(MemoryCaretAt(shape, -5), (MemoryCaret{0, false, false}));
        EXPECT_EQ(MemoryCaretAt(shape, 500), (MemoryCaret{shape.bytes - 1, true, false}));
    }
}

TEST(Memory, TypingOverABytesHalves) {
    EXPECT_EQ(MemoryTyped(0x12, {0, false, false}, L'a'), 0xA2);
    EXPECT_EQ(MemoryTyped(0x12, {0, false, true}, L'F'), 0x1F);
    EXPECT_EQ(MemoryTyped(0x12, {0, true, false}, L'z'), 'z');
    EXPECT_FALSE(MemoryTyped(0x12, {0, false, false}, L'g'));
    EXPECT_FALSE(MemoryTyped(0x12, {0, true, false}, 0x20AC));
}

// push rbp; mov rbp,rsp; sub rsp,20h; mov eax,[rbp-8]; leave; ret; nop
constexpr std::uint8_t kCode[] = {0x55, 0x48, 0x89, 0xE5, 0x48, 0x83, 0xEC, 0x20, 0x8B, 0x45, 0xF8, 0xC9, 0xC3, 0x90};

TEST(Memory, TheCaretMovesByBytesAndStopsAtTheEnds) {
    const struct {
        const char* name;
        MemoryPlace place;
        std::int64_t bytes, scroll;
        std::uint64_t row;
        int index;
    } cases[] = {
        {"within its row", {.top = 0x100, .caretRow = 0x110, .caret = {3}, .rows = 4}, 5, 0, 0x110, 8},
        {"back over its start", {.top = 0x100, .caretRow = 0x110, .caret = {3}, .rows = 4}, -4, 0, 0x100, 15},
        {"above the first row", {.top = 0x100, .caretRow = 0x100, .caret = {0}, .rows = 4}, -16, -1, 0xF0, 0},
        {"below the last whole row", {.top = 0x100, .caretRow = 0x120, .caret = {1}, .rows = 4}, 32, 2, 0x140, 1},
        {"not below zero", {.caret = {2}, .rows = 4}, -3, 0, 0, 2},
        {"not beyond 32 bits",
         {.top = 0xFFFFFFF0, .caretRow = 0xFFFFFFF0, .caret = {2}, .x64 = false},
         16,
         0,
         0xFFFFFFF0,
         2},
    };
    for (const auto& each : cases) {
        MemoryPlace place = each.place;
        EXPECT_EQ(MemoryMoveCaretBy(place, each.bytes), each.scroll) << each.name;
        EXPECT_EQ(place.caretRow, each.row) << each.name;
        EXPECT_EQ(place.caret.index, each.index) << each.name;
    }
    MemoryPlace digits = {.top = 0x100, .caretRow = 0x100, .caret = {7, false, true}};
    MemoryStepCaretBy(digits, 1);
    EXPECT_EQ(digits.caret, (MemoryCaret{8, false, false}));
    MemoryStepCaretBy(digits, -1);
    EXPECT_EQ(digits.caret, (MemoryCaret{7, false, true}));
}

TEST(Memory, ScrollingAndOtherRowsStayInTheAddressSpace) {
    const MemoryPlace low = {.top = 0x20, .rows = 4};
    EXPECT_EQ(MemoryScrolledTop(low, -9), 0U);
    EXPECT_EQ(MemoryScrolledTop(low, 2), 0x40U);
    const MemoryPlace high = {.top = 0xFFFFFFE0, .rows = 4, .x64 = false};
    EXPECT_EQ(MemoryScrolledTop(high, 9), 0xFFFFFFF0U);
    MemoryPlace place = {.top = 0x108, .caretRow = 0x118, .caret = {13}};
    MemoryReshape(place, {16, 8});
    EXPECT_EQ(place.caretRow, 0x120U);
    EXPECT_EQ(place.caret.index, 5);
}

TEST(Disassembly, BeginsWhereDecodingLeadsToTheTarget) {
    const std::uint64_t base = 0x1000;
    const std::uint64_t starts[] = {base};
    const auto list = DisasmAround(kCode, base, base + 8, true, starts);
    std::vector<std::uint64_t> places;
    for (const auto& each : list) places.push_back(each.address - base);
    EXPECT_EQ(places, (std::vector<std::uint64_t>{0, 1, 4, 8, 11, 12, 13}));

    // A start inside an instruction leads past the target, so another start is taken.
    const std::uint64_t wrong[] = {base + 6};
    const auto other = DisasmAround(kCode, base, base + 8, true, wrong);
    EXPECT_TRUE(std::ranges::any_of(other, [&](const auto& each) { return each.address == base + 8; }));
    EXPECT_TRUE(std::ranges::all_of(other, &DisasmInstruction::decoded));
    for (std::size_t i = 1; i < other.size(); ++i)
        EXPECT_EQ(other[i - 1].address + other[i - 1].length, other[i].address) << "one runs over the next";
    EXPECT_TRUE(DisasmAround(kCode, base, base + 100, true, {}).empty());
    EXPECT_EQ(DisasmAround(kCode, base, base, true, {}).front().address, base);
}

TEST(Disassembly, ABreakpointShowsWhereTheProgramStandsToo) {
    const CodeBytes code = {0x1000, {0x90, 0x90, 0x90, 0x90}};
    const auto none = [](auto&&...) { return std::wstring(); };
    const CodeView view = {.current = 0x1001,
                           .placeAt = [](std::uint64_t) { return CodeView::Place{}; },
                           .sourceLine = none,
                           .placeText = none,
                           .hasBreakpoint = [](std::uint64_t address) { return address < 0x1002; }};
    auto rows = RowsOfCode(code, DisasmAround(code.bytes, 0x1000, 0x1000, true, {}), 0x1000, view).rows;
    ASSERT_GE(rows.size(), 3U);
    EXPECT_EQ(rows[0].mark, ListMark::Breakpoint);
    EXPECT_EQ(rows[1].mark, ListMark::CurrentBreakpoint);
    EXPECT_EQ(rows[2].mark, ListMark::None);
}

TEST(Disassembly, NamesThePlaceInTheFrameThatAnInstructionUses) {
    EXPECT_EQ(FramePlaceOf("mov eax, [rbp-0x4]"), "rbp-0x4");
    EXPECT_EQ(FramePlaceOf("add qword ptr [ebp+0x10], 1"), "ebp+0x10");
    for (const char* none : {"mov eax, [rax]", "push rbp", "mov rax, [rip+0x2000]", "mov [rbp", ""})
        EXPECT_EQ(FramePlaceOf(none), "") << none;
}

TEST(Disassembly, ShowsALimitedNumber) {
    const std::vector<std::uint8_t> nops(1000, 0x90);
    const auto list = DisasmAround(nops, 0x1000, 0x1000 + 500, true, {});
    EXPECT_EQ(list.size(), kInstructionsShown);
    EXPECT_EQ(list[kInstructionsBefore].address, 0x1000U + 500);
    EXPECT_EQ(CodeBytesText(kCode), L"55 48 89 E5 48 83 ..");
    EXPECT_EQ(CodeBytesText(std::span(kCode).first(2)), L"55 48");
}

}  // namespace
