// Opens, reads again and closes the project. The file is looked at by ProjectParse; here its folders and files are looked
// for on the disk. UI thread.
#include "project/project.h"

#include "base/log.h"
#include "base/path.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "base/worker.h"
#include "compile/build_source.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "files/file_io.h"
#include "files/session_file.h"
#include "files/share_probe.h"
#include "output/line_colours.h"
#include "output/output_pane.h"
#include "project/project_file.h"
#include "project/project_watch.h"
#include "settings/compiler_table.h"
#include "settings/settings_state.h"
#include "settings/settings_store.h"
#include "ui/message.h"
#include "ui/panes.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace {

struct OpenedProject {
    std::wstring path;  // of its file; empty: none is open
    std::wstring name;
    std::wstring root;
    std::string bytes;  // of the file as it was read
    ProjectFile file;
    ExcludedFolders excluded;
    bool missing = false;  // the file is not there, which was said
};
OpenedProject g_opened;

void SayProject(const std::wstring& text, COLORREF colour) {
    OutputPaneAppend((L"[Project] " + text + L"\r\n").c_str(), colour);
}

std::wstring StemOf(const std::wstring& path) {
    const std::wstring name(FileNameOf(path));
    return name.substr(0, name.rfind(L'.'));
}

// --- What the file names, on the disk

bool IsFolderThere(const std::wstring& path) { return PathAnswers(path.c_str()) && DirectoryExists(path.c_str()); }

void AddDiskFault(ProjectFile& file, int line, std::wstring text) {
    if (file.faults.size() < kMostProjectFaults) file.faults.push_back({line, false, std::move(text)});
}

std::wstring RootOfProject(const std::wstring& path, ProjectFile& file) {
    const std::wstring folder = FolderOf(path);
    std::wstring root = ProjectPath(folder, file.root.line != 0 ? file.root.text : L".");
    if (!IsFolderThere(root)) {
        AddDiskFault(file, std::max(file.root.line, 1), TextWith(L"there is no folder {1}", {root}));
        root = folder;
    }
    if (!root.ends_with(L'\\')) root += L'\\';
    return root;
}

std::wstring SourceOfProject(const std::wstring& root, ProjectFile& file) {
    if (file.source.line == 0) return {};
    std::wstring source = ProjectPath(root, file.source.text);
    if (!PathAnswers(source.c_str()) || !FileExists(source.c_str()))
        AddDiskFault(file, file.source.line, TextWith(L"there is no file {1}", {source}));
    return source;
}

std::vector<std::wstring> IncludesOfProject(const std::wstring& root, ProjectFile& file) {
    std::vector<std::wstring> folders;
    for (const ProjectValue& include : file.includes) {
        folders.push_back(ProjectPath(root, include.text));
        if (!IsFolderThere(folders.back()))
            AddDiskFault(file, include.line, TextWith(L"there is no folder {1}", {folders.back()}));
    }
    return folders;
}

BuildProject BuildProjectFrom(const OpenedProject& opened, ProjectFile& file) {
    BuildProject project{.name = opened.name,
                         .file = opened.path,
                         .root = opened.root,
                         .source = SourceOfProject(opened.root, file),
                         .flags = file.flags,
                         .includes = IncludesOfProject(opened.root, file),
                         .arguments = {},
                         .folder = {}};
    project.compiler = file.compiler.line != 0 ? file.compilerId : CompilerDefaultForFile(project.source.c_str());
    if (file.arguments.line != 0) project.arguments = file.arguments.text;
    if (file.folder.line != 0) {
        project.folder = ProjectPath(opened.root, file.folder.text);
        if (!IsFolderThere(*project.folder))
            AddDiskFault(file, file.folder.line, TextWith(L"there is no folder {1}", {*project.folder}));
    }
    return project;
}

// --- Reading

// Errors, and notes when the user has just written them. Returns the number of errors.
int SayFaults(const ProjectFile& file, bool notes) {
    int errors = 0;
    for (const ProjectFault& fault : file.faults) {
        if (fault.note && !notes) continue;
        errors += fault.note ? 0 : 1;
        OutputPaneAppend(ProjectFaultLine(g_opened.path, fault).c_str(), fault.note ? kLineYellow : kLineRed);
    }
    if (errors > 0) PaneShow(PaneId::Output, true);
    return errors;
}

std::wstring FaultCountText(int errors) {
    return errors == 0 ? L""
                       : TextWith(errors == 1 ? L", with {1} fault" : L", with {1} faults", {std::to_wstring(errors)});
}

// The open project becomes what its file says. Returns the number of faults, which are told.
int UseProjectBytes(std::string bytes, bool notes) {
    ProjectFile file = ProjectParse(bytes);
    g_opened.bytes = std::move(bytes);
    g_opened.missing = false;
    if (!file.readable) {  // what was there before stays in force
        g_opened.file.faults = file.faults;
        return SayFaults(g_opened.file, notes);
    }
    g_opened.name = file.name.line != 0 ? file.name.text : StemOf(g_opened.path);
    g_opened.root = RootOfProject(g_opened.path, file);
    g_opened.excluded = ProjectExcludesOf(file, g_opened.root);
    const std::optional<BuildProject> before = BuildProjectNow();
    BuildProject project = BuildProjectFrom(g_opened, file);
    // A compiler that the user has chosen since stays, unless the file now names another one.
    const bool sameFile = before && SamePathText(before->file, project.file);
    if (sameFile && g_opened.file.compiler.text == file.compiler.text) project.compiler = before->compiler;
    std::ranges::stable_sort(file.faults, {}, &ProjectFault::line);
    g_opened.file = std::move(file);
    BuildUseProject(std::move(project));
    return SayFaults(g_opened.file, notes);
}

void SayMissing() {
    if (std::exchange(g_opened.missing, true)) return;
    SayProject(TextWith(BuildProjectNow()
                            ? English(L"{1} is not there. The project stays open as it was read last and is read again "
                                      L"when the file is back; Project > Close Project forgets it.")
                            : English(L"{1} is not there. The project stays open and is read again when the file is "
                                      L"back; Project > Close Project forgets it."),
                        {g_opened.path}),
               kLineYellow);
    g_events.statusText(TextWith(L"The file of the project {1} is not there", {g_opened.name}).c_str());
}

// Shows the folder of the project in the tree and in the searches, and keeps the project for the next start.
void KeepProject(bool showTree) {
    SettingsChange([&](Settings& settings) {
        SafeCopyW(settings.projectFile, g_opened.path);
        SafeCopyW(settings.projectRoot, g_opened.root);
        if (showTree) settings.showProjectTree = 1;
    });
    SettingsSave(nullptr);
}

// Unless one of its files is shown already.
void ShowMainSource() {
    const std::optional<BuildProject>& project = BuildProjectNow();
    if (!project || project->source.empty()) return;
    const int active = g_documents.activeTab;
    const bool hasOne = IsTabIndex(active) && TabAt(active).hasFile && ProjectHoldsFile(*project, TabAt(active).path);
    if (!hasOne && PathAnswers(project->source.c_str()) && FileExists(project->source.c_str()))
        FileShow(project->source.c_str(), true);
}

bool FailToOpen(const wchar_t* path, const std::wstring& why) {
    ErrorMessage(Text(L"Failed to open project: %s\n\n%s"), path, why.c_str());
    return false;
}

}  // namespace

bool ProjectOpenFile(const wchar_t* path) {
    std::string bytes;
    if (!PathAnswers(path)) return FailToOpen(path, Text(L"The network does not answer."));
    if (!ReadProjectBytes(path, &bytes)) return FailToOpen(path, Text(L"The file cannot be read."));
    if (const ProjectFile file = ProjectParse(bytes); !file.readable) {
        const ProjectFault& fault = file.faults.front();
        return FailToOpen(path,
                          fault.line == 1 ? fault.text : FormatW(Text(L"Line %d: %s"), fault.line, fault.text.c_str()));
    }
    const bool another = !SamePathText(g_opened.path, path);
    g_opened = {.path = path};
    if (another) BuildUseProject(std::nullopt);
    const int faults = UseProjectBytes(std::move(bytes), true);
    ProjectWatch(g_ui.hMainWnd, g_opened.path, true);
    KeepProject(another);
    MruAddFile(path);
    SayProject(TextWith(L"Opened {1}: {2}", {g_opened.name, g_opened.path}), kLineTeal);
    ShowMainSource();
    g_events.statusText(TextWith(L"Project {1} opened{2}", {g_opened.name, FaultCountText(faults)}).c_str());
    return true;
}

void ProjectRestore() {
    if (!g_opened.path.empty()) {  // by the command line; a restored session may have brought another folder
        KeepProject(false);
        return;
    }
    if (g_settings.projectFile[0] == L'\0') return;
    g_opened = {.path = g_settings.projectFile, .name = StemOf(g_settings.projectFile)};
    std::string bytes;
    const bool there = PathAnswers(g_opened.path.c_str()) && ReadProjectBytes(g_opened.path, &bytes);
    if (there)
        UseProjectBytes(std::move(bytes), false);
    else
        SayMissing();
    ProjectWatch(g_ui.hMainWnd, g_opened.path, there);
    g_events.projectChanged();
}

void ProjectClose() {
    if (g_opened.path.empty()) return;
    const std::wstring name = g_opened.name;
    ProjectWatch(g_ui.hMainWnd, L"", false);
    g_opened = {};
    BuildUseProject(std::nullopt);
    SettingsChange([](Settings& settings) { settings.projectFile[0] = L'\0'; });
    SettingsSave(nullptr);
    g_events.statusText(TextWith(L"Project {1} closed", {name}).c_str());
}

bool ProjectChangeFile(std::string_view section, std::string_view key, std::wstring_view value) {
    const std::wstring path = g_opened.path;
    const int tab = TabBarFindPath(path.c_str());
    if (IsTabIndex(tab) && TabAt(tab).modified) {
        ErrorMessage(Text(L"%s has changes that are not saved. Save it first."), path.c_str());
        return false;
    }
    std::string bytes;
    const bool read = PathAnswers(path.c_str()) && ReadProjectBytes(path, &bytes) && ProjectParse(bytes).readable;
    std::string changed = read ? ProjectWithValue(bytes, section, key, value) : "";
    if (!read || !ReplaceFileWhole(path.c_str(), changed)) {
        AppLogMsg(L"FAIL: ProjectChangeFile read=%d error=%lu", read ? 1 : 0, GetLastError());
        ErrorMessage(Text(L"Failed to change the project file: %s"), path.c_str());
        return false;
    }
    UseProjectBytes(std::move(changed), false);
    if (IsTabIndex(tab) && TabAt(tab).editor != nullptr) FileReload(tab);
    return true;
}

void ProjectFollowRename(const std::wstring& from, const std::wstring& to) {
    if (g_opened.path.empty()) return;
    if (PathIsWithin(from, g_opened.path)) {
        ProjectOpenFile(PathAfterMove(g_opened.path, from, to).c_str());  // which also tells what it no longer finds
        return;
    }
    const std::optional<BuildProject> project = BuildProjectNow();
    if (!project || project->source.empty() || !PathIsWithin(from, project->source)) return;
    const std::wstring source = PathAfterMove(project->source, from, to);
    if (ProjectChangeFile("Project", "Main", ProjectWrittenPath(g_opened.root, source)))
        g_events.statusText(
            TextWith(L"{1} now names {2}", {std::wstring(FileNameOf(g_opened.path)), FileNameOf(source)}).c_str());
    else
        SayProject(TextWith(L"{1} still names {2} as the main source.", {g_opened.path, project->source}), kLineYellow);
}

const std::wstring& ProjectFilePath() { return g_opened.path; }

const std::wstring& ProjectName() { return g_opened.name; }

const std::wstring& ProjectRoot() { return g_opened.root; }

bool ProjectExcludes(const std::wstring& path, bool isFolder) {
    return IsInExcludedFolder(g_opened.excluded, path, isFolder);
}

const ExcludedFolders& ProjectExcludedFolders() { return g_opened.excluded; }

void ProjectAddIncludeFolders(const wchar_t* document, std::vector<std::wstring>* folders) {
    const std::optional<BuildProject>& project = BuildProjectNow();
    if (project && ProjectHoldsFile(*project, document))
        folders->insert(folders->begin(), project->includes.begin(), project->includes.end());
}

void ProjectOnSettings() {
    if (g_opened.path.empty() || g_opened.path == g_settings.projectFile) return;
    SettingsChange([](Settings& settings) { SafeCopyW(settings.projectFile, g_opened.path); });
}

void ProjectOnSaved(DocumentId document) {
    const int tab = TabBarFindDocument(document);
    if (g_opened.path.empty() || tab < 0 || !SamePathText(TabAt(tab).path, g_opened.path)) return;
    std::string bytes;
    if (!ReadProjectBytes(g_opened.path, &bytes)) return;  // the watch comes to it
    const std::wstring root = g_opened.root;
    const int faults = UseProjectBytes(std::move(bytes), true);
    if (root != g_opened.root) KeepProject(false);
    g_events.statusText(TextWith(L"Project {1} read again{2}", {g_opened.name, FaultCountText(faults)}).c_str());
}

void ProjectOnSeen(WPARAM posted) {
    ProjectSightPtr sight = WorkerTake<ProjectSightPtr>(posted);
    if (sight->path != g_opened.path) return;  // another one was opened meanwhile
    if (!sight->there) {
        SayMissing();
        return;
    }
    if (sight->bytes == g_opened.bytes && !g_opened.missing) return;
    const bool wasMissing = g_opened.missing;
    const std::wstring root = g_opened.root;
    const int faults = UseProjectBytes(std::move(sight->bytes), false);
    if (root != g_opened.root) KeepProject(false);
    SayProject(TextWith(wasMissing ? English(L"{1} is back and was read again{2}.")
                                   : English(L"{1} was changed by another program and was read again{2}."),
                        {g_opened.name, FaultCountText(faults)}),
               kLineTeal);
}

void ProjectShutdown(HWND window) { ProjectWatchEnd(window); }
