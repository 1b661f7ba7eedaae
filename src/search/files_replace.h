// Replacing in files: what is put in place of the hits. Pure; any thread.
#pragma once

#include "search/files_search_text.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct HitReplacement {
    MatchSpan span;
    std::string text;
};

// The replacements by `query.with` of those hits that begin at `starts` (ascending), in order. Hits of which the text
// no longer has one are left out. `breaks`: what a line break in the replacement becomes in this text.
std::vector<HitReplacement> ReplacementsAt(std::string_view utf8, const FilesQuery& query, std::string_view breaks,
                                           std::span<const std::size_t> starts);
// The text with them.
// The hits of a text after `replacements`, which begin at some of them. `changed`: the text with these made.
std::vector<FileHit> HitsAfterReplacing(std::vector<FileHit> hits, const std::vector<HitReplacement>& replacements,
                                        std::string_view changed);
std::string ReplacedText(std::string_view utf8, const std::vector<HitReplacement>& replacements);

// True when the text has the same hits as those that were found in it and not replaced since, and no others.
bool HasSameHits(std::string_view utf8, const FilesQuery& query, std::span<const FileHit> hits);
