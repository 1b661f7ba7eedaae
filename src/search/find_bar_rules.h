// Rules of the search bar: its places, and what it says of the matches. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// The controls of the bar, from left to right.
enum class FindBarPart : std::uint8_t { Field, Case, Word, Regex, Count, Previous, Next, Close, Number };
inline constexpr int kFindBarParts = static_cast<int>(FindBarPart::Number);

struct FindBarSizes {
    int height = 0;  // pixels, of the bar
    int gap = 0;     // between two controls
    int controlHeight = 0;
    int widths[kFindBarParts] = {};  // wanted; of the field and of the count the least that is useful
};

struct FindBarPlace {
    int left = 0, top = 0, width = 0, height = 0;  // width 0: hidden
};

// The field and the count share what the others leave. Where there is no room, controls go: first the buttons for what
// keys do, then the count, then the options.
void PlaceFindBar(const FindBarSizes& sizes, int width, FindBarPlace (&places)[kFindBarParts]);

struct FindBarCount {
    std::size_t current = 0;  // of the match that is shown, from 1; 0: not known
    std::size_t total = 0;    // found so far
    bool counting = false;    // more may come
    bool capped = false;      // there are more than are counted
};
std::wstring FindBarCountText(const FindBarCount& count);
