// The places of included files. Pure.
#include "compile/include_paths.h"

#include <algorithm>

namespace {

std::wstring Joined(std::wstring_view folder, std::wstring_view name) {
    std::wstring path(folder);
    if (!path.empty() && path.back() != L'\\') path += L'\\';
    return path.append(name);
}

bool IsAbsolute(std::wstring_view name) { return name.starts_with(L"\\") || (name.size() > 1 && name[1] == L':'); }

}  // namespace

std::vector<std::wstring> IncludeFolders(std::wstring_view setting) {
    std::vector<std::wstring> folders;
    while (!setting.empty()) {
        const std::size_t end = std::min(setting.find(L';'), setting.size());
        std::wstring_view folder = setting.substr(0, end);
        while (!folder.empty() && (folder.front() == L' ' || folder.front() == L'"')) folder.remove_prefix(1);
        while (!folder.empty() && (folder.back() == L' ' || folder.back() == L'"')) folder.remove_suffix(1);
        if (!folder.empty()) folders.emplace_back(folder);
        setting.remove_prefix(std::min(end + 1, setting.size()));
    }
    return folders;
}

std::vector<std::wstring> IncludePlaces(std::wstring_view name, std::wstring_view folderOfFile,
                                        std::span<const std::wstring> folders) {
    std::wstring written(name);
    std::ranges::replace(written, L'/', L'\\');
    if (IsAbsolute(written)) return {written};
    std::vector<std::wstring> places;
    if (!folderOfFile.empty()) places.push_back(Joined(folderOfFile, written));
    for (const std::wstring& folder : folders) places.push_back(Joined(folder, written));
    return places;
}
