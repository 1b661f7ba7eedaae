// How a save ended, and why. Pure.
#pragma once

#include "files/disk_file.h"

#include <cstdint>

enum class SaveEnd : std::uint8_t {
    Saved,
    NotEncoded,  // the text could not be converted, or memory ran out
    ReadOnly,    // the file has the read-only attribute
    NoCopy,      // no recovery copy could be written, so the old file was not touched
    NoRoom,      // the volume is too full, so the old file was not touched
    NotOpened,   // the file could not be opened for writing and was not touched
    NoFolder,    // the folder of the file is not there
    NotWritten,  // a part of the file may have been written
    Cancelled,   // the user stopped it before the old file was touched
    Different,   // the file was written, but other bytes came back
};

struct SaveReport {
    SaveEnd end = SaveEnd::NotEncoded;
    unsigned long error = 0;  // the system's error code for NoCopy, NotOpened, NoFolder and NotWritten; 0: not known
    FileState state;          // what was written, as it was found when it was read back; unknown without that
};
