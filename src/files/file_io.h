// Files, paths on disk and conversions that need the operating system. Stateless: any thread. Paths may be longer
// than the system's 260 characters; names with forward slashes are for PathNormalizeInput.
#pragma once

#include "files/text_encoding.h"

#include <cstddef>
#include <string>
#include <string_view>

// New blocks below are freed by the caller with free().
wchar_t* Utf8ToWide(const char* utf8);
char* WideToUtf8(const wchar_t* wide);
// The same for text of known length: malformed bytes become replacement characters, 2 GiB and more become empty text.
std::wstring Utf8ToWideText(std::string_view utf8);

bool FileExists(const wchar_t* path);

// The file's bytes plus a NUL, or null. `length` is set to 0 first. Files of 4 GiB and more, and what is no file on a
// disk (a console, a pipe), are refused.
char* ReadFileUtf8(const wchar_t* path, std::size_t* length);
// Overwrites at once and keeps nothing of the old content: for what can be made again. Sources go through
// WriteSourceFileFromEditor.
bool WriteFileUtf8(const wchar_t* path, const char* bytes, std::size_t length);

// The document as UTF-8, whatever it is on disk, or null. Every out parameter may be null.
char* ReadSourceFileForEditor(const wchar_t* path, std::size_t* length, TextEncoding* encoding, LineEnding* lineEnding);
// Saves with the document's encoding and line ending. The new text stands flushed in a recovery copy before the
// target is truncated; the copy goes once the write is verified and stays when it failed (files/recovery.h).
bool WriteSourceFileFromEditor(const wchar_t* path, const char* utf8, std::size_t length, TextEncoding encoding,
                               LineEnding lineEnding);

// Byte offset of the first character that the system's code page cannot hold, or -1 when it can hold all of them.
std::ptrdiff_t AnsiFirstUnmappable(std::string_view utf8);
bool AnsiCanHold(std::string_view utf8);

// Has what was written to an open file (a HANDLE) on the disk when it returns true. A redirector or an odd file system
// that knows no flush counts as done.
bool FlushWritten(void* file);

// A path as a user or another program wrote it (relative, forward slashes, "." and "..", quotes around it) as the
// absolute one with backslashes. False, with `out` empty, for empty or unusable text and for what does not fit.
bool PathNormalizeInput(const wchar_t* input, wchar_t* out, std::size_t capacity);

// The path in the form that file functions accept at any length; short paths come back as they are.
std::wstring PathForSystem(const wchar_t* path);

// Folder of the running executable, with the trailing backslash.
void AppExeDirectory(wchar_t* out, std::size_t capacity);
