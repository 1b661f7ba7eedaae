// Files, paths on disk and conversions that need the operating system. No state; any thread. Paths may be longer than the
// system's 260 characters; a path as a user wrote it goes through PathNormalizeInput first.
#pragma once

#include "base/utf8.h"
#include "files/text_encoding.h"

#include <cstddef>
#include <string>
#include <string_view>

bool FileExists(const wchar_t* path);  // false for a folder

// The file's bytes plus a NUL as a new block that the caller frees with free(), or null. `length` is set to 0 first. Null
// also for a file that someone is writing, for 4 GiB and more, and for what is no file on a disk (a console, a pipe).
char* ReadFileUtf8(const wchar_t* path, std::size_t* length);
// The file's bytes, even while others write, rename or delete it, and without hindering them. False: it cannot be read,
// has more than `most` bytes or 2 GiB, or is no file on a disk.
bool ReadSharedFile(const std::wstring& path, std::size_t most, std::string* bytes);
// Overwrites the file at once, so that a failure costs the old content: only for what can be made again. Sources go
// through WriteSourceFileFromEditor.
bool WriteFileUtf8(const wchar_t* path, const char* bytes, std::size_t length);

// The file as UTF-8, whatever its encoding, as a new block that the caller frees with free(), or null. Every out
// parameter may be null.
char* ReadSourceFileForEditor(const wchar_t* path, std::size_t* length, TextEncoding* encoding, LineEnding* lineEnding);
// Saves with the document's encoding and line ending. The new text stands flushed in a recovery copy before the
// target is truncated; the copy goes once the write is verified and stays when it failed (files/recovery.h).
bool WriteSourceFileFromEditor(const wchar_t* path, const char* utf8, std::size_t length, TextEncoding encoding,
                               LineEnding lineEnding);

// Byte offset of the first character that the system's code page cannot hold, or -1 when it can hold all of them.
std::ptrdiff_t AnsiFirstUnmappable(std::string_view utf8);
bool AnsiCanHold(std::string_view utf8);

// A path as a user or another program wrote it (relative, forward slashes, "." and "..", quotes around it) as the
// absolute one with backslashes. False, with `out` empty, for empty or unusable text and for what does not fit.
bool PathNormalizeInput(const wchar_t* input, wchar_t* out, std::size_t capacity);

// The path in the form that file functions accept at any length; short paths come back as they are.
std::wstring PathForSystem(const wchar_t* path);

// Folder of the running executable, with the trailing backslash.
void AppExeDirectory(wchar_t* out, std::size_t capacity);
