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

bool IncludesFile(std::string_view source, std::wstring_view fileName) {
    static constexpr std::string_view kWord = "include";
    while (!source.empty()) {
        const std::size_t end = std::min(source.find('\n'), source.size());
        std::string_view line = source.substr(0, end);
        source.remove_prefix(std::min(end + 1, source.size()));
        line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
        if (line.empty() || (line[0] != '#' && line[0] != '$')) continue;
        line.remove_prefix(1);
        line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
        const bool includes = line.size() > kWord.size() && std::equal(kWord.begin(), kWord.end(), line.begin(),
                                                                       [](char a, char b) { return a == (b | 0x20); });
        const std::size_t from = includes ? line.find_first_of("\"<") : std::string_view::npos;
        if (from == std::string_view::npos) continue;
        const std::size_t to = line.find_first_of("\">", from + 1);
        if (to == std::string_view::npos) continue;
        std::wstring name = Utf8ToWideText(line.substr(from + 1, to - from - 1));
        std::ranges::replace(name, L'/', L'\\');
        if (PathEqualsIgnoreCase(FileNameOf(name), fileName)) return true;
    }
    return false;
}
