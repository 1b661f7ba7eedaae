// Many texts to match: the files of a project, the commands. A search looks at all of them, or at those that matched
// before a letter was added, and gives the best ones in their order. Pure; any thread.
#pragma once

#include "search/fuzzy_match.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Texts, one after the other in one block. One that is shared with a worker is not changed any more.
struct FuzzyIndex {
    struct Entry {
        std::uint64_t mask = 0;
        std::uint32_t start = 0;  // in `characters`
        std::uint16_t length = 0;
        std::uint16_t nameStart = 0;
        int boost = 0;  // added to the score
    };
    std::wstring characters;
    std::vector<Entry> entries;
};
// False, and nothing is added, when the text has more than 65,535 characters.
bool FuzzyAdd(FuzzyIndex* index, std::wstring_view text, std::size_t nameStart, int boost = 0);
FuzzyText FuzzyTextOf(const FuzzyIndex& index, std::size_t entry);

// Several indices that are searched as one; more may be added at the end while the files are read. The number of a text
// counts through all of them.
using FuzzyIndices = std::vector<std::shared_ptr<const FuzzyIndex>>;
struct FuzzyPlace {
    std::size_t index = 0;
    std::size_t entry = 0;
};
FuzzyPlace FuzzyPlaceOf(const FuzzyIndices& indices, std::size_t number);
std::size_t FuzzyCount(const FuzzyIndices& indices);

struct FuzzyResult {
    std::wstring typed;
    std::vector<std::uint32_t> best;      // numbers of texts, the best first
    std::vector<std::uint32_t> matching;  // all that match, ascending
    std::size_t covered = 0;              // texts that were looked at
    bool whole = true;                    // false: it was stopped
};

// One search, in parts that several threads can look at in any order. It is not changed once it is made.
struct FuzzyPlan {
    FuzzyIndices indices;
    std::wstring typed;
    FuzzyQuery query;
    std::shared_ptr<const FuzzyResult> before;
    bool narrows = false;  // only what matched before, and what has come since, is looked at
    std::size_t most = 0;
    std::size_t covered = 0;  // texts in all
    std::size_t places = 0;   // texts to look at
    std::size_t parts = 0;
};
// At most `most` texts are in `best`: those with the highest score, of equal ones those with the shorter name, then the
// shorter text, then the first. With nothing typed all match, in their order. `before` (may be null) is an earlier result
// of the same indices: when its text is the beginning of `typed`, only what matched then is looked at.
FuzzyPlan FuzzyPlanOf(FuzzyIndices indices, std::wstring_view typed, std::shared_ptr<const FuzzyResult> before,
                      std::size_t most);

// A text that matches. The key orders by score and lengths.
struct FuzzyHit {
    std::uint64_t key = 0;
    std::uint32_t number = 0;
};
struct FuzzyPart {
    std::vector<FuzzyHit> best;
    std::vector<std::uint32_t> matching;  // ascending
};
FuzzyPart FuzzySearchPart(const FuzzyPlan& plan, std::size_t part);
// Joins the parts, in their order. When some are missing the result is not `whole`.
FuzzyResult FuzzyJoin(const FuzzyPlan& plan, std::span<const FuzzyPart> parts);
// All parts, one after the other.
FuzzyResult FuzzySearch(const FuzzyPlan& plan);
