// Searching many texts. Pure; any thread.
#include "search/fuzzy_index.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

constexpr std::size_t kLooks = 1024;  // texts between two questions whether the search goes on

// A text that matches. The key orders by score, then by the length of the name, then by that of the text.
struct Hit {
    std::uint64_t key = 0;
    std::uint32_t number = 0;
};

bool IsBetter(const Hit& a, const Hit& b) { return a.key != b.key ? a.key > b.key : a.number < b.number; }

std::uint64_t KeyOf(int score, const FuzzyText& text) {
    constexpr std::int64_t kBias = std::int64_t{1} << 30;  // keeps a negative score in order
    const auto shorter = [](std::size_t length) { return std::uint64_t{0xFFFF} - length; };
    return static_cast<std::uint64_t>(score + kBias) << 32 | shorter(text.text.size() - text.nameStart) << 16 |
           shorter(text.text.size());
}

struct Search {
    const FuzzyIndices& indices;
    FuzzyQuery query;
    const FuzzyGoesOn& goesOn;
    std::size_t looks = 0;
    std::vector<Hit> hits;

    // False: the search is to stop.
    bool Look(const FuzzyIndex& index, std::size_t entry, std::uint32_t number) {
        if (++looks % kLooks == 0 && goesOn && !goesOn()) return false;
        const FuzzyIndex::Entry& row = index.entries[entry];
        if ((row.mask & query.mask) != query.mask) return true;
        const FuzzyText text = FuzzyTextOf(index, entry);
        if (const std::optional<int> score = FuzzyScore(query, text))
            hits.push_back({KeyOf(*score + row.boost, text), number});
        return true;
    }
};

// Looks at those of `numbers` (ascending), and at all from `covered` on. False: it was stopped.
bool LookAt(Search& search, std::span<const std::uint32_t> numbers, std::size_t covered) {
    std::size_t first = 0;
    for (const auto& index : search.indices) {
        const std::size_t end = first + index->entries.size();
        for (; !numbers.empty() && numbers.front() < end; numbers = numbers.subspan(1))
            if (!search.Look(*index, numbers.front() - first, numbers.front())) return false;
        for (std::size_t number = std::max(first, covered); number < end; ++number)
            if (!search.Look(*index, number - first, static_cast<std::uint32_t>(number))) return false;
        first = end;
    }
    return true;
}

void TakeBest(std::vector<Hit>& hits, std::size_t most, FuzzyResult* result) {
    result->matching.reserve(hits.size());
    for (const Hit& hit : hits) result->matching.push_back(hit.number);
    const auto end = hits.begin() + static_cast<std::ptrdiff_t>(std::min(most, hits.size()));
    std::partial_sort(hits.begin(), end, hits.end(), IsBetter);
    for (auto hit = hits.begin(); hit != end; ++hit) result->best.push_back(hit->number);
}

}  // namespace

bool FuzzyAdd(FuzzyIndex* index, std::wstring_view text, std::size_t nameStart, int boost) {
    constexpr std::size_t kMost = 0xFFFF;
    if (text.size() > kMost || index->characters.size() + text.size() > 0xFFFFFFFF) return false;
    index->entries.push_back({.mask = FuzzyMask(text),
                              .start = static_cast<std::uint32_t>(index->characters.size()),
                              .length = static_cast<std::uint16_t>(text.size()),
                              .nameStart = static_cast<std::uint16_t>(std::min(nameStart, text.size())),
                              .boost = boost});
    index->characters += text;
    return true;
}

FuzzyText FuzzyTextOf(const FuzzyIndex& index, std::size_t entry) {
    const FuzzyIndex::Entry& row = index.entries[entry];
    return {std::wstring_view(index.characters).substr(row.start, row.length), row.nameStart};
}

FuzzyPlace FuzzyPlaceOf(const FuzzyIndices& indices, std::size_t number) {
    FuzzyPlace place{0, number};
    while (place.entry >= indices[place.index]->entries.size()) place.entry -= indices[place.index++]->entries.size();
    return place;
}

std::size_t FuzzyCount(const FuzzyIndices& indices) {
    return std::accumulate(
        indices.begin(), indices.end(), std::size_t{0},
        [](std::size_t sum, const auto& index) { return sum + index->entries.size(); });
}

FuzzyResult FuzzySearch(const FuzzyIndices& indices, std::wstring_view typed, const FuzzyResult* before,
                        std::size_t most, const FuzzyGoesOn& goesOn) {
    FuzzyResult result;
    result.typed = typed;
    result.covered = FuzzyCount(indices);
    Search search{indices, FuzzyQueryOf(typed), goesOn, 0, {}};
    if (search.query.words.empty()) {  // all, in their order; `matching` stays empty and stands for all
        result.best.resize(std::min(most, result.covered));
        std::iota(result.best.begin(), result.best.end(), 0U);
        return result;
    }
    const bool narrows = before != nullptr && before->whole && !FuzzyQueryOf(before->typed).words.empty() &&
                         typed.starts_with(before->typed);
    const std::span<const std::uint32_t> numbers =
        narrows ? std::span<const std::uint32_t>(before->matching) : std::span<const std::uint32_t>();
    result.whole = LookAt(search, numbers, narrows ? before->covered : 0);
    TakeBest(search.hits, most, &result);
    return result;
}
