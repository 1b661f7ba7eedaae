// What a file is on the disk at one moment: enough to tell later whether somebody else has changed it. Times are only
// compared for being the same, so a clock that jumps does no harm. Pure, but for the functions at the end; any thread.
#pragma once

#include "files/file_identity.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

// Of the bytes of a file. Not made to withstand somebody who looks for two files with the same one.
struct ContentHash {
    std::uint64_t a = 0, b = 0;  // both 0: not known

    bool IsKnown() const { return (a | b) != 0; }
    bool operator==(const ContentHash&) const = default;
};

// Takes the bytes in pieces of any size.
class ContentHasher {
public:
    void Add(std::string_view bytes);
    ContentHash Value() const;

private:
    void AddWord(const char* word);

    std::uint64_t lanes_[4] = {1, 2, 3, 4};
    std::uint64_t length_ = 0;
    char rest_[32] = {};  // the last `length_ % 32` bytes
};
ContentHash ContentHashOf(std::string_view bytes);

// Unknown: it could not be asked, or nothing has asked yet.
enum class FilePresence : std::uint8_t { Unknown, Missing, There };

struct FileState {
    FilePresence presence = FilePresence::Unknown;
    bool readOnly = false;
    std::uint64_t written = 0;  // time of the last write, in the system's units
    std::uint64_t size = 0;     // bytes
    FileIdentity identity;
    ContentHash hash;  // may be unknown

    bool operator==(const FileState&) const = default;
};

enum class FileChange : std::uint8_t {
    None,      // or it cannot be told
    Touched,   // the same bytes: time, identity or an attribute is another, or it has come back as it was
    ReadOnly,  // the same bytes, and it must not be written any more
    Changed,
    Replaced,  // by a file of its own with other bytes
    Gone,
};
// What has become of a file that was `known`. `now` needs its hash when FileNeedsHash says so; without one the bytes
// count as others.
FileChange FileChangeOf(const FileState& known, const FileState& now);
// Whether only the bytes themselves can tell.
bool FileNeedsHash(const FileState& known, const FileState& now);
// The same but for the hash. What a missing file was does not matter.
bool FileLooksSame(const FileState& known, const FileState& now);

// --- disk_file_win.cpp
// Without the hash. Opens the file without hindering others.
FileState FileStateOf(const wchar_t* path);
// The same, with the hash where it is needed to compare with `known`. `stop` (may be empty) is asked between pieces; the
// hash then stays unknown.
FileState FileStateToCompare(const wchar_t* path, const FileState& known, const std::function<bool()>& stop);
