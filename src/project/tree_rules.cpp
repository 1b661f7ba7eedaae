// Decides what the project tree shows of a folder. Pure.
#include "project/tree_rules.h"

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

void TreeFinishListing(TreeListing& listing) {
    TreeSort(listing.entries);
    if (listing.entries.size() <= kTreeMaxShown) return;
    listing.omitted = listing.entries.size() - kTreeMaxShown;
    listing.entries.resize(kTreeMaxShown);
}

std::vector<TreeRow> TreeRowsOf(const TreeListing& listing, const std::wstring& folder,
                                const std::set<std::wstring>& reopen) {
    std::vector<TreeRow> rows;
    if (!listing.readable && listing.omitted == 0) rows.push_back({L"(cannot be read)", NodeKind::Note});
    for (const TreeEntry& entry : listing.entries) {
        const bool open = entry.isFolder && !reopen.empty() && reopen.contains(TreeJoin(folder, entry.name));
        rows.push_back({entry.name, entry.isFolder ? NodeKind::FolderUnread : NodeKind::File, open});
    }
    if (listing.omitted > 0)
        rows.push_back({L"(" + std::to_wstring(listing.omitted) + L" more not shown)", NodeKind::Note});
    return rows;
}

std::wstring TreeJoin(std::wstring_view folder, std::wstring_view name) {
    std::wstring path{folder};
    if (!path.ends_with(L'\\')) path += L'\\';
    return path.append(name);
}

std::wstring TreeRootOf(std::wstring_view setting) {
    std::wstring root{setting};
    while (root.size() > 1 && root.ends_with(L'\\')) root.pop_back();
    return root.ends_with(L':') ? root + L"\\" : root;
}

std::int32_t TreeFirstWidth(std::int32_t width) { return width > 400 ? 200 : width; }
