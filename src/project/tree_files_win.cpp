// Makes, renames and deletes files and folders for the project tree. UI thread, but for what runs on the worker.
#include "base/handles.h"
#include "base/path.h"
#include "base/system_error.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "documents/file_work.h"
#include "files/share_probe.h"
#include "project/tree_actions.h"
#include "project/tree_internal.h"
#include "ui/message.h"
#include "ui/ui_state.h"

#include <objbase.h>
#include <shellapi.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr DWORD kNoAnswer = WAIT_TIMEOUT;      // the worker hangs and was left behind
constexpr std::size_t kLongestForShell = 240;  // characters of a path that the recycle bin takes

// Runs on a worker for which the window waits. A share that went away can be left by Esc.
DWORD RunOnDisk(const wchar_t* verb, const std::wstring& path, std::function<DWORD()> work) {
    struct Outcome {
        std::atomic<DWORD> error{0};
    };
    const auto outcome = std::make_shared<Outcome>();
    const std::wstring label{FileNameOf(path)};
    const bool ended = FileWorkRun({.verb = verb,
                                    .label = label.c_str(),
                                    .progress = std::make_shared<FileProgress>(),
                                    .work = [outcome, work = std::move(work)] { outcome->error = work(); }});
    return ended ? outcome->error.load() : kNoAnswer;
}

DWORD CreateOnDisk(const std::wstring& path, bool isFolder) {
    const std::wstring system = PathExtended(path);
    if (isFolder) return CreateDirectoryW(system.c_str(), nullptr) != FALSE ? 0 : GetLastError();
    const UniqueHandle file{
        CreateFileW(system.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr)};
    return file ? 0 : GetLastError();
}

// --- Deleting

// A link to a folder is removed, what it leads to is not.
DWORD DeleteForGood(const std::wstring& path) {
    const std::wstring system = PathExtended(path);
    const DWORD attributes = GetFileAttributesW(system.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return GetLastError();
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return DeleteFileW(system.c_str()) != FALSE ? 0 : GetLastError();
    DWORD failed = 0;
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
        WIN32_FIND_DATAW found;
        const UniqueFind find{FindFirstFileW(PathExtended(TreeJoin(path, L"*")).c_str(), &found)};
        if (find) do {
                const std::wstring_view name = found.cFileName;
                if (name == L"." || name == L"..") continue;
                if (const DWORD error = DeleteForGood(TreeJoin(path, name)); error != 0) failed = error;
            } while (FindNextFileW(find.Get(), &found) != FALSE);
    }
    if (failed != 0) return failed;
    return RemoveDirectoryW(system.c_str()) != FALSE ? 0 : GetLastError();
}

// On the worker: moves to the recycle bin. When that refuses, the system itself asks before it deletes, in a box of its own
// over `owner` (FOF_WANTNUKEWARNING).
DWORD RecycleOnDisk(const std::wstring& path, HWND owner) {
    if (GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES) return GetLastError();
    const bool com = SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE));
    const std::wstring list = path + L'\0';  // ends with a second one
    SHFILEOPSTRUCTW operation = {};
    operation.hwnd = owner;
    operation.wFunc = FO_DELETE;
    operation.pFrom = list.c_str();
    operation.fFlags = FOF_ALLOWUNDO | FOF_NOCONFIRMATION | FOF_WANTNUKEWARNING | FOF_NOERRORUI | FOF_SILENT;
    const int result = SHFileOperationW(&operation);
    if (com) CoUninitialize();
    if (result == 0 && operation.fAnyOperationsAborted != FALSE) return ERROR_CANCELLED;
    if (result == 0) return 0;
    // The codes of this function are its own, so what is left tells more.
    return GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES ? 0 : ERROR_ACCESS_DENIED;
}

// Why the recycle bin cannot take it; empty when it can.
std::wstring BinRefusal(const std::wstring& path) {
    if (path.size() > kLongestForShell) return Text(L"its path is too long for that");
    if (PathIsRemote(path.c_str())) return Text(L"it is on the network");
    wchar_t root[4] = {path[0], path.size() > 1 ? path[1] : L'\0', L'\\', L'\0'};
    const UINT drive = GetDriveTypeW(root);
    if (drive == DRIVE_REMOVABLE || drive == DRIVE_CDROM || drive == DRIVE_RAMDISK)
        return Text(L"its drive has no recycle bin");
    return {};
}

bool ConfirmDelete(const std::wstring& path, bool isFolder) {
    const std::wstring name{FileNameOf(path)};
    const std::wstring text =
        isFolder ? FormatW(Text(L"Delete the folder \"%s\" and all that is in it?\n\nIt goes to the recycle bin."),
                           name.c_str())
                 : FormatW(Text(L"Delete \"%s\"?\n\nIt goes to the recycle bin."), name.c_str());
    return AskUser({.caption = kProgramCaption,
                    .text = text.c_str(),
                    .buttons = AskButtons::OkCancel,
                    .icon = AskIcon::Question,
                    .inSelftest = Answer::Cancel,
                    .yes = Text(L"&Delete"),
                    .loses = Answer::Yes}) == Answer::Yes;
}

bool ConfirmForGood(const std::wstring& path, const std::wstring& why) {
    const std::wstring text =
        FormatW(Text(L"\"%s\" cannot go to the recycle bin, because %s.\n\nDelete it for good? This cannot be undone."),
                std::wstring{FileNameOf(path)}.c_str(), why.c_str());
    return AskUser({.caption = kProgramCaption,
                    .text = text.c_str(),
                    .buttons = AskButtons::OkCancel,
                    .icon = AskIcon::Warning,
                    .inSelftest = Answer::No,
                    .enterIsNo = true,
                    .yes = Text(L"&Delete for Good"),
                    .loses = Answer::Yes}) == Answer::Yes;
}

std::vector<DocumentId> DocumentsWithin(const std::wstring& path) {
    std::vector<DocumentId> documents;
    for (const DocumentTab& tab : g_documents.tabs)
        if (tab.hasFile && PathIsWithin(path, tab.path)) documents.push_back(tab.id);
    return documents;
}

// False when the user keeps it, or one of its documents.
bool MayDelete(const std::wstring& path, bool isFolder, const std::wstring& refusal) {
    if (!(refusal.empty() ? ConfirmDelete(path, isFolder) : ConfirmForGood(path, refusal))) return false;
    const std::vector<DocumentId> documents = DocumentsWithin(path);
    return documents.empty() || FileConfirmCloseAll(documents) != 0;
}

void CloseDeleted(const std::vector<DocumentId>& documents, const std::wstring& path) {
    for (const DocumentId document : documents) {
        const int tab = TabBarFindDocument(document);
        if (tab >= 0 && PathIsWithin(path, TabAt(tab).path)) TabBarRemove(tab);
    }
}

}  // namespace

DWORD TreeFileCreate(const std::wstring& path, bool isFolder) {
    return RunOnDisk(
        Text(L"Making"), path, [path, isFolder] { return CreateOnDisk(path, isFolder); });
}

DWORD TreeFileMove(const std::wstring& from, const std::wstring& to) {
    return RunOnDisk(
        Text(L"Renaming"), from,
        [from, to] {
            // Without flags nothing that is there is replaced.
            return MoveFileExW(PathExtended(from).c_str(), PathExtended(to).c_str(), 0) != FALSE ? DWORD{0}
                                                                                                 : GetLastError();
        });
}

std::wstring TreeFailure(const wchar_t* what, const std::wstring& path, DWORD error) {
    const std::wstring why =
        error == kNoAnswer
            ? std::wstring{Text(L"Its drive does not answer. It may still happen when the drive is back.")}
        : error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS
            ? std::wstring{Text(L"There is already a file or folder of that name.")}
        : error == ERROR_PATH_NOT_FOUND || error == ERROR_FILE_NOT_FOUND
            ? std::wstring{Text(L"It, or the folder that it is in, is no longer there.")}
            : SystemErrorText(error);
    return path + L" " + what + L".\n\n" + why;
}

void TreeDelete(TreeNode* node) {
    if (!TreeCommandsOf(node).change || g_tree.edited != nullptr) return;
    const std::wstring path = TreePathOf(*node);
    const std::wstring folder = TreePathOf(*node->parent);
    const std::wstring refusal = BinRefusal(path);
    const bool may = MayDelete(path, node->kind == NodeKind::Folder, refusal);
    SetFocus(TreeWindow());
    if (!may) return;
    const std::vector<DocumentId> documents = DocumentsWithin(path);
    const HWND owner = g_ui.hMainWnd;
    const DWORD error = RunOnDisk(Text(L"Deleting"), path, [path, owner, forGood = !refusal.empty()] {
        return forGood ? DeleteForGood(path) : RecycleOnDisk(path, owner);
    });
    if (error == 0)
        CloseDeleted(documents, path);
    else if (error != ERROR_CANCELLED)
        ErrorMessage(L"%s", TreeFailure(Text(L"could not be deleted"), path, error).c_str());
    SetFocus(TreeWindow());
    if (TreeNode* const parent = TreeFind(g_tree.top.get(), folder); parent != nullptr) TreeReadAgain(*parent);
}
