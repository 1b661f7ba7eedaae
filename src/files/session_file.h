// Replaces small files in one step: sessions and workspaces. Any thread.
#pragma once

#include <string_view>

// Writes the bytes to a file beside `path`, flushes it and renames it to `path`. So a crash leaves either the old file
// or the new one. When no file can be made beside it, `path` itself is written. Returns false when it could not be
// written.
bool ReplaceFileWithText(const wchar_t* path, std::string_view bytes);
