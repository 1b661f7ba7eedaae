// The commands on project files in the Project menu. UI thread.
#include "base/path.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "compile/build_source.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "project/new_project.h"
#include "project/project.h"
#include "project/project_file.h"
#include "resources/ids.h"
#include "settings/settings_state.h"
#include "ui/path_dialog.h"
#include "ui/ui_state.h"

#include <string>

namespace {

void NewProject() {
    std::wstring file;
    if (AskNewProject(g_ui.hMainWnd, &file) && ProjectOpenFile(file.c_str())) FocusCurrentEditor();
}

void OpenProjectAsked() {
    std::wstring path;
    wchar_t folder[kPathCapacity] = {};
    FileOpenResolveInitialDirectory(folder, kPathCapacity);
    if (AskFilePath({.owner = g_ui.hMainWnd,
                     .filter = English(L"Projects (*.kvxproj)\0*.kvxproj\0All Files (*.*)\0*.*\0"),
                     .folder = folder},
                    path) &&
        ProjectOpenFile(path.c_str()))
        FocusCurrentEditor();
}

void EditProjectFile() {
    if (FileShow(ProjectFilePath().c_str(), false) != 0) FocusCurrentEditor();
}

void SetMainSource() {
    const std::wstring path = TabAt(g_documents.activeTab).path;
    if (SamePathText(path, ProjectFilePath())) {
        g_events.statusText(Text(L"The project file cannot be the main source"));
        return;
    }
    if (!ProjectChangeFile("Project", "Main", ProjectWrittenPath(ProjectRoot(), path))) return;
    g_events.statusText(
        FormatW(Text(L"%s is the main source of %s"), std::wstring(FileNameOf(path)).c_str(), ProjectName().c_str())
            .c_str());
}

void KeepArguments() {
    const std::optional<BuildProject> project = BuildProjectNow();
    if (!project) return;
    const ProgramStart start = ProgramStartOfProject(*project);
    if (!ProjectChangeFile("Run", "Arguments", start.arguments)) return;
    const std::wstring folder = ProgramStartOfProject(*BuildProjectNow()).folder;  // as the file has it
    if (!SamePathText(folder, start.folder))
        ProjectChangeFile("Run", "Folder", ProjectWrittenPath(ProjectRoot(), start.folder));
    g_events.statusText(
        TextWith(L"The arguments are kept in {1}", {std::wstring(FileNameOf(ProjectFilePath()))}).c_str());
}

constexpr CommandHandler kProjectHandlers[] = {
    {IDM_PROJECT_NEW, [](int) { NewProject(); }},         {IDM_PROJECT_OPEN, [](int) { OpenProjectAsked(); }},
    {IDM_PROJECT_CLOSE, [](int) { ProjectClose(); }},     {IDM_PROJECT_EDIT, [](int) { EditProjectFile(); }},
    {IDM_PROJECT_SET_MAIN, [](int) { SetMainSource(); }}, {IDM_PROJECT_KEEP_ARGUMENTS, [](int) { KeepArguments(); }},
};

}  // namespace

std::span<const CommandHandler> ProjectCommandHandlers() { return kProjectHandlers; }
