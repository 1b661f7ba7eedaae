#include "compile/build_runner.h"

#include "base/events.h"
#include "base/path.h"
#include "base/texts.h"
#include "compile/build.h"
#include "compile/build_plan.h"
#include "compile/build_source.h"
#include "compile/build_stage.h"
#include "compile/child_process.h"
#include "compile/compile_state.h"
#include "compile/products.h"
#include "compile/program_run.h"
#include "compile/running_programs.h"
#include "compile/side_logs.h"
#include "compile/staging.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "files/file_io.h"
#include "files/libraries.h"
#include "files/share_probe.h"
#include "files/start_path.h"
#include "output/last_build.h"
#include "output/line_colours.h"
#include "output/output_feed.h"
#include "output/output_pane.h"
#include "output/output_state.h"
#include "settings/compiler_table.h"
#include "settings/settings_state.h"
#include "ui/message.h"
#include "ui/panes.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace {

struct BuildRunner {
    BuildRun run;
    std::uint32_t compilerId = 0;
    std::wstring source;
    std::wstring output;
    std::optional<BuildProject> project;     // whose main source it is, as it was at the start
    std::wstring which;                      // behind the status texts of results while a project is open; else empty
    std::optional<FileStamp> programBefore;  // of `output` before the compiler was started
    bool saving = false;                     // saving the source, or a question, has opened a dialog
};
BuildRunner g_runner;

// Documents whose file is read-only and which the user did not want to save for a build, with the text of now.
std::vector<DocumentId> g_leftUnsaved;

bool SaveBeforeBuild(int tab) {
    g_runner.saving = true;
    const bool saved = FileSave(tab) != 0;
    g_runner.saving = false;
    return saved;
}

bool IsReadOnlyFile(const wchar_t* path) {
    const DWORD attributes = PathAnswers(path) ? GetFileAttributesW(PathExtended(path).c_str()) : 0;
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

// Asks once about a file that is read-only, and again when the text has changed since.
bool SaveOtherDocument(int tab) {
    const DocumentId document = TabAt(tab).id;
    const std::wstring path = TabAt(tab).path;
    const bool readOnly = IsReadOnlyFile(path.c_str());
    if (readOnly && std::ranges::find(g_leftUnsaved, document) != g_leftUnsaved.end()) return false;
    const bool saved = SaveBeforeBuild(tab);
    if (!saved && readOnly) g_leftUnsaved.push_back(document);
    return saved;
}

// Saves the other modified documents that have a file, because the source may include them. Returns a line for each.
std::vector<BuildLine> SaveOtherDocuments() {
    std::vector<BuildLine> lines;
    if (g_settings.saveAllBeforeBuild == 0) return lines;
    for (const DocumentId document : DocumentsToSave(DocumentRowEntries(), true)) {
        const int tab = TabBarFindDocument(document);  // a box about the one before may have closed or saved this one
        if (tab < 0 || !TabAt(tab).hasFile || !TabAt(tab).modified) continue;
        const OutsideKind outside = TabAt(tab).outside.kind;
        if (outside == OutsideKind::Gone || outside == OutsideKind::Moved)
            continue;  // it is not to come back by itself
        const std::wstring path = TabAt(tab).path;
        lines.push_back(SavedLine(path, SaveOtherDocument(tab)));
    }
    return lines;
}

// Saves the document if needed, and gives its path. Returns false when there is no saved file.
bool SaveSourceToBuild(int index, std::wstring* source) {
    const DocumentId document = TabAt(index).id;
    {
        const DocumentTab& tab = TabAt(index);
        const bool needed = BuildNeedsSave(tab.modified, tab.hasFile, FileExists(tab.path));
        if (needed && !SaveBeforeBuild(index)) return false;
        index = TabBarFindDocument(document);
        if (!IsTabIndex(index)) return false;
    }
    const DocumentTab& tab = TabAt(index);  // read again, because the save may have moved records
    *source = tab.hasFile ? tab.path : L"";
    return !source->empty();
}

// Saves what a build of the project always needs: its main source, and the active document if it belongs to it. Others
// are saved as for any build.
BuildRefusal SaveProjectToBuild(const BuildProject& project) {
    const int active = g_documents.activeTab;
    if (IsTabIndex(active) && TabAt(active).hasFile && TabAt(active).modified && !SaveBeforeBuild(active))
        return BuildRefusal::NotSaved;
    if (project.source.empty()) return BuildRefusal::NoMainSource;
    const bool there = PathAnswers(project.source.c_str()) && FileExists(project.source.c_str());
    const int tab = TabBarFindPath(project.source.c_str());
    if (!IsTabIndex(tab)) return there ? BuildRefusal::None : BuildRefusal::NoMainSource;
    if (TabAt(tab).editor == nullptr) return there ? BuildRefusal::None : BuildRefusal::NoMainSource;  // not read yet
    const bool needed = BuildNeedsSave(TabAt(tab).modified, TabAt(tab).hasFile, there);
    return !needed || SaveBeforeBuild(tab) ? BuildRefusal::None : BuildRefusal::NotSaved;
}

// What is built in place of an include file: the program that it belongs to. The file itself where none is open.
int TabToBuild(const BuildOrder& order, std::vector<BuildLine>* said) {
    const int active = g_documents.activeTab;
    const DocumentTab& tab = TabAt(active);
    if (order.documentOnly || !tab.hasFile || !IsIncludeFile(tab.path)) return active;
    bool several = false;
    const int program = TabOfProgramWith(tab.path, &several);
    const std::wstring name = tab.label;
    if (program >= 0)
        said->push_back(
            {TextWith(L"[Build] {1} is a part of {2}, which is built.\r\n", {name, TabAt(program).label}), 0});
    else
        said->push_back(
            {TextWith(several
                          ? English(L"[Build] {1} is included by several open sources. It is built alone; build one "
                                    L"of these first, and later builds take that.\r\n")
                          : English(L"[Build] {1} is an include file that no open source includes. It is built "
                                    L"alone.\r\n"),
                      {name}),
             kLineTeal});
    return program >= 0 ? program : active;
}

// Saves the source of the build and gives its path.
BuildRefusal SaveAndFindSource(const BuildOrder& order, std::wstring* source, std::vector<BuildLine>* said) {
    // A copy, because saving may open a box, behind which the project can be read again.
    const std::optional<BuildProject> project = order.documentOnly ? std::nullopt : BuildProjectAtHand();
    if (!project) {
        if (!IsTabIndex(g_documents.activeTab)) return BuildRefusal::NoDocument;
        return SaveSourceToBuild(TabToBuild(order, said), source) ? BuildRefusal::None : BuildRefusal::NotSaved;
    }
    *source = project->source;
    return SaveProjectToBuild(*project);
}

void ClearErrorMarks() {
    for (DocumentTab& tab : g_documents.tabs) {
        if (tab.buildMark != BuildMark::Error) continue;
        tab.buildMark = BuildMark::None;
        g_events.documentChanged(tab.id);
    }
}

void MarkBuiltDocument(DocumentVerdict verdict) {
    const int tab = TabBarFindPath(g_runner.source.c_str());
    if (verdict == DocumentVerdict::None || !IsTabIndex(tab)) return;
    TabAt(tab).buildMark = verdict == DocumentVerdict::Succeeded ? BuildMark::Ok : BuildMark::Error;
    g_events.documentChanged(TabAt(tab).id);
}

// The tab of the source shows that a build of it runs.
void ShowBuilding(bool builds) {
    for (DocumentTab& tab : g_documents.tabs) {
        const bool built = builds && tab.hasFile && PathEqualsIgnoreCase(tab.path, g_runner.source);
        if (std::exchange(tab.building, built) != built) g_events.documentChanged(tab.id);
    }
}

int RefuseBuild(BuildRefusal refusal) {
    BuildApplyStep(BuildRefused(refusal));
    return 0;
}

BuildPrinted PrintedByCompiler() {
    const OutputCounts& counts = OutputFeedCounts();
    const auto build = static_cast<std::int32_t>(g_output.errors.builds.size());
    return {.lines = counts.lines,
            .errors = counts.errors,
            .warnings = counts.warnings,
            .firstError = FirstErrorText(g_output.errors, build)};
}

std::wstring FlagsOfRun() {
    const BuildOrder& order = g_runner.run.order;
    return BuildFlagsOf(
        {.syntaxOnly = order.syntaxOnly,
         .debug = order.debug,
         .profile = g_settings.profile,
         .buildFlags = CompilerFlags(g_runner.compilerId),
         .syntaxFlags = CompilerSyntaxFlags(g_runner.compilerId),
         .debugFlags = CompilerDebugFlags(g_runner.compilerId),
         .projectFlags = g_runner.project ? std::wstring_view(g_runner.project->flags) : std::wstring_view()});
}

// Starts a pre- or post-build command in the folder of the source. A program that the system does not find is looked for
// there. Returns false with the reason for the user.
bool StartCommandStage(BuildStage stage, const wchar_t* command, std::wstring* reason) {
    StageLaunch launch = {
        .stage = stage, .commandLine = command, .directory = FolderOf(g_runner.source), .limitMs = kCommandLimitMs};
    DWORD error = 0;
    if (StageStart(launch, &error)) return true;
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) {
        launch.commandLine = CommandBeside(command, launch.directory, SystemFolder(),
                                           [](const std::wstring& path) { return FileExists(path.c_str()) != 0; });
        if (!launch.commandLine.empty() && StageStart(launch, &error)) return true;
    }
    *reason = ChildStartProblem(error, launch.directory);
    return false;
}

std::optional<FileStamp> StampOf(const std::wstring& path) {
    FileStamp stamp;
    return ReadFileStamp(path, &stamp) ? std::optional(stamp) : std::nullopt;
}

// What is to be said when the compiler has written no program; empty when it has written one.
std::wstring UnwrittenProgram() {
    const std::optional<FileStamp> after = StampOf(g_runner.output);
    const FileStamp* before = g_runner.programBefore ? &*g_runner.programBefore : nullptr;
    if (ProgramWasWritten(before, after ? &*after : nullptr, LastBuild().startTime)) return {};
    return NoProgramText(g_runner.output, after.has_value());
}

bool StartCompilerStage() {
    g_runner.programBefore = StampOf(g_runner.output);
    OutputFeedReset(g_runner.compilerId);  // the lines of a pre-build command do not count as the compiler's
    const bool wantListing = !g_runner.run.order.syntaxOnly && PaneIsShown(PaneId::Asm);
    return CompilerBuild(g_runner.compilerId, g_runner.source.c_str(), g_runner.output.c_str(), FlagsOfRun().c_str(),
                         wantListing) != 0;
}

bool StartStageOfBuild(BuildStage stage, std::wstring* reason) {
    if (stage == BuildStage::Compile) return StartCompilerStage();
    const bool before = stage == BuildStage::PreBuild;
    return StartCommandStage(stage, before ? g_settings.preBuildCmd : g_settings.postBuildCmd, reason);
}

void ShowStep(BuildStep step) {
    if (!step.status.empty() && !step.status.ends_with(L"...")) step.status += g_runner.which;
    BuildApplyStep(step);
    MarkBuiltDocument(step.verdict);
    if (step.programBuilt) g_events.programBuilt(LastBuild().source.c_str(), LastBuild().listing.c_str());
}

// Ends the build and starts the action after it.
void EndBuild() {
    const BuildRun run = g_runner.run;  // copied, because a receiver of these events may start the next build
    const std::wstring program = g_runner.output;
    ShowBuilding(false);
    if (!run.finalStatus.empty()) g_events.statusText((run.finalStatus + g_runner.which).c_str());
    g_events.buildEnded(run.success && run.unwritten.empty(), run.order.debug);
    switch (BuildFollowUp(run)) {
        case AfterBuild::NextOfBatch: BatchOnBuildEnd(run.success); break;
        case AfterBuild::RunProgram: RunBuiltProgram(program); break;
        case AfterBuild::Nothing: break;
    }
}

bool FollowSteps(BuildStep step) {
    static const BuildHost kHost = {
        .show = ShowStep,
        .start = StartStageOfBuild,
        .showSideLogs = [] { SideLogsShow(g_runner.source, LastBuild().startTime); },
        .printed = PrintedByCompiler,
        .end = EndBuild,
    };
    return BuildFollow(g_runner.run, std::move(step), kHost, g_settings.postBuildCmd);
}

void AppendLines(const std::vector<std::wstring>& lines, COLORREF colour) {
    for (const std::wstring& line : lines) OutputPaneAppend(line.c_str(), colour);
}

void AppendLaunchError(DWORD error, const std::wstring& directory) {
    OutputPaneAppend(LaunchErrorLine(error, ChildStartProblem(error, directory)).c_str(), kLineRed);
}

// Makes the copy of the source that the compiler needs. Returns false after it has reported why it failed.
bool StageForLaunch(const LaunchRequest& request, StagedSource* staged) {
    const std::wstring source(request.source);
    const std::wstring output(request.output);
    std::uint32_t error = 0;
    const bool done = StageSource(source.c_str(), output.c_str(), request.style, staged, &error);
    const std::wstring target = StagingTarget(source, output, request.style, 0);
    if (!staged->leftover.empty()) OutputPaneAppend(LeftoverLine(target, staged->leftover).c_str(), kLineTeal);
    if (done) return true;
    if (error == kErrorStagedElsewhere) {
        OutputPaneAppend(StagedElsewhereLine(target).c_str(), kLineRed);
        return false;
    }
    OutputPaneAppend(NotStagedLine(target).c_str(), kLineRed);
    AppendLaunchError(error, {});
    return false;
}

// Stages the source and makes the command line. Returns false after it has reported why; no copy is then left.
bool PrepareLaunch(const LaunchRequest& request, StagedSource* staged, LaunchPlan* plan) {
    if (const std::wstring obstacle = LaunchObstacle(request); !obstacle.empty()) {
        OutputPaneAppend(obstacle.c_str(), kLineRed);
        return false;
    }
    if (const std::wstring compiler(request.compiler); !ProgramCanBeStarted(compiler)) {
        OutputPaneAppend(TextWith(L"Build launch failed: {1}\r\n", {LongProgramText(compiler)}).c_str(), kLineRed);
        return false;
    }
    if (!StageForLaunch(request, staged)) return false;
    const CommandProblem problem = PlanLaunch(request, staged->path, plan);
    if (problem == CommandProblem::None) return true;
    OutputPaneAppend(CommandProblemText(problem), kLineRed);
    OutputPaneAppend(UnstageSource(staged).c_str(), kLineRed);
    return false;
}

// Stores the launch in the build state (under `g_buildCs`) and in LastBuild (UI thread).
void RecordLaunch(const LaunchRequest& request, const StagedSource& staged, const LaunchPlan& plan,
                  const FILETIME& startTime) {
    const BuildRecord& last = LastBuild();
    const bool keptProgram = g_runner.run.order.syntaxOnly && SamePathText(last.source, request.source);
    BuildRecord record =
        LaunchRecord(request, plan, staged.copied ? std::wstring_view(staged.path) : std::wstring_view(),
                     std::uint64_t{startTime.dwHighDateTime} << 32 | startTime.dwLowDateTime);
    record.programWritten = keptProgram && last.programWritten;
    LastBuildBegin(std::move(record));
    OutputFeedBeginBuild(LastBuild());
    const BuildLock lock;
    SafeCopyW(g_buildState.sourcePath, request.source);
    SafeCopyW(g_buildState.outputPath, request.output);
    SafeCopyW(g_buildState.listingPath, request.listing);
    g_buildState.startTime = startTime;
    g_buildState.compilerId = request.compilerId;
}

// The project's compiler for its main source. Otherwise that of the setting "ActiveCompiler"; when that is none, the one
// for the file's extension.
std::uint32_t CompilerToUse(const std::wstring& source, const std::optional<BuildProject>& project) {
    if (project) return project->compiler;
    const std::int32_t active = g_settings.activeCompiler;
    return active >= 0 && active < static_cast<std::int32_t>(kCompilerCount) ? static_cast<std::uint32_t>(active)
                                                                             : CompilerDefaultForFile(source.c_str());
}

// A program that still runs cannot be written: the user is asked whether to end it. True when it can be written, or when
// something else than a process keeps it, which the compiler will tell.
bool ProgramIsFree(const std::wstring& program) {
    const std::vector<UniqueHandle> processes = ProcessesOf(program);
    if (processes.empty()) return true;
    const std::wstring text = TextWith(
        L"{1} is still running, so that it cannot be built anew.\n\nEnd the program and build?", {FileNameOf(program)});
    g_runner.saving = true;
    const Answer answer = AskUser({.caption = Text(L"Build"),
                                   .text = text.c_str(),
                                   .buttons = AskButtons::YesNo,
                                   .icon = AskIcon::Question,
                                   .inSelftest = Answer::Yes,
                                   .loses = Answer::Yes});
    g_runner.saving = false;
    return answer == Answer::Yes && EndProcesses(processes, program);
}

// The compiler has told that it cannot write the program: the system may know more of it.
void SayWhyUnwritten() {
    const std::wstring_view program = g_runner.output;
    const auto isAboutProgram = [program](const CompilerError& error) {
        return error.line == 1 && !HasPlaceInSource(error, program);
    };
    if (!std::ranges::any_of(g_output.errors.items, isAboutProgram)) return;
    if (const std::wstring why = WhyUnwritable(g_runner.output); !why.empty())
        AppendLines({TextWith(L"[Build] {1} cannot be written: {2}\r\n", {program, why})}, kLineTeal);
}

int RefuseWithoutCompiler(std::uint32_t id) {
    wchar_t path[kPathCapacity] = {};
    CompilerPathResolved(id, path, kPathCapacity);
    BuildApplyStep(BuildRefused(BuildRefusal::NoCompiler, CompilerName(id), path));
    return 0;
}

}  // namespace

void BuildRecover() { AppendLines(StagedRecover(), kLineRed); }

void BuildApplyStep(const BuildStep& step) {
    if (step.clearsPane) OutputPaneClear();
    for (const BuildLine& line : step.lines) OutputPaneAppend(line.text.c_str(), line.colour);
    if (!step.status.empty()) g_events.statusText(step.status.c_str());
}

int CompilerBuild(std::uint32_t id, const wchar_t* source, const wchar_t* output, const wchar_t* flags,
                  bool wantListing) {
    const CompilerProfile& profile = Profile(id);
    wchar_t compiler[kPathCapacity] = {};
    CompilerPathResolved(id, compiler, kPathCapacity);
    wchar_t listing[kPathCapacity] = {};
    if (source != nullptr) CompilerMakeAsmPath(source, listing, kPathCapacity);
    const ProductGuard guard = ProductsBeforeBuild({.source = source != nullptr ? source : L"",
                                                    .output = output != nullptr ? output : L"",
                                                    .listing = wantListing ? listing : L""});
    AppendLines(guard.lines, kLineTeal);
    LaunchRequest request = LaunchRequestOf(profile, g_settings.compilers[profile.id]);
    request.compiler = compiler;
    request.source = source != nullptr ? source : L"";
    request.output = output != nullptr ? output : L"";
    request.flags = flags;
    if (g_runner.project && source != nullptr && g_runner.source == source)
        request.includeFolders = g_runner.project->includes;
    request.listing = listing;
    request.wantListing = guard.listing;
    request.wantLog = guard.log;
    StagedSource staged;
    LaunchPlan plan;
    if (!PrepareLaunch(request, &staged, &plan)) {
        ProductsAfterBuild();
        return 0;
    }
    OutputPaneAppend(plan.header.c_str(), 0);
    FILETIME startTime = {};
    GetSystemTimeAsFileTime(&startTime);
    RecordLaunch(request, staged, plan, startTime);
    DWORD error = 0;
    if (StageStart({.stage = BuildStage::Compile,
                    .commandLine = plan.commandLine,
                    .directory = plan.workingDirectory,
                    .limitMs = kCompilerLimitMs,
                    .staged = staged,
                    .logPath = plan.logPath,
                    .logHeader = plan.header},
                   &error))
        return 1;
    {
        const BuildLock lock;
        g_buildState.lastLaunchError = error;
    }
    ProductsAfterBuild();
    AppendLaunchError(error, plan.workingDirectory);
    return 0;
}

BuildSituation BuildSituationNow() {
    return {.saving = g_runner.saving,
            .stageRuns = StageRuns(),
            .batchRuns = BatchIsRunning(),
            .programRuns = StageIsProgram(),
            .programDebugged = g_compile.programInUse};
}

void BuildOnTextEdited(DocumentId document) { std::erase(g_leftUnsaved, document); }

int BuildStart(const BuildOrder& order) {
    const BuildRefusal refusal = BuildRefusalOf(order, BuildSituationNow());
    if (refusal != BuildRefusal::None) return RefuseBuild(refusal);
    StageSettle(!order.keepPane);
    if (BuildRefusalOf(order, BuildSituationNow()) == BuildRefusal::Running)
        return RefuseBuild(BuildRefusal::StillRunning);
    std::wstring source;
    std::vector<BuildLine> said;
    if (const BuildRefusal why = SaveAndFindSource(order, &source, &said); why != BuildRefusal::None) {
        const std::wstring name = BuildProjectNow() ? BuildProjectNow()->name : L"";
        BuildApplyStep(BuildRefused(why, name, source));
        return 0;
    }
    const std::vector<BuildLine> saved = SaveOtherDocuments();
    ClearErrorMarks();
    if (!order.keepPane) {
        OutputPaneClear();
        CompilerClearErrors();
    }
    const std::optional<BuildProject> project = BuildProjectOfSource(source);
    const std::uint32_t id = CompilerToUse(source, project);
    OutputFeedReset(id);
    BuildApplyStep({.lines = said});
    BuildApplyStep({.lines = saved});
    if (!CompilerExists(id)) return RefuseWithoutCompiler(id);
    wchar_t output[kPathCapacity] = {};
    CompilerMakeOutputPath(source.c_str(), output, kPathCapacity);
    if (!order.syntaxOnly && !ProgramIsFree(output)) {
        BuildApplyStep(BuildRefused(BuildRefusal::ProgramInUse, FileNameOf(output)));
        return 0;
    }
    // What a pre-build command prints is relative to its folder.
    OutputFeedBeginBuild({.source = source, .output = output, .workingDirectory = FolderOf(source)});
    g_runner = {
        .run = {.order = order},
        .compilerId = id,
        .source = source,
        .output = output,
        .project = project,
        .which = BuildProjectNow() ? BuiltWhichText(BuildProjectNow()->name, source, project.has_value()) : L""};
    ShowBuilding(true);
    if (FollowSteps(BuildFirst(g_runner.run, g_settings.preBuildCmd))) return 1;
    ShowBuilding(false);
    return 0;
}

int StartCompilerBuild(bool syntaxOnly, bool debug) { return BuildStart({.syntaxOnly = syntaxOnly, .debug = debug}); }

void BuildOnStageEnd(const StageResult& result) {
    if (result.stage == BuildStage::Compile) {
        const bool success = result.end == BuildEnd::Ended && result.exitCode == 0;
        const bool checked = g_runner.run.order.syntaxOnly;
        if (!checked) g_runner.run.unwritten = UnwrittenProgram();
        if (!checked && !success) SayWhyUnwritten();
        AppendLines(ProductsAfterBuild(), kLineRed);
        LastBuildEnd(success, checked ? LastBuild().programWritten : success && g_runner.run.unwritten.empty());
    }
    if (result.stage == BuildStage::PostBuild && LastBuild().programWritten) ProductNoteNow(g_runner.output);
    FollowSteps(BuildAfterStage(g_runner.run, result, PrintedByCompiler()));
}
