// The stand-in executables as the editor calls them, and the programs they make: output, exit codes, run-time errors.
#include "sample_files.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdlib>

#include "support/start_process.h"

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

struct Ended {
    bool started = false;
    uint32_t exit = 0;
    std::string output;  // standard output and error
};

std::wstring CommandLine(const std::filesystem::path& program, const std::vector<std::string>& args) {
    std::wstring line = L"\"" + program.wstring() + L"\"";
    for (const std::string& arg : args)
        line += L" \"" + std::filesystem::path(std::u8string(arg.begin(), arg.end())).wstring() + L"\"";
    return line;
}

constexpr DWORD kLimitMs = 60000;
constexpr DWORD kKilled = 0xDEAD;

// Runs to the end, at most a minute; then it is killed and `exit` is kKilled.
Ended RunProgram(const std::filesystem::path& program, const std::vector<std::string>& args) {
    Ended ended;
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    HANDLE readEnd = nullptr, writeEnd = nullptr;
    if (!CreatePipe(&readEnd, &writeEnd, &inherit, 0)) return ended;
    SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
    PROCESS_INFORMATION info{};
    ended.started = StartProcess(CommandLine(program, args), &info,
                                 {.flags = CREATE_NO_WINDOW, .output = writeEnd, .errors = writeEnd});
    CloseHandle(writeEnd);
    if (ended.started) {
        const ULONGLONG end = GetTickCount64() + kLimitMs;
        char block[4096];
        for (DWORD got = 0, waiting = 0; PeekNamedPipe(readEnd, nullptr, 0, nullptr, &waiting, nullptr);)
            if (waiting > 0 && ReadFile(readEnd, block, sizeof block, &got, nullptr))
                ended.output.append(block, got);
            else if (GetTickCount64() > end)
                break;
            else
                Sleep(1);
        if (WaitForSingleObject(info.hProcess, 1000) != WAIT_OBJECT_0) TerminateProcess(info.hProcess, kKilled);
        WaitForSingleObject(info.hProcess, kLimitMs);
        DWORD code = kKilled;
        GetExitCodeProcess(info.hProcess, &code);
        ended.exit = code;
        CloseHandle(info.hThread);
        CloseHandle(info.hProcess);
    }
    CloseHandle(readEnd);
    return ended;
}

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
            // The editor's default profile builds for debugging, and such a program may also just run.
            for (const bool debug : {false, true}) {
                if (debug && sample.name != "steps") continue;
                const Ended build = Compile(compiler, source,
                                            std::vector<std::string>(debug ? 1 : 0, std::string(compiler.debugSwitch)));
                ASSERT_TRUE(build.started && build.exit == 0) << build.output;
                EXPECT_NE(Unix(build.output).find("\n0 errors, 0 warnings\n"), std::string::npos) << build.output;
                EXPECT_EQ(OutputAndExit(RunProgram(Program(source), {})), Expected(sample.name)) << debug;
            }
        }
    if (skipped > 0) GTEST_SKIP() << skipped << " builds for 32 bits not run: no 32-bit Wine";
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

// Run-time errors name the line and keep the output before them. Numbers: what the samples do not reach, which is the
// edges of LONG, and halves, which go to the even neighbour.
TEST(RunSamples, RunTimeErrorsAndNumbers) {
    const struct {
        std::string_view body, output, exit;
    } cases[] = {
        {"LOCAL a AS LONG\nPRINT 5 \\ a", "Run-time error: division by zero in line 4\n", "3"},
        {"LOCAL q AS QUAD\n\nPRINT q MOD q", "Run-time error: division by zero in line 5\n", "3"},
        {"LOCAL a(3) AS LONG\nLOCAL i AS LONG\ni = 4\na(i) = 1",
         "Run-time error: array index out of bounds in line 6\n", "3"},
        {"LOCAL a(3) AS QUAD, i AS LONG\na(i - 1) = 1", "Run-time error: array index out of bounds in line 4\n", "3"},
        {"PRINT Deep(1)\nEND FUNCTION\nFUNCTION Deep(BYVAL n AS LONG) AS LONG\nFUNCTION = Deep(n + 1)",
         "Run-time error: out of stack space in line 5\n", "3"},
        {"LOCAL a, b AS LONG, p AS QUAD\na = -2147483647 - 1\nb = -1\np = a\nPRINT\n"
         "PRINT a \\ b; \" \"; a MOD b; \" \"; -a; \" \"; a - 1; \" \"; p * b; \" \"; a * a; \" \"; p < b; \" \"; NOT "
         "a",
         "-2147483648 0 -2147483648 2147483647 2147483648 0 -1 2147483647\n", "0"},
        {"LOCAL a, b AS LONG, p AS QUAD, x AS DOUBLE\nx = 2.5\na = x\nx = 3.5\nb = x\nx = -2.5\np = x\nPRINT\n"
         "PRINT a; \" \"; b; \" \"; p; \" \"; INT(x); \" \"; ABS(x)",
         "2 4 -2 -3 2.5\n", "0"},
    };
    for (const auto& one : cases)
        for (const Compiler& compiler : {kCompilers[0], kCompilers[1], kCompilers[3]}) {
            if (!CanRun(compiler)) continue;
            const TempFolder folder;
            const auto source = folder.path / "a.bas";
            WriteBytes(source,
                       "FUNCTION PBMAIN () AS LONG\nPRINT \"before\";\n" + std::string(one.body) + "\nEND FUNCTION\n");
            const Ended build = Compile(compiler, source);
            ASSERT_EQ(build.exit, 0u) << build.output;
            EXPECT_EQ(OutputAndExit(RunProgram(Program(source), {})),
                      "before\n" + std::string(one.output) + "[exit code " + std::string(one.exit) + "]\n")
                << one.body << " by " << compiler.name;
        }
}

}  // namespace
