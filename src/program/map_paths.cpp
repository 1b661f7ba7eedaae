// The part of map_paths.h that needs no disk. Pure.
#include "program/map_paths.h"

#include "base/path.h"

#include <algorithm>

namespace {

std::wstring Stem(std::wstring_view path) {
    const std::size_t slash = path.find_last_of(L"\\/");
    return ReplaceExtension(slash == std::wstring_view::npos ? path : path.substr(slash + 1), L"");
}

}  // namespace

std::wstring MapPath(std::wstring_view path, std::wstring_view sourceFolder) {
    std::wstring result(path);
    std::ranges::replace(result, L'/', L'\\');
    if (result.empty() || PathIsAbsolute(result)) return result;
    while (result.starts_with(L".\\")) result.erase(0, 2);
    std::wstring folder(sourceFolder);
    if (!folder.empty() && !folder.ends_with(L'\\')) folder += L'\\';
    return folder + result;
}

bool LooksLikeCopy(std::wstring_view path, std::wstring_view source) {
    const std::wstring_view extension = FileExtension(path);
    return (PathEqualsIgnoreCase(extension, L".bas") || PathEqualsIgnoreCase(extension, L".pb")) &&
           PathEqualsIgnoreCase(Stem(path), Stem(source));
}
