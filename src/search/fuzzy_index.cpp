// Searching many texts. Pure; any thread.
#include "search/fuzzy_index.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

constexpr std::size_t kPartTexts = 2048;  // about half a millisecond

bool IsBetter(const FuzzyHit& a, const FuzzyHit& b) { return a.key != b.key ? a.key > b.key : a.number < b.number; }

std::uint64_t KeyOf(int score, const FuzzyText& text) {
    constexpr std::int64_t kBias = std::int64_t{1} << 30;  // keeps a negative score in order
    const auto shorter = [](std::size_t length) { return std::uint64_t{0xFFFF} - length; };
    return static_cast<std::uint64_t>(score + kBias) << 32 | shorter(text.text.size() - text.nameStart) << 16 |
           shorter(text.text.size());
}

// The number of the text at a place of the search: first what matched before, then what is new.
std::uint32_t NumberAt(const FuzzyPlan& plan, std::size_t at) {
    const std::size_t earlier = plan.narrows ? plan.before->matching.size() : 0;
    if (at < earlier) return plan.before->matching[at];
    return static_cast<std::uint32_t>((plan.narrows ? plan.before->covered : 0) + (at - earlier));
}

void KeepBest(std::vector<FuzzyHit>& hits, std::size_t most) {
    const auto end = hits.begin() + static_cast<std::ptrdiff_t>(std::min(most, hits.size()));
    std::partial_sort(hits.begin(), end, hits.end(), IsBetter);
    hits.erase(end, hits.end());
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

FuzzyPlan FuzzyPlanOf(FuzzyIndices indices, std::wstring_view typed, std::shared_ptr<const FuzzyResult> before,
                      std::size_t most) {
    FuzzyPlan plan{.indices = std::move(indices),
                   .typed = std::wstring(typed),
                   .query = FuzzyQueryOf(typed),
                   .before = std::move(before),
                   .narrows = false,
                   .most = most,
                   .covered = 0,
                   .places = 0,
                   .parts = 0};
    plan.covered = FuzzyCount(plan.indices);
    if (plan.query.words.empty()) return plan;
    plan.narrows = plan.before != nullptr && plan.before->whole && plan.before->covered <= plan.covered &&
                   !FuzzyQueryOf(plan.before->typed).words.empty() && typed.starts_with(plan.before->typed);
    plan.places = plan.narrows ? plan.before->matching.size() + plan.covered - plan.before->covered : plan.covered;
    plan.parts = (plan.places + kPartTexts - 1) / kPartTexts;
    return plan;
}

FuzzyPart FuzzySearchPart(const FuzzyPlan& plan, std::size_t part) {
    FuzzyPart found;
    const std::size_t end = std::min((part + 1) * kPartTexts, plan.places);
    std::size_t first = 0, index = 0;  // the index that holds the text, and the number of its first one
    for (std::size_t at = part * kPartTexts; at < end; ++at) {
        const std::uint32_t number = NumberAt(plan, at);
        while (number - first >= plan.indices[index]->entries.size()) first += plan.indices[index++]->entries.size();
        const FuzzyIndex& texts = *plan.indices[index];
        const FuzzyIndex::Entry& row = texts.entries[number - first];
        if ((row.mask & plan.query.mask) != plan.query.mask) continue;
        const FuzzyText text = FuzzyTextOf(texts, number - first);
        const std::optional<int> score = FuzzyScore(plan.query, text);
        if (!score) continue;
        found.matching.push_back(number);
        found.best.push_back({KeyOf(*score + row.boost, text), number});
    }
    KeepBest(found.best, plan.most);
    return found;
}

FuzzyResult FuzzyJoin(const FuzzyPlan& plan, std::span<const FuzzyPart> parts) {
    FuzzyResult result;
    result.typed = plan.typed;
    result.covered = plan.covered;
    result.whole = parts.size() == plan.parts;
    if (plan.query.words.empty()) {  // all, in their order; `matching` stays empty and stands for all
        result.best.resize(std::min(plan.most, plan.covered));
        std::iota(result.best.begin(), result.best.end(), 0U);
        return result;
    }
    std::vector<FuzzyHit> best;
    for (const FuzzyPart& part : parts) {
        result.matching.insert(result.matching.end(), part.matching.begin(), part.matching.end());
        best.insert(best.end(), part.best.begin(), part.best.end());
    }
    KeepBest(best, plan.most);
    for (const FuzzyHit& hit : best) result.best.push_back(hit.number);
    return result;
}

FuzzyResult FuzzySearch(const FuzzyPlan& plan) {
    std::vector<FuzzyPart> parts;
    for (std::size_t part = 0; part < plan.parts; ++part) parts.push_back(FuzzySearchPart(plan, part));
    return FuzzyJoin(plan, parts);
}
