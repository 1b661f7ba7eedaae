#include "documents/file_dialogs.h"

#include "documents/file_dialog_texts.h"
#include "ui/path_dialog.h"
#include "ui/ui_state.h"

namespace {

bool AskSourcePath(std::wstring& path, const wchar_t* folder, bool save) {
    const std::wstring filter = FileDialogFilter();
    return AskFilePath({.owner = g_ui.hMainWnd,
                        .filter = filter.c_str(),
                        .extension = save ? L"bas" : nullptr,
                        .folder = folder,
                        .save = save},
                       path);
}

}  // namespace

bool AskOpenPath(std::wstring& path, const wchar_t* folder) { return AskSourcePath(path, folder, false); }
bool AskSavePath(std::wstring& path, const wchar_t* folder) { return AskSourcePath(path, folder, true); }
