#include "compile/include_walk.h"

#include "base/path.h"
#include "base/utf8.h"
#include "compile/include_paths.h"

#include <algorithm>
#include <deque>
#include <utility>

namespace {

// The name in a line that includes a file; empty: it is another line.
std::wstring NameInLine(std::string_view line) {
    static constexpr std::string_view kWord = "include";
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    if (line.empty() || (line[0] != '#' && line[0] != '$')) return {};
    line.remove_prefix(1);
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    const bool includes = line.size() > kWord.size() && std::equal(kWord.begin(), kWord.end(), line.begin(),
                                                                   [](char a, char b) { return a == (b | 0x20); });
    const std::size_t from = includes ? line.find_first_of("\"<") : std::string_view::npos;
    if (from == std::string_view::npos) return {};
    const std::size_t to = line.find_first_of("\">", from + 1);
    if (to == std::string_view::npos) return {};
    std::wstring name = Utf8ToWideText(line.substr(from + 1, to - from - 1));
    std::ranges::replace(name, L'/', L'\\');
    return name;
}

bool IsAmong(std::span<const std::wstring> paths, std::wstring_view path) {
    return std::ranges::any_of(
        paths, [path](const std::wstring& each) { return SamePathText(each, path); });
}

}  // namespace

std::vector<std::wstring> IncludedNames(std::string_view source) {
    std::vector<std::wstring> names;
    while (!source.empty()) {
        const std::size_t end = std::min(source.find('\n'), source.size());
        if (std::wstring name = NameInLine(source.substr(0, end)); !name.empty()) names.push_back(std::move(name));
        source.remove_prefix(std::min(end + 1, source.size()));
    }
    return names;
}

bool IncludesFile(std::string_view source, std::wstring_view fileName) {
    return std::ranges::any_of(
        IncludedNames(source),
        [fileName](const std::wstring& name) { return PathEqualsIgnoreCase(FileNameOf(name), fileName); });
}

bool IncludesFileThrough(const IncludeWalk& walk, const std::wstring& path, std::string source,
                         std::wstring_view fileName) {
    std::deque<std::pair<std::wstring, std::string>> waiting;
    waiting.emplace_back(path, std::move(source));
    std::vector<std::wstring> met = {path};  // also the places at which there is no file
    for (std::size_t read = 0; !waiting.empty(); waiting.pop_front()) {
        const std::vector<std::wstring> names = IncludedNames(waiting.front().second);
        for (const std::wstring& name : names)
            if (PathEqualsIgnoreCase(FileNameOf(name), fileName)) return true;
        for (const std::wstring& name : names)
            for (const std::wstring& place : IncludePlaces(name, FolderOf(waiting.front().first), walk.folders)) {
                if (IsAmong(met, place)) continue;
                if (read >= walk.most) return false;
                met.push_back(place);
                std::optional<std::string> text = walk.read(place);
                if (!text) continue;
                ++read;
                waiting.emplace_back(place, std::move(*text));
                break;
            }
    }
    return false;
}
