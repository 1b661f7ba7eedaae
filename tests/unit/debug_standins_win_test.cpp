// Programs as each compiler makes them, with their own line maps, from the first line to the end.
#include "debug_fixture.h"

#include "settings/compiler_id.h"

#include <algorithm>

namespace {

using namespace debugtest;

struct Compiler {
    std::uint32_t id;
    const char *file, *arguments;  // before the source
    int bits;
    const char* name;
};
constexpr Compiler kCompilers[] = {
    {kCompilerKvxa64, "KVXA64/kvxa64.exe", "--debug -o steps.exe", 64, "KVXA64"},
    {kCompilerKvxb64, "KVXB64/KVXB64.exe", "--debug -o steps.exe", 64, "KVXB64"},
    {kCompilerKvxa32, "KVXA32/KVXA32.exe", "--debug -o steps.exe", 32, "KVXA32"},
    {kCompilerKeldorBasic, "KELDORRBASIC/KeldorrBASIC.exe", "/L /Q /D", 32, "KeldorBasic"},
    {kCompilerKvxc64, "KVXC64/KVXC64.exe", "--debug -o steps.exe", 64, "KVXC64"},
};

void PrintTo(const Compiler& compiler, std::ostream* out) { *out << compiler.name; }

class DebugStandins : public DebugTest, public testing::WithParamInterface<Compiler> {
protected:
    int Bits() const override { return GetParam().bits; }
    bool Built() const override { return true; }

    // samples/steps.bas, compiled in this test's folder.
    void SetUp() override {
        DebugTest::SetUp();
        if (IsSkipped()) return;
        const auto source = folder_.path / "steps.bas";
        std::filesystem::copy_file(std::filesystem::path(KVX_ROOT_DIR) / "samples" / "steps.bas", source);
        const auto compiler = std::filesystem::path(KVX_DIST_DIR) / GetParam().file;
        const std::wstring line =
            L"\"" + compiler.wstring() + L"\" " + std::filesystem::path(GetParam().arguments).wstring() + L" steps.bas";
        ASSERT_EQ(RunToEnd(line, folder_.path.c_str()), 0u) << compiler << " error " << GetLastError();
        DebugSetSourcePath(source.c_str());
        ASSERT_TRUE(StartFile(folder_.path / "steps.exe", GetParam().id)) << SaidText();
    }

    TempFolder folder_;
};
INSTANTIATE_TEST_SUITE_P(Compilers, DebugStandins, testing::ValuesIn(kCompilers),
                         [](const testing::TestParamInfo<Compiler>& one) { return one.param.name; });

TEST_P(DebugStandins, StepsFromTheFirstLineToTheEnd) {
    const bool traps = GetParam().id == kCompilerKeldorBasic;
    // A map begins with the heading of the routine; traps stand only before the statements below it.
    const std::vector<int> begin =
        traps ? std::vector<int>{10, 12, 13, 14, 15, 16, 13} : std::vector<int>{9, 12, 13, 14, 15, 16, 18};
    std::vector<int> lines = {state.currentLine};
    while (lines.back() > 0 && lines.size() < 200) lines.push_back(Step());
    EXPECT_EQ(lines.back(), -2) << "the program ended";
    EXPECT_EQ(state.exitCode, 3u);
    EXPECT_EQ(std::vector<int>(lines.begin(), lines.begin() + std::min<std::ptrdiff_t>(7, std::ssize(lines))), begin)
        << testing::PrintToString(lines);
    if (traps) {
        EXPECT_EQ(TimesSaid(L"[Debug] Reached line 10.\n"), 1);
        EXPECT_EQ(std::count(lines.begin(), lines.end(), 14), 3) << "every turn of the loop";
    } else {
        EXPECT_EQ(SaidText().find(L"[Debug] Started. Breakpoint at line 9.\n[Debug] Reached line 9.\n"), 0u);
    }
}

TEST_P(DebugStandins, ABreakpointIsHitInEveryTurn) {
    ASSERT_TRUE(DebugSetBreakpoint(&state, 14));
    int hits = 0, event = kDebugStopped;
    while (DebugContinue(&state) && (event = Wait()) == kDebugStopped && hits < 10) {
        ++hits;
        EXPECT_EQ(state.currentLine, 14);
    }
    EXPECT_EQ(event, kDebugExited);
    EXPECT_EQ(hits, 3);
    EXPECT_EQ(state.exitCode, 3u);
}

}  // namespace
