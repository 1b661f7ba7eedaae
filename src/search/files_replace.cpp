#include "search/files_replace.h"

#include <algorithm>

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
    return !found.more && std::ranges::equal(found.hits, hits);
}
