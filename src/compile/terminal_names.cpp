#include "compile/terminal_names.h"

#include <algorithm>
#include <cwctype>

namespace {

bool IsBlank(wchar_t c) { return c == L' ' || c == L'\t'; }

std::wstring Folded(std::wstring_view text) {
    std::wstring folded(text);
    for (wchar_t& c : folded) c = static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c)));
    return folded;
}

bool IsAbsolutePath(std::wstring_view path) {
    return path.starts_with(L"\\\\") || (path.size() > 1 && path[1] == L':');
}

}  // namespace

TerminalWord TerminalWordAt(std::wstring_view line, std::size_t caret) {
    line = line.substr(0, caret);
    TerminalWord word;
    bool quoted = false;
    std::wstring text;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const bool divides =
            !quoted && (IsBlank(line[i]) || std::wstring_view(L"&|<>;,=()").find(line[i]) != line.npos);
        if (line[i] == L'"')
            quoted = !quoted;
        else if (!divides)
            text += line[i] == L'/' && !text.empty() ? L'\\' : line[i];
        if (!divides) continue;
        word.start = i + 1;
        text.clear();
    }
    word.end = line.size();
    const std::size_t slash = text.find_last_of(L'\\');
    const bool drive = slash == std::wstring::npos && text.size() > 1 && text[1] == L':';
    const std::size_t name = drive ? 2 : slash == std::wstring::npos ? 0 : slash + 1;
    word.folder = text.substr(0, name);
    word.name = text.substr(name);
    return word;
}

std::wstring TerminalFolderOf(std::wstring_view current, std::wstring_view folder) {
    if (folder.size() == 2 && folder[1] == L':') return std::wstring(folder) + L"\\";
    if (IsAbsolutePath(folder)) return std::wstring(folder);
    if (folder.starts_with(L"\\") && current.size() > 1 && current[1] == L':')
        return std::wstring(current.substr(0, 2)).append(folder);
    std::wstring path(current);
    if (!path.ends_with(L'\\')) path += L'\\';
    return path.append(folder);
}

std::vector<std::wstring> TerminalNamesFitting(std::vector<std::wstring> names, std::wstring_view name) {
    const std::wstring wanted = Folded(name);
    std::erase_if(names, [&](const std::wstring& each) {
        return each == L"." || each == L".." || !Folded(each).starts_with(wanted);
    });
    std::ranges::sort(names, {}, Folded);
    if (names.size() > kMostTerminalNames) names.resize(kMostTerminalNames);
    return names;
}

std::wstring TerminalNameText(const TerminalWord& word, std::wstring_view name) {
    const std::wstring path = word.folder + std::wstring(name);
    const bool plain = path.find_first_of(L" \t&|<>^()=;,%!'`+{}[]@") == std::wstring::npos;
    return plain ? path : L"\"" + path + L"\"";
}

bool TerminalCompleteNext(TerminalCompletion& completion, std::wstring* line, std::size_t* caret, bool forward) {
    const auto count = static_cast<int>(completion.names.size());
    if (count == 0) return false;
    const std::size_t start = completion.word.start;
    std::size_t end = completion.word.end;
    if (completion.at >= 0)
        end =
            start + TerminalNameText(completion.word, completion.names[static_cast<std::size_t>(completion.at)]).size();
    if (end > line->size()) return false;
    completion.at = completion.at < 0 ? (forward ? 0 : count - 1) : (completion.at + (forward ? 1 : count - 1)) % count;
    const std::wstring text =
        TerminalNameText(completion.word, completion.names[static_cast<std::size_t>(completion.at)]);
    line->replace(start, end - start, text);
    *caret = start + text.size();
    completion.shown = *line;
    return true;
}
