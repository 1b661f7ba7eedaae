// Views of a stopped program as text, from real programs with known registers, memory and stacks.
#include "debugger/debug_inspect.h"
#include "debugger/expressions.h"

#include "debug_fixture.h"

#include <algorithm>

namespace {

using namespace debugtest;

class DebugInspect : public DebugBothTest {
protected:
    // At line 3, the registers are set, and R12 (EBX) holds the address of the values.
    void StopAtValues() {
        ASSERT_TRUE(Start("values"));
        ASSERT_EQ(Step(), 3);
        place_ = Registers().general[Bits() == 64 ? 12 : 1];
    }

    std::uint64_t place_ = 0;
};
FOR_BOTH_KINDS(DebugInspect);

TEST_P(DebugInspect, RegisterText) {
    StopAtValues();
    const std::wstring text = Take(DebugFormatRegisters(&state));
    if (Bits() == 32) {
        EXPECT_EQ(text, L"x86 registers not available on x64 host");
        return;
    }
    CONTEXT context = {};
    ASSERT_TRUE(DebugGetContext(&state, &context));
    EXPECT_EQ(text,
              FormatW(L"RAX=1111111111111111  RBX=2222222222222222  RCX=3333333333333333  RDX=4444444444444444\r\n"
                      L"RSI=5555555555555555  RDI=6666666666666666  RBP=%016llX  RSP=%016llX\r\n"
                      L"R8 =8888888888888888  R9 =9999999999999999  R10=AAAAAAAAAAAAAAAA  R11=BBBBBBBBBBBBBBBB\r\n"
                      L"R12=%016llX  R13=DDDDDDDDDDDDDDDD  R14=EEEEEEEEEEEEEEEE  R15=FFFFFFFFFFFFFFFF\r\n"
                      L"RIP=%016llX  EFL=%08lX",
                      context.Rbp, context.Rsp, place_, AddressOf(3), context.EFlags));
}

TEST_P(DebugInspect, RegistersOfBothKinds) {
    StopAtValues();
    const RegisterSet r = Registers();
    EXPECT_EQ(r.x64, Bits() == 64);
    EXPECT_EQ(r.ip, AddressOf(3));
    const auto repeated = [this](std::uint64_t digit) {
        return digit * (Bits() == 64 ? 0x1111111111111111ULL : 0x11111111ULL);
    };
    for (const std::size_t i : {0U, 2U, 3U, 4U, 5U}) EXPECT_EQ(r.general[i], repeated(i + 1)) << i;
    EXPECT_NE(r.segments[0], 0);
    RegisterSet main;
    EXPECT_TRUE(DebugGetRegisters(&state, state.mainThreadId, &main));
    EXPECT_EQ(main, r);
    EXPECT_FALSE(DebugGetRegisters(&state, 1, &main)) << "no thread of it";
}

TEST_P(DebugInspect, HexDump) {
    StopAtValues();
    const std::wstring two = FormatW(
        L"%08llX  FB FF FF FF 00 00 00 00 FA FF FF FF FF FF FF FF  |................|\r\n"
        L"%08llX  47 72 C3 BC                                      |Gr..            |\r\n",
        place_, place_ + 16);
    EXPECT_EQ(Take(DebugHexDump(&state, place_, 20)), two);
    EXPECT_EQ(Take(DebugHexDump(&state, place_, 16)), two.substr(0, two.find(L'\n') + 1));
    for (const int count : {0, 4097, -1}) EXPECT_EQ(Take(DebugHexDump(&state, place_, count)), L"(null)") << count;
    EXPECT_EQ(Take(DebugHexDump(&state, 0x10, 16)), L"(null)");
    const std::wstring most = Take(DebugHexDump(&state, state.map.imageBase, 4096));
    EXPECT_EQ(std::count(most.begin(), most.end(), L'\n'), 256);
}

TEST_P(DebugInspect, InstructionBytesAndWatches) {
    StopAtValues();
    EXPECT_EQ(Take(DebugWatchValue(&state, place_ + 8, 1)), L"-6 (0xFFFFFFFFFFFFFFFA)");
    EXPECT_EQ(Take(DebugWatchValue(&state, place_ + 16, 2)), L"\"Gr\u00FC\u00DFe\"");
    EXPECT_EQ(Take(DebugWatchValue(&state, 0x10, 0)), L"<unreadable>");
    ASSERT_TRUE(DebugSetBreakpoint(&state, 4));
    EXPECT_EQ(Take(DebugDisassembleAt(&state, AddressOf(3))), L"bytes 90 90 90 90 90 90 90 90");
    std::uint8_t byte = 0;
    ASSERT_TRUE(DebugReadMem(&state, AddressOf(4), &byte, 1));
    EXPECT_EQ(Take(DebugDisassembleAt(&state, AddressOf(4))).substr(0, 8), FormatW(L"bytes %02X", byte));
    EXPECT_EQ(Take(DebugDisassembleAt(&state, 0x10)), L"(null)");
}

TEST_P(DebugInspect, Evaluation) {
    StopAtValues();
    const bool wide = Bits() == 64;
    const struct {
        const char* text;
        std::uint64_t value;
    } cases[] = {
        {"0x1F", 31},
        {"rip", wide ? AddressOf(3) : 0},
        {"RAX", wide ? 0x1111111111111111ULL : 0},
        {"rbx", wide ? 0x2222222222222222ULL : 0},
        {"R9", wide ? 0x9999999999999999 : 0},
        {"r12", wide ? place_ : 0},
        {"r15", wide ? 0xFFFFFFFFFFFFFFFF : 0},
        {"R16", 0},
    };
    for (const auto& one : cases) EXPECT_EQ(DebugEvaluate(&state, one.text), one.value) << "'" << one.text << "'";
}

// --- Stacks

// The first frame is written twice, because the walk reads the stack only after the second line.
TEST_P(DebugInspect, FramesAndStackTextFollowTheFramePointers) {
    ASSERT_TRUE(Start("recursion"));
    ASSERT_EQ(RunTo(8), 8);
    const std::vector<DebugFrame> frames = DebugFrames(&state, 0);
    ASSERT_GE(frames.size(), 2u);
    EXPECT_LE(frames.size(), 3u);
    EXPECT_EQ(frames[0].address, AddressOf(8));
    EXPECT_EQ(frames[0].line, 8u);
    EXPECT_EQ(frames[0].fileId, 1u);
    EXPECT_EQ(frames[0].framePointer, Registers().general[kBp]);
    EXPECT_EQ(frames[1].line, 2u);
    EXPECT_TRUE(frames.size() == 2 || frames[2].line == 0) << "the system's part";
    const std::wstring text = Take(DebugWalkStack(&state));
    if (Bits() == 32) {
        // For a 32-bit program both frames are at address 0. Relative to the image within 32 bits, that is after the
        // last record.
        EXPECT_EQ(text, L"Call Stack:\r\n  #0  0x0  line 12\r\n  #1  0x0  line 12\r\n");
        return;
    }
    std::uint64_t caller = 0;
    ASSERT_TRUE(DebugReadMem(&state, Registers().general[kBp] + 8, &caller, sizeof caller));
    const std::wstring known = FormatW(
        L"Call Stack:\r\n  #0  0x%llX  line 8\r\n  #1  0x%llX  line 8\r\n"
        L"  #2  0x%llX  line 2\r\n  #3  0x",
        AddressOf(8), AddressOf(8), caller);
    EXPECT_EQ(text.substr(0, known.size()), known);
    EXPECT_EQ(text.find(L"  #4  "), std::wstring::npos) << "the outermost frame pointer leads nowhere: " << text;
}

TEST_P(DebugInspect, NothingWithoutASession) {
    CONTEXT context = {};
    RegisterSet registers;
    EXPECT_FALSE(DebugGetContext(&state, &context));
    EXPECT_FALSE(DebugGetRegisters(&state, 0, &registers));
    EXPECT_EQ(Take(DebugFormatRegisters(&state)), L"(null)");
    EXPECT_EQ(Take(DebugWalkStack(&state)), L"(null)");
    EXPECT_EQ(Take(DebugHexDump(&state, 0x400000, 16)), L"(null)");
    EXPECT_EQ(Take(DebugDisassembleAt(&state, 0x400000)), L"(null)");
    EXPECT_EQ(Take(DebugWatchValue(&state, 0x400000, 0)), L"(null)");
    EXPECT_EQ(DebugEvaluate(&state, "5"), 0u);
    EXPECT_TRUE(DebugFrames(&state, 0).empty());
}

}  // namespace
