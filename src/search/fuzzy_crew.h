// Threads that share each search over many texts. They wait between two searches, so that a key starts none.
#pragma once

#include "search/fuzzy_index.h"

#include <windows.h>

#include <memory>

// What is posted: the answer to the request of that number.
struct FuzzyFound {
    unsigned request = 0;
    std::shared_ptr<const FuzzyResult> result;
};
using FuzzyFoundPtr = std::unique_ptr<FuzzyFound>;

struct FuzzyCrew;  // ends its threads when it is destroyed, without waiting for them

// One thread for each processor, at most four. Null when none could be started.
std::unique_ptr<FuzzyCrew, void (*)(FuzzyCrew*)> FuzzyCrewStart();
// Posts `message` to `window` with a FuzzyFound when all of it was looked at. An earlier search that still runs is
// given up, and posts nothing. The crew's owner's thread.
void FuzzyCrewSearch(FuzzyCrew& crew, HWND window, UINT message, unsigned request, FuzzyPlan plan);
// Gives up the search that runs.
void FuzzyCrewStop(FuzzyCrew& crew);
