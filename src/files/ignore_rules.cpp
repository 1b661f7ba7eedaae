// Patterns of names. No match takes longer than the length of the pattern times that of the path, because an ignore file
// may come from anywhere.
#include "files/ignore_rules.h"

#include "base/lines.h"
#include "base/path.h"
#include "base/utf8.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace {

constexpr std::wstring_view kAnyFolders = L"**";

// --- One part of a path

// The end of the set that begins at `[`, behind its `]`; npos when it is not closed, and is no set then.
std::size_t SetEnd(std::wstring_view pattern, std::size_t at) {
    std::size_t i = at + 1;
    if (i < pattern.size() && (pattern[i] == L'!' || pattern[i] == L'^')) ++i;
    for (bool first = true; i < pattern.size(); ++i, first = false)
        if (pattern[i] == L'\\')
            ++i;
        else if (pattern[i] == L']' && !first)
            return i + 1;
    return std::wstring_view::npos;
}

// `set` has its brackets.
bool SetHolds(std::wstring_view set, wchar_t character) {
    std::size_t i = 1;
    const std::size_t end = set.size() - 1;
    const bool inverted = set[i] == L'!' || set[i] == L'^';
    if (inverted) ++i;
    const auto next = [&] {
        if (set[i] == L'\\' && i + 1 < end) ++i;
        return set[i++];
    };
    bool held = false;
    while (i < end) {
        const wchar_t low = next();
        wchar_t high = low;
        if (i + 1 < end && set[i] == L'-') {
            ++i;
            high = next();
        }
        held = held || (low <= character && character <= high);
    }
    return held != inverted;
}

// Length of the pattern's element at `at`, if that matches the character; 0 if not.
std::size_t ElementMatches(std::wstring_view pattern, std::size_t at, wchar_t character) {
    if (pattern[at] == L'?') return 1;
    if (pattern[at] == L'\\' && at + 1 < pattern.size()) return pattern[at + 1] == character ? 2 : 0;
    if (pattern[at] == L'[') {
        const std::size_t end = SetEnd(pattern, at);
        if (end != std::wstring_view::npos) return SetHolds(pattern.substr(at, end - at), character) ? end - at : 0;
    }
    return pattern[at] == character ? 1 : 0;
}

// After a mismatch only the last star takes one character more: an earlier one could not do better.
bool PartMatches(std::wstring_view pattern, std::wstring_view text) {
    constexpr std::size_t kNone = std::wstring_view::npos;
    std::size_t at = 0, star = kNone, starText = 0;
    for (std::size_t i = 0; i < text.size();) {
        if (at < pattern.size() && pattern[at] == L'*') {
            star = ++at;
            starText = i;
            continue;
        }
        const std::size_t length = at < pattern.size() ? ElementMatches(pattern, at, text[i]) : 0;
        if (length > 0) {
            at += length;
            ++i;
        } else if (star != kNone) {
            at = star;
            i = ++starText;
        } else {
            return false;
        }
    }
    while (at < pattern.size() && pattern[at] == L'*') ++at;
    return at == pattern.size();
}

// --- A whole path

std::size_t PartEnd(std::wstring_view path, std::size_t at) { return std::min(path.find(L'\\', at), path.size()); }

// The same method as in PartMatches, with parts for characters and `**` for the star. `**` at the end needs a part: what
// is inside a folder is not the folder.
bool PathMatches(std::span<const std::wstring> parts, std::wstring_view path) {
    constexpr std::size_t kNone = std::wstring_view::npos;
    std::size_t at = 0, star = kNone, starText = 0;
    for (std::size_t i = 0; i < path.size();) {
        if (at < parts.size() && parts[at] == kAnyFolders) {
            if (++at == parts.size()) return true;
            star = at;
            starText = i;
            continue;
        }
        const std::size_t end = PartEnd(path, i);
        if (at < parts.size() && PartMatches(parts[at], path.substr(i, end - i))) {
            ++at;
            i = end + 1;
        } else if (star != kNone) {
            at = star;
            i = starText = PartEnd(path, starText) + 1;
        } else {
            return false;
        }
    }
    return at == parts.size();
}

// --- Reading patterns

void SplitParts(std::wstring_view pattern, std::vector<std::wstring>& parts) {
    while (!pattern.empty()) {
        const std::size_t end = std::min(pattern.find(L'/'), pattern.size());
        std::wstring part = PathKey(pattern.substr(0, end));
        if (part.size() > 1 && part.find_first_not_of(L'*') == std::wstring::npos) part = kAnyFolders;
        const bool repeats = part == kAnyFolders && !parts.empty() && parts.back() == kAnyFolders;
        if (!part.empty() && !repeats) parts.push_back(std::move(part));
        pattern.remove_prefix(std::min(end + 1, pattern.size()));
    }
}

// Blanks at the end do not count, unless a backslash stands before them.
std::wstring_view WithoutBlanksAtEnd(std::wstring_view line) {
    while (!line.empty() && (line.back() == L' ' || line.back() == L'\t')) {
        const std::size_t before = line.find_last_not_of(L'\\', line.size() - 2);
        const std::size_t slashes = line.size() < 2 ? 0 : line.size() - 2 - before;  // npos + 1 is 0
        if (slashes % 2 == 1) break;
        line.remove_suffix(1);
    }
    return line;
}

NameRule RuleOfPattern(std::wstring_view pattern) {
    NameRule rule;
    if (pattern.ends_with(L'/')) {
        rule.foldersOnly = true;
        pattern.remove_suffix(1);
    }
    rule.anchored = pattern.find(L'/') != std::wstring_view::npos;
    SplitParts(pattern, rule.parts);
    return rule;
}

}  // namespace

std::vector<NameRule> IgnoreRulesOf(std::string_view utf8) {
    std::vector<NameRule> rules;
    if (utf8.starts_with("\xEF\xBB\xBF")) utf8.remove_prefix(3);
    while (!utf8.empty()) {
        const std::wstring text = Utf8ToWideText(TakeLine(utf8));
        std::wstring_view line = WithoutBlanksAtEnd(text);
        if (line.empty() || line.front() == L'#') continue;
        const bool negated = line.front() == L'!';
        if (negated) line.remove_prefix(1);
        NameRule rule = RuleOfPattern(line);
        rule.negated = negated;
        if (!rule.parts.empty()) rules.push_back(std::move(rule));
    }
    return rules;
}

std::vector<NameRule> NameListRules(std::wstring_view list) {
    std::vector<NameRule> rules;
    while (!list.empty()) {
        const std::size_t end = std::min(list.find_first_of(L";,"), list.size());
        std::wstring item{list.substr(0, end)};
        list.remove_prefix(std::min(end + 1, list.size()));
        item.erase(0, item.find_first_not_of(L" \t"));
        item.erase(item.find_last_not_of(L" \t") + 1);
        std::ranges::replace(item, L'\\', L'/');
        if (item.starts_with(L".") && item.find_first_of(L"*?[/") == std::wstring::npos &&
            item.find(L'.', 1) == std::wstring::npos && item.size() > 1)
            rules.push_back(RuleOfPattern(L"*" + item));
        if (item == L"*.*") item = L"*";
        NameRule rule = RuleOfPattern(item);
        if (!rule.parts.empty()) rules.push_back(std::move(rule));
    }
    return rules;
}

bool NameRuleMatches(const NameRule& rule, std::wstring_view path, bool isFolder) {
    if (rule.foldersOnly && !isFolder) return false;
    if (rule.anchored) return PathMatches(rule.parts, path);
    return PartMatches(rule.parts.front(), path.substr(path.rfind(L'\\') + 1));
}

bool AnyRuleMatches(const std::vector<NameRule>& rules, std::wstring_view path, bool isFolder) {
    return std::ranges::any_of(
        rules, [&](const NameRule& rule) { return NameRuleMatches(rule, path, isFolder); });
}

bool IsIgnored(const IgnoreScope* scope, std::wstring_view key, bool isFolder) {
    for (; scope != nullptr; scope = scope->outer.get()) {
        const std::wstring_view path = key.substr(std::min(scope->folderLength, key.size()));
        const auto rule = std::ranges::find_if(scope->rules.rbegin(), scope->rules.rend(), [&](const NameRule& each) {
            return NameRuleMatches(each, path, isFolder);
        });
        if (rule != scope->rules.rend()) return !rule->negated;
    }
    return false;
}

NameRule FolderRule(std::wstring_view written) {
    std::wstring pattern(written);
    std::ranges::replace(pattern, L'\\', L'/');
    while (pattern.starts_with(L"./")) pattern.erase(0, 2);
    while (pattern.ends_with(L'/')) pattern.pop_back();
    NameRule rule = RuleOfPattern(pattern);
    rule.foldersOnly = true;
    return rule;
}

bool IsExcludedFolder(const ExcludedFolders& excluded, std::wstring_view key) {
    return !excluded.rules.empty() && key.size() > excluded.root.size() && key.starts_with(excluded.root) &&
           AnyRuleMatches(excluded.rules, key.substr(excluded.root.size()), true);
}

bool IsInExcludedFolder(const ExcludedFolders& excluded, std::wstring_view path, bool isFolder) {
    if (excluded.rules.empty()) return false;
    std::wstring key = PathKey(path);
    while (key.ends_with(L'\\')) key.pop_back();
    if (!key.starts_with(excluded.root)) return false;
    for (std::size_t end = key.find(L'\\', excluded.root.size()); end != std::wstring::npos;
         end = key.find(L'\\', end + 1))
        if (IsExcludedFolder(excluded, std::wstring_view(key).substr(0, end))) return true;
    return isFolder && IsExcludedFolder(excluded, key);
}
