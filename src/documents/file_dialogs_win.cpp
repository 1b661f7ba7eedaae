// The system's open and save dialogs. Knows no document. UI thread.
#include "documents/file_dialogs.h"

#include "base/bounded_text.h"
#include "base/log.h"
#include "base/path.h"
#include "documents/file_dialog_texts.h"
#include "ui/message.h"
#include "ui/ui_state.h"

#include <windows.h>

#include <cderr.h>
#include <commdlg.h>

#include <string>

namespace {

bool RunFileDialog(BOOL(WINAPI* dialog)(LPOPENFILENAMEW), OPENFILENAMEW request) {
    const std::wstring filter = FileDialogFilter();
    request.lStructSize = sizeof request;
    request.hwndOwner = g_ui.hMainWnd;
    request.lpstrFilter = filter.c_str();
    request.nFilterIndex = 1;
    const std::wstring path{request.lpstrFile};
    DWORD error = 0;  // 0 when the user cancelled
    for (const std::wstring& name : FileDialogNames(path)) {
        SafeCopyW(request.lpstrFile, request.nMaxFile, name);
        OPENFILENAMEW attempt = request;
        if (dialog(&attempt) != FALSE) return true;
        error = CommDlgExtendedError();
        if (error != FNERR_INVALIDFILENAME) break;
    }
    if (error == FNERR_BUFFERTOOSMALL) {
        ErrorMessage(L"The path is too long: the editor takes paths of up to %d characters.",
                     static_cast<int>(request.nMaxFile - 1));
    } else if (error != 0) {
        AppLogMsg(L"FAIL: file dialog error=0x%04X name=%s", error, path.c_str());
        ErrorMessage(L"The file dialog could not be shown (error 0x%04X).", error);
    }
    return false;
}

}  // namespace

bool AskOpenPath(wchar_t* path, std::size_t capacity, const wchar_t* directory) {
    OPENFILENAMEW request = {};
    request.lpstrFile = path;
    request.nMaxFile = static_cast<DWORD>(capacity);
    request.lpstrInitialDir = directory;
    request.Flags = OFN_HIDEREADONLY | OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST | OFN_NOCHANGEDIR;
    return RunFileDialog(GetOpenFileNameW, request);
}

bool AskSavePath(wchar_t* path, std::size_t capacity, const wchar_t* directory) {
    OPENFILENAMEW request = {};
    request.lpstrFile = path;
    request.nMaxFile = static_cast<DWORD>(capacity);
    request.lpstrInitialDir = directory;
    request.lpstrDefExt = L"bas";
    request.Flags = OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    return RunFileDialog(GetSaveFileNameW, request);
}
