// The stand-in executables as the editor calls them, and the programs they make: output, exit codes, arithmetic against
// C++, run-time errors, and the lines that a debugger meets.
#include "process_win.h"
#include "sample_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>

namespace {

using namespace samples;

struct Compiler {
    std::string_view name, file, debugSwitch;
    bool x64, keldor;
};
constexpr Compiler kCompilers[] = {
    {"KVXA64", "KVXA64/kvxa64.exe", "--debug", true, false},
    {"KVXB64", "KVXB64/KVXB64.exe", "--debug", true, false},
    {"KVXC64", "KVXC64/KVXC64.exe", "--debug", true, false},
    {"KVXA32", "KVXA32/KVXA32.exe", "--debug", false, false},
    {"KeldorBasic", "KELDORRBASIC/KeldorrBASIC.exe", "/D", false, true},
};

bool CanRun(const Compiler& compiler) { return compiler.x64 || std::getenv("KVX_NO_WINE32") == nullptr; }

// Compiles to a program of the same name in the same folder.
Ended Compile(const Compiler& compiler, const std::filesystem::path& source, std::vector<std::string> args = {}) {
    if (compiler.keldor)
        args.insert(args.begin(), {Utf8(source), "/L", "/Q"});
    else
        args.insert(args.end(), {"-o", Utf8(std::filesystem::path(source).replace_extension(".exe")), Utf8(source)});
    return RunProgram(std::filesystem::path(KVX_DIST_DIR) / compiler.file, args);
}

std::filesystem::path Program(const std::filesystem::path& source) {
    return std::filesystem::path(source).replace_extension(".exe");
}

std::string OutputAndExit(const Ended& ended) {
    return Unix(ended.output) + "[exit code " + std::to_string(ended.exit) + "]\n";
}

TEST(RunSamples, EveryCompilerMakesProgramsWithTheExpectedOutput) {
    int skipped = 0;
    for (const Sample& sample : kSamples)
        for (const Compiler& compiler : kCompilers) {
            SCOPED_TRACE(std::string(sample.name) + " by " + std::string(compiler.name));
            if (!CanRun(compiler)) {
                ++skipped;
                continue;
            }
            const TempFolder folder;
            std::filesystem::copy((kFolder / sample.source).parent_path(), folder.path);
            const auto source = folder.path / std::filesystem::path(sample.source).filename();
            const Ended build = Compile(compiler, source);
            ASSERT_TRUE(build.started && build.exit == 0) << build.output;
            EXPECT_NE(Unix(build.output).find("\n0 errors, 0 warnings\n"), std::string::npos) << build.output;
            EXPECT_EQ(OutputAndExit(RunProgram(Program(source), {})), Expected(sample.name));
        }
    if (skipped > 0) GTEST_SKIP() << skipped << " builds for 32 bits not run: no 32-bit Wine";
}

// The editor's default profile builds for debugging, and "run" is not "debug".
TEST(RunSamples, DebugBuildsAlsoJustRun) {
    for (const Compiler& compiler : kCompilers) {
        if (!CanRun(compiler)) continue;
        const TempFolder folder;
        const auto source = folder.path / "steps.bas";
        std::filesystem::copy_file(kFolder / "steps.bas", source);
        ASSERT_EQ(Compile(compiler, source, {std::string(compiler.debugSwitch)}).exit, 0u);
        EXPECT_EQ(OutputAndExit(RunProgram(Program(source), {})), Expected("steps")) << compiler.name;
    }
}

TEST(RunSamples, NamesBeyondTheCodePageAndBlanksWork) {
    const TempFolder folder;
    const auto place = folder.path / L"мой проект é";
    std::filesystem::create_directories(place);
    const auto source = place / L"程序 1.bas";
    WriteBytes(source, "FUNCTION PBMAIN () AS LONG\nPRINT \"\xC3\xA9\"\nFUNCTION = 7\nEND FUNCTION\n");
    for (const Compiler& compiler : kCompilers) {
        if (!CanRun(compiler)) continue;
        const Ended build = Compile(compiler, source);
        ASSERT_EQ(build.exit, 0u) << build.output;
        EXPECT_EQ(OutputAndExit(RunProgram(Program(source), {})), "\xC3\xA9\n[exit code 7]\n") << compiler.name;
        WriteBytes(source.parent_path() / "bad.bas", "x\n");
        const Ended bad = Compile(compiler, source.parent_path() / "bad.bas");
        EXPECT_NE(bad.output.find(Utf8(source.parent_path() / "bad.bas")), std::string::npos) << bad.output;
    }
}

TEST(RunSamples, RunTimeErrorsSayTheLineAndKeepTheOutput) {
    struct Case {
        std::string_view name, body, message;
    };
    const Case cases[] = {
        {"division", "LOCAL a AS LONG\nPRINT 5 \\ a", "Run-time error: division by zero in line 4\n"},
        {"remainder", "LOCAL q AS QUAD\n\nPRINT q MOD q", "Run-time error: division by zero in line 5\n"},
        {"index", "LOCAL a(3) AS LONG\nLOCAL i AS LONG\ni = 4\na(i) = 1",
         "Run-time error: array index out of bounds in line 6\n"},
        {"below", "LOCAL a(3) AS QUAD, i AS LONG\na(i - 1) = 1",
         "Run-time error: array index out of bounds in line 4\n"},
        {"stack", "PRINT Deep(1)\nEND FUNCTION\nFUNCTION Deep(BYVAL n AS LONG) AS LONG\nFUNCTION = Deep(n + 1)",
         "Run-time error: out of stack space in line 5\n"},
    };
    for (const Case& one : cases)
        for (const Compiler& compiler : {kCompilers[0], kCompilers[3]}) {
            if (!CanRun(compiler)) continue;
            const TempFolder folder;
            const auto source = folder.path / "a.bas";
            WriteBytes(source,
                       "FUNCTION PBMAIN () AS LONG\nPRINT \"before\";\n" + std::string(one.body) + "\nEND FUNCTION\n");
            const Ended build = Compile(compiler, source);
            ASSERT_EQ(build.exit, 0u) << build.output;
            EXPECT_EQ(OutputAndExit(RunProgram(Program(source), {})),
                      "before\n" + std::string(one.message) + "[exit code 3]\n")
                << one.name << " by " << compiler.name;
        }
}

// ---- arithmetic against C++ --------------------------------------------------------------------------------------

int64_t Wrap(bool wide, uint64_t value) { return wide ? static_cast<int64_t>(value) : static_cast<int32_t>(value); }

int64_t Whole(const std::string& op, bool wide, int64_t a, int64_t b) {
    const auto ua = static_cast<uint64_t>(a), ub = static_cast<uint64_t>(b);
    if (op == "+") return Wrap(wide, ua + ub);
    if (op == "-") return Wrap(wide, ua - ub);
    if (op == "*") return Wrap(wide, ua * ub);
    if (op == "AND") return a & b;
    if (op == "OR") return a | b;
    if (op == "XOR") return a ^ b;
    if (op == "\\") return b == -1 ? Wrap(wide, 0 - ua) : a / b;
    if (op == "MOD") return b == -1 ? 0 : a % b;
    return -(op == "="    ? a == b
             : op == "<>" ? a != b
             : op == "<"  ? a < b
             : op == ">"  ? a > b
             : op == "<=" ? a <= b
                          : a >= b);
}

std::string Literal(int64_t value) {
    return value == INT64_MIN ? "(-9223372036854775807 - 1)"
           : value < 0        ? "(" + std::to_string(value) + ")"
                              : std::to_string(value);
}

// Pairs of values at and between the edges of both types, through every operator and mixture of types, as statements of
// one program; each line of its output is compared.
TEST(RunSamples, WholeNumbersComputeLikeCpp) {
    const std::vector<int64_t> edges = {0,
                                        1,
                                        -1,
                                        2,
                                        7,
                                        -7,
                                        204,
                                        65535,
                                        INT32_MAX,
                                        INT32_MIN,
                                        4294967295,
                                        4294967296,
                                        -4294967296,
                                        1000000007,
                                        INT64_MAX,
                                        INT64_MIN,
                                        0x123456789ABCDEF,
                                        -0x7654321012345};
    std::mt19937_64 random(11);
    std::string body, expected;
    for (const std::string op : {"+", "-", "*", "\\", "MOD", "AND", "OR", "XOR", "=", "<>", "<", ">", "<=", ">="})
        for (int turn = 0; turn < 60; ++turn) {
            const bool wideLeft = random() % 2, wideRight = random() % 2, wide = wideLeft || wideRight;
            const auto pick = [&](bool is64) {
                return Wrap(is64, static_cast<uint64_t>(edges[random() % edges.size()]) + random() % 2);
            };
            const int64_t a = pick(wideLeft), b = pick(wideRight);
            if (b == 0 && (op == "\\" || op == "MOD")) continue;
            const std::string left = wideLeft ? "p" : "a", right = wideRight ? "q" : "b";
            body += left + " = " + Literal(a) + " : " + right + " = " + Literal(b) + " : PRINT " + left + " " + op +
                    " " + right + "\n";
            expected += std::to_string(Whole(op, wide, a, b)) + "\n";
        }
    const std::pair<const char*, double> conversions[] = {{"2.5", 2.5},
                                                          {"3.5", 3.5},
                                                          {"-2.5", -2.5},
                                                          {"-0.4", -0.4},
                                                          {"1234567.9", 1234567.9},
                                                          {"-2147483648.2", -2147483648.2}};
    for (const auto& [text, value] : conversions) {  // to the nearest, halves to even
        body += "x = " + std::string(text) +
                " : a = x : p = x : y = p : PRINT a; p; y; ABS(x); INT(x); -p; ABS(p); NOT a\n";
        const auto rounded = static_cast<int64_t>(std::nearbyint(value));
        char line[200];
        std::snprintf(line, sizeof line, "%lld%lld%lld%.15g%.15g%lld%lld%lld\n", (long long)rounded, (long long)rounded,
                      (long long)rounded, std::fabs(value), std::floor(value), (long long)-rounded,
                      (long long)std::llabs(rounded), (long long)~rounded);
        expected += line;
    }
    for (const Compiler& compiler : {kCompilers[1], kCompilers[3], kCompilers[4]}) {
        if (!CanRun(compiler)) continue;
        const TempFolder folder;
        const auto source = folder.path / "a.bas";
        WriteBytes(source, "FUNCTION PBMAIN () AS LONG\nLOCAL a, b AS LONG, p, q AS QUAD, x, y AS DOUBLE\n" + body +
                               "END FUNCTION\n");
        const Ended build = Compile(compiler, source);
        ASSERT_EQ(build.exit, 0u) << build.output;
        const auto got = Lines(RunProgram(Program(source), {}).output), wanted = Lines(expected), text = Lines(body);
        ASSERT_EQ(got.size(), wanted.size()) << compiler.name;
        for (size_t i = 0; i < got.size(); ++i) EXPECT_EQ(got[i], wanted[i]) << compiler.name << ": " << text[i];
    }
}

// ---- what a debugger meets ---------------------------------------------------------------------------------------

TEST(RunSamples, TrapsAreMetInTheOrderOfExecution) {
    const Compiler& compiler = kCompilers[4];
    if (!CanRun(compiler)) GTEST_SKIP() << "no 32-bit Wine";
    const TempFolder folder;
    const auto source = folder.path / "steps.bas";
    std::filesystem::copy_file(kFolder / "steps.bas", source);
    ASSERT_EQ(Compile(compiler, source, {"/D"}).exit, 0u);
    const std::vector<uint32_t> traps = TrapsOf(ReadBytes(Program(source)), ReadBytes(folder.path / "steps.exe.pbd"));
    const std::vector<int> lines = StatementLines(ReadBytes(source));
    ASSERT_EQ(traps.size(), lines.size());
    std::vector<int> met;
    for (const uint32_t rva : DebugRun(Program(source), {})) {
        const auto at = std::find(traps.begin(), traps.end(), rva);
        met.push_back(at == traps.end() ? 0 : lines[static_cast<size_t>(at - traps.begin())]);
    }
    const std::vector<int> wanted = {10, 12, 13, 14, 15, 16, 13, 14, 15, 16, 13, 14, 15, 16, 18, 20, 21, 22,
                                     26, 27, 28, 29, 32, 33, 34, 35, 33, 36, 37, 38, 39, 37, 38, 40, 41, 42};
    EXPECT_EQ(met, wanted);
}

TEST(RunSamples, MappedAddressesAreMetInTheOrderOfExecution) {
    const TempFolder folder;
    const auto source = folder.path / "steps.bas";
    std::filesystem::copy_file(kFolder / "steps.bas", source);
    ASSERT_EQ(Compile(kCompilers[0], source, {"--debug"}).exit, 0u);
    const std::string sdbg = ReadSections(ReadBytes(Program(source)))[".sdbg"].raw;
    std::vector<uint32_t> rvas;
    for (size_t i = 0; i < Number(sdbg, 4); ++i) rvas.push_back(Number(sdbg, 16 + 12 * i));
    std::vector<uint32_t> met;
    for (const uint32_t rva : DebugRun(Program(source), rvas))
        met.push_back(
            Number(sdbg, 12 + 12 * static_cast<size_t>(std::find(rvas.begin(), rvas.end(), rva) - rvas.begin())));
    // First visits only, since each breakpoint goes when met; the called function's lines come in between.
    const std::vector<uint32_t> wanted = {9,  12, 13, 3,  5,  6,  7,  14, 15, 16, 18, 20, 22, 26,
                                          27, 28, 29, 33, 34, 35, 37, 38, 39, 38, 40, 41, 42};
    EXPECT_EQ(met, wanted);
}

}  // namespace
