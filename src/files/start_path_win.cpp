#include "files/start_path.h"

#include "files/file_io.h"

#include <windows.h>

// The path with the short names (8.3) of its folders and its file, without a prefix. The path itself when the volume
// has no short names.
static std::wstring PathShortForm(const std::wstring& path) {
    const std::wstring known = PathForSystem(path.c_str());
    const DWORD size = GetShortPathNameW(known.c_str(), nullptr, 0);
    std::wstring brief(size, L'\0');
    const DWORD length = size == 0 ? 0 : GetShortPathNameW(known.c_str(), brief.data(), size);
    if (length == 0 || length >= size) return path;
    brief.resize(length);
    if (brief.starts_with(L"\\\\?\\UNC\\")) return L"\\\\" + brief.substr(8);
    return brief.starts_with(L"\\\\?\\") ? brief.substr(4) : brief;
}

std::wstring WorkingFolderOf(const std::wstring& folder) {
    if (folder.size() <= kLongestStartPath) return folder;
    const std::wstring brief = PathShortForm(folder);
    return brief.size() <= kLongestStartPath ? brief : std::wstring();
}
