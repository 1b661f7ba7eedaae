#include "output/error_places.h"

#include "base/path.h"

namespace {

bool NeedsFolder(std::wstring_view path) {
    const bool drive = path.size() > 1 && path[1] == L':';
    return !drive && !path.starts_with(L'\\') && !path.starts_with(L'/');
}

bool SameDiagnostic(const CompilerError& a, const CompilerError& b) {
    return a.line == b.line && a.column == b.column && a.severity == b.severity &&
           std::wstring_view(a.file) == b.file && std::wstring_view(a.message) == b.message;
}

}  // namespace

std::vector<std::wstring> ErrorPlaces(std::wstring_view printed, const BuildRecord& build, const PathWhole& whole) {
    const std::wstring name(printed);
    std::vector<std::wstring> places;
    if (NeedsFolder(name)) {
        for (const std::wstring& folder : {build.workingDirectory, FolderOf(build.source), FolderOf(build.output)})
            if (!folder.empty()) places.push_back(whole(folder + L"\\" + name));
    } else {
        places.push_back(whole(name));
    }
    if (build.staged.empty()) return places;
    for (std::wstring& place : places)
        if (SamePathText(place, build.staged)) place = build.source;
    return places;
}

int FindDiagnostic(const CompilerErrors& errors, const CompilerError& wanted) {
    for (int i = 0; i < errors.count; ++i)
        if (SameDiagnostic(errors.items[i], wanted)) return i;
    return -1;
}

int NextErrorIndex(const CompilerErrors& errors) { return errors.count > 0 ? (errors.current + 1) % errors.count : -1; }

int PreviousErrorIndex(const CompilerErrors& errors) {
    return errors.count > 0 ? (errors.current + errors.count - 1) % errors.count : -1;
}
