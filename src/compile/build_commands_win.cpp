// The Compiler menu: build, run, stop, clean, syntax check, choice of compiler and profile, build of all documents. UI
// thread only.
#include "compile/build.h"

#include "base/events.h"
#include "base/path.h"
#include "base/wide_format.h"
#include "compile/build_paths.h"
#include "compile/build_runner.h"
#include "compile/build_stage.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "files/file_io.h"
#include "output/output_pane.h"
#include "resources/ids.h"
#include "settings/compiler_table.h"
#include "settings/settings_state.h"
#include "ui/ui_state.h"

#include <shellapi.h>

#include <vector>

namespace {

constexpr COLORREF kRed = 0x0000FF;

// A build of all documents: they are taken by their editors, because tabs may move or be closed meanwhile.
struct Batch {
    std::vector<HWND> editors;
    std::size_t next = 0;
    int succeeded = 0;
    int failed = 0;
    bool running = false;
};
Batch g_batch;

const DocumentTab* ActiveDocument() {
    return IsTabIndex(g_documents.activeTab) ? &TabAt(g_documents.activeTab) : nullptr;
}

void EndBatch() {
    const std::wstring report = FormatW(L"Batch build: %d succeeded, %d failed.", g_batch.succeeded, g_batch.failed);
    g_batch = {};
    OutputPaneAppend((report + L"\r\n").c_str(), 0);
    g_events.statusText(report.c_str());
}

void FailBatch() {
    ++g_batch.failed;
    OutputPaneAppend(L"Build failed, stopping batch.\r\n", kRed);
    EndBatch();
}

void BuildNextOfBatch() {
    while (g_batch.next < g_batch.editors.size()) {
        const int tab = TabBarFindEditor(g_batch.editors[g_batch.next++]);
        if (!IsTabIndex(tab)) continue;  // closed meanwhile
        TabBarSelect(tab);
        const std::wstring progress = FormatW(L"[%d/%d] Building %s...", static_cast<int>(g_batch.next),
                                              static_cast<int>(g_batch.editors.size()), TabAt(tab).label);
        OutputPaneAppend((progress + L"\r\n").c_str(), 0);
        const int started = BuildStart({.keepPane = true, .after = AfterBuild::NextOfBatch});
        if (started)
            g_events.statusText(progress.c_str());
        else if (g_batch.running)
            FailBatch();
        return;
    }
    EndBatch();
}

void BuildAll() {
    StageSettle(true);  // the end of an earlier build that is not shown yet is not the batch's
    if (CompilerIsBuilding()) {
        g_events.statusText(kBuildBusy);
        return;
    }
    std::vector<HWND> editors;
    for (const DocumentTab& tab : g_documents.tabs)
        if (tab.hasFile && IsBatchBuildSource(tab.path)) editors.push_back(tab.editor);
    OutputPaneClear();
    CompilerClearErrors();
    OutputPaneAppend(L"=== Batch Build All ===\r\n", 0);
    g_batch = {.editors = std::move(editors), .running = true};
    BuildNextOfBatch();
}

void BuildAndRun() {
    const DocumentTab* tab = ActiveDocument();
    if (tab != nullptr && !tab->hasFile) {
        FileSave(g_documents.activeTab);  // asks for a name
        tab = ActiveDocument();
    }
    if (tab == nullptr || !tab->hasFile) {
        OutputPaneClear();
        OutputPaneAppend(L"Run cancelled: save the active tab to a source file first.\r\n", kRed);
        g_events.statusText(L"Run cancelled");
        return;
    }
    BuildStart({.after = AfterBuild::RunProgram});
}

// A file that is open in a tab is somebody's work, whatever its name.
void DeleteProduct(const std::wstring& path, const std::wstring& source) {
    if (SamePathText(path, source) || !FileExists(path.c_str())) return;
    const bool open = TabBarFindPath(path.c_str()) >= 0;
    if (open || !DeleteFileW(PathForSystem(path.c_str()).c_str()))
        OutputPaneAppend(FormatW(L"Not deleted: %s%s\r\n", path.c_str(), open ? L" (open in the editor)" : L"").c_str(),
                         kRed);
}

void Clean() {
    const DocumentTab* tab = ActiveDocument();
    if (tab == nullptr || !tab->hasFile) {
        OutputPaneAppend(L"Clean cancelled: save the active tab to a source file first.\r\n", kRed);
        g_events.statusText(L"Clean cancelled");
        return;
    }
    const std::wstring source = tab->path;
    wchar_t product[kPathCapacity] = {};
    CompilerMakeOutputPath(source.c_str(), product, kPathCapacity);
    DeleteProduct(product, source);
    CompilerMakeAsmPath(source.c_str(), product, kPathCapacity);
    // A source without an extension in a folder with a dot has its listing's name outside that folder.
    if (SamePathText(FolderOf(product), FolderOf(source))) DeleteProduct(product, source);
    for (const wchar_t* extension : {L".log", L".lst", L".err", L".buildlog"})
        DeleteProduct(ReplaceExtension(source, extension), source);
    OutputPaneAppend(L"Cleaned build outputs.\r\n", 0);
}

void Stop() {
    if (!CompilerIsBuilding()) return;
    g_batch.editors.resize(g_batch.next);  // no further document
    CompilerKill();
    g_events.statusText(L"Build stopped");
}

void UseCompiler(std::uint32_t id) {
    SettingsChange([id](Settings& settings) { settings.activeCompiler = static_cast<std::int32_t>(id); });
    SettingsSave(nullptr);
}

void UseProfile(int profile) {
    constexpr const wchar_t* names[] = {L"Debug", L"Release", L"Fast"};
    SettingsChange([profile](Settings& settings) { settings.profile = profile; });
    SettingsSave(nullptr);
    g_events.statusText(FormatW(L"Build profile: %s", names[profile]).c_str());
    g_events.refreshWanted();
}

using Starter = void (*)();

// What a command starts; null for one that starts nothing.
Starter StarterOf(int command) {
    switch (command) {
        case IDM_BUILD: return [] { StartCompilerBuild(false, false); };
        case IDM_BUILD_RUN: return BuildAndRun;
        case IDM_BUILD_SYNTAX: return [] { StartCompilerBuild(true, false); };
        case IDM_BUILD_ALL: return BuildAll;
        default: return nullptr;
    }
}

}  // namespace

void RunBuiltProgram(const std::wstring& program) {
    const auto result = reinterpret_cast<INT_PTR>(
        ShellExecuteW(g_ui.hMainWnd, L"open", program.c_str(), nullptr, FolderOf(program).c_str(), SW_SHOWNORMAL));
    if (result > 32) return;
    OutputPaneAppend(
        FormatW(L"Run failed for: %s\r\nShellExecute error: %ld\r\n", program.c_str(), static_cast<long>(result))
            .c_str(),
        kRed);
    g_events.statusText(L"Run failed");
}

void BatchOnBuildEnd(bool success) {
    if (!g_batch.running) return;
    if (!success) {
        FailBatch();
        return;
    }
    ++g_batch.succeeded;
    BuildNextOfBatch();
}

bool CompilerIsBuilding() { return StageRuns() || g_batch.running; }

bool CmdHandle_Build(int command) {
    if (const Starter start = StarterOf(command)) {
        if (CompilerIsBuilding())
            g_events.statusText(kBuildBusy);
        else if (!BuildRefusedByDebugger())
            start();
        return true;
    }
    if (const CompilerMenuEntry* entry = CompilerEntryByCommand(command)) {
        UseCompiler(entry->id);
        return true;
    }
    switch (command) {
        case IDM_BUILD_STOP: Stop(); return true;
        case IDM_BUILD_CLEAN: Clean(); return true;
        case IDM_PROFILE_DEBUG:
        case IDM_PROFILE_RELEASE:
        case IDM_PROFILE_FAST: UseProfile(command - IDM_PROFILE_DEBUG); return true;
        case IDM_ERROR_NEXT: CompilerNextError(); return true;
        case IDM_ERROR_PREVIOUS: CompilerPrevError(); return true;
        default: return false;
    }
}
