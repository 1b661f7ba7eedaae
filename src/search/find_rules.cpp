// Rules of find and replace. Pure.
#include "search/find_rules.h"

#include <algorithm>

namespace {

constexpr std::size_t kMaxSearchText = 255;  // bytes; the search history holds 255 characters

char ControlCharacter(char letter) {
    switch (letter) {
        case 'n': return '\n';
        case 'r': return '\r';
        case 't': return '\t';
        default: return letter;
    }
}

}  // namespace

std::string ExpandReplacement(std::string_view replacement, const std::function<std::string(int)>& group) {
    std::string out;
    for (std::size_t i = 0; i < replacement.size(); ++i) {
        if (replacement[i] != '\\' || i + 1 == replacement.size()) {
            out += replacement[i];
            continue;
        }
        const char letter = replacement[++i];
        if (letter >= '0' && letter <= '9')
            out += group(letter - '0');
        else
            out += ControlCharacter(letter);
    }
    return out;
}

FindPlan PlanFind(FindSpan selection, FindSpan scope, bool forward) {
    // When the selection is outside the scope, the search begins at the scope's start or end.
    if (forward) {
        const bool inside = selection.end >= scope.start && selection.end <= scope.end;
        return {.first = {inside ? selection.end : scope.start, scope.end}, .wrapped = {scope.start, scope.end}};
    }
    const bool inside = selection.start >= scope.start && selection.start <= scope.end;
    return {.first = {inside ? selection.start : scope.end, scope.start}, .wrapped = {scope.end, scope.start}};
}

std::string_view SearchTextFromSelection(std::string_view selection) {
    const bool usable = selection.size() <= kMaxSearchText && selection.find_first_of("\r\n") == selection.npos &&
                        selection.find('\0') == selection.npos;
    return usable ? selection : std::string_view{};
}

std::wstring ReplacementCountText(std::size_t count) {
    if (count == 0) return L"Not found: nothing replaced";
    return std::to_wstring(count) + (count == 1 ? L" replacement" : L" replacements");
}

const wchar_t* SearchStatus(bool found, bool wrapped, bool forward) {
    if (!found) return L"Not found";
    if (!wrapped) return L"";
    return forward ? L"Continued from the start" : L"Continued from the end";
}

FindSpan ScopeWithin(std::optional<FindSpan> taken, std::ptrdiff_t documentLength) {
    if (!taken) return {0, documentLength};
    const std::ptrdiff_t end = std::min(taken->end, documentLength);
    return {std::min(taken->start, end), end};
}

std::wstring TextToFindNext(const std::wstring& last, const std::wstring& selected, const std::wstring& newest) {
    if (!last.empty()) return last;
    return selected.empty() ? newest : selected;
}

int DialogTopBesideMatch(int matchTop, int matchBottom, int dialogHeight, int workTop, int workBottom) {
    if (matchBottom + dialogHeight <= workBottom) return matchBottom;
    return std::max(matchTop - dialogHeight, workTop);
}
