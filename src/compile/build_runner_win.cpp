#include "compile/build_runner.h"

#include "base/events.h"
#include "base/path.h"
#include "base/wide_format.h"
#include "compile/build.h"
#include "compile/build_paths.h"
#include "compile/build_reader.h"
#include "compile/build_stage.h"
#include "compile/command_line.h"
#include "compile/compile_state.h"
#include "compile/side_logs.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "files/file_io.h"
#include "output/last_build.h"
#include "output/output_feed.h"
#include "output/output_pane.h"
#include "resources/ids.h"
#include "settings/compiler_table.h"
#include "settings/settings_state.h"
#include "tabs/tab_bar.h"
#include "ui/panes.h"
#include "ui/ui_state.h"

namespace {

constexpr COLORREF kTeal = 0x808000;
constexpr COLORREF kRed = 0x0000FF;

struct CurrentBuild {
    BuildOrder order;
    std::uint32_t id = 0;
    std::wstring source;
    std::wstring output;
    std::wstring listing;
    bool success = false;
    std::wstring status;  // the status bar's text at the end
};
CurrentBuild g_build;
bool g_starting = false;  // a save of this build's source is asking the user something

class BuildLock {
public:
    BuildLock() { EnterCriticalSection(&g_buildCs); }
    ~BuildLock() { LeaveCriticalSection(&g_buildCs); }
    BuildLock(const BuildLock&) = delete;
    BuildLock& operator=(const BuildLock&) = delete;
};

void Cancel(const wchar_t* line) {
    OutputPaneAppend(line, kRed);
    g_events.statusText(L"Build cancelled");
}

// Saves the active document where that is needed, and gives its path. A document that nothing has changed is not
// written: that would undo what another program did to the file meanwhile.
bool SaveActive(std::wstring* source) {
    const int index = g_documents.activeTab;
    {
        const DocumentTab& tab = TabAt(index);
        const bool current = !tab.modified && tab.hasFile && FileExists(tab.path);
        g_starting = true;
        const bool saved = current || FileSave(index) != 0;
        g_starting = false;
        if (!saved || !IsTabIndex(index)) return false;
    }
    const DocumentTab& tab = TabAt(index);  // again: the save may have moved records
    *source = tab.hasFile ? tab.path : L"";
    return !source->empty();
}

void ClearErrorMarks() {
    for (DocumentTab& tab : g_documents.tabs) {
        if (tab.buildMark != BuildMark::Error) continue;
        tab.buildMark = BuildMark::None;
        g_events.documentChanged(tab.id);
    }
}

void MarkDocument(const std::wstring& source, BuildMark mark) {
    const int tab = TabBarFindPath(source.c_str());
    if (!IsTabIndex(tab)) return;
    TabAt(tab).buildMark = mark;
    g_events.documentChanged(TabAt(tab).id);
}

bool CompilerIsThere(std::uint32_t id) {
    if (CompilerExists(id)) return true;
    wchar_t path[kPathCapacity] = {};
    CompilerPathResolved(id, path, kPathCapacity);
    OutputPaneAppend(FormatW(L"Compiler not found: %s\r\nConfigured path: %s\r\nOpen Project > Settings and run "
                             L"Auto-Detect or browse to the compiler.\r\n",
                             CompilerName(id), path[0] != L'\0' ? path : L"(empty)")
                         .c_str(),
                     kRed);
    g_events.statusText(L"Compiler not found");
    return false;
}

// A pre- or post-build command. False: it could not be started.
bool StartCommand(BuildStage stage, const wchar_t* label, const wchar_t* command) {
    OutputPaneAppend(FormatW(L"[%s] %s\r\n", label, command).c_str(), kTeal);
    DWORD error = 0;
    if (StageStart(
            {.stage = stage, .commandLine = command, .directory = FolderOf(g_build.source), .limitMs = kCommandLimitMs},
            &error))
        return true;
    OutputPaneAppend(FormatW(L"[%s] Failed to run.\r\n", label).c_str(), kRed);
    return false;
}

void ReportCommand(const wchar_t* label, const StageResult& result) {
    if (result.end == BuildEnd::TimedOut)
        OutputPaneAppend(FormatW(L"[%s] Still running after %lu seconds; going on without its output.\r\n", label,
                                 kCommandLimitMs / 1000)
                             .c_str(),
                         kTeal);
    else if (result.end == BuildEnd::Ended && result.exitCode != 0)
        OutputPaneAppend(FormatW(L"[%s] Exit code %lu.\r\n", label, result.exitCode).c_str(), kTeal);
}

// The flags of this build, in a buffer of kFlagsCapacity.
void BuildFlags(wchar_t* flags) {
    const BuildOrder& order = g_build.order;
    SafeCopyW(flags, kFlagsCapacity, order.syntaxOnly ? CompilerSyntaxFlags(g_build.id) : CompilerFlags(g_build.id));
    const wchar_t* debugFlags = CompilerDebugFlags(g_build.id);
    if (order.debug) AppendBuildFlag(flags, debugFlags);
    if (!order.syntaxOnly) AppendBuildFlag(flags, ProfileFlags(g_settings.profile, debugFlags));
}

bool LaunchCompiler() {
    const BuildOrder& order = g_build.order;
    OutputFeedReset(g_build.id);  // what a pre-build command printed is not the compiler's
    wchar_t flags[kFlagsCapacity] = {};
    BuildFlags(flags);
    g_events.statusText(order.syntaxOnly ? L"Syntax check..." : order.debug ? L"Debug build..." : L"Building...");
    const bool wantListing = !order.syntaxOnly && PaneIsShown(PaneId::Asm);
    if (CompilerBuild(g_build.id, g_build.source.c_str(), g_build.output.c_str(), flags, wantListing)) return true;
    g_events.statusText(L"Build launch failed");
    return false;
}

// The end of everything that belongs to the build.
void EndBuild() {
    const CurrentBuild build = g_build;
    if (!build.status.empty()) g_events.statusText(build.status.c_str());
    g_events.buildEnded(build.success, build.order.debug);
    if (build.order.after == AfterBuild::NextOfBatch)
        BatchOnBuildEnd(build.success);
    else if (build.order.after == AfterBuild::RunProgram && build.success)
        RunBuiltProgram(build.output);
}

void EndStopped() {
    OutputPaneAppend(L"--- Build stopped ---\r\n", kRed);
    g_build.success = false;
    g_build.status = L"Build stopped";
    EndBuild();
}

std::wstring Plural(int count, const wchar_t* noun) { return FormatW(count == 1 ? L"%d %s" : L"%d %ss", count, noun); }

void ReportCompiler(const StageResult& result) {
    if (result.end == BuildEnd::TimedOut)
        OutputPaneAppend(
            FormatW(L"The compiler had not ended after %lu minutes and was ended.\r\n", kCompilerLimitMs / 60000)
                .c_str(),
            kRed);
    const OutputCounts& counts = OutputFeedCounts();
    const wchar_t* what = g_build.order.syntaxOnly ? L"Syntax check" : L"Build";
    std::wstring verdict =
        g_build.success ? FormatW(L"%s succeeded", what) : FormatW(L"%s failed (exit code %lu)", what, result.exitCode);
    verdict += L": " + Plural(counts.errors, L"error") + L", " + Plural(counts.warnings, L"warning");
    g_build.status = verdict + FormatW(L", %.1f s", result.seconds);
    OutputPaneAppend((L"--- " + g_build.status + L" ---\r\n").c_str(), g_build.success ? 0 : kRed);
}

void OnCompilerEnd(const StageResult& result) {
    FILETIME startTime = {};
    {
        const BuildLock lock;
        startTime = g_buildState.startTime;
    }
    g_build.success = result.end == BuildEnd::Ended && result.exitCode == 0;
    MarkDocument(g_build.source, g_build.success ? BuildMark::Ok : BuildMark::Error);
    if (result.end == BuildEnd::Stopped) {
        EndStopped();
        return;
    }
    if (OutputFeedCounts().lines == 0) SideLogsShow(g_build.source, startTime);
    ReportCompiler(result);
    if (g_build.success && !g_build.order.syntaxOnly) {
        g_events.programBuilt(g_build.source.c_str(), g_build.listing.c_str());
        const wchar_t* postBuild = g_settings.postBuildCmd;
        if (postBuild[0] != L'\0' && StartCommand(BuildStage::PostBuild, L"Post-build", postBuild)) return;
    }
    EndBuild();
}

void AppendLaunchError(DWORD error) {
    wchar_t text[512] = {};
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0, text,
                   static_cast<DWORD>(std::size(text)), nullptr);
    std::wstring message = text;
    while (!message.empty() && (message.back() == L'\r' || message.back() == L'\n')) message.pop_back();
    OutputPaneAppend(FormatW(L"Build launch failed (Win32 error %lu): %s\r\n", error, message.c_str()).c_str(), kRed);
}

// What the compiler is started with; the source is staged and the command line fits.
struct Preparation {
    StagedSource staged;
    std::wstring listing;
    std::wstring workingDirectory;
    std::wstring commandLine;
};

bool Prepare(std::uint32_t id, const wchar_t* source, const wchar_t* output, const wchar_t* flags, bool wantListing,
             Preparation* out) {
    wchar_t compiler[kPathCapacity] = {};
    CompilerPathResolved(id, compiler, kPathCapacity);
    if (compiler[0] == L'\0' || source == nullptr || source[0] == L'\0' || output == nullptr || output[0] == L'\0') {
        OutputPaneAppend(L"Build launch failed: missing compiler, source, or output path.\r\n", kRed);
        return false;
    }
    if (SamePathText(source, output)) {
        OutputPaneAppend(L"Build launch failed: the program would take the place of its source.\r\n", kRed);
        return false;
    }
    const CompilerProfile& profile = Profile(id);
    DWORD error = 0;
    const bool staged = StageSource(source, output, profile.commandStyle, &out->staged, &error);
    if (!out->staged.leftover.empty())
        OutputPaneAppend(
            FormatW(L"An earlier build was cut off: your own text of %s is in %s\r\n",
                    StagingTarget(source, output, profile.commandStyle, 0).c_str(), out->staged.leftover.c_str())
                .c_str(),
            kTeal);
    if (!staged) {
        OutputPaneAppend(FormatW(L"Build launch failed: %s cannot be written.\r\n",
                                 StagingTarget(source, output, profile.commandStyle, 0).c_str())
                             .c_str(),
                         kRed);
        AppendLaunchError(error);
        return false;
    }
    wchar_t listing[kPathCapacity] = {};
    CompilerMakeAsmPath(source, listing, kPathCapacity);
    out->listing = listing;
    // The listing of an assembly source, or of a file without an extension, would be the source itself.
    const bool listable = wantListing && !SamePathText(listing, source);
    out->workingDirectory = FolderOf(profile.commandStyle == CommandStyle::Keldor ? output : compiler);
    const wchar_t* asmFlag = g_settings.compilers[profile.id].asmFlag;
    const CommandProblem problem =
        AssembleCommandLine({.style = profile.commandStyle,
                             .compilerId = profile.id,
                             .compiler = compiler,
                             .flags = flags,
                             .includeSwitch = profile.includeSwitch,
                             .includePath = CompilerIncludePath(id),
                             .listingTemplate = asmFlag[0] != L'\0' ? asmFlag : profile.asmFlag,
                             .listing = listable ? listing : L"",
                             .source = out->staged.path,
                             .output = output},
                            &out->commandLine);
    if (problem == CommandProblem::None) return true;
    OutputPaneAppend(CommandProblemText(problem), kRed);
    OutputPaneAppend(UnstageSource(&out->staged).c_str(), kRed);
    return false;
}

// A batch is busy for all but its own builds.
bool IsBusyFor(const BuildOrder& order) {
    return order.after == AfterBuild::NextOfBatch ? StageRuns() : CompilerIsBuilding();
}

}  // namespace

int CompilerBuild(std::uint32_t id, const wchar_t* source, const wchar_t* output, const wchar_t* flags,
                  bool wantListing) {
    Preparation build;
    if (!Prepare(id, source, output, flags, wantListing, &build)) return 0;
    const std::wstring header =
        FormatW(L"--- Build started: %s ---\r\nSource: %s\r\nOutput: %s\r\nCWD: %s\r\nCommand: %s\r\n\r\n",
                CompilerName(id), source, output, build.workingDirectory.c_str(), build.commandLine.c_str());
    OutputPaneAppend(header.c_str(), 0);
    g_build.listing = build.listing;
    BuildSetLastPlaces({.source = source,
                        .output = output,
                        .staged = build.staged.copied ? build.staged.path : std::wstring(),
                        .workingDirectory = build.workingDirectory});
    {
        const BuildLock lock;
        SafeCopyW(g_buildState.sourcePath, source);
        SafeCopyW(g_buildState.outputPath, output);
        SafeCopyW(g_buildState.listingPath, build.listing);
        g_buildState.compilerId = id;
    }
    const std::wstring log = ReplaceExtension(source, L".buildlog");
    DWORD error = 0;
    const bool started = StageStart({.stage = BuildStage::Compile,
                                     .commandLine = build.commandLine,
                                     .directory = build.workingDirectory,
                                     .limitMs = kCompilerLimitMs,
                                     .staged = build.staged,
                                     .logPath = SamePathText(log, source) ? std::wstring() : log,
                                     .logHeader = header},
                                    &error);
    if (!started) {
        {
            const BuildLock lock;
            g_buildState.lastLaunchError = error;
        }
        AppendLaunchError(error);
    }
    return started ? 1 : 0;
}

bool BuildRefusedByDebugger() {
    if (!g_compile.programInUse) return false;
    OutputPaneAppend(L"Not built: the program is being debugged. End the debug session first (Shift+F5).\r\n", kRed);
    g_events.statusText(L"End the debug session first (Shift+F5)");
    return true;
}

int BuildStart(const BuildOrder& order) {
    if (g_starting || IsBusyFor(order) || BuildRefusedByDebugger()) return 0;
    StageSettle(!order.keepPane);
    if (IsBusyFor(order)) {  // the post-build command of the build that ended just now
        g_events.statusText(kBuildBusy);
        return 0;
    }
    if (!IsTabIndex(g_documents.activeTab)) {
        OutputPaneClear();
        Cancel(L"Build cancelled: no active source tab is selected.\r\n");
        return 0;
    }
    std::wstring source;
    if (!SaveActive(&source)) {
        Cancel(L"Build cancelled: save the active tab to a source file first.\r\n");
        return 0;
    }
    ClearErrorMarks();
    const std::int32_t active = g_settings.activeCompiler;
    const std::uint32_t id = active >= 0 && active < static_cast<std::int32_t>(kCompilerCount)
                                 ? static_cast<std::uint32_t>(active)
                                 : CompilerDefaultForFile(source.c_str());
    if (!order.keepPane) {
        OutputPaneClear();
        CompilerClearErrors();
    }
    OutputFeedReset(id);
    if (!CompilerIsThere(id)) return 0;
    wchar_t output[kPathCapacity] = {};
    CompilerMakeOutputPath(source.c_str(), output, kPathCapacity);
    g_build = {.order = order, .id = id, .source = source, .output = output};
    const wchar_t* preBuild = g_settings.preBuildCmd;
    if (preBuild[0] != L'\0' && StartCommand(BuildStage::PreBuild, L"Pre-build", preBuild)) {
        g_events.statusText(L"Pre-build...");
        return 1;
    }
    return LaunchCompiler() ? 1 : 0;
}

int StartCompilerBuild(bool syntaxOnly, bool debug) { return BuildStart({.syntaxOnly = syntaxOnly, .debug = debug}); }

void BuildOnStageEnd(const StageResult& result) {
    switch (result.stage) {
        case BuildStage::PreBuild:
            ReportCommand(L"Pre-build", result);
            if (result.end == BuildEnd::Stopped)
                EndStopped();
            else if (!LaunchCompiler())
                EndBuild();
            break;
        case BuildStage::Compile: OnCompilerEnd(result); break;
        case BuildStage::PostBuild:
            ReportCommand(L"Post-build", result);
            if (result.end == BuildEnd::Stopped)
                EndStopped();
            else
                EndBuild();
            break;
        default: break;
    }
}
