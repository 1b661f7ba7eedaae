// Shared by the tests of the debugger's engine: a session that ends with its test, the texts that the engine wrote,
// time limits.
#pragma once

#include "base/handles.h"
#include "base/wide_format.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_session.h"
#include "program/debug_say.h"
#include "program/line_map.h"
#include "support/temp_files.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace debugtest {

inline constexpr DWORD kWaitMs = 10000;
inline constexpr ULONGLONG kTestMs = 15000;  // what a test may spend in waits altogether
inline constexpr COLORREF kRed = 200, kTeal = 0x808000, kOrange = 0x0064C8;

struct Said {
    std::wstring text;
    COLORREF colour = 0;
};
inline std::vector<Said> g_said;
inline ULONGLONG g_deadline = 0;

// Text of a function of debug_inspect.h, which is freed; "(null)" for none.
inline std::wstring Take(wchar_t* text) {
    return text != nullptr ? std::wstring(HeapBlock<wchar_t>(text).get()) : L"(null)";
}

// A test of programs of one kind, or of both kinds: Bits() says which.
class DebugTest : public testing::Test {
protected:
    virtual int Bits() const { return 64; }
    // False: the programs of this kind were not built, because there was no compiler.
    virtual bool Built() const { return std::filesystem::exists(Program("straight")); }

    void SetUp() override {
        g_said.clear();
        g_deadline = GetTickCount64() + kTestMs;
        DebugSetSink([](const std::wstring& text, COLORREF colour) { g_said.push_back({text, colour}); });
        DebugSetWaitHook([] { return GetTickCount64() > g_deadline; });
        DebugSetSourcePath(L"");
        if (Bits() == 32 && (std::getenv("KVX_NO_WINE32") != nullptr || !Built()))
            GTEST_SKIP() << "no 32-bit programs here";
    }
    void TearDown() override {
        DebugSetPlantHook(nullptr);
        End();
        DebugSetWaitHook(nullptr);
        DebugSetSink(nullptr);
        DebugSetSourcePath(L"");
    }

    std::filesystem::path Program(const std::string& name) const {
        return std::filesystem::path(KVX_DEBUGGEES_DIR) / (name + std::to_string(Bits()) + ".exe");
    }
    bool StartFile(const std::filesystem::path& program, std::uint32_t compilerId = 1) {
        const bool started = DebugStartForCompiler(program.c_str(), compilerId, &state);
        if (!started)
            for (const Said& one : g_said) std::printf("not started: %ls", one.text.c_str());
        Watch();
        return started;
    }
    bool Start(const std::string& name) { return StartFile(Program(name)); }
    // Keeps a handle of the running program, so that Gone() can tell that it has ended.
    void Watch() { watched_.Reset(state.active ? OpenProcess(SYNCHRONIZE, FALSE, state.processId) : nullptr); }
    bool Gone() const { return !watched_ || WaitForSingleObject(watched_.Get(), 3000) == WAIT_OBJECT_0; }
    void End() {
        DebugStop(&state);
        EXPECT_EQ(state.active, 0u);
        EXPECT_TRUE(Gone()) << "the program still runs";
        watched_.Reset();
    }

    int Wait(DWORD ms = kWaitMs) { return DebugWaitEvent(&state, ms); }
    // The line after a step; 0: unknown, -1: not resumed, -2: the program has ended, -3: no stop in time.
    int Step(bool (*step)(DebuggerState*) = DebugStepOver) { return step(&state) ? Arrive() : -1; }
    int RunTo(int line) { return DebugRunToLine(&state, line) ? Arrive() : -1; }
    int Arrive() {
        switch (Wait()) {
            case kDebugStopped: return state.currentLine;
            case kDebugExited: return -2;
            default: return -3;
        }
    }
    void ContinueToTheEnd(DWORD exitCode) {
        ASSERT_TRUE(DebugContinue(&state));
        EXPECT_EQ(Wait(), kDebugExited);
        EXPECT_EQ(state.exitCode, exitCode);
    }
    std::uint64_t AddressOf(int line) const { return state.map.imageBase + SdbgLineToRva(&state.map, line); }
    std::uint64_t Count() const { return Registers().general[2]; }  // RCX or ECX
    RegisterSet Registers() const {
        RegisterSet registers;
        EXPECT_TRUE(DebugGetRegisters(&state, 0, &registers));
        return registers;
    }
    // The byte as it stands in the program, breakpoint or not; -1 when it cannot be read.
    int RawByte(std::uint64_t address) const {
        std::uint8_t byte = 0;
        SIZE_T done = 0;
        return ReadProcessMemory(state.process, reinterpret_cast<const void*>(address), &byte, 1, &done) ? byte : -1;
    }

    // Everything said, one text after the other.
    static std::wstring SaidText() {
        std::wstring all;
        for (const Said& one : g_said) all += one.text;
        return all;
    }
    static int TimesSaid(std::wstring_view text) {
        int times = 0;
        for (const Said& one : g_said) times += one.text.find(text) != std::wstring::npos;
        return times;
    }

    DebuggerState state;

private:
    UniqueHandle watched_;
};

class DebugBothTest : public DebugTest, public testing::WithParamInterface<int> {
protected:
    int Bits() const override { return GetParam(); }
};

inline std::string BitsName(const testing::TestParamInfo<int>& info) { return "Bits" + std::to_string(info.param); }

}  // namespace debugtest

// Runs the tests of `suite` for both kinds of program.
#define FOR_BOTH_KINDS(suite) INSTANTIATE_TEST_SUITE_P(Programs, suite, testing::Values(64, 32), debugtest::BitsName)
