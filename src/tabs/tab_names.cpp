// Compares the paths from their ends: sorted that way, the most similar ones are neighbours. Pure.
#include "tabs/tab_names.h"

#include "base/path.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace {

// The parts of a path, the file name first.
using Parts = std::vector<std::wstring>;

Parts PartsFromTheEnd(std::wstring_view path) {
    Parts parts;
    while (!path.empty()) {
        const std::size_t at = path.rfind(L'\\');
        const std::wstring_view part = at == std::wstring_view::npos ? path : path.substr(at + 1);
        if (!part.empty()) parts.emplace_back(part);
        path = path.substr(0, at == std::wstring_view::npos ? 0 : at);
    }
    return parts;
}

std::size_t EqualParts(const Parts& a, const Parts& b) {
    const auto most = static_cast<std::ptrdiff_t>(std::min(a.size(), b.size()));
    return static_cast<std::size_t>(std::mismatch(a.begin(), a.begin() + most, b.begin()).first - a.begin());
}

// `folders`: how many of them are needed.
std::wstring ShownFolders(const Parts& parts, std::size_t folders) {
    folders = std::min(folders, parts.size() - 1);
    if (folders == 0) return {};
    if (folders == 1) return parts[1];
    return parts[folders] + (folders > 2 ? L"\\...\\" : L"\\") + parts[1];
}

}  // namespace

std::vector<std::wstring> DistinguishingFolders(std::span<const std::wstring_view> paths) {
    std::vector<Parts> keys;
    for (const std::wstring_view path : paths) keys.push_back(PartsFromTheEnd(PathKey(path)));
    std::vector<std::size_t> order(paths.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::sort(order, {}, [&](std::size_t i) -> const Parts& { return keys[i]; });
    std::vector<std::wstring> folders(paths.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        const Parts& own = keys[order[i]];
        std::size_t equal = 0;
        if (i > 0) equal = EqualParts(own, keys[order[i - 1]]);
        if (i + 1 < order.size()) equal = std::max(equal, EqualParts(own, keys[order[i + 1]]));
        if (equal > 0) folders[order[i]] = ShownFolders(PartsFromTheEnd(paths[order[i]]), equal);
    }
    return folders;
}
