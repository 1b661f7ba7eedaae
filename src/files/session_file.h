// Replaces files in one step: settings, sessions, workspaces, kept texts. Any thread.
#pragma once

#include <string>
#include <string_view>

// Renames `from` to `to`, which may exist. Both are paths for the system. Waits up to `waitMs` for a program that has
// `to` open: a virus scanner, an indexer. Returns false with GetLastError() when that fails.
bool MoveInPlace(const std::wstring& from, const std::wstring& to, unsigned waitMs);

// Writes the bytes to a file beside `path`, flushes it and renames it to `path`. So a crash leaves either the old file
// or the new one. The name of the file beside it holds the process id. Returns false when it could not be written:
// `path` is unchanged then, and GetLastError() tells the reason. Waits up to 100 ms for a program that has `path` open.
bool ReplaceFileWhole(const wchar_t* path, std::string_view bytes);

// The same, but writes `path` itself when no file can be made beside it.
bool ReplaceFileWithText(const wchar_t* path, std::string_view bytes);
