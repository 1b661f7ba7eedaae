// Rules of find and replace. Pure.
#include "search/find_rules.h"

#include <algorithm>

namespace {

constexpr std::size_t kMaxSearchText = 255;  // bytes; the search history holds 255 characters

}  // namespace

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

FindSpan ScopeWithin(std::optional<FindSpan> taken, std::ptrdiff_t documentLength) {
    if (!taken) return {0, documentLength};
    const std::ptrdiff_t end = std::min(taken->end, documentLength);
    return {std::min(taken->start, end), end};
}

std::optional<FindSpan> ScopeAfterEdit(FindSpan scope, std::ptrdiff_t position, std::ptrdiff_t inserted,
                                       std::ptrdiff_t removed) {
    const std::ptrdiff_t removedTo = position + removed;
    const bool more = position < scope.start || removedTo > scope.end;
    if (removed > 0 && more && position <= scope.start && removedTo >= scope.end) return std::nullopt;
    const auto without = [&](std::ptrdiff_t place) {
        return place <= position ? place : std::max(position, place - removed);
    };
    const FindSpan left{without(scope.start), without(scope.end)};
    return FindSpan{left.start + (position < left.start ? inserted : 0),
                    left.end + (position <= left.end ? inserted : 0)};
}

std::wstring TextToFindNext(const std::wstring& last, const std::wstring& selected, const std::wstring& newest) {
    if (!last.empty()) return last;
    return selected.empty() ? newest : selected;
}

int DialogTopBesideMatch(int matchTop, int matchBottom, int dialogHeight, int workTop, int workBottom) {
    if (matchBottom + dialogHeight <= workBottom) return matchBottom;
    return std::max(matchTop - dialogHeight, workTop);
}
