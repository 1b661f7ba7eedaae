#include "search/files_options.h"

#include "base/texts.h"
#include "base/utf8.h"

#include <vector>

namespace {

// An entry is the letters of the options that are on, and the texts behind them, each after a bar. A bar or a backslash
// in a text has a backslash before it.
struct Letter {
    wchar_t letter;
    bool FilesOptions::*option;
};
constexpr Letter kLetters[] = {{L'c', &FilesOptions::matchCase}, {L'w', &FilesOptions::wholeWord},
                               {L'x', &FilesOptions::regex},     {L's', &FilesOptions::subfolders},
                               {L'g', &FilesOptions::gitIgnore}, {L'h', &FilesOptions::hidden},
                               {L'r', &FilesOptions::replacing}, {L'p', &FilesOptions::preserveCase}};
constexpr std::wstring FilesOptions::*kTexts[] = {&FilesOptions::what, &FilesOptions::with, &FilesOptions::folder,
                                                  &FilesOptions::only, &FilesOptions::except};
constexpr std::wstring_view kScopes = L"POF";  // by FilesScope

std::vector<std::wstring> PartsOf(std::wstring_view entry) {
    std::vector<std::wstring> parts(1);
    for (std::size_t i = 0; i < entry.size(); ++i)
        if (entry[i] == L'\\' && i + 1 < entry.size())
            parts.back() += entry[++i];
        else if (entry[i] == L'|')
            parts.emplace_back();
        else
            parts.back() += entry[i];
    return parts;
}

}  // namespace

std::wstring RecentSearchText(const FilesOptions& options) {
    std::wstring entry(1, kScopes[static_cast<std::size_t>(options.scope)]);
    for (const Letter& each : kLetters)
        if (options.*each.option) entry += each.letter;
    for (const auto text : kTexts) {
        entry += L'|';
        for (const wchar_t character : options.*text) {
            if (character == L'|' || character == L'\\') entry += L'\\';
            entry += character;
        }
    }
    return entry + L'|';  // so that the entry does not end in a blank, which the file of settings would lose
}

std::optional<FilesOptions> RecentSearchOf(std::wstring_view entry) {
    const std::vector<std::wstring> parts = PartsOf(entry);
    if (parts.size() != std::size(kTexts) + 2 || parts[0].empty() || parts[1].empty()) return std::nullopt;
    const std::size_t scope = kScopes.find(parts[0].front());
    if (scope == std::wstring_view::npos) return std::nullopt;
    FilesOptions options;
    options.scope = static_cast<FilesScope>(scope);
    for (const Letter& each : kLetters) options.*each.option = parts[0].find(each.letter) != std::wstring::npos;
    for (std::size_t i = 0; i < std::size(kTexts); ++i) options.*kTexts[i] = parts[i + 1];
    return options;
}

std::wstring RecentSearchLabel(const FilesOptions& options) {
    std::wstring label = options.what;
    if (options.replacing) label += L" \u2192 " + options.with;
    switch (options.scope) {
        case FilesScope::Project: label = TextWith(L"{1}  in the project", {label}); break;
        case FilesScope::OpenDocuments: label = TextWith(L"{1}  in open documents", {label}); break;
        case FilesScope::Folder: label = TextWith(L"{1}  in {2}", {label, options.folder}); break;
    }
    return options.only.empty() ? label : label + L"  (" + options.only + L")";
}

FilesQuery QueryOf(const FilesOptions& options) {
    FilesQuery query{ToUtf8(options.what), options.matchCase, options.wholeWord, options.regex, {}};
    if (options.replacing) query.with = ToUtf8(options.with);
    query.preserveCase = options.replacing && options.preserveCase;
    return query;
}

WalkRules WalkRulesOf(const FilesOptions& options, std::wstring root) {
    return {.root = std::move(root),
            .only = NameListRules(options.only),
            .except = NameListRules(options.except),
            .subfolders = options.subfolders,
            .hidden = options.hidden,
            .gitIgnore = options.gitIgnore,
            .excluded = {}};
}
