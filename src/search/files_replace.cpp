#include "search/files_replace.h"

#include <algorithm>
#include <iterator>

std::vector<HitReplacement> ReplacementsAt(std::string_view utf8, const FilesQuery& query, std::string_view breaks,
                                           std::span<const std::size_t> starts) {
    std::vector<HitReplacement> replacements;
    auto matcher = TextMatcher::Of(query, nullptr);
    if (!matcher || !query.with) return replacements;
    // The text is searched from its start, as it was when the hits were found: a match may depend on the one before it.
    matcher->Begin(utf8, nullptr);
    while (const std::optional<MatchSpan> match = matcher->Next())
        if (std::ranges::binary_search(starts, match->start))
            replacements.push_back({*match, matcher->Replacement(*query.with, breaks)});
    return replacements;
}

std::string ReplacedText(std::string_view utf8, const std::vector<HitReplacement>& replacements) {
    std::string text;
    std::size_t at = 0;
    for (const HitReplacement& each : replacements) {
        text += utf8.substr(at, each.span.start - at);
        text += each.text;
        at = each.span.start + each.span.length;
    }
    return text += utf8.substr(at);
}

bool HasSameHits(std::string_view utf8, const FilesQuery& query, std::span<const FileHit> hits) {
    auto matcher = TextMatcher::Of(query, nullptr);
    if (!matcher) return false;
    const FileHits found = HitsInText(utf8, *matcher, hits.size(), nullptr);
    std::vector<FileHit> wanted;
    std::ranges::copy_if(hits, std::back_inserter(wanted), [](const FileHit& hit) { return !hit.replaced; });
    return !found.more && found.hits == wanted;
}

std::vector<FileHit> HitsAfterReplacing(std::vector<FileHit> hits, const std::vector<HitReplacement>& replacements,
                                        std::string_view changed) {
    auto next = replacements.begin();
    std::ptrdiff_t moved = 0;
    std::size_t counted = 0;  // bytes
    std::uint32_t line = 0;   // that begins among these
    for (FileHit& hit : hits) {
        const std::size_t before = hit.start;
        hit.start = static_cast<std::uint32_t>(static_cast<std::ptrdiff_t>(before) + moved);
        if (!hit.replaced && next != replacements.end() && next->span.start == before) {
            moved += static_cast<std::ptrdiff_t>(next->text.size()) - static_cast<std::ptrdiff_t>(next->span.length);
            hit.length = static_cast<std::uint32_t>(next->text.size());
            hit.preview.clear();
            hit.replaced = true;
            ++next;
        }
        for (; counted < std::min<std::size_t>(hit.start, changed.size()); ++counted)
            if (changed[counted] == '\r' ||
                (changed[counted] == '\n' && (counted == 0 || changed[counted - 1] != '\r')))
                ++line;
        hit.line = line;
        ShowLineOfHit(changed, hit);
    }
    return hits;
}
