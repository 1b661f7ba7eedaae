// The order in which a save touches the disk, so that at every instant either the old or the new text stands somewhere
// whole. Pure: the steps themselves are given.
#pragma once

#include <cstdint>
#include <functional>

// The file that is about to be overwritten.
struct SaveTarget {
    bool readOnly = false;
    std::uint64_t size = 0;  // bytes; 0 also when there is no such file
};

enum class SaveCheck : std::uint8_t { Same, Different, Unreadable };  // what reading the file back has shown

struct SaveSteps {
    std::function<bool()> writeCopy;   // the new text is on the disk, in a recovery copy
    std::function<bool()> hasRoom;     // the volume can take the new text in place of the old one
    std::function<bool()> overwrite;   // the new text is on the disk, in the file itself
    std::function<SaveCheck()> check;  // after a good overwrite only
    std::function<void()> discardCopy;
    std::function<void()> keepCopy;  // also when there is none
};

// True when the file was saved. Exactly one of `discardCopy` and `keepCopy` is called, as the last step.
bool SafeSave(const SaveTarget& target, const SaveSteps& steps);
