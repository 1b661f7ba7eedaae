#include "search/file_walk.h"

#include "base/path.h"

#include <algorithm>

bool WalkTakes(const WalkRules& rules, std::wstring_view folder, const WalkEntry& entry, const IgnoreScope* scope) {
    if (entry.name.empty() || entry.name == L"." || entry.name == L"..") return false;
    if (entry.isFolder && !rules.subfolders) return false;
    if (!rules.hidden && (entry.isHidden || entry.name.front() == L'.')) return false;
    const bool filtered = !entry.isFolder && !rules.only.empty();
    // The editor itself writes the logs of builds: a hit in one only repeats an error, and a replacement would change it.
    if (!entry.isFolder && !filtered && PathEqualsIgnoreCase(FileExtension(entry.name), L".buildlog")) return false;
    const bool maybeExcluded = entry.isFolder && !rules.excluded.rules.empty();
    if (!filtered && rules.except.empty() && scope == nullptr && !maybeExcluded) return true;
    const std::wstring key = PathKey(std::wstring{folder} + entry.name);
    if (maybeExcluded && IsExcludedFolder(rules.excluded, key)) return false;
    const std::size_t rootLength = rules.root.size() + (rules.root.ends_with(L'\\') ? 0 : 1);
    const std::wstring_view path = std::wstring_view{key}.substr(std::min(rootLength, key.size()));
    if (filtered && !AnyRuleMatches(rules.only, path, false)) return false;
    return !AnyRuleMatches(rules.except, path, entry.isFolder) && !IsIgnored(scope, key, entry.isFolder);
}
