#include "documents/file_dialogs.h"

#include "base/path.h"
#include "base/system_error.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "documents/file_commands.h"
#include "documents/file_dialog_texts.h"
#include "files/share_probe.h"
#include "files/user_folder.h"
#include "ui/message.h"
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

// With those above it. False, with the system's error, when it cannot be made.
bool EnsureFolders(const std::wstring& folder) {
    if (folder.empty() || DirectoryExists(folder.c_str())) return true;
    const std::wstring parent = FolderOf(folder);
    return (parent.size() >= folder.size() || EnsureFolders(parent)) && EnsureFolder(folder);
}

}  // namespace

bool AskOpenPath(std::wstring& path, const wchar_t* folder) { return AskSourcePath(path, folder, false); }
bool AskSavePath(std::wstring& path, const wchar_t* folder) { return AskSourcePath(path, folder, true); }

bool OfferFolder(const std::wstring& folder) {
    if (!PathAnswers(folder.c_str()) || DirectoryExists(folder.c_str())) return true;
    const std::wstring text = FormatW(Text(L"The folder %s does not exist.\n\nMake it?"), folder.c_str());
    const Answer answer = AskUser({.caption = kProgramCaption,
                                   .text = text.c_str(),
                                   .buttons = AskButtons::OkCancel,
                                   .icon = AskIcon::Question,
                                   .inSelftest = Answer::No,
                                   .yes = Text(L"&Make Folder")});
    return answer == Answer::Yes && MakeFolder(folder);
}

bool MakeFolder(const std::wstring& folder) {
    if (EnsureFolders(folder)) return true;
    const std::wstring reason = SystemErrorText(GetLastError());
    ErrorMessage(Text(L"The folder %s could not be made.\n\n%s"), folder.c_str(), reason.c_str());
    return false;
}
