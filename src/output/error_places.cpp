#include "output/error_places.h"

#include "base/path.h"

#include <algorithm>
#include <utility>

namespace {

bool NeedsFolder(std::wstring_view path) {
    const bool drive = path.size() > 1 && path[1] == L':';
    return !drive && !path.starts_with(L'\\') && !path.starts_with(L'/');
}

}  // namespace

bool SameDiagnostic(const CompilerError& a, const CompilerError& b) {
    return a.line == b.line && a.column == b.column && a.severity == b.severity &&
           std::wstring_view(a.file) == b.file && std::wstring_view(a.message) == b.message;
}

std::vector<std::wstring> ErrorPlaces(std::wstring_view printed, const BuildRecord& build, const PathWhole& whole) {
    const std::wstring name(printed);
    std::vector<std::wstring> places;
    if (NeedsFolder(name)) {
        std::vector<std::wstring> folders = {FolderOf(build.source), FolderOf(build.output)};
        folders.insert(folders.end(), build.includeFolders.begin(), build.includeFolders.end());
        folders.push_back(build.workingDirectory);
        for (const std::wstring& folder : folders)
            if (!folder.empty()) places.push_back(whole(std::wstring(folder).append(L"\\").append(name)));
    } else {
        places.push_back(whole(name));
    }
    if (build.staged.empty()) return places;
    for (std::wstring& place : places)
        if (SamePathText(place, build.staged)) place = build.source;
    return places;
}

std::vector<std::wstring> PlacesOfDiagnostic(const CompilerErrors& errors, const CompilerError& error,
                                             const PathWhole& whole) {
    std::wstring_view name = error.file;  // with the blanks of an indented line
    name.remove_prefix(std::min(name.find_first_not_of(L" \t"), name.size()));
    if (name.empty()) return {};
    const auto build = static_cast<std::size_t>(error.build);
    if (error.build > 0 && build <= errors.builds.size()) return ErrorPlaces(name, errors.builds[build - 1], whole);
    std::vector<std::wstring> places;
    for (auto record = errors.builds.rbegin(); record != errors.builds.rend(); ++record)
        for (std::wstring& place : ErrorPlaces(name, *record, whole)) places.push_back(std::move(place));
    if (places.empty()) places.emplace_back(name);
    return places;
}

int FindDiagnostic(const CompilerErrors& errors, const CompilerError& wanted, int before) {
    int found = -1;
    for (int i = 0; i < ErrorCount(errors) && before >= 0; ++i)
        if (SameDiagnostic(errors.items[static_cast<std::size_t>(i)], wanted)) {
            found = i;
            --before;
        }
    return found;
}

int EqualDiagnosticsBefore(const CompilerErrors& errors, int index) {
    const auto at = errors.items.begin() + index;
    return static_cast<int>(std::count_if(errors.items.begin(), at,
                                          [&](const CompilerError& error) { return SameDiagnostic(error, *at); }));
}

int CountDiagnostic(const CompilerErrors& errors, const CompilerError& wanted) {
    return static_cast<int>(std::count_if(
        errors.items.begin(), errors.items.end(),
        [&](const CompilerError& error) { return SameDiagnostic(error, wanted); }));
}

int NextErrorIndex(const CompilerErrors& errors) {
    return ErrorCount(errors) > 0 ? (errors.current + 1) % ErrorCount(errors) : -1;
}

int NextErrorToVisit(const CompilerErrors& errors) {
    return errors.visited || errors.items.empty() ? NextErrorIndex(errors) : errors.current;
}

int PreviousErrorIndex(const CompilerErrors& errors) {
    return ErrorCount(errors) > 0 ? (errors.current + ErrorCount(errors) - 1) % ErrorCount(errors) : -1;
}
