// Decides the steps of one build: the stage that runs next, the lines and status texts, the mark of the document, the
// action afterwards. The runner (build_runner.h) carries out a step and asks for the next one. Pure.
#pragma once

#include "base/texts.h"
#include "compile/build_values.h"
#include "compile/file_stamp.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// --- Whether a build may start

// The reasons why a build is refused.
enum class BuildRefusal : std::uint8_t {
    None,
    Saving,           // saving for an earlier start has opened a dialog; no message
    Running,          // a build or a batch runs; no message
    ProgramDebugged,  // a debugger runs the program, so its file cannot be written
    ProgramRuns,      // a program runs in the output pane
    StillRunning,     // as Running, for a menu command: the user is told
    NoDocument,
    NotSaved,
    NoCompiler,
    NoMainSource,  // of the project
    ProgramInUse,  // a process runs the program that the build would write
};

struct BuildSituation {
    bool saving = false;
    bool stageRuns = false;
    bool batchRuns = false;
    bool programRuns = false;
    bool programDebugged = false;
};
// Returns None, Saving, ProgramRuns, Running or ProgramDebugged. A batch refuses every build but its own.
BuildRefusal BuildRefusalOf(const BuildOrder& order, const BuildSituation& situation);
// The same for a menu command: None, ProgramRuns, StillRunning or ProgramDebugged.
BuildRefusal BuildRefusalOfCommand(const BuildSituation& situation);
inline constexpr const wchar_t* kBuildBusy =
    English(L"Build already in progress.");  // status bar text for StillRunning

// An unmodified document whose file exists is not saved before a build, because that would overwrite the changes of
// another program.
bool BuildNeedsSave(bool modified, bool hasFile, bool fileExists);

// --- Steps

struct BuildLine {
    std::wstring text;  // for the output pane, with its line break
    std::uint32_t colour = 0;
};

// The line about a document that is saved because another one is built.
BuildLine SavedLine(std::wstring_view path, bool saved);

enum class BuildNext : std::uint8_t {
    Refused,    // the build was not started
    PreBuild,   // start the command, then call BuildStarted or BuildNotStarted
    Compile,    // the same with the compiler
    PostBuild,  // the same with the command
    Wait,       // wait for the end of the stage, then call BuildAfterStage
    SideLogs,   // show the log files of the compiler, then call BuildReport
    Report,     // call BuildReport
    End,        // the build is over; call BuildFollowUp
};

enum class DocumentVerdict : std::uint8_t { None, Failed, Succeeded };  // which mark the source's tab gets

struct BuildStep {
    BuildNext next = BuildNext::Refused;
    std::vector<BuildLine> lines;
    std::wstring status;  // for the status bar; empty: no change
    DocumentVerdict verdict = DocumentVerdict::None;
    bool clearsPane = false;    // the pane is cleared before the lines are added
    bool programBuilt = false;  // g_events.programBuilt is to be called
};

// The message for a refusal. `name` and `path` are the compiler's for NoCompiler, the project's and its main source's (empty:
// it names none) for NoMainSource; `name` is the program's file for ProgramInUse. They are unused otherwise.
BuildStep BuildRefused(BuildRefusal refusal, std::wstring_view name = {}, std::wstring_view path = {});

// The state of a running build.
struct BuildRun {
    BuildOrder order;
    bool begun = false;         // one of its processes was started
    bool success = false;       // the compiler succeeded
    std::wstring finalStatus;   // for the status bar at the end
    StageResult compiler = {};  // how the compiler ended
    std::wstring unwritten;     // what NoProgramText says when the compiler wrote no program; else empty
};

// A program of an earlier build must not be taken for this build's. `before` and `after`: the program's file before the
// compiler was started (at `startTime`) and after it had ended; null: there was none.
bool ProgramWasWritten(const FileStamp* before, const FileStamp* after, std::uint64_t startTime);
std::wstring NoProgramText(std::wstring_view program, bool exists);

// Counts of the compiler's output.
struct BuildPrinted {
    int lines = 0;  // lines that are not empty
    int errors = 0;
    int warnings = 0;
    std::wstring firstError = {};  // where it is (FirstErrorText); empty: not known
};

// The first step. There is no pre-build stage when the command is empty.
BuildStep BuildFirst(const BuildRun& run, std::wstring_view preBuildCommand);
BuildStep BuildStarted(BuildRun& run, BuildStage stage);
// `reason` is shown for a pre- or post-build command; the compiler's is shown already.
BuildStep BuildNotStarted(const BuildRun& run, BuildStage stage, std::wstring_view reason);
BuildStep BuildAfterStage(BuildRun& run, const StageResult& result, const BuildPrinted& printed);
BuildStep BuildReport(BuildRun& run, const BuildPrinted& printed, std::wstring_view postBuildCommand);

// The action after the build. A program that was not built is not run.
AfterBuild BuildFollowUp(const BuildRun& run);

// The time of a stage and a moving sign ("/ 0:07"), `elapsed` milliseconds after its start.
inline constexpr std::uint32_t kProgressIntervalMs = 250;
std::wstring StageProgressText(std::uint64_t elapsed);

// --- Carrying out the steps

struct BuildHost {
    std::function<void(const BuildStep& step)> show;  // its lines, status text, mark of the document and news
    // Starts a stage. Returns false with the reason for the user.
    std::function<bool(BuildStage stage, std::wstring* reason)> start;
    std::function<void()> showSideLogs;
    std::function<BuildPrinted()> printed;
    std::function<void()> end;  // the build is over
};
// Carries out steps until a stage runs or the build is over. Returns true when the build has begun.
bool BuildFollow(BuildRun& run, BuildStep step, const BuildHost& host, std::wstring_view postBuildCommand);
