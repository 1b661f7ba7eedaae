#include "compile/build_source.h"

#include "base/path.h"

bool ProjectHoldsFile(const BuildProject& project, std::wstring_view path) {
    if (path.empty()) return false;
    const std::wstring_view start = path.substr(0, project.root.size());
    const bool below = !project.root.empty() && path.size() > project.root.size() && SamePathText(start, project.root);
    return below || SamePathText(path, project.source) || SamePathText(path, project.file);
}

std::wstring BuiltWhichText(std::wstring_view project, std::wstring_view source, bool ofProject) {
    const std::wstring file(FileNameOf(source));
    return ofProject ? L" - " + std::wstring(project) + L": " + file
                     : L" - " + file + L", not of " + std::wstring(project);
}
