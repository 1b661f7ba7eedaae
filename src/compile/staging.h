// The temporary copy of the source that some compilers need under another name. A file of the user is neither
// overwritten nor deleted: a file with the copy's name is moved aside and put back. Any thread.
#pragma once

#include "compile/file_stamp.h"
#include "settings/compiler_table.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

struct StagedSource {
    std::wstring path;      // the file that the compiler reads; the source itself when no copy was made
    bool copied = false;    // `path` is a copy that UnstageSource deletes
    std::wstring aside;     // where the user's file with the copy's name was moved; empty: there was none
    std::wstring leftover;  // where an interrupted earlier build left such a file; empty: none
    FileStamp stamp;        // the copy's, to notice that someone else has written to it
};

// The path of the copy: for KeldorBasic beside the output as ".bas"; for the other compilers beside the source, as
// ".pb" for ".kxa" and as ".bas" for ".ka32". Empty when the source is compiled in place. `attempt` above 0 gives
// further names ("x.kvx1.pb") for the case that the first is a file of the user. KeldorBasic has only the first,
// because it names its output after the source.
std::wstring StagingTarget(std::wstring_view source, std::wstring_view output, CommandStyle style, int attempt);

// Makes the copy. Returns false with the Win32 error in `error` when the copy that KeldorBasic needs cannot be made.
// The other compilers read the source itself if no copy can be made.
bool StageSource(const wchar_t* source, const wchar_t* output, CommandStyle style, StagedSource* staged,
                 std::uint32_t* error);

// Deletes the copy and moves the user's file back. Returns a line for the user when something could not be done, else
// empty text. A second call does nothing.
std::wstring UnstageSource(StagedSource* staged);

// --- The decisions of both functions (staging.cpp), over a replaceable disk.
inline constexpr std::uint32_t kErrorFileThere = 80;         // ERROR_FILE_EXISTS
inline constexpr std::uint32_t kErrorStagedElsewhere = 170;  // ERROR_BUSY: another editor has made its copy there

struct StageDisk {
    using Path = std::wstring;
    std::function<bool(const Path&)> exists;
    std::function<bool(const Path&, const Path&)> sameFile;  // both names are of the same file
    // Copies to a name that must be free. Returns 0 or the Win32 error.
    std::function<std::uint32_t(const Path& from, const Path& to)> copyNew;
    std::function<bool(const Path& from, const Path& to)> move;  // to a name that must be free
    std::function<bool(const Path&, FileStamp*)> stamp;          // false: no such file
    std::function<bool(const Path&)> remove;                     // true: it is gone
    // Reserves the name of the copy until the copy is gone. False: another editor has reserved it.
    std::function<bool(const Path&)> claim = [](const Path&) { return true; };
    // Keeps a note of what is about to be moved aside or was copied, for StagedRecover after an end of the editor.
    std::function<void(const Path& source, const StagedSource&)> note = [](const Path&, const StagedSource&) {};
};
bool StageOnDisk(const StageDisk& disk, const std::wstring& source, const std::wstring& output, CommandStyle style,
                 StagedSource* staged, std::uint32_t* error);
std::wstring UnstageOnDisk(const StageDisk& disk, StagedSource* staged);

// --- After an editor was ended during a build.
// Deletes the copies that earlier editors have left, and puts the user's files back. Leaves those of an editor that
// still runs. Returns lines for the user.
std::vector<std::wstring> StagedRecover();

struct StageNote {
    std::wstring source;
    std::wstring target;  // where the copy was made
    std::wstring aside;   // where the user's file with that name went; empty: there was none
    FileStamp stamp;      // the copy's; zeros: it was not made yet
};
std::string StageNoteText(const StageNote& note);  // in UTF-8
StageNote StageNoteOfText(std::string_view text);  // with an empty target when it is none
// Puts things right as far as they are as the note says. Returns a line for the user, or empty text.
std::wstring RecoverOnDisk(const StageDisk& disk, const StageNote& note);
