// The commands of the Compiler menu: build, run, stop, clean, syntax check, choice of compiler and profile, build of
// all documents. UI thread only.
#include "compile/build.h"

#include "base/events.h"
#include "base/path.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "compile/build_batch.h"
#include "compile/build_plan.h"
#include "compile/build_reader.h"
#include "compile/build_runner.h"
#include "compile/build_source.h"
#include "compile/build_stage.h"
#include "compile/products.h"
#include "compile/program_run.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "files/file_io.h"
#include "output/line_colours.h"
#include "output/output_pane.h"
#include "resources/ids.h"
#include "settings/compiler_presence.h"
#include "settings/compiler_table.h"
#include "settings/settings_state.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace {

BuildBatch g_batch;

const DocumentTab* DocumentToBuild() {
    return IsTabIndex(g_documents.activeTab) ? &TabAt(g_documents.activeTab) : nullptr;
}

void EndBatch() {
    const std::wstring report = BatchReportText(g_batch);
    g_batch = {};
    OutputPaneAppend((report + L"\r\n").c_str(), 0);
    g_events.statusText(report.c_str());
}

void FailBatch() {
    BatchCount(g_batch, false);
    OutputPaneAppend(Text(L"Build failed, stopping batch.\r\n"), kLineRed);
    EndBatch();
}

void BuildNextOfBatch() {
    while (const DocumentId document = BatchTakeNext(g_batch)) {
        const int tab = TabBarFindDocument(document);
        if (!IsTabIndex(tab)) continue;  // the user closed the document meanwhile
        TabBarSelect(tab);
        const std::wstring progress = BatchProgressText(g_batch, TabAt(tab).label);
        OutputPaneAppend((progress + L"\r\n").c_str(), 0);
        const int started = BuildStart({.keepPane = true, .documentOnly = true, .after = AfterBuild::NextOfBatch});
        if (started != 0)
            g_events.statusText(progress.c_str());
        else if (g_batch.running)
            FailBatch();
        return;
    }
    EndBatch();
}

void BuildAllDocuments() {
    StageSettle(true);  // so that the end of an earlier build is not taken for the end of the batch's first one
    if (CompilerIsBuilding()) {
        BuildApplyStep(BuildRefused(BuildRefusal::StillRunning));
        return;
    }
    std::vector<DocumentId> documents;
    for (const DocumentTab& tab : g_documents.tabs)
        if (tab.hasFile && IsBatchBuildSource(tab.path)) documents.push_back(tab.id);
    OutputPaneClear();
    CompilerClearErrors();
    OutputPaneAppend(Text(L"=== Batch Build All ===\r\n"), 0);
    g_batch = BatchOf(std::move(documents));
    BuildNextOfBatch();
}

void BuildAndRunDocument() {
    if (BuildProjectAtHand()) {
        BuildStart({.after = AfterBuild::RunProgram});
        return;
    }
    const DocumentTab* tab = DocumentToBuild();
    if (tab != nullptr && !tab->hasFile) {
        FileSave(g_documents.activeTab);  // asks the user for a name
        tab = DocumentToBuild();
    }
    if (tab == nullptr || !tab->hasFile) {
        OutputPaneClear();
        OutputPaneAppend(Text(L"Run cancelled: save the active tab to a source file first.\r\n"), kLineRed);
        g_events.statusText(Text(L"Run cancelled"));
        return;
    }
    BuildStart({.after = AfterBuild::RunProgram});
}

// Deletes a file that a build has made. One that is open in a tab is not deleted, because the user edits it.
void DeleteProduct(const std::wstring& path) {
    if (!FileExists(path.c_str())) return;
    const wchar_t* reason = TabBarFindPath(path.c_str()) >= 0 ? Text(L" (open in the editor)")
                            : !IsBuildProduct(path)           ? Text(L" (no build of this editor has made it)")
                                                              : nullptr;
    if (reason == nullptr && DeleteFileW(PathForSystem(path.c_str()).c_str())) return;
    OutputPaneAppend(NotDeletedLine(path, reason != nullptr ? reason : L"").c_str(), kLineRed);
}

void CleanProducts() {
    const std::wstring source = BuildSourceMeant();
    if (source.empty()) {
        OutputPaneAppend(Text(L"Clean cancelled: save the active tab to a source file first.\r\n"), kLineRed);
        g_events.statusText(Text(L"Clean cancelled"));
        return;
    }
    wchar_t output[kPathCapacity] = {};
    wchar_t listing[kPathCapacity] = {};
    CompilerMakeOutputPath(source.c_str(), output, kPathCapacity);
    CompilerMakeAsmPath(source.c_str(), listing, kPathCapacity);
    for (const std::wstring& target : CleanTargets(source, output, listing)) DeleteProduct(target);
    OutputPaneAppend(Text(L"Cleaned build outputs.\r\n"), 0);
}

void StopBuild() {
    if (!CompilerIsBuilding()) {
        ReaderEndLeftProcesses();
        g_events.statusText(Text(L"Processes of the last build stopped"));
        return;
    }
    BatchDropRest(g_batch);
    if (!StageIsProgram()) g_events.statusText(Text(L"Build stopped"));
    CompilerKill();
}

void UseCompilerOfMenu(int command) {
    const auto id = static_cast<std::int32_t>(CompilerOfCommand(command)->id);
    if (BuildChooseCompilerOfProject(static_cast<std::uint32_t>(id))) return;
    SettingsChange([id](Settings& settings) { settings.activeCompiler = id; });
    SettingsSave(nullptr);
}

void UseNextCompiler(int) {
    UseCompilerOfMenu(CompilerEntry(CompilerNextInstalled(CompilerNow(), CompilerSeemsInstalled)).command);
}

void UseBuildProfile(int command) {
    constexpr const wchar_t* names[] = {English(L"Debug"), English(L"Release"), English(L"Fast")};
    const int profile = command - IDM_PROFILE_DEBUG;
    SettingsChange([profile](Settings& settings) { settings.profile = profile; });
    SettingsSave(nullptr);
    g_events.statusText(FormatW(Text(L"Build profile: %s"), Text(names[profile])).c_str());
}

void ToggleKeepConsole(int) {
    SettingsChange([](Settings& settings) { settings.keepConsoleOpen = settings.keepConsoleOpen != 0 ? 0 : 1; });
    SettingsSave(nullptr);
    g_events.statusText(g_settings.keepConsoleOpen != 0
                            ? Text(L"Build & Run keeps the console open until a key is pressed")
                            : Text(L"Build & Run lets the console close with its program"));
}

// Makes a menu command of a function that starts a compiler.
template <void (*start)()>
void StartUnlessRefused(int) {
    const BuildRefusal refusal = BuildRefusalOfCommand(BuildSituationNow());
    if (refusal == BuildRefusal::None)
        start();
    else
        BuildApplyStep(BuildRefused(refusal));
}

void BuildActiveDocument() { StartCompilerBuild(false, false); }
void CheckActiveDocument() { StartCompilerBuild(true, false); }

constexpr CommandHandler kBuildHandlers[] = {
    {IDM_BUILD, StartUnlessRefused<BuildActiveDocument>},
    {IDM_BUILD_RUN, StartUnlessRefused<BuildAndRunDocument>},
    {IDM_BUILD_SYNTAX, StartUnlessRefused<CheckActiveDocument>},
    {IDM_BUILD_ALL, StartUnlessRefused<BuildAllDocuments>},
    {IDM_BUILD_STOP, [](int) { StopBuild(); }},
    {IDM_RUN_IN_OUTPUT, [](int) { RunInOutputPane(); }},
    {IDM_KEEP_CONSOLE, ToggleKeepConsole},
    {IDM_BUILD_CLEAN, [](int) { CleanProducts(); }},
    {IDM_NEXT_COMPILER, UseNextCompiler},
    {IDM_PROFILE_DEBUG, UseBuildProfile},
    {IDM_PROFILE_RELEASE, UseBuildProfile},
    {IDM_PROFILE_FAST, UseBuildProfile},
    {IDM_ERROR_NEXT, [](int) { CompilerVisitNextError(); }},
    {IDM_ERROR_PREVIOUS, [](int) { CompilerPrevError(); }},
};

// The handlers of kBuildHandlers and one for each compiler.
constexpr auto BuildAndCompilerHandlers() {
    std::array<CommandHandler, std::size(kBuildHandlers) + kCompilerCount> all = {};
    std::ranges::copy(kBuildHandlers, all.begin());
    std::ranges::transform(g_compilers, all.begin() + std::size(kBuildHandlers), [](const CompilerProfile& row) {
        return CommandHandler{row.command, UseCompilerOfMenu};
    });
    return all;
}
constexpr auto kAllBuildHandlers = BuildAndCompilerHandlers();

}  // namespace

void BatchOnBuildEnd(bool success) {
    if (!g_batch.running) return;
    if (!success) {
        FailBatch();
        return;
    }
    BatchCount(g_batch, true);
    BuildNextOfBatch();
}

bool BatchIsRunning() { return g_batch.running; }

bool BuildCanBeStopped() { return CompilerIsBuilding() || ReaderLeftProcesses(); }

bool CompilerIsBuilding() { return StageRuns() || g_batch.running; }

std::span<const CommandHandler> BuildCommandHandlers() { return kAllBuildHandlers; }

bool CmdHandle_Build(int command) { return RunCommandHandler(kAllBuildHandlers, command); }
