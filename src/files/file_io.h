// Reading and writing whole files, and paths as the system has them. No state; any thread. Paths may be longer than the
// system's 260 characters. A path as a user wrote it goes through PathNormalizeInput first.
#pragma once

#include "base/utf8.h"
#include "files/save_report.h"
#include "files/text_encoding.h"

#include <cstddef>
#include <string>
#include <string_view>

struct FileProgress;

bool FileExists(const wchar_t* path);  // false for a folder

// Reads the bytes of a file, whatever their encoding, and appends a NUL that `length` does not count. Returns a new
// block that the caller frees with free(). Returns null, with a `length` of 0, when the file cannot be read, is open
// for writing elsewhere, has 4 GiB or more, or is not a file on a disk (a console, a pipe).
char* ReadFileUtf8(const wchar_t* path, std::size_t* length);
// Reads the bytes of a file without hindering others, who may write, rename or delete it meanwhile. Returns false when
// it cannot be read, has more than `most` bytes, has 2 GiB or more, or is not a file on a disk; the content of `bytes`
// is then unspecified.
bool ReadSharedFile(const std::wstring& path, std::size_t most, std::string* bytes);
// Overwrites the file with the bytes, whatever their encoding. A failure loses the old content, so this is only for
// files that can be made again: sources are saved with WriteSourceFileFromEditor. Returns false on failure and for 4
// GiB or more.
bool WriteFileUtf8(const wchar_t* path, const char* bytes, std::size_t length);

// Reads a source file of any of the encodings as UTF-8, with a NUL at the end that `length` does not count. Returns a new
// block that the caller frees with free(), or null when it cannot be read. Every out parameter may be null. `state`: the file as
// it was read.
char* ReadSourceFileForEditor(const wchar_t* path, std::size_t* length, TextEncoding* encoding, LineEnding* lineEnding,
                              DiskForm* form = nullptr, FileState* state = nullptr,
                              SourceCode code = SourceCode::Guess);
// Appends the bytes of a code page to `utf8`. False when they cannot be converted, or when memory runs out. `*exact`
// becomes false when the text does not give the same bytes back; otherwise it stays as it is.
bool DecodeCodePage(unsigned codePage, std::string_view bytes, std::string* utf8, bool* exact);

// Saves a source file with the given encoding, line ending and form. The new text is flushed to a recovery copy before
// the target is truncated. The copy is deleted once the target has been read back and compared, and stays when the save
// failed (files/recovery.h). Returns false when the save failed; `report` (may be null) tells why. `progress` (may be
// null) shows how far it is, and can stop it until the target is about to be truncated.
bool WriteSourceFileFromEditor(const wchar_t* path, const char* utf8, std::size_t length, TextEncoding encoding,
                               LineEnding lineEnding, const DiskForm& form = {}, SaveReport* report = nullptr,
                               FileProgress* progress = nullptr);

// The byte offset of the first character that the ANSI code page cannot hold, or -1 when it can hold all of them.
std::ptrdiff_t AnsiFirstUnmappable(std::string_view utf8);
bool AnsiCanHold(std::string_view utf8);

// Turns a path as a user or another program wrote it (relative, with forward slashes, ".", ".." or quotes around it)
// into the absolute path with backslashes. `capacity` counts the terminator. `input` and `out` may be the same buffer.
// Returns false, with an empty `out`, when the text is empty, is not a path, or does not fit.
bool PathNormalizeInput(const wchar_t* input, wchar_t* out, std::size_t capacity);

// The path in the form that file functions accept at any length. A short path is returned unchanged.
std::wstring PathForSystem(const wchar_t* path);

// The folder of the running executable, with its trailing backslash. Empty when it is not known.
void AppExeDirectory(wchar_t* out, std::size_t capacity);
