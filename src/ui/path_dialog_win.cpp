#include "ui/path_dialog.h"

#include "base/bounded_text.h"
#include "base/log.h"
#include "base/texts.h"
#include "ui/message.h"
#include "ui/path_dialog_names.h"

#include <cderr.h>
#include <commdlg.h>
#include <objbase.h>
#include <shlobj.h>

namespace {

void TellFileDialogProblem(DWORD error, const std::wstring& path) {
    if (error == FNERR_BUFFERTOOSMALL)
        return ErrorMessage(Text(L"The path is too long: the editor takes paths of up to %d characters."),
                            static_cast<int>(kPathCapacity - 1));
    AppLogMsg(L"FAIL: file dialog error=0x%04X name=%s", error, path.c_str());
    ErrorMessage(Text(L"The file dialog could not be shown (error 0x%04X)."), error);
}

// The dialog opens with this folder selected.
int CALLBACK SelectFolder(HWND dialog, UINT message, LPARAM, LPARAM folder) {
    if (message == BFFM_INITIALIZED) SendMessageW(dialog, BFFM_SETSELECTIONW, TRUE, folder);
    return 0;
}

}  // namespace

bool AskFilePath(const PathQuestion& question, std::wstring& path) {
    wchar_t chosen[kPathCapacity] = {};
    OPENFILENAMEW request = {};
    request.lStructSize = sizeof(request);
    request.hwndOwner = question.owner;
    const std::wstring filter = question.filter != nullptr ? FilterText(question.filter) : std::wstring();
    request.lpstrFilter = question.filter != nullptr ? filter.c_str() : nullptr;
    request.nFilterIndex = 1;
    request.lpstrFile = chosen;
    request.nMaxFile = static_cast<DWORD>(kPathCapacity);
    request.lpstrInitialDir = question.folder;
    request.lpstrDefExt = question.extension;
    request.Flags = OFN_HIDEREADONLY | OFN_NOCHANGEDIR |
                    static_cast<DWORD>(question.save ? OFN_OVERWRITEPROMPT : OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST);
    DWORD error = 0;  // 0 when the user cancelled
    for (const std::wstring& name : FileDialogNames(path)) {
        SafeCopyW(chosen, name);
        OPENFILENAMEW attempt = request;
        if ((question.save ? GetSaveFileNameW(&attempt) : GetOpenFileNameW(&attempt)) != FALSE) {
            path = chosen;
            return true;
        }
        error = CommDlgExtendedError();
        if (error != FNERR_INVALIDFILENAME) break;
    }
    if (error != 0) TellFileDialogProblem(error, path);
    return false;
}

bool AskFolderPath(HWND owner, const wchar_t* title, std::wstring& folder) {
    BROWSEINFOW request = {};
    request.hwndOwner = owner;
    request.lpszTitle = title;
    request.ulFlags = BIF_RETURNONLYFSDIRS;
    if (!folder.empty()) {
        request.lpfn = SelectFolder;
        request.lParam = reinterpret_cast<LPARAM>(folder.c_str());
    }
    LPITEMIDLIST chosen = SHBrowseForFolderW(&request);
    if (chosen == nullptr) return false;  // cancelled
    wchar_t path[MAX_PATH] = {};
    const bool named = SHGetPathFromIDListW(chosen, path) != FALSE;
    CoTaskMemFree(chosen);
    if (named)
        folder = path;
    else
        ErrorMessage(Text(L"This folder cannot be used: it has no path, or one that is too long."));
    return named;
}
