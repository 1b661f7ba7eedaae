// Reads the ignore files that hold in a folder. Any thread.
#include "files/ignore_scope.h"

#include "base/path.h"
#include "files/file_io.h"

#include <windows.h>

#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t kIgnoreFileLimit = 1 << 20;  // bytes

// The scope for a folder with that ignore file; `outer` when it cannot be read.
std::shared_ptr<const IgnoreScope> ScopeOfFile(std::shared_ptr<const IgnoreScope> outer, const std::wstring& folder,
                                               const std::wstring& file) {
    std::string bytes;
    if (!ReadSharedFile(file, kIgnoreFileLimit, &bytes)) return outer;
    return std::make_shared<const IgnoreScope>(IgnoreScope{std::move(outer), folder.size(), IgnoreRulesOf(bytes)});
}

bool PathIsThere(const std::wstring& path) {
    return GetFileAttributesW(PathExtended(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

}  // namespace

std::shared_ptr<const IgnoreScope> IgnoreScopeAround(const std::wstring& root) {
    std::vector<std::wstring> around;  // from the root outwards, up to the repository's own folder
    std::wstring folder = root;
    while (!PathIsThere(folder + kRepository)) {
        const std::wstring parent = FolderOf(std::wstring_view{folder}.substr(0, folder.size() - 1));
        if (parent.empty() || parent.size() + 1 >= folder.size()) return nullptr;
        folder = parent.ends_with(L'\\') ? parent : parent + L'\\';
        around.push_back(folder);
    }
    std::shared_ptr<const IgnoreScope> scope =
        ScopeOfFile(nullptr, folder, folder + std::wstring{kRepository} + L"\\info\\exclude");
    for (auto each = around.rbegin(); each != around.rend(); ++each)
        if (PathIsThere(*each + kIgnoreFile)) scope = IgnoreScopeInside(std::move(scope), *each);
    return scope;
}

std::shared_ptr<const IgnoreScope> IgnoreScopeInside(std::shared_ptr<const IgnoreScope> outer,
                                                     const std::wstring& folder) {
    return ScopeOfFile(std::move(outer), folder, folder + kIgnoreFile);
}
