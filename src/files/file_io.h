// Files, paths on disk and conversions that need the operating system. Stateless: any thread.
#pragma once

#include "files/text_encoding.h"

#include <cstddef>

// New blocks below are freed by the caller with free().
wchar_t* Utf8ToWide(const char* utf8);
char* WideToUtf8(const wchar_t* wide);

bool FileExists(const wchar_t* path);

// The file's bytes plus a NUL, or null. `length` is set to 0 first.
char* ReadFileUtf8(const wchar_t* path, std::size_t* length);
bool WriteFileUtf8(const wchar_t* path, const char* bytes, std::size_t length);

// The document as UTF-8, whatever it is on disk, or null. Every out parameter may be null.
char* ReadSourceFileForEditor(const wchar_t* path, std::size_t* length, TextEncoding* encoding,
                              LineEnding* lineEnding);
// Saves with the document's encoding and line ending. The new text stands flushed in a recovery copy before the
// target is truncated; the copy goes once the write is verified and stays when it failed.
bool WriteSourceFileFromEditor(const wchar_t* path, const char* utf8, std::size_t length, TextEncoding encoding,
                               LineEnding lineEnding);

// Folder of the running executable, with the trailing backslash.
void AppExeDirectory(wchar_t* out, std::size_t capacity);
