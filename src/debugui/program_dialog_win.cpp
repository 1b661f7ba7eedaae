// The dialog for the arguments and the folder of a program that is debugged or run. Modal, UI thread only.
#include "debugui/program_dialog.h"

#include "base/bounded_text.h"
#include "base/log.h"
#include "base/texts.h"
#include "compile/build_source.h"
#include "documents/file_commands.h"
#include "resources/ids.h"
#include "settings/settings_state.h"
#include "ui/dialog_theme.h"
#include "ui/ui_state.h"
#include "ui/window_text.h"

#include <iterator>
#include <string>

namespace {

void FillProgramDialog(HWND dialog) {
    SendDlgItemMessageW(dialog, IDC_PROGRAM_ARGUMENTS, EM_SETLIMITTEXT, std::size(g_settings.programArguments) - 1, 0);
    SendDlgItemMessageW(dialog, IDC_PROGRAM_FOLDER, EM_SETLIMITTEXT, std::size(g_settings.programFolder) - 1, 0);
    const std::optional<BuildProject> project = BuildProjectAtHand();
    const ProgramStart start =
        project ? ProgramStartOfProject(*project) : ProgramStart{g_settings.programArguments, g_settings.programFolder};
    SetDlgItemTextW(dialog, IDC_PROGRAM_ARGUMENTS, start.arguments.c_str());
    SetDlgItemTextW(dialog, IDC_PROGRAM_FOLDER, start.folder.c_str());
    if (project)
        SetDlgItemTextW(dialog, IDC_PROGRAM_PROBLEM,
                        TextWith(L"Kept in the file of the project {1}", {project->name}).c_str());
}

void AcceptProgramDialog(HWND dialog) {
    const std::wstring arguments = WindowText(GetDlgItem(dialog, IDC_PROGRAM_ARGUMENTS));
    const std::wstring folder = WindowText(GetDlgItem(dialog, IDC_PROGRAM_FOLDER));
    if (!folder.empty() && !DirectoryExists(folder.c_str())) {
        SetDlgItemTextW(dialog, IDC_PROGRAM_PROBLEM, Text(L"There is no such folder."));
        SetFocus(GetDlgItem(dialog, IDC_PROGRAM_FOLDER));
        return;
    }
    if (BuildProjectAtHand()) {
        BuildSetStartOfProject({arguments, folder});
        PostMessageW(g_ui.hMainWnd, WM_COMMAND, IDM_PROJECT_KEEP_ARGUMENTS, 0);
        EndDialog(dialog, IDOK);
        return;
    }
    SettingsChange([&](Settings& settings) {
        SafeCopyW(settings.programArguments, arguments);
        SafeCopyW(settings.programFolder, folder);
    });
    SettingsSave(nullptr);
    EndDialog(dialog, IDOK);
}

INT_PTR CALLBACK ProgramDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
    switch (message) {
        case WM_INITDIALOG:
            FillProgramDialog(dialog);
            DialogApplyTheme(dialog);
            return TRUE;
        case WM_COMMAND:
            if (LOWORD(wParam) == IDOK) AcceptProgramDialog(dialog);
            if (LOWORD(wParam) == IDCANCEL) EndDialog(dialog, IDCANCEL);
            return TRUE;
        default: return FALSE;
    }
}

}  // namespace

void AskProgramArguments(HWND owner) {
    if (DialogBoxParamW(g_ui.hInstance, MAKEINTRESOURCEW(IDD_PROGRAM), owner, ProgramDlgProc, 0) == -1)
        AppLogMsg(L"FAIL: AskProgramArguments error=%lu", GetLastError());
}
