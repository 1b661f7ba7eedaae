// Which names are source files, and what the file dialogs are given. Pure.
#include "documents/file_filters.h"

#include "base/bounded_text.h"
#include "base/path.h"

bool IsSourceFileName(std::wstring_view name) {
    const std::size_t dot = name.rfind(L'.');
    if (dot == std::wstring_view::npos) return false;
    const std::wstring_view extension = name.substr(dot);
    std::wstring_view patterns = kFileFilters[0].pattern;
    while (!patterns.empty()) {
        const std::size_t end = patterns.find(L';');
        const std::wstring_view pattern = patterns.substr(0, end);
        if (PathEqualsIgnoreCase(pattern.substr(1), extension))  // past the asterisk
            return true;
        patterns = end == std::wstring_view::npos ? std::wstring_view{} : patterns.substr(end + 1);
    }
    return false;
}

std::wstring FileDialogFilter() {
    std::wstring text;
    for (const FileTypeFilter& filter : kFileFilters) {
        text.append(filter.description).push_back(L'\0');
        text.append(filter.pattern).push_back(L'\0');
    }
    text.push_back(L'\0');
    return text;
}

std::array<std::wstring, 3> FileDialogNames(const std::wstring& path) {
    wchar_t file[kPathCapacity];
    PathGetFile(path.c_str(), file, kPathCapacity);
    return {path, file, L""};
}
