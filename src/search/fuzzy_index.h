// Many texts to match: the files of a project, the commands. A search looks at all of them, or at those that matched
// before a letter was added, and gives the best ones in their order. Pure; any thread.
#pragma once

#include "search/fuzzy_match.h"

#include <cstddef>
#include <cstdint>
#include <functional>
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

// Asked from time to time. False: the search is to stop.
using FuzzyGoesOn = std::function<bool()>;

// Searches all texts. At most `most` are in `best`: those with the highest score, of equal ones those with the shorter
// name, then the shorter text, then the first. With nothing typed all match, in their order. `before` (may be null) is
// an earlier result of the same indices: when its text is the beginning of `typed`, only what matched then is looked at.
FuzzyResult FuzzySearch(const FuzzyIndices& indices, std::wstring_view typed, const FuzzyResult* before,
                        std::size_t most, const FuzzyGoesOn& goesOn = {});
