// The order in which a save touches the disk. At every instant some file holds the whole old text or the whole new one.
// Pure: the steps are given as functions.
#pragma once

#include "files/save_report.h"

#include <cstdint>
#include <functional>

// The file that is about to be overwritten.
struct SaveTarget {
    bool readOnly = false;
    std::uint64_t size = 0;  // bytes; 0 also when there is no such file
};

enum class SaveCheck : std::uint8_t { Same, Different, Unreadable };  // the result of reading the file back

struct SaveSteps {
    std::function<bool()> writeCopy;    // writes the new text to a recovery copy, flushed
    std::function<bool()> isCancelled;  // asked for the last time before the file is touched
    std::function<bool()> hasRoom;      // whether the volume can take the new text in place of the old one
    std::function<bool()> overwrite;    // writes the new text to the file itself, flushed
    std::function<SaveCheck()> check;   // only called when `overwrite` has succeeded
    std::function<void()> discardCopy;
    std::function<void()> keepCopy;  // also called when there is no copy
};

// Exactly one of `discardCopy` and `keepCopy` is called, as the last step. `NotWritten` stands for every failure of
// `overwrite`.
SaveEnd SafeSave(const SaveTarget& target, const SaveSteps& steps);
