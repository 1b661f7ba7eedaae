// Which rows the list shows for what is typed. Few texts are searched at once, many on a worker. UI thread only.
#pragma once

#include "commands/quick_source.h"

#include <memory>
#include <string>
#include <vector>

inline constexpr std::size_t kMostQuickRows = 500;

struct QuickSearch {
    const QuickSource* source = nullptr;
    QuickQuery query;                          // as it is typed
    FuzzyIndices texts;                        // those that were searched
    std::shared_ptr<const FuzzyResult> found;  // null: nothing yet
    FuzzyQuery letters;                        // of `found`, to draw them
    std::vector<std::uint32_t> rows;           // numbers of texts, the best first
    std::size_t hidden = 0;                    // rows that would be there twice
    bool running = false;                      // a worker searches; the rows are those of an earlier text
};
const QuickSearch& QuickSearchNow();
QuickItem QuickSearchItem(std::size_t row);

// Searches for what is typed, in the source that it chooses. The worker posts MSG_QUICK_FOUND to `window`. False: the
// rows come later.
bool QuickSearchType(HWND window, std::wstring_view typed);
// Takes over what a worker has found. True when there are new rows.
bool QuickSearchOnFound(HWND window, WPARAM found);
// Forgets the rows, and asks the worker to end.
void QuickSearchForget();
// Frees what waits in the queue of the window. Called before it is destroyed.
void QuickSearchDrop(HWND window);
// "12 of 3,400 files"
std::wstring QuickSearchStatus();
