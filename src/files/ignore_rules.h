// Which files and folders a search takes: lists of names as a user types them ("*.bas;*.inc"), and ignore files as git
// reads them. Letter case does not count, as in the file system. Pure; any thread.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

// A pattern for names. `*` and `?` stand for any characters but a separator, `[...]` for one of a set, and `**` as a
// whole part of a path for any number of folders.
struct NameRule {
    std::vector<std::wstring> parts;  // between the separators, folded by PathKey
    bool anchored = false;            // matched against the whole path below the rule's folder, not against the name
    bool foldersOnly = false;
    bool negated = false;  // takes back what an earlier rule ignores
};

// The rules of an ignore file, in its order. Lines that cannot match anything are left out.
std::vector<NameRule> IgnoreRulesOf(std::string_view utf8);

// The names of a list, with semicolons or commas between them. Both slashes separate folders. ".bas" stands for
// "*.bas", "*.*" for every name, and "src\" for the folder.
std::vector<NameRule> NameListRules(std::wstring_view list);

// `path` is relative to the folder for which the rules are, with backslashes, and folded by PathKey.
bool NameRuleMatches(const NameRule& rule, std::wstring_view path, bool isFolder);
bool AnyRuleMatches(const std::vector<NameRule>& rules, std::wstring_view path, bool isFolder);

// Folders that a project leaves out.
struct ExcludedFolders {
    std::wstring root;  // of the project, absolute with a backslash at its end, folded by PathKey; empty: no project
    std::vector<NameRule> rules;
};
// A folder as a user writes it, with either slash: a name means every folder of that name, a path the one at that place.
NameRule FolderRule(std::wstring_view written);
// Whether the folder itself is left out. `key` is its absolute path, folded by PathKey.
bool IsExcludedFolder(const ExcludedFolders& excluded, std::wstring_view key);
// Whether the file or folder is in a folder that is left out, or is one. Any absolute path.
bool IsInExcludedFolder(const ExcludedFolders& excluded, std::wstring_view path, bool isFolder);

// The ignore rules that hold in a folder: its own and those of the folders around it.
struct IgnoreScope {
    std::shared_ptr<const IgnoreScope> outer;
    std::size_t folderLength = 0;  // characters of the absolute path of its folder, with the backslash at its end
    std::vector<NameRule> rules;
};

// Whether the file or folder is ignored: the last rule that matches decides, and an inner folder before an outer one. A
// folder above it that is ignored is not considered, because a walk does not enter it. `key` is the absolute path,
// folded by PathKey.
bool IsIgnored(const IgnoreScope* scope, std::wstring_view key, bool isFolder);
