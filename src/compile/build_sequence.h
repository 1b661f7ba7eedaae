// The course of one build, decided step by step: what runs next, what is said, which mark the document gets, what follows.
// The runner does what a step says and asks for the next one. Pure.
#pragma once

#include "compile/build_values.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// --- Whether a build may start

// What stands in the way of a build, in the order in which it is looked for.
enum class BuildRefusal : std::uint8_t {
    None,
    Saving,           // the save of an earlier start is asking the user something; nothing is said
    Running,          // a build runs, or a batch; nothing is said
    ProgramDebugged,  // the program's file is in use and cannot be written
    StillRunning,     // the post-build command of the build that has just ended
    NoDocument,
    NotSaved,
    NoCompiler,
};

struct BuildSituation {
    bool saving = false;
    bool stageRuns = false;
    bool batchRuns = false;
    bool programDebugged = false;
};
// Of the first four. A batch is in the way of every build but its own.
BuildRefusal BuildRefusalOf(const BuildOrder& order, const BuildSituation& situation);
// The same for a command of the user, who is told why.
BuildRefusal BuildRefusalOfCommand(const BuildSituation& situation);
inline constexpr const wchar_t* kBuildBusy = L"Build already in progress.";  // status bar, for StillRunning

// A document that nothing has changed is not written before a build: that would undo what another program did to the file.
bool BuildNeedsSave(bool modified, bool hasFile, bool fileExists);

// --- Steps

struct BuildLine {
    std::wstring text;  // for the output pane, with its line break
    std::uint32_t colour = 0;
};

enum class BuildNext : std::uint8_t {
    Refused,    // no build came of it
    PreBuild,   // start the command; then BuildStarted or BuildNotStarted
    Compile,    // the same for the compiler
    PostBuild,  // the same for the command
    Wait,       // for the stage's end; then BuildAfterStage
    SideLogs,   // show what the compiler wrote into files; then BuildReport
    Report,     // BuildReport
    End,        // all is over; then BuildFollowUp
};

enum class DocumentVerdict : std::uint8_t { None, Failed, Succeeded };  // which mark the source's tab gets

struct BuildStep {
    BuildNext next = BuildNext::Refused;
    std::vector<BuildLine> lines;
    std::wstring status;  // for the status bar; empty: it stays as it is
    DocumentVerdict verdict = DocumentVerdict::None;
    bool clearsPane = false;    // before the lines
    bool programBuilt = false;  // news for whoever shows what was built
};

// What is said of a refusal. `compiler` and `path` are those of NoCompiler, else they are not read.
BuildStep BuildRefused(BuildRefusal refusal, std::wstring_view compiler = {}, std::wstring_view path = {});

// A build under way.
struct BuildRun {
    BuildOrder order;
    bool begun = false;         // one of its processes has run
    bool success = false;       // of the compiler
    std::wstring finalStatus;   // for the status bar at the end
    StageResult compiler = {};  // how it ended
};

// What the output of the compiler came to.
struct BuildPrinted {
    int lines = 0;  // not blank
    int errors = 0;
    int warnings = 0;
};

// An empty command is none.
BuildStep BuildFirst(const BuildRun& run, std::wstring_view preBuildCommand);
BuildStep BuildStarted(BuildRun& run, BuildStage stage);
BuildStep BuildNotStarted(const BuildRun& run, BuildStage stage);
BuildStep BuildAfterStage(BuildRun& run, const StageResult& result, const BuildPrinted& printed);
BuildStep BuildReport(BuildRun& run, const BuildPrinted& printed, std::wstring_view postBuildCommand);

// What is done when all is over; a program that was not built is not run.
AfterBuild BuildFollowUp(const BuildRun& run);
