// The dialog for a new project. Modal, UI thread.
#include "base/log.h"
#include "base/path.h"
#include "base/texts.h"
#include "compile/build_source.h"
#include "documents/file_commands.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "project/new_project.h"
#include "project/project.h"
#include "project/project_file.h"
#include "resources/ids.h"
#include "settings/compiler_table.h"
#include "settings/settings_state.h"
#include "ui/dialog_theme.h"
#include "ui/path_dialog.h"
#include "ui/ui_state.h"
#include "ui/window_text.h"

#include <shlobj.h>

#include <algorithm>

namespace {

struct NewProjectDialog {
    std::vector<ProjectSample> samples;
    std::wstring file;  // of the project that was made
};
NewProjectDialog g_newProject;

int ChosenOf(HWND dialog, int combo) {
    return static_cast<int>(std::max<LRESULT>(SendDlgItemMessageW(dialog, combo, CB_GETCURSEL, 0, 0), 0));
}

NewProject AskedProject(HWND dialog) {
    NewProject project{.name = WindowText(GetDlgItem(dialog, IDC_PROJECT_NAME)),
                       .parent = WindowText(GetDlgItem(dialog, IDC_PROJECT_FOLDER)),
                       .compiler = static_cast<std::uint32_t>(ChosenOf(dialog, IDC_PROJECT_COMPILER)),
                       .sample = g_newProject.samples[static_cast<std::size_t>(ChosenOf(dialog, IDC_PROJECT_SAMPLE))]};
    while (project.name.ends_with(L' ')) project.name.pop_back();
    project.name.erase(0, project.name.find_first_not_of(L' '));
    return project;
}

void ShowResult(HWND dialog, const std::wstring& text) { SetDlgItemTextW(dialog, IDC_PROJECT_RESULT, text.c_str()); }

void ShowWhatWillBe(HWND dialog) {
    const NewProject project = AskedProject(dialog);
    const bool whole = ProjectNameProblem(project.name).empty() && PathIsAbsolute(project.parent);
    if (!whole) return ShowResult(dialog, project.name.empty() ? L"" : ProjectNameProblem(project.name));
    const std::wstring note = NewProjectNote(project);
    ShowResult(dialog, NewProjectFile(project) + (note.empty() ? L"" : L"\r\n" + note));
}

// Keeps the chosen sample when the other compiler has it, too.
void FillSamples(HWND dialog) {
    const int chosen = ChosenOf(dialog, IDC_PROJECT_SAMPLE);
    const std::wstring before =
        g_newProject.samples.empty() ? L"" : g_newProject.samples[static_cast<std::size_t>(chosen)].path;
    g_newProject.samples = ProjectSamples(static_cast<std::uint32_t>(ChosenOf(dialog, IDC_PROJECT_COMPILER)));
    SendDlgItemMessageW(dialog, IDC_PROJECT_SAMPLE, CB_RESETCONTENT, 0, 0);
    WPARAM select = 0;
    for (std::size_t i = 0; i < g_newProject.samples.size(); ++i) {
        SendDlgItemMessageW(dialog, IDC_PROJECT_SAMPLE, CB_ADDSTRING, 0,
                            reinterpret_cast<LPARAM>(g_newProject.samples[i].label.c_str()));
        if (g_newProject.samples[i].path == before) select = i;
    }
    SendDlgItemMessageW(dialog, IDC_PROJECT_SAMPLE, CB_SETCURSEL, select, 0);
}

bool IsFolderThere(const std::wstring& folder) {
    return PathAnswers(folder.c_str()) && DirectoryExists(folder.c_str());
}

// Beside the project that is open, else beside the one that was used last; else where the user works: the folder of the
// active file, or the one of the last file. The program's own folder, with its samples, is none of the user's.
std::wstring FolderForProjects() {
    if (!ProjectRoot().empty()) return FolderOf(ProjectRoot().substr(0, ProjectRoot().size() - 1));
    for (int i = 0; i < g_settings.mruCount; ++i)
        if (const std::wstring folder = FolderOf(g_settings.mruFiles[i]);
            FileIsProject(g_settings.mruFiles[i]) && IsFolderThere(folder))
            return FolderOf(folder);
    wchar_t program[kPathCapacity] = {}, folder[kPathCapacity] = {};
    AppExeDirectory(program, kPathCapacity);
    if (FileOpenResolveInitialDirectory(folder, kPathCapacity) != 0 && !PathIsWithin(program, folder) &&
        IsFolderThere(folder))
        return folder;
    wchar_t documents[MAX_PATH] = {};
    return SHGetFolderPathW(nullptr, CSIDL_PERSONAL, nullptr, SHGFP_TYPE_CURRENT, documents) == S_OK ? documents : L"";
}

void FillNewProject(HWND dialog) {
    SendDlgItemMessageW(dialog, IDC_PROJECT_NAME, EM_SETLIMITTEXT, 100, 0);
    SendDlgItemMessageW(dialog, IDC_PROJECT_FOLDER, EM_SETLIMITTEXT, kPathCapacity - 1, 0);
    SetDlgItemTextW(dialog, IDC_PROJECT_FOLDER, FolderForProjects().c_str());
    for (const CompilerProfile& each : g_compilers)
        SendDlgItemMessageW(dialog, IDC_PROJECT_COMPILER, CB_ADDSTRING, 0,
                            reinterpret_cast<LPARAM>(CompilerLabel(each.id, CompilerExists(each.id)).c_str()));
    SendDlgItemMessageW(dialog, IDC_PROJECT_COMPILER, CB_SETCURSEL, CompilerNow(), 0);
    FillSamples(dialog);
}

void AcceptNewProject(HWND dialog) {
    std::wstring reason;
    if (MakeProject(AskedProject(dialog), &g_newProject.file, &reason)) {
        EndDialog(dialog, IDOK);
        return;
    }
    ShowResult(dialog, reason);
    const bool name = !ProjectNameProblem(AskedProject(dialog).name).empty();
    SetFocus(GetDlgItem(dialog, name ? IDC_PROJECT_NAME : IDC_PROJECT_FOLDER));
}

void BrowseForFolder(HWND dialog) {
    std::wstring folder = WindowText(GetDlgItem(dialog, IDC_PROJECT_FOLDER));
    if (AskFolderPath(dialog, Text(L"Choose the folder in which the project gets its own"), folder))
        SetDlgItemTextW(dialog, IDC_PROJECT_FOLDER, folder.c_str());
}

void OnNewProjectCommand(HWND dialog, int control, int notification) {
    if (control == IDOK) AcceptNewProject(dialog);
    if (control == IDCANCEL) EndDialog(dialog, IDCANCEL);
    if (control == IDC_PROJECT_BROWSE) BrowseForFolder(dialog);
    if (control == IDC_PROJECT_COMPILER && notification == CBN_SELCHANGE) FillSamples(dialog);
    if (control == IDC_PROJECT_SAMPLE && notification == CBN_SELCHANGE) ShowWhatWillBe(dialog);
    const bool typed = notification == EN_CHANGE && !g_newProject.samples.empty();
    if (typed && (control == IDC_PROJECT_NAME || control == IDC_PROJECT_FOLDER)) ShowWhatWillBe(dialog);
}

INT_PTR CALLBACK NewProjectDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
    switch (message) {
        case WM_INITDIALOG:
            FillNewProject(dialog);
            DialogApplyTheme(dialog);
            return TRUE;
        case WM_COMMAND: OnNewProjectCommand(dialog, LOWORD(wParam), HIWORD(wParam)); return TRUE;
        default: return FALSE;
    }
}

}  // namespace

bool AskNewProject(HWND owner, std::wstring* file) {
    g_newProject = {};
    const INT_PTR end = DialogBoxParamW(g_ui.hInstance, MAKEINTRESOURCEW(IDD_PROJECT_NEW), owner, NewProjectDlgProc, 0);
    if (end == -1) AppLogMsg(L"FAIL: AskNewProject error=%lu", GetLastError());
    *file = g_newProject.file;
    return end == IDOK;
}
