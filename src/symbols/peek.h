// What a peek shows: pages with places, walked back and forward, and where its window stands. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct PeekPlace {
    int document = 0;                      // its open document; 0: the file
    std::wstring path;                     // empty: a document without a file
    std::uint32_t line = 0;                // from 0
    std::uint32_t column = 0, length = 0;  // of the name, in bytes
    bool indented = false;                 // `column` counts from the first character of the line that is no blank
    std::wstring where;                    // "types.inc:12"
    std::wstring text;                     // of its row in the list
};
struct PeekPage {
    std::wstring title;
    std::vector<PeekPlace> places;  // not empty
    std::size_t selected = 0;
};
struct PeekPages {
    std::vector<PeekPage> pages;
    std::size_t at = 0;
};
// Adds a page behind the one that is shown, in place of those that came after it.
void PeekPush(PeekPages& pages, PeekPage page);
bool PeekStep(PeekPages& pages, int step);  // -1: back, 1: forward; false: there is none

// The rows of the window in an editor of that height, in pixels: below the caret's row when there is room, else above.
struct PeekSpan {
    int top = 0;
    int height = 0;
    bool operator==(const PeekSpan&) const = default;
};
PeekSpan PeekSpanOf(int editorHeight, int rowTop, int rowBottom, int wanted);

// The part of a text that is copied for a place: all of it, or many lines around when it is large. The lines above it
// are there as empty ones, so that the numbers of the lines are right.
std::string PeekText(std::string_view text, std::uint32_t line);
