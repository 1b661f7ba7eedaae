// Replacing a small file in one step: sessions and workspaces. Any thread.
#pragma once

#include <string_view>

// Writes the bytes to a file beside `path`, flushes it, and puts it in the place of `path` in one step, so that a crash
// leaves either the old file or the new one. Where no file can be made beside it, `path` itself is written.
bool ReplaceFileWithText(const wchar_t* path, std::string_view bytes);
