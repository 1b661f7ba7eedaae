// What the user asks for in a search over files, and the list of recent searches. Pure.
#pragma once

#include "search/file_walk.h"
#include "search/files_search_text.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

enum class FilesScope : std::uint8_t { Project, OpenDocuments, Folder };

struct FilesOptions {
    std::wstring what;
    std::wstring with;
    bool matchCase = false;
    bool wholeWord = false;
    bool regex = false;
    FilesScope scope = FilesScope::Project;
    std::wstring folder;  // as typed; for FilesScope::Folder
    std::wstring only;    // lists of names (ignore_rules.h)
    std::wstring except = L".git;.svn;.hg";
    bool subfolders = true;
    bool gitIgnore = true;
    bool hidden = false;
    bool replacing = false;
    bool preserveCase = false;  // of the replacement

    bool operator==(const FilesOptions&) const = default;
};

// An entry of the list of recent searches, with all options, and back. Nothing for a text that is no such entry.
std::wstring RecentSearchText(const FilesOptions& options);
std::optional<FilesOptions> RecentSearchOf(std::wstring_view entry);
// What the user sees of it: the text to find, and where it was searched for.
std::wstring RecentSearchLabel(const FilesOptions& options);

FilesQuery QueryOf(const FilesOptions& options);
// `root` is absolute.
WalkRules WalkRulesOf(const FilesOptions& options, std::wstring root);
