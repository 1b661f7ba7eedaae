#include "build/build_paths.h"

#include "files/path.h"

#include <algorithm>
#include <array>

namespace {

std::size_t ExtensionStart(std::wstring_view path) {
    const std::size_t slash = path.find_last_of(L"\\/");
    const std::size_t dot = path.rfind(L'.');
    const bool inName = dot != std::wstring_view::npos && (slash == std::wstring_view::npos || dot > slash);
    return inName ? dot : path.size();
}

}  // namespace

std::wstring ReplaceExtension(std::wstring_view path, std::wstring_view extension) {
    return std::wstring(path.substr(0, ExtensionStart(path))) + std::wstring(extension);
}

std::wstring_view FileExtension(std::wstring_view path) { return path.substr(ExtensionStart(path)); }

std::wstring StagingTarget(std::wstring_view source, std::wstring_view output, CommandStyle style, int attempt) {
    if (style == CommandStyle::Keldor) return attempt == 0 ? ReplaceExtension(output, L".bas") : std::wstring();
    std::wstring_view staged;
    if (PathEqualsIgnoreCase(FileExtension(source), L".kxa"))
        staged = L".pb";
    else if (PathEqualsIgnoreCase(FileExtension(source), L".ka32"))
        staged = L".bas";
    else
        return {};
    const std::wstring mark = attempt == 0 ? std::wstring() : L".kvx" + std::to_wstring(attempt);
    return ReplaceExtension(source, mark + std::wstring(staged));
}

bool SamePathText(std::wstring_view a, std::wstring_view b) {
    const auto backslashed = [](std::wstring_view path) {
        std::wstring text(path);
        std::replace(text.begin(), text.end(), L'/', L'\\');
        return text;
    };
    return PathEqualsIgnoreCase(backslashed(a), backslashed(b));
}

bool IsBatchBuildSource(std::wstring_view path) {
    constexpr std::array<std::wstring_view, 4> extensions = {L".bas", L".kxa", L".ka32", L".b64"};
    return std::any_of(extensions.begin(), extensions.end(), [path](std::wstring_view extension) {
        return PathEqualsIgnoreCase(FileExtension(path), extension);
    });
}

std::wstring FolderOf(std::wstring_view path) {
    const std::size_t slash = path.find_last_of(L"\\/");
    if (slash == std::wstring_view::npos) return {};
    const bool root = slash == 0 || path[slash - 1] == L':';
    return std::wstring(path.substr(0, slash + (root ? 1 : 0)));
}
