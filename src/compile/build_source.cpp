#include "compile/build_source.h"

#include "base/path.h"
#include "base/texts.h"
#include "base/utf8.h"

#include <algorithm>
#include <iterator>

bool ProjectHoldsFile(const BuildProject& project, std::wstring_view path) {
    if (path.empty()) return false;
    const std::wstring_view start = path.substr(0, project.root.size());
    const bool below = !project.root.empty() && path.size() > project.root.size() && SamePathText(start, project.root);
    return below || SamePathText(path, project.source) || SamePathText(path, project.file);
}

std::wstring BuiltWhichText(std::wstring_view project, std::wstring_view source, bool ofProject) {
    const std::wstring file(FileNameOf(source));
    return ofProject ? L" - " + std::wstring(project) + L": " + file : TextWith(L" - {1}, not of {2}", {file, project});
}

bool IsIncludeFile(std::wstring_view path) {
    static constexpr std::wstring_view kExtensions[] = {L".inc", L".pbi", L".bi", L".h"};
    const std::wstring extension(FileExtension(path));
    return std::ranges::any_of(kExtensions,
                               [&extension](std::wstring_view each) { return PathEqualsIgnoreCase(extension, each); });
}
