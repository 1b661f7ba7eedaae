// How well typed letters fit a text: the path of a file, the name of a command. The letters of a word must occur in the
// text in their order, with any others between them. Of all the ways to find them there, the one with the highest score
// counts: letters at the start of the name, of a part or of a hump, letters that follow each other, and letters in the
// name rather than in its folder give more. Several words are found each for itself, in any order. Pure; any thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A text to match. The name is its last part: "find.cpp" in "search\find.cpp".
struct FuzzyText {
    std::wstring_view text;
    std::size_t nameStart = 0;
};

inline constexpr std::size_t kFuzzyMaxLetters = 64;  // of a word; a longer one is matched in pieces
inline constexpr std::size_t kFuzzyMaxWords = 16;    // more are ignored

struct FuzzyWord {
    std::wstring letters;                  // as typed; a slash is a backslash
    std::wstring folded;                   // the same by PathFoldedCharacter
    std::array<std::uint64_t, 128> ascii;  // for each ASCII character of a text, the letters that it equals, as bits
    std::uint64_t others = 0;              // the letters beyond ASCII, as bits
    bool operator==(const FuzzyWord& other) const { return letters == other.letters; }
};
struct FuzzyQuery {
    std::vector<FuzzyWord> words;  // empty: every text matches
    std::uint64_t mask = 0;        // FuzzyMask of all letters
};
FuzzyQuery FuzzyQueryOf(std::wstring_view typed);

// The characters of a text, folded into 64 bits. A text matches only when it has all bits of the query.
std::uint64_t FuzzyMask(std::wstring_view text);

// The score of the best way to find the query in the text. Nothing when a word does not occur.
std::optional<int> FuzzyScore(const FuzzyQuery& query, const FuzzyText& text);

// The characters of the text that the best way uses, ascending. Empty when the query does not match.
std::vector<std::size_t> FuzzyPositions(const FuzzyQuery& query, const FuzzyText& text);

// The parts of a score, for texts and words of any kind: what a letter gives at its place, and what a gap between two
// letters takes. `last`: it is the last letter of its word.
int FuzzyLetterScore(const FuzzyText& text, std::size_t at, wchar_t letter, bool last);
int FuzzyStepScore(std::size_t from, std::size_t to);
