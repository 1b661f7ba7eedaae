// What the project tree shows of a folder. Pure.
#include "session/tree_rules.h"

#include "settings/file_type_table.h"

#include <algorithm>
#include <cwctype>

bool TreeShows(std::wstring_view name, bool isFolder, bool isHidden) {
    if (name.empty() || name.front() == L'.' || isHidden) return false;
    return isFolder || FileTypeOfPath(name) != nullptr;
}

void TreeSort(std::vector<TreeEntry>& entries) {
    const auto lower = [](wchar_t letter) { return std::towlower(static_cast<std::wint_t>(letter)); };
    const auto before = [&](const TreeEntry& a, const TreeEntry& b) {
        if (a.isFolder != b.isFolder) return a.isFolder;
        return std::lexicographical_compare(a.name.begin(), a.name.end(), b.name.begin(), b.name.end(),
                                            [&](wchar_t x, wchar_t y) { return lower(x) < lower(y); });
    };
    std::sort(entries.begin(), entries.end(), before);
}

std::wstring TreeRootLabel(std::wstring_view root) {
    std::wstring_view trimmed = root;
    while (!trimmed.empty() && trimmed.back() == L'\\') trimmed.remove_suffix(1);
    const std::size_t slash = trimmed.rfind(L'\\');
    const std::wstring_view last = slash == std::wstring_view::npos ? trimmed : trimmed.substr(slash + 1);
    return std::wstring{last.empty() ? root : last};
}
