// What stands beside the text of a snapshot: which document it is of, and how its file is written. And the names of
// both files. Pure.
#pragma once

#include "files/disk_file.h"
#include "files/text_encoding.h"

#include <cstdint>
#include <string>
#include <string_view>

struct SnapshotNote {
    std::wstring path;   // of the document's file; empty: it has none
    std::wstring label;  // of its tab
    TextEncoding encoding = TextEncoding::Utf8;
    LineEnding lineEnding = LineEnding::CrLf;
    std::uint64_t caret = 0;  // bytes
    FileState file;           // time, size and hash of the file that the text was made from; an unknown hash: not known
};

// "Key=value" lines in UTF-8.
std::string SnapshotNoteText(const SnapshotNote& note);
// Takes what it understands. A text that is no note, or is cut, gives the defaults for the rest.
SnapshotNote ParseSnapshotNote(std::string_view text);

// "demo.bas" becomes "demo [12].bas". `number` tells the snapshots of one run apart. Characters that no file name may
// hold become "_".
std::wstring SnapshotName(std::wstring_view label, std::uint32_t number);
inline constexpr wchar_t kSnapshotNoteEnd[] = L".note";  // follows the name of the text

// When a document that is not saved is copied next. Times are tick counts in milliseconds.
struct SnapshotTimes {
    std::uint64_t firstEdit = 0;  // the first that no snapshot holds
    std::uint64_t lastEdit = 0;
    std::uint64_t written = 0;  // when the last snapshot had been written; 0: there is none
    std::uint64_t cost = 0;     // ms that the writing took
    bool failed = false;        // it could not be written
};
// In a pause of the typing, at the latest 4 s after the first edit. A text that takes long to write is not written all the
// time, nor is one that could not be written.
bool SnapshotIsDue(const SnapshotTimes& times, std::uint64_t now);
