// The files of the project, for the file finder. A worker lists them, they are kept, and listed again in the background.
// UI thread only.
#pragma once

#include "search/fuzzy_index.h"

#include <windows.h>

#include <cstddef>
#include <string>

inline constexpr std::size_t kMostProjectFiles = 200'000;  // the others are left out, which `cut` says

struct ProjectFiles {
    std::wstring root;           // the project folder with a backslash at its end; empty: there is none
    FuzzyIndices files;          // their paths below the root
    unsigned generation = 0;     // another one when a search must not build on an earlier one
    bool reading = false;        // a worker lists them; what there is already can be searched
    bool cut = false;            // there are more files
    std::size_t unreadable = 0;  // folders that could not be listed
};
const ProjectFiles& ProjectFilesNow();

// Lists the files unless that has just been done. The files of another root are forgotten at once. The worker posts
// blocks to `window` as `message`, each of which goes to ProjectFilesOnBlock.
void ProjectFilesWant(HWND window, UINT message, const std::wstring& root);
// Takes over a block. True when there is something new to show.
bool ProjectFilesOnBlock(WPARAM block);
// Ends the work, and frees the blocks that wait. Called before `window` is destroyed.
void ProjectFilesEnd(HWND window, UINT message);
