// The temporary copy of the source that some compilers need under another name. A file that is not ours is neither
// overwritten nor deleted: where one stands in the way it is moved aside and put back. Any thread.
#pragma once

#include "settings/compiler_table.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

// What tells one state of a file from another.
struct FileStamp {
    std::uint64_t written = 0;  // time of the last writing, in units of 100 ns
    std::uint64_t length = 0;   // bytes
    bool operator==(const FileStamp&) const = default;
};

struct StagedSource {
    std::wstring path;      // what the compiler is to read; the source itself when nothing had to be copied
    bool copied = false;    // `path` is a copy of ours, to be deleted
    std::wstring aside;     // where a file that stood in the way waits, empty: none did
    std::wstring leftover;  // where an earlier build left such a file when it was cut off, empty: it did not
    FileStamp stamp;        // of the copy, to notice that someone else has written there since
};

// Where the source is copied to before it is compiled: beside the output as ".bas" for KeldorBasic, beside itself as
// ".pb" for ".kxa" and ".bas" for ".ka32" with the others. Empty: it is compiled in place. `attempt` above 0 gives
// further names ("x.kvx1.pb") for the case that the first belongs to the user; KeldorBasic has only the first, because
// it names its output after the source.
std::wstring StagingTarget(std::wstring_view source, std::wstring_view output, CommandStyle style, int attempt);

// False when the source cannot be brought under the name that KeldorBasic needs; `error` is then the Win32 error. The
// other compilers get the source itself if no copy can be made.
bool StageSource(const wchar_t* source, const wchar_t* output, CommandStyle style, StagedSource* staged,
                 std::uint32_t* error);

// Deletes the copy and puts back what was moved aside. Returns a line for the user when something had to be left,
// else empty text. Does nothing the second time.
std::wstring UnstageSource(StagedSource* staged);

// --- The decisions of both (staging.cpp), over what they ask of the disk.
inline constexpr std::uint32_t kErrorFileThere = 80;  // ERROR_FILE_EXISTS

struct StageDisk {
    using Path = std::wstring;
    std::function<bool(const Path&)> exists;
    std::function<bool(const Path&, const Path&)> sameFile;  // two names of one file
    // Copies to a name that must be free. 0, or the Win32 error.
    std::function<std::uint32_t(const Path& from, const Path& to)> copyNew;
    std::function<bool(const Path& from, const Path& to)> move;  // to a name that must be free
    std::function<bool(const Path&, FileStamp*)> stamp;          // false: no such file
    std::function<bool(const Path&)> remove;                     // true: it is gone
};
bool StageOnDisk(const StageDisk& disk, const std::wstring& source, const std::wstring& output, CommandStyle style,
                 StagedSource* staged, std::uint32_t* error);
std::wstring UnstageOnDisk(const StageDisk& disk, StagedSource* staged);
