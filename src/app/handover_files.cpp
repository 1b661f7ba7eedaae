#include "app/handover_files.h"

#include "app/command_line.h"
#include "base/path.h"

#include <algorithm>

namespace {

bool IsRooted(std::wstring_view path) {
    return PathIsAbsolute(path) || path.starts_with(L'\\') || path.starts_with(L'/') || path.starts_with(L'"');
}

}  // namespace

std::optional<std::vector<std::wstring>> FilesToHandOver(std::span<const std::wstring> arguments,
                                                         const std::wstring& folder) {
    if (std::ranges::find(arguments, L"--new") != arguments.end()) return std::nullopt;
    std::vector<std::wstring> files;
    for (const CommandLineStep& step : ParseCommandLineSteps(arguments)) {
        if (step.action != CommandLineAction::Open) return std::nullopt;
        files.push_back(IsRooted(step.text) ? step.text : folder + step.text);
    }
    return files;
}

// Each file ends with a line break, which no path has.
std::wstring HandoverText(std::span<const std::wstring> files) {
    std::wstring text;
    for (const std::wstring& file : files) text += file + L'\n';
    return text;
}

std::vector<std::wstring> FilesOfHandover(std::wstring_view text) {
    std::vector<std::wstring> files;
    for (std::size_t end = text.find(L'\n'); end != std::wstring_view::npos; end = text.find(L'\n')) {
        if (end > 0) files.emplace_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    return files;
}
