#include "compile/build_sequence.h"

#include "base/count_text.h"
#include "base/texts.h"
#include "output/line_colours.h"

#include <cmath>

namespace {

const wchar_t* CommandLabel(BuildStage stage) {
    return stage == BuildStage::PreBuild ? Text(L"Pre-build") : Text(L"Post-build");
}

std::wstring Labelled(BuildStage stage, std::wstring_view text) {
    return L"[" + std::wstring(CommandLabel(stage)) + L"] " + std::wstring(text) + L"\r\n";
}

// Seconds with one decimal.
std::wstring SecondsText(double seconds) {
    const long long tenths = std::llround(seconds * 10);
    return std::to_wstring(tenths / 10) + L"." + std::to_wstring(tenths % 10) + L" s";
}

BuildStep StepToCommand(BuildStage stage, std::wstring_view command) {
    return {.next = stage == BuildStage::PreBuild ? BuildNext::PreBuild : BuildNext::PostBuild,
            .lines = {{Labelled(stage, command), kLineTeal}}};
}

BuildStep StepToCompiler(const BuildOrder& order) {
    return {.next = BuildNext::Compile,
            .status = order.syntaxOnly ? Text(L"Syntax check...")
                      : order.debug    ? Text(L"Debug build...")
                                       : Text(L"Building...")};
}

// Lines about the end of a pre- or post-build command; none when it succeeded or was stopped.
std::vector<BuildLine> CommandEndLines(const StageResult& result) {
    if (result.end == BuildEnd::TimedOut)
        return {{Labelled(result.stage, TextWith(L"Still running after {1} seconds; going on without its output.",
                                                 {std::to_wstring(kCommandLimitMs / 1000)})),
                 kLineTeal}};
    if (result.end == BuildEnd::Ended && result.exitCode != 0)
        return {{Labelled(result.stage, TextWith(L"Exit code {1}.", {std::to_wstring(result.exitCode)})), kLineTeal}};
    return {};
}

BuildStep StepOfStop(BuildRun& run) {
    run.success = false;
    run.finalStatus = Text(L"Build stopped");
    return {.next = BuildNext::End, .lines = {{Text(L"--- Build stopped ---\r\n"), kLineRed}}};
}

BuildStep AfterCommand(BuildRun& run, const StageResult& result) {
    if (result.end == BuildEnd::Stopped) return StepOfStop(run);
    BuildStep step =
        result.stage == BuildStage::PreBuild ? StepToCompiler(run.order) : BuildStep{.next = BuildNext::End};
    step.lines = CommandEndLines(result);
    return step;
}

BuildStep AfterCompiler(BuildRun& run, const StageResult& result, int printedLines) {
    run.compiler = result;
    run.success = result.end == BuildEnd::Ended && result.exitCode == 0;
    BuildStep step = result.end == BuildEnd::Stopped
                         ? StepOfStop(run)
                         : BuildStep{.next = printedLines == 0 ? BuildNext::SideLogs : BuildNext::Report};
    step.verdict = run.success ? DocumentVerdict::Succeeded : DocumentVerdict::Failed;
    return step;
}

std::wstring VerdictText(const BuildRun& run, const BuildPrinted& printed) {
    const std::wstring errors =
        CountText(static_cast<std::size_t>(printed.errors), English(L"{1} error"), English(L"{1} errors"));
    const std::wstring warnings =
        CountText(static_cast<std::size_t>(printed.warnings), English(L"{1} warning"), English(L"{1} warnings"));
    const std::wstring seconds = SecondsText(run.compiler.seconds), code = std::to_wstring(run.compiler.exitCode);
    if (run.success)
        return TextWith(
            run.order.syntaxOnly ? L"Syntax check succeeded: {1}, {2}, {3}" : L"Build succeeded: {1}, {2}, {3}",
            {errors, warnings, seconds});
    return TextWith(run.order.syntaxOnly ? L"Syntax check failed (exit code {4}): {1}, {2}, {3}"
                                         : L"Build failed (exit code {4}): {1}, {2}, {3}",
                    {errors, warnings, seconds, code});
}

}  // namespace

BuildRefusal BuildRefusalOf(const BuildOrder& order, const BuildSituation& situation) {
    const bool ownBatch = order.after == AfterBuild::NextOfBatch;
    if (situation.saving) return BuildRefusal::Saving;
    if (situation.programRuns) return BuildRefusal::ProgramRuns;
    if (situation.stageRuns || (situation.batchRuns && !ownBatch)) return BuildRefusal::Running;
    return situation.programDebugged ? BuildRefusal::ProgramDebugged : BuildRefusal::None;
}

BuildRefusal BuildRefusalOfCommand(const BuildSituation& situation) {
    if (situation.programRuns) return BuildRefusal::ProgramRuns;
    if (situation.stageRuns || situation.batchRuns) return BuildRefusal::StillRunning;
    return situation.programDebugged ? BuildRefusal::ProgramDebugged : BuildRefusal::None;
}

bool BuildNeedsSave(bool modified, bool hasFile, bool fileExists) { return modified || !hasFile || !fileExists; }

BuildLine SavedLine(std::wstring_view path, bool saved) {
    if (saved) return {TextWith(L"Saved: {1}\r\n", {path}), kLineTeal};
    return {TextWith(L"Not saved, so the build takes what is on the disk: {1}\r\n", {path}), kLineRed};
}

BuildStep BuildRefused(BuildRefusal refusal, std::wstring_view name, std::wstring_view path) {
    switch (refusal) {
        case BuildRefusal::None:
        case BuildRefusal::Saving:
        case BuildRefusal::Running: break;
        case BuildRefusal::ProgramDebugged:
            return {
                .lines =
                    {{Text(L"Not built: the program is being debugged. End the debug session first (Shift+F5).\r\n"),
                      kLineRed}},
                .status = Text(L"End the debug session first (Shift+F5)")};
        case BuildRefusal::ProgramRuns:
            return {.status = Text(L"The program still runs in the output pane: stop it first (Ctrl+Break).")};
        case BuildRefusal::StillRunning: return {.status = Text(kBuildBusy)};
        case BuildRefusal::NoDocument:
            return {.lines = {{Text(L"Build cancelled: no active source tab is selected.\r\n"), kLineRed}},
                    .status = Text(L"Build cancelled"),
                    .clearsPane = true};
        case BuildRefusal::NotSaved:
            return {.lines = {{Text(L"Build cancelled: save the active tab to a source file first.\r\n"), kLineRed}},
                    .status = Text(L"Build cancelled")};
        case BuildRefusal::NoCompiler:
            return {.lines = {{TextWith(L"Compiler not found: {1}\r\nConfigured path: {2}\r\nOpen Project > Settings "
                                        L"and run Auto-Detect or browse to the compiler.\r\n",
                                        {name, (path.empty() ? Text(L"(empty)") : std::wstring(path))}),
                               kLineRed}},
                    .status = Text(L"Compiler not found")};
        case BuildRefusal::NoMainSource:
            return {
                .lines = {{TextWith(
                               path.empty()
                                   ? L"Build cancelled: the project {1} names no main source (Project > Set as Main "
                                     L"Source).\r\n"
                                   : L"Build cancelled: the project {1} has no file {2} (Project > Set as Main "
                                     L"Source).\r\n",
                               {name, path}),
                           kLineRed}},
                .status = Text(L"Build cancelled"),
                .clearsPane = true};
        case BuildRefusal::ProgramInUse:
            return {.lines = {{TextWith(L"Not built: {1} is still running. End it first.\r\n", {name}), kLineRed}},
                    .status = TextWith(L"Not built: {1} is still running", {name})};
    }
    return {};
}

BuildStep BuildFirst(const BuildRun& run, std::wstring_view preBuildCommand) {
    return preBuildCommand.empty() ? StepToCompiler(run.order) : StepToCommand(BuildStage::PreBuild, preBuildCommand);
}

BuildStep BuildStarted(BuildRun& run, BuildStage stage) {
    run.begun = true;
    return {.next = BuildNext::Wait, .status = stage == BuildStage::PreBuild ? Text(L"Pre-build...") : L""};
}

BuildStep BuildNotStarted(const BuildRun& run, BuildStage stage, std::wstring_view reason) {
    if (stage == BuildStage::Compile)
        return {.next = run.begun ? BuildNext::End : BuildNext::Refused, .status = Text(L"Build launch failed")};
    BuildStep step = stage == BuildStage::PreBuild ? StepToCompiler(run.order) : BuildStep{.next = BuildNext::End};
    step.lines = {{Labelled(stage, Text(L"Failed to run.")), kLineRed}};
    if (!reason.empty()) step.lines.push_back({Labelled(stage, reason), kLineRed});
    return step;
}

BuildStep BuildAfterStage(BuildRun& run, const StageResult& result, const BuildPrinted& printed) {
    return result.stage == BuildStage::Compile ? AfterCompiler(run, result, printed.lines) : AfterCommand(run, result);
}

bool ProgramWasWritten(const FileStamp* before, const FileStamp* after, std::uint64_t startTime) {
    // The time counts beside the stamps, because some file systems keep it in steps of two seconds.
    return after != nullptr && (before == nullptr || *before != *after || after->written >= startTime);
}

std::wstring NoProgramText(std::wstring_view program, bool exists) {
    return TextWith(exists ? L"No program was written: {1} is of an earlier build."
                           : L"No program was written: {1} does not exist.",
                    {program});
}

BuildStep BuildReport(BuildRun& run, const BuildPrinted& printed, std::wstring_view postBuildCommand) {
    const bool built = run.success && !run.order.syntaxOnly;
    run.finalStatus = VerdictText(run, printed);
    BuildStep step = {.next = BuildNext::End, .programBuilt = built};
    if (run.compiler.end == BuildEnd::TimedOut)
        step.lines.push_back({TextWith(L"The compiler had printed nothing for {1} minutes and was ended.\r\n",
                                       {std::to_wstring(kCompilerLimitMs / 60000)}),
                              kLineRed});
    step.lines.push_back({L"--- " + run.finalStatus + L" ---\r\n", run.success ? 0 : kLineRed});
    constexpr int kLinesInSight = 4;  // of the compiler, above the verdict, also in a low pane
    if (!run.success && printed.lines > kLinesInSight && !printed.firstError.empty())
        step.lines.push_back({printed.firstError + L"\r\n", kLineRed});
    if (built && !run.unwritten.empty()) {
        const bool wanted = run.order.debug || run.order.after == AfterBuild::RunProgram;
        step.lines.push_back({run.unwritten + L"\r\n", wanted ? kLineRed : kLineTeal});
        if (wanted) run.finalStatus = run.unwritten;
    }
    if (!built || postBuildCommand.empty()) return step;
    step.next = BuildNext::PostBuild;
    step.lines.push_back(StepToCommand(BuildStage::PostBuild, postBuildCommand).lines.front());
    return step;
}

AfterBuild BuildFollowUp(const BuildRun& run) {
    const bool runs = run.success && run.unwritten.empty();
    return run.order.after == AfterBuild::RunProgram && !runs ? AfterBuild::Nothing : run.order.after;
}

std::wstring StageProgressText(std::uint64_t elapsed) {
    constexpr std::wstring_view kSigns = L"|/-\\";
    const std::uint64_t seconds = elapsed / 1000;
    const std::wstring rest = std::to_wstring(seconds % 60);
    return std::wstring(1, kSigns[elapsed / kProgressIntervalMs % kSigns.size()]) + L" " +
           std::to_wstring(seconds / 60) + (rest.size() < 2 ? L":0" : L":") + rest;
}

bool BuildFollow(BuildRun& run, BuildStep step, const BuildHost& host, std::wstring_view postBuildCommand) {
    const auto startStage = [&](BuildStage stage) {
        std::wstring reason;
        return host.start(stage, &reason) ? BuildStarted(run, stage) : BuildNotStarted(run, stage, reason);
    };
    for (;;) {
        host.show(step);
        switch (step.next) {
            case BuildNext::Refused: return false;
            case BuildNext::Wait: return true;
            case BuildNext::PreBuild: step = startStage(BuildStage::PreBuild); break;
            case BuildNext::Compile: step = startStage(BuildStage::Compile); break;
            case BuildNext::PostBuild: step = startStage(BuildStage::PostBuild); break;
            case BuildNext::SideLogs:
                host.showSideLogs();
                step = BuildReport(run, host.printed(), postBuildCommand);
                break;
            case BuildNext::Report: step = BuildReport(run, host.printed(), postBuildCommand); break;
            case BuildNext::End: host.end(); return true;
        }
    }
}
