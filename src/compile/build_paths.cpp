#include "compile/build_paths.h"

#include "base/path.h"

#include <algorithm>
#include <array>

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

bool IsBatchBuildSource(std::wstring_view path) {
    constexpr std::array<std::wstring_view, 4> extensions = {L".bas", L".kxa", L".ka32", L".b64"};
    return std::any_of(extensions.begin(), extensions.end(), [path](std::wstring_view extension) {
        return PathEqualsIgnoreCase(FileExtension(path), extension);
    });
}
