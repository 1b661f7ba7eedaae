// The course of a build, of a batch and of a staged copy, without a process or a disk.
#include "compile/build_sequence.h"
#include "compile/build_batch.h"
#include "compile/build_plan.h"
#include "compile/held_console.h"
#include "compile/input_queue.h"
#include "compile/products.h"
#include "compile/program_run.h"
#include "compile/read_course.h"
#include "compile/side_logs.h"
#include "compile/staging.h"
#include "output/line_colours.h"

#include <gtest/gtest.h>

#include <deque>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::string Narrow(std::wstring_view text) {
    std::string narrow;
    for (const wchar_t character : text)
        if (character != L'\r') narrow += character < 0x80 ? static_cast<char>(character) : '?';
    return narrow;
}

// How a stage goes: it cannot be started, or it ends in this way.
struct Happening {
    bool starts = true;
    BuildEnd end = BuildEnd::Ended;
    std::uint32_t exitCode = 0;
    int lines = 1;  // printed by the compiler
    const wchar_t* reason = L"";
    const wchar_t* unwritten = L"";
};

std::string Said(const BuildStep& step) {
    std::string text = step.clearsPane ? "clear\n" : "";
    for (const BuildLine& line : step.lines)
        text += (line.colour == kLineRed ? "red: " : line.colour == kLineTeal ? "teal: " : "") + Narrow(line.text);
    if (!step.status.empty()) text += "status: " + Narrow(step.status) + "\n";
    if (step.verdict != DocumentVerdict::None)
        text += step.verdict == DocumentVerdict::Succeeded ? "mark ok\n" : "mark error\n";
    return text + (step.programBuilt ? "built\n" : "");
}

// The whole course of a build as one text. `happenings` are for the stages, in order.
std::string Course(const BuildOrder& order, const wchar_t* preBuild, const wchar_t* postBuild,
                   std::deque<Happening> happenings) {
    BuildRun run = {.order = order};
    BuildStage stage = BuildStage::Idle;
    BuildPrinted printed = {.lines = 0, .errors = 1, .warnings = 2, .firstError = L"First error at a.bas:1"};
    Happening now;
    std::string text;
    bool ended = false;
    const BuildHost host = {
        .show = [&](const BuildStep& step) { text += Said(step); },
        .start =
            [&](BuildStage next, std::wstring* reason) {
                text += happenings.empty() ? "one stage too many\n"
                                           : "start " + std::to_string(static_cast<int>(next)) + "\n";
                if (happenings.empty()) return false;
                stage = next;
                now = happenings.front();
                happenings.pop_front();
                *reason = now.reason;
                return now.starts;
            },
        .showSideLogs = [&] { text += "side logs\n"; },
        .printed = [&] { return printed; },
        .end =
            [&] {
                text += "end: " + Narrow(run.finalStatus) + (run.success ? " +" : " -") +
                        std::to_string(static_cast<int>(BuildFollowUp(run)));
                ended = true;
            },
    };
    if (!BuildFollow(run, BuildFirst(run, preBuild), host, postBuild)) return text + "refused";
    while (!ended) {
        printed.lines = now.lines;
        run.unwritten = now.unwritten;
        const StageResult result = {.stage = stage, .end = now.end, .exitCode = now.exitCode, .seconds = 2.04};
        BuildFollow(run, BuildAfterStage(run, result, printed), host, postBuild);
    }
    return text;
}

TEST(BuildSequence, EveryCourse) {
    const BuildOrder run = {.after = AfterBuild::RunProgram};
    const Happening fails = {.exitCode = 3};
    const Happening stopped = {.end = BuildEnd::Stopped};
    const Happening late = {.end = BuildEnd::TimedOut, .exitCode = 1};
    const Happening never = {.starts = false};
    const Happening unknown = {.starts = false, .reason = L"File not found."};
    struct Case {
        const char* name;
        struct {
            BuildOrder order;
            const wchar_t *preBuild, *postBuild;
            std::deque<Happening> happenings;
        } given;
        const char* course;
    };
    const Case cases[] = {
        {"all goes well, and the program is run",
         {run, L"pre", L"post", {{}, {}, {}}},
         "teal: [Pre-build] pre\nstart 1\nstatus: Pre-build...\nstatus: Building...\nstart 2\nmark ok\n"
         "--- Build succeeded: 1 error, 2 warnings, 2.0 s ---\nteal: [Post-build] post\nbuilt\nstart 3\n"
         "end: Build succeeded: 1 error, 2 warnings, 2.0 s +1"},
        {"a silent compiler that fails",
         {run, L"", L"post", {{.exitCode = 3, .lines = 0}}},
         "status: Building...\nstart 2\nmark error\nside logs\n"
         "red: --- Build failed (exit code 3): 1 error, 2 warnings, 2.0 s ---\n"
         "end: Build failed (exit code 3): 1 error, 2 warnings, 2.0 s -0"},
        {"the first error is far above the end",
         {{}, L"", L"", {{.exitCode = 3, .lines = 5}}},
         "status: Building...\nstart 2\nmark error\n"
         "red: --- Build failed (exit code 3): 1 error, 2 warnings, 2.0 s ---\nred: First error at a.bas:1\n"
         "end: Build failed (exit code 3): 1 error, 2 warnings, 2.0 s -0"},
        {"a syntax check builds no program",
         {{.syntaxOnly = true, .debug = true}, L"", L"post", {{}}},
         "status: Syntax check...\nstart 2\nmark ok\n--- Syntax check succeeded: 1 error, 2 warnings, 2.0 s ---\n"
         "end: Syntax check succeeded: 1 error, 2 warnings, 2.0 s +0"},
        {"the compiler takes too long",
         {{.debug = true}, L"", L"post", {late}},
         "status: Debug build...\nstart 2\nmark error\nred: The compiler had printed nothing for 5 minutes and was "
         "ended.\n"
         "red: --- Build failed (exit code 1): 1 error, 2 warnings, 2.0 s ---\n"
         "end: Build failed (exit code 1): 1 error, 2 warnings, 2.0 s -0"},
        {"stopped in the compiler",
         {run, L"", L"post", {stopped}},
         "status: Building...\nstart 2\nred: --- Build stopped ---\nmark error\nend: Build stopped -0"},
        {"stopped in the pre-build command",
         {{.after = AfterBuild::NextOfBatch}, L"pre", L"", {stopped}},
         "teal: [Pre-build] pre\nstart 1\nstatus: Pre-build...\nred: --- Build stopped ---\nend: Build stopped -2"},
        {"stopped in the post-build command",
         {run, L"", L"post", {{}, stopped}},
         "status: Building...\nstart 2\nmark ok\n--- Build succeeded: 1 error, 2 warnings, 2.0 s ---\n"
         "teal: [Post-build] post\nbuilt\nstart 3\nred: --- Build stopped ---\nend: Build stopped -0"},
        {"commands that fail or take too long stop nothing",
         {{}, L"pre", L"post", {late, {}, fails}},
         "teal: [Pre-build] pre\nstart 1\nstatus: Pre-build...\n"
         "teal: [Pre-build] Still running after 30 seconds; going on without its output.\nstatus: Building...\n"
         "start 2\nmark ok\n--- Build succeeded: 1 error, 2 warnings, 2.0 s ---\nteal: [Post-build] post\nbuilt\n"
         "start 3\nteal: [Post-build] Exit code 3.\nend: Build succeeded: 1 error, 2 warnings, 2.0 s +0"},
        {"commands that cannot be started stop nothing",
         {{}, L"pre", L"post", {unknown, {}, never}},
         "teal: [Pre-build] pre\nstart 1\nred: [Pre-build] Failed to run.\nred: [Pre-build] File not found.\nstatus: "
         "Building...\nstart 2\nmark ok\n"
         "--- Build succeeded: 1 error, 2 warnings, 2.0 s ---\nteal: [Post-build] post\nbuilt\nstart 3\n"
         "red: [Post-build] Failed to run.\nend: Build succeeded: 1 error, 2 warnings, 2.0 s +0"},
        {"a compiler that succeeds without a program: none is run",
         {run, L"", L"", {{.unwritten = L"No program."}}},
         "status: Building...\nstart 2\nmark ok\n--- Build succeeded: 1 error, 2 warnings, 2.0 s ---\n"
         "red: No program.\nbuilt\nend: No program. +0"},
        {"no compiler: no build",
         {{}, L"", L"", {never}},
         "status: Building...\nstart 2\nstatus: Build launch failed\nrefused"},
        {"no compiler after a pre-build command: the build ends",
         {{}, L"pre", L"", {{}, never}},
         "teal: [Pre-build] pre\nstart 1\nstatus: Pre-build...\nstatus: Building...\nstart 2\n"
         "status: Build launch failed\nend:  -0"},
    };
    for (const Case& test : cases)
        EXPECT_EQ(Course(test.given.order, test.given.preBuild, test.given.postBuild, test.given.happenings),
                  test.course)
            << test.name;
}

TEST(BuildSequence, IsRefusedWhileSomethingElseRuns) {
    const BuildOrder batch = {.after = AfterBuild::NextOfBatch};
    struct Case {
        BuildSituation situation;
        BuildRefusal build, ofBatch, command;
    };
    using enum BuildRefusal;
    const Case cases[] = {
        {{}, None, None, None},
        {{.saving = true, .stageRuns = true}, Saving, Saving, StillRunning},
        {{.stageRuns = true, .programDebugged = true}, Running, Running, StillRunning},
        {{.batchRuns = true}, Running, None, StillRunning},
        {{.programDebugged = true}, ProgramDebugged, ProgramDebugged, ProgramDebugged},
        {{.stageRuns = true, .programRuns = true}, ProgramRuns, ProgramRuns, ProgramRuns},
    };
    for (const Case& test : cases) {
        EXPECT_EQ(BuildRefusalOf({}, test.situation), test.build);
        EXPECT_EQ(BuildRefusalOf(batch, test.situation), test.ofBatch);
        EXPECT_EQ(BuildRefusalOfCommand(test.situation), test.command);
    }
    EXPECT_EQ(Said(BuildRefused(Saving)) + Said(BuildRefused(Running)), "") << "nothing is said over a running build";
    EXPECT_EQ(Said(BuildRefused(NoDocument)),
              "clear\nred: Build cancelled: no active source tab is selected.\nstatus: Build cancelled\n");
    EXPECT_EQ(
        Said(BuildRefused(NoCompiler, L"KVXA64", L"")),
        "red: Compiler not found: KVXA64\nConfigured path: (empty)\nOpen Project > Settings and run Auto-Detect or "
        "browse to the compiler.\nstatus: Compiler not found\n");
    EXPECT_FALSE(BuildNeedsSave(false, true, true)) << "another program may have changed the file";
    EXPECT_TRUE(BuildNeedsSave(false, true, false)) << "the file is gone";
}

TEST(BuildSequence, AnOldProgramIsNoNewOne) {
    const FileStamp old = {.written = 100, .length = 5}, rebuilt = {.written = 300, .length = 5};
    EXPECT_FALSE(ProgramWasWritten(nullptr, nullptr, 200));
    EXPECT_FALSE(ProgramWasWritten(&old, &old, 200));
    EXPECT_TRUE(ProgramWasWritten(&old, &rebuilt, 400)) << "the clock of a share is another one";
    EXPECT_TRUE(ProgramWasWritten(&rebuilt, &rebuilt, 200)) << "twice within one step of the time";
    BuildRecord last = {.source = L"x.bas", .programWritten = true};
    EXPECT_EQ(RunDoubt(last, false), L"");
    EXPECT_NE(RunDoubt(last, true), L"");
    last.programWritten = false;
    EXPECT_NE(RunDoubt(last, true), RunDoubt({}, true));
    PeImage program;
    program.imports[0x2000] = "kernel32!ReadConsoleW";
    EXPECT_EQ(ConsoleKeysText(program), L"") << "runtimes import it for ordinary input";
    program.imports[0x2008] = "msvcrt!_getch";
    EXPECT_NE(ConsoleKeysText(program), L"");
    EXPECT_EQ(Narrow(ProgramEndText({.exitCode = 0xC0000005})), "--- Program ended (exit code 0xC0000005) ---\n");
}

TEST(BuildBatch, TakesEachDocumentOnce) {
    BuildBatch batch = BatchOf({7, 3, 9});
    EXPECT_EQ(BatchTakeNext(batch), 7);
    BatchCount(batch, true);
    EXPECT_EQ(BatchTakeNext(batch), 3);
    EXPECT_EQ(Narrow(BatchProgressText(batch, L"b.bas")), "[2/3] Building b.bas...");
    BatchCount(batch, false);
    BatchDropRest(batch);
    EXPECT_EQ(BatchTakeNext(batch), 0) << "stopped";
    EXPECT_EQ(Narrow(BatchReportText(batch)), "Batch build: 1 succeeded, 1 failed.");
    EXPECT_TRUE(IsBatchBuildSource(L"C:\\x.B64"));
    EXPECT_FALSE(IsBatchBuildSource(L"C:\\x.bas\\y.inc"));
}

TEST(BuildPlan, FlagsOfEachKindOfBuild) {
    const auto flags = [](bool syntaxOnly, bool debug, int profile) {
        return Narrow(BuildFlagsOf({.syntaxOnly = syntaxOnly,
                                    .debug = debug,
                                    .profile = profile,
                                    .buildFlags = L"-q",
                                    .syntaxFlags = L"-S",
                                    .debugFlags = L"--debug"}));
    };
    EXPECT_EQ(flags(false, true, 0), "-q --debug") << "once";
    EXPECT_EQ(flags(false, true, 1), "-q --debug -O2");
    EXPECT_EQ(flags(false, false, 2), "-q -O0");
    EXPECT_EQ(flags(true, false, 1), "-S") << "a profile is none of a syntax check's";
    const std::wstring many = L"-O0 -q " + std::wstring(2000, L'x');
    EXPECT_EQ(BuildFlagsOf({.profile = 1, .buildFlags = L"-q", .projectFlags = many}), L"-q -O2 " + many)
        << "the project's last, whole";
}

TEST(BuildPlan, WhatTheCompilerIsStartedWith) {
    LaunchRequest request = {.compilerName = L"KVXA64",
                             .compiler = L"C:\\tools\\c.exe",
                             .source = L"C:\\src\\x.asm",
                             .output = L"D:\\out\\x.exe",
                             .listingTemplate = L"--asm:{asm}",
                             .listing = L"c:/src/X.ASM",
                             .wantListing = true};
    LaunchPlan plan;
    EXPECT_EQ(PlanLaunch(request, L"C:\\src\\x.pb", &plan), CommandProblem::None);
    EXPECT_EQ(Narrow(plan.commandLine), R"("C:\tools\c.exe" -o "D:\out\x.exe" "C:\src\x.pb")")
        << "the listing would replace the source";
    EXPECT_EQ(Narrow(plan.header),
              "--- Build started: KVXA64 ---\nSource: C:\\src\\x.asm\nOutput: D:\\out\\x.exe\n"
              "CWD: C:\\tools\nCommand: " +
                  Narrow(plan.commandLine) + "\n\n");
    EXPECT_EQ(Narrow(plan.logPath), "C:\\src\\x.buildlog");
    request.style = CommandStyle::Keldor;
    request.source = L"C:\\src\\x.buildlog";
    EXPECT_EQ(PlanLaunch(request, request.source, &plan), CommandProblem::None);
    EXPECT_EQ(Narrow(plan.workingDirectory), "D:\\out");
    EXPECT_EQ(Narrow(plan.logPath), "") << "the log would replace the source";
    EXPECT_EQ(Narrow(LaunchObstacle(request)), "");
    request.output = L"c:/SRC/x.buildlog";
    EXPECT_NE(Narrow(LaunchObstacle(request)).find("would take the place of its source"), std::string::npos);
    request.compiler = L"";
    EXPECT_NE(Narrow(LaunchObstacle(request)).find("missing compiler"), std::string::npos);
    EXPECT_EQ(Narrow(LaunchErrorLine(2, L"Gone.\r\n")), "Build launch failed (Win32 error 2): Gone.\n");
}

// Commands are looked for beside the source after the system has found none.
TEST(BuildPlan, CommandsBesideTheSource) {
    const FileProbe exists = [](const std::wstring& path) {
        return path == L"C:\\a b\\pre.bat" || path == L"C:\\a b\\t.exe" || path == L"C:\\a b\\sub\\t.CMD";
    };
    for (const auto& [command, line] :
         {std::pair{L" pre 1 2", R"("S\cmd.exe" /d /s /c ""C:\a b\pre.bat" 1 2")"},
          {L"\"sub\\t.CMD\" \"x y\"", R"("S\cmd.exe" /d /s /c ""C:\a b\sub\t.CMD" "x y"")"},
          {L"t.exe", R"("C:\a b\t.exe")"},
          {L"other.bat", ""},
          {L"C:\\a b\\t.exe", ""},
          {L"", ""}})
        EXPECT_EQ(Narrow(CommandBeside(command, L"C:\\a b", L"S", exists)), line);
}

TEST(BuildPlan, CleanLeavesTheSourceAndOtherFolders) {
    const auto targets = [](const wchar_t* source, const wchar_t* listing) {
        std::string text;
        for (const std::wstring& path : CleanTargets(source, L"C:\\a.b\\x.exe", listing)) text += Narrow(path) + " ";
        return text;
    };
    EXPECT_EQ(targets(L"C:\\a.b\\x.bas", L"C:\\a.b\\x.asm"),
              "C:\\a.b\\x.exe C:\\a.b\\x.asm C:\\a.b\\x.log C:\\a.b\\x.lst C:\\a.b\\x.err C:\\a.b\\x.buildlog ");
    EXPECT_EQ(targets(L"C:\\a.b\\x.LOG", L"C:\\a.asm"),
              "C:\\a.b\\x.exe C:\\a.b\\x.lst C:\\a.b\\x.err C:\\a.b\\x.buildlog ");
}

TEST(SideLogs, OnlyThoseOfThisBuild) {
    const std::vector<std::wstring> paths = SideLogPaths(L"C:\\a.b\\x.ERR");
    ASSERT_EQ(paths.size(), 1U) << "the source is no log";
    EXPECT_EQ(Narrow(paths[0]), "C:\\a.b\\x.log");
    EXPECT_TRUE(SideLogIsFresh({.bytes = 1, .written = 100}, 100));
    EXPECT_FALSE(SideLogIsFresh({.bytes = 1, .written = 99}, 100)) << "of an earlier build";
    EXPECT_FALSE(SideLogIsFresh({.bytes = 0, .written = 100}, 100));
    EXPECT_FALSE(SideLogIsFresh({.bytes = 16 * 1024 * 1024 + 1, .written = 100}, 100));
    EXPECT_FALSE(SideLogIsFresh({.isFolder = true, .bytes = 1, .written = 100}, 100));
}

TEST(ReadCourse, APipeThatOthersHoldOpenIsLeft) {
    ReadCourse course = {.deadline = 10000};
    EXPECT_EQ(ReadPatience(course, 4000), 6000U) << "while the process runs, until the limit";
    EXPECT_EQ(ReadPieceCame(course, 4096, ReadStep::Go, 4000), ReadStep::Go);
    course.processEnded = true;
    course.endedAt = 5000;
    EXPECT_EQ(ReadPatience(course, 5100), 400U);
    EXPECT_EQ(ReadPatience(course, 9000), 0U);
    course.endedAt = 9900;
    EXPECT_EQ(ReadPatience(course, 9900), 100U) << "the limit comes first";
    EXPECT_EQ(ReadNothingCame(course, 9950), ReadStep::PipeEnd);
    EXPECT_EQ(ReadNothingCame(course, 10000), ReadStep::TimedOut);
    EXPECT_EQ(course.lateBytes, 0U) << "what came before the end is the process's own";
    EXPECT_EQ(ReadPieceCame(course, kReadLateBytes, ReadStep::Go, 9950), ReadStep::Go);
    EXPECT_EQ(ReadPieceCame(course, 1, ReadStep::Stopped, 9950), ReadStep::Stopped);
    EXPECT_EQ(ReadPieceCame(course, 1, ReadStep::Go, 9950), ReadStep::PipeEnd) << "enough for one pipe";
    ReadCourse talks = {.deadline = 10000, .silenceMs = 5000};
    EXPECT_EQ(ReadPieceCame(talks, 1, ReadStep::Go, 9999), ReadStep::Go);
    EXPECT_EQ(ReadPieceCame(talks, 1, ReadStep::Go, 14000), ReadStep::Go) << "what talks is not ended";
    EXPECT_EQ(ReadPieceCame(talks, 0, ReadStep::Go, 19000), ReadStep::TimedOut);
    EXPECT_EQ(ReadMsLeft({}, 1), 0xFFFFFFFEU) << "no limit is no endless wait";
    for (const auto& [bytes, count] :
         {std::pair{"ab\xE2\x82", 2}, {"\xC3\xA9", 2}, {"\xC3", 0}, {"\xE9t\xE9", 3}, {"", 0}})
        EXPECT_EQ(ReadDecodable(bytes, ""), static_cast<std::size_t>(count)) << bytes;
    // Code page 932, in which the second byte may look like a first one or like a letter.
    for (const auto& [bytes, count] :
         {std::pair{"a\x83", 1}, {"a\x83\x5C", 3}, {"\x83\x83\x83", 2}, {"\xE0\x83\x9F\xFC\xFC", 4}, {"\xB1\x83", 1}})
        EXPECT_EQ(ReadDecodable(bytes, "\x81\x82\x83\x9F\xE0\xFC"), static_cast<std::size_t>(count)) << bytes;
    EXPECT_TRUE(ReadLeavesRunning(BuildStage::PostBuild, ReadEndOf(ReadStep::TimedOut)));
    EXPECT_FALSE(ReadLeavesRunning(BuildStage::Compile, ReadEndOf(ReadStep::TimedOut)));
    EXPECT_FALSE(ReadLeavesRunning(BuildStage::PreBuild, ReadEndOf(ReadStep::Stopped)));
}

// A disk in memory. The stamp of a file is the length of its content.
struct MemoryDisk {
    std::map<std::wstring, std::string> files;
    bool readOnly = false;  // no copy can be made

    StageDisk Disk() {
        return {.exists = [this](const std::wstring& path) { return files.contains(path); },
                .sameFile = [](const std::wstring& a, const std::wstring& b) { return a == b; },
                .copyNew = [this](const std::wstring& from, const std::wstring& to) -> std::uint32_t {
                    if (readOnly) return 5;
                    return files.try_emplace(to, files.at(from)).second ? 0 : kErrorFileThere;
                },
                .move =
                    [this](const std::wstring& from, const std::wstring& to) {
                        if (!files.contains(from) || !files.try_emplace(to, files.at(from)).second) return false;
                        files.erase(from);
                        return true;
                    },
                .stamp =
                    [this](const std::wstring& path, FileStamp* stamp) {
                        if (!files.contains(path)) return false;
                        stamp->length = files.at(path).size();
                        return true;
                    },
                .remove = [this](const std::wstring& path) { return files.erase(path) > 0; }};
    }
    std::string All() const {
        std::string text;
        for (const auto& [path, content] : files) text += Narrow(path) + "=" + content + " ";
        return text;
    }
};

// The disk of which All() gives this text.
MemoryDisk DiskOf(const std::string& text) {
    MemoryDisk disk;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        const std::size_t sign = word.find('=');
        disk.files[std::wstring(word.begin(), word.begin() + static_cast<std::ptrdiff_t>(sign))] =
            word.substr(sign + 1);
    }
    return disk;
}

TEST(StagingRules, NothingOfTheUsersIsLost) {
    using enum CommandStyle;
    struct Case {
        const char *name, *before;
        const wchar_t* source;
        CommandStyle style;
        const char *compiled, *during;
    };
    const Case cases[] = {
        {"own copy", "x.kxa=s ", L"x.kxa", Kvx, "x.pb", "x.kxa=s x.pb=s "},
        {"taken", "x.bas=mine x.ka32=s ", L"x.ka32", Kvx, "x.kvx1.bas", "x.bas=mine x.ka32=s x.kvx1.bas=s "},
        {"in place", "x.c64=s ", L"x.c64", Kvx, "x.c64", "x.c64=s "},
        {"moved aside", "x.bas=mine x.kb=s ", L"x.kb", Keldor, "x.bas", "x.bas=s x.bas.kvx-aside1=mine x.kb=s "},
        {"the source has that name", "x.bas=s ", L"x.bas", Keldor, "x.bas", "x.bas=s "},
        {"an aside name is taken", "x.bas=mine x.bas.kvx-aside1=old x.kb=s ", L"x.kb", Keldor, "x.bas",
         "x.bas=s x.bas.kvx-aside1=old x.bas.kvx-aside2=mine x.kb=s "},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        MemoryDisk disk = DiskOf(test.before);
        StagedSource staged;
        std::uint32_t error = 1;
        EXPECT_TRUE(StageOnDisk(disk.Disk(), test.source, L"x.exe", test.style, &staged, &error));
        EXPECT_EQ(Narrow(staged.path), test.compiled);
        EXPECT_EQ(disk.All(), test.during);
        EXPECT_EQ(Narrow(UnstageOnDisk(disk.Disk(), &staged)), "");
        EXPECT_EQ(disk.All(), test.before);
        UnstageOnDisk(disk.Disk(), &staged);
        EXPECT_EQ(disk.All(), test.before) << "the second time there is nothing to do";
    }
}

TEST(StagingRules, OnADiskThatCannotBeWritten) {
    MemoryDisk disk = DiskOf("x.bas=mine x.kxa=s ");
    disk.readOnly = true;
    StagedSource staged;
    std::uint32_t error = 0;
    EXPECT_TRUE(StageOnDisk(disk.Disk(), L"x.kxa", L"x.exe", CommandStyle::Kvx, &staged, &error));
    EXPECT_EQ(Narrow(staged.path), "x.kxa") << "the compiler gets the source itself";
    EXPECT_FALSE(StageOnDisk(disk.Disk(), L"x.kxa", L"x.exe", CommandStyle::Keldor, &staged, &error));
    EXPECT_EQ(error, 5U);
    EXPECT_EQ(disk.All(), "x.bas=mine x.kxa=s ");
    // When the user has written into the copy, it stays, and the notice says where the file is that was moved aside.
    disk.readOnly = false;
    ASSERT_TRUE(StageOnDisk(disk.Disk(), L"x.kxa", L"x.exe", CommandStyle::Keldor, &staged, &error));
    disk.files[L"x.bas"] = "changed";
    const std::string notice = Narrow(UnstageOnDisk(disk.Disk(), &staged));
    EXPECT_NE(notice.find("is kept: x.bas"), std::string::npos) << notice;
    EXPECT_NE(notice.find("is kept as x.bas.kvx-aside1"), std::string::npos) << notice;
    EXPECT_EQ(disk.All(), "x.bas=changed x.bas.kvx-aside1=mine x.kxa=s ");
    ASSERT_TRUE(StageOnDisk(disk.Disk(), L"x.kxa", L"x.exe", CommandStyle::Keldor, &staged, &error));
    EXPECT_EQ(Narrow(staged.leftover), "x.bas.kvx-aside1") << "and the next build finds it";
}

// After the editor was ended during a build.
TEST(StagingRules, WhatABuildLeftIsPutRight) {
    struct Case {
        const char *name, *before;
        StageNote note;
        const char *after, *says;
    };
    const StageNote aside = {.source = L"x.kb", .target = L"x.bas", .aside = L"x.bas.a", .stamp = {.length = 1}};
    StageNote early = aside, plain = aside;
    early.stamp = {};
    plain.aside.clear();
    const Case cases[] = {
        {"the copy goes and the file comes back", "x.bas=s x.bas.a=mine x.kb=s ", aside, "x.bas=mine x.kb=s ",
         "put back"},
        {"ended before the copy", "x.bas.a=mine x.kb=s ", early, "x.bas=mine x.kb=s ", "put back"},
        {"ended before its stamp", "x.bas=s x.bas.a=mine x.kb=s ", early, "x.bas=mine x.kb=s ", "put back"},
        {"ended before the move", "x.bas=mine x.kb=s ", early, "x.bas=mine x.kb=s ", ""},
        {"written to since", "x.bas=new x.bas.a=mine x.kb=s ", aside, "x.bas=new x.bas.a=mine x.kb=s ",
         "is in x.bas.a"},
        {"a copy alone", "x.bas=s x.kb=s ", plain, "x.kb=s ", ""},
        {"a copy that was written to", "x.bas=new x.kb=s ", plain, "x.bas=new x.kb=s ", ""},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        MemoryDisk disk = DiskOf(test.before);
        const StageNote note = StageNoteOfText(StageNoteText(test.note));
        const std::string line = Narrow(RecoverOnDisk(disk.Disk(), note));
        EXPECT_EQ(disk.All(), test.after);
        EXPECT_TRUE(test.says[0] == '\0' ? line.empty() : line.find(test.says) != std::string::npos) << line;
    }
    EXPECT_TRUE(StageNoteOfText("1\n2\nx.kb\nx.bas").target.empty()) << "cut off";
}

TEST(Products, OnlyWhatABuildMadeIsKnown) {
    std::vector<Product> products;
    ProductNote(products, L"C:\\x.asm", {.written = 7, .length = 3});
    ProductNote(products, L"C:\\\xE9 y.log", {.written = 8, .length = 4});
    ProductNote(products, L"c:/X.ASM", {.written = 9, .length = 3});
    const std::vector<Product> read = ProductsOfText("nonsense\n1 x\n" + ProductsText(products));
    EXPECT_EQ(read.size(), 2U) << "one note for each file";
    EXPECT_TRUE(ProductIsKnown(read, L"C:\\x.asm", {.written = 9, .length = 3}));
    EXPECT_TRUE(ProductIsKnown(read, L"C:\\\xE9 y.log", {.written = 8, .length = 4}));
    EXPECT_FALSE(ProductIsKnown(read, L"C:\\x.asm", {.written = 7, .length = 3})) << "written to by the user";
    for (std::size_t i = 0; i < kMostProducts; ++i) ProductNote(products, L"n" + std::to_wstring(i), {});
    EXPECT_EQ(products.size(), kMostProducts);
    EXPECT_EQ(Narrow(products.back().path), "n" + std::to_string(kMostProducts - 1));
}

TEST(InputQueue, TheProgramReadsLateOrNever) {
    InputQueue queue;
    std::string read;
    bool closed = false;
    std::uint64_t now = 0;
    InputWrite result = InputWrite::Pending;
    std::string_view going;
    const InputPipe pipe = {.clock = [&] { return now; },
                            .write =
                                [&](std::string_view bytes) {
                                    going = bytes;
                                    return true;
                                },
                            .result =
                                [&](std::size_t* bytes) {
                                    if (result == InputWrite::Done) read += going;
                                    *bytes = going.size();
                                    return std::exchange(result, InputWrite::Pending);
                                },
                            .close = [&] { closed = true; }};
    EXPECT_TRUE(InputAdd(queue, "one\n"));
    InputPump(queue, pipe);
    EXPECT_TRUE(InputAdd(queue, "two\n"));
    queue.ends = true;
    InputPump(queue, pipe);
    EXPECT_FALSE(InputIsDoubtful(queue, 1999));
    EXPECT_TRUE(InputIsDoubtful(queue, 2000));
    EXPECT_FALSE(InputIsDoubtful(queue, 9999)) << "said once";
    for (int i = 0; i < 2; ++i) {
        EXPECT_FALSE(closed) << "before all is read";
        result = InputWrite::Done;
        InputPump(queue, pipe);
    }
    EXPECT_EQ(read, "one\ntwo\n");
    EXPECT_TRUE(closed);
    EXPECT_FALSE(InputAdd(queue, "late")) << "after the end";
}

// Files by name, with their time as the stamp.
TEST(Products, WhatTheUserHasIsCopiedOrLeftAlone) {
    std::map<std::wstring, std::uint64_t> files = {{L"C:\\x.lst", 5}, {L"C:\\x.asm", 6}, {L"C:\\x.log", 7}};
    const ProductDisk disk = {.stamp =
                                  [&](const std::wstring& path, FileStamp* stamp) {
                                      if (!files.contains(path)) return false;
                                      *stamp = {.written = files[path], .length = 1};
                                      return true;
                                  },
                              .isBuildLog = [](const std::wstring&) { return false; },
                              .copyNew =
                                  [&](const std::wstring& from, const std::wstring& to) {
                                      return files.insert({to, files[from]}).second;
                                  },
                              .remove = [&](const std::wstring& path) { files.erase(path); },
                              .isOpen = [](const std::wstring& path) { return path.ends_with(L".err"); }};
    std::vector<Product> known = {{.path = L"C:\\x.log", .stamp = {.written = 7, .length = 1}}};
    std::vector<WatchedFile> watched;
    const ProductGuard guard = ProductsGuard({L"C:\\x.bas", L"C:\\x.exe", L"C:\\x.asm"}, known, disk, &watched);
    EXPECT_TRUE(guard.log && !guard.listing && guard.lines.size() == 1);
    EXPECT_TRUE(files.contains(L"C:\\x.lst.kvx-kept1") && !files.contains(L"C:\\x.log.kvx-kept1"));
    files[L"C:\\x.exe"] = 9;
    files[L"C:\\x.err"] = 9;
    files[L"C:\\x.lst"] = 9;
    bool changed = false;
    EXPECT_EQ(ProductsTakeUp(watched, known, disk, &changed).size(), 1U) << "the user's x.lst was overwritten";
    EXPECT_TRUE(changed && ProductIsMadeHere(known, L"C:\\x.exe", disk));
    EXPECT_FALSE(ProductIsMadeHere(known, L"C:\\x.err", disk)) << "saved by the user meanwhile";
    EXPECT_TRUE(files.contains(L"C:\\x.lst.kvx-kept1"));
}

// The command line of the program comes out as it went in, whatever characters it has.
TEST(HeldConsole, LeavesTheCommandLineOfTheProgramAsItIs) {
    for (const wchar_t* program : {L"\"C:\\a b & c\\100%TEMP%^!\\gr\u00FC\u00DFe.exe\"",
                                   L"\"C:\\x.exe\" a \"b c\"  %PATH% ^& \"\"", L"C:\\x.exe"}) {
        for (const wchar_t* editor : {L"\"C:\\Program Files\\KVX\\KVX-Editor.exe\" ", L"KVX-Editor.exe  "}) {
            const auto held =
                HeldProgramOf(editor + HeldArguments({.commandLine = program, .farewell = L"Ended {1}."}));
            ASSERT_TRUE(held) << program;
            EXPECT_EQ(held->commandLine, program);
            EXPECT_EQ(FarewellText(held->farewell, 3), L"Ended 3.");
            EXPECT_EQ(FarewellText(held->farewell, 0xC0000005), L"Ended 0xC0000005.");
        }
    }
    for (const wchar_t* usual : {L"", L"KVX-Editor.exe", L"\"C:\\a b.exe\" --open --hold-console"})
        EXPECT_FALSE(HeldProgramOf(usual)) << usual;
}

}  // namespace
