// The program's folder in the user's own application data. Any thread.
#include "files/user_folder.h"

#include "files/file_io.h"

#include <shlobj.h>

#include <iterator>

// The environment variable LOCALAPPDATA comes first: a user can redirect it, and SHGetFolderPathW would load the
// libraries of the shell during a save.
static std::wstring LocalAppData() {
    wchar_t folder[1024];
    const DWORD length = GetEnvironmentVariableW(L"LOCALAPPDATA", folder, static_cast<DWORD>(std::size(folder)));
    if (length > 0 && length < std::size(folder)) return folder;
    wchar_t known[MAX_PATH];
    return SUCCEEDED(SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, known)) ? known : L"";
}

bool EnsureFolder(const std::wstring& folder) {
    return CreateDirectoryW(PathForSystem(folder.c_str()).c_str(), nullptr) != FALSE ||
           GetLastError() == ERROR_ALREADY_EXISTS;
}

std::wstring UserFolderPath() {
    const std::wstring folder = LocalAppData();
    return folder.empty() ? folder : folder + L"\\KVX-Editor\\";
}

std::wstring UserFolder() {
    const std::wstring folder = UserFolderPath();
    return !folder.empty() && EnsureFolder(folder.substr(0, folder.size() - 1)) ? folder : std::wstring{};
}
