// Finds texts in a picture and measures each against the ground it stands on. Knows nothing of what was painted: words
// are what is small, uneven and stands in rows on even ground. Signs, frames and thick lines are left out by their
// shape. Pure.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <vector>

#include "ui/theme_table.h"

struct Picture {
    int width = 0, height = 0;
    std::vector<Rgb> pixels;  // by rows
    Rgb At(int x, int y) const { return pixels[static_cast<std::size_t>(y * width + x)]; }
};

struct PictureWord {
    int left = 0, top = 0, right = 0, bottom = 0;  // without right and bottom
    Rgb ground = 0, text = 0;
    double contrast = 0;
};

namespace text_contrast {

struct Blob {
    int left, top, right, bottom, size;
};

// Groups pixels of which `same` says that they belong together; calls `take` with each group's pixels.
template <typename Same, typename Take>
void GroupPixels(const Picture& picture, const std::vector<bool>& wanted, bool diagonal, Same same, Take take) {
    std::vector<bool> seen(picture.pixels.size());
    std::vector<int> group, open;
    for (int start = 0; start < static_cast<int>(picture.pixels.size()); ++start) {
        const auto first = static_cast<std::size_t>(start);
        if (seen[first] || !wanted[first]) continue;
        seen[first] = true;
        group.clear();
        open.assign(1, start);
        while (!open.empty()) {
            const int at = open.back();
            open.pop_back();
            group.push_back(at);
            for (int dy = -1; dy <= 1; ++dy)
                for (int dx = -1; dx <= 1; ++dx) {
                    const int x = at % picture.width + dx, y = at / picture.width + dy;
                    if ((!diagonal && dx != 0 && dy != 0) || x < 0 || y < 0 || x >= picture.width ||
                        y >= picture.height)
                        continue;
                    const auto next = static_cast<std::size_t>(y * picture.width + x);
                    if (seen[next] || !wanted[next] || !same(picture.pixels[first], picture.pixels[next])) continue;
                    seen[next] = true;
                    open.push_back(static_cast<int>(next));
                }
        }
        take(group);
    }
}

inline Blob BlobOf(const Picture& picture, const std::vector<int>& group) {
    Blob blob = {picture.width, picture.height, 0, 0, static_cast<int>(group.size())};
    for (const int at : group) {
        const int x = at % picture.width, y = at / picture.width;
        blob = {std::min(blob.left, x), std::min(blob.top, y), std::max(blob.right, x + 1),
                std::max(blob.bottom, y + 1), blob.size};
    }
    return blob;
}

// What is drawn on even ground. Ground is a connected area of one colour that is larger than a stroke of a letter.
inline std::vector<bool> InkOf(const Picture& picture, int em) {
    std::vector<bool> ink(picture.pixels.size(), true);
    const std::vector<bool> all(picture.pixels.size(), true);
    GroupPixels(
        picture, all, false, [](Rgb a, Rgb b) { return a == b; },
        [&](const std::vector<int>& group) {
            const Blob blob = BlobOf(picture, group);
            const bool wide = blob.right - blob.left > 4 * em || blob.bottom - blob.top > 2 * em;
            const bool even = blob.size > em * em || wide;
            if (even)
                for (const int at : group) ink[static_cast<std::size_t>(at)] = false;
        });
    return ink;
}

// The commonest colour of what is not ink in and around the word.
inline Rgb GroundOf(const Picture& picture, const std::vector<bool>& ink, const PictureWord& word) {
    std::map<Rgb, int> counts;
    for (int y = std::max(0, word.top - 2); y < std::min(picture.height, word.bottom + 2); ++y)
        for (int x = std::max(0, word.left - 2); x < std::min(picture.width, word.right + 2); ++x)
            if (!ink[static_cast<std::size_t>(y * picture.width + x)]) ++counts[picture.At(x, y)];
    const auto most = std::ranges::max_element(counts, {}, [](const auto& each) { return each.second; });
    return most == counts.end() ? 0 : most->first;
}

// The ink with the greatest contrast, without the four strongest pixels, which may be a caret's or a sign's. Smoothed
// strokes have their full colour only in their middle.
inline void MeasureWord(const Picture& picture, const std::vector<bool>& ink, PictureWord& word) {
    word.ground = GroundOf(picture, ink, word);
    std::vector<std::pair<double, Rgb>> found;
    for (int y = word.top; y < word.bottom; ++y)
        for (int x = word.left; x < word.right; ++x)
            if (ink[static_cast<std::size_t>(y * picture.width + x)])
                found.emplace_back(ThemeContrast(picture.At(x, y), word.ground), picture.At(x, y));
    const std::size_t place = std::min<std::size_t>(4, found.size() - 1);
    std::ranges::nth_element(found, found.begin() + static_cast<std::ptrdiff_t>(place), std::greater<>());
    word.contrast = found[place].first;
    word.text = found[place].second;
}

}  // namespace text_contrast

// The words of the picture. `em` is the height of a line of its texts in pixels.
inline std::vector<PictureWord> WordsOfPicture(const Picture& picture, int em) {
    using namespace text_contrast;
    const std::vector<bool> ink = InkOf(picture, em);
    std::vector<Blob> letters;
    GroupPixels(
        picture, ink, true, [](Rgb, Rgb) { return true; },
        [&](const std::vector<int>& group) {
            const Blob blob = BlobOf(picture, group);
            const int width = blob.right - blob.left, height = blob.bottom - blob.top;
            const bool letter = height >= em / 4 && height <= em && blob.size * 20 < width * height * 19;
            if (letter || (height >= em / 3 && height <= em && width <= em / 5)) letters.push_back(blob);
        });
    std::ranges::sort(letters, {}, [](const Blob& blob) { return blob.left; });
    std::vector<PictureWord> words;
    std::vector<int> counts;
    for (const Blob& letter : letters) {
        const auto joins = [&](const PictureWord& word) {
            return letter.left <= word.right + std::max(1, em / 8) && letter.top < word.bottom &&
                   letter.bottom > word.top &&
                   std::max(letter.bottom, word.bottom) - std::min(letter.top, word.top) <= em;
        };
        const auto word = std::ranges::find_if(words, joins);
        if (word == words.end()) {
            words.push_back({letter.left, letter.top, letter.right, letter.bottom});
            counts.push_back(1);
            continue;
        }
        word->top = std::min(word->top, letter.top);
        word->right = std::max(word->right, letter.right);
        word->bottom = std::max(word->bottom, letter.bottom);
        ++counts[static_cast<std::size_t>(word - words.begin())];
    }
    std::vector<PictureWord> measured;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const int width = words[i].right - words[i].left, height = words[i].bottom - words[i].top;
        // A sign, or too short to tell; a row of dashes or dots is too thin.
        if ((counts[i] < 3 && width < 2 * height) || height * 8 < em * 3) continue;
        MeasureWord(picture, ink, words[i]);
        measured.push_back(words[i]);
    }
    return measured;
}
