// The workspace file as text: composing it, and reading it back by plain search for its keys. The readers accept the
// layout that the writer produces, not JSON at large. Pure.
#pragma once

#include "base/bounded_text.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

inline constexpr int kWorkspaceMaxFiles = 64;
inline constexpr std::size_t kWorkspaceFlagsCapacity = 512;  // wide characters, terminator included

struct WorkspaceTab {
    std::wstring path;  // empty: a document without a file, which is counted but not written
    std::int32_t cursor = 0;
};

// The whole file. The comma after a file compares with the count of all tabs, so that the last file keeps its comma
// when a tab without a path follows; older readers of these files rely on nothing else, and ours accept it.
// `flags` is written as it stands, without escaping.
std::wstring WorkspaceCompose(std::span<const WorkspaceTab> tabs, std::int32_t activeFile, std::uint32_t compiler,
                              const wchar_t* flags);

// Name in the file: the five compilers by id, and the first for any other id.
const wchar_t* WorkspaceCompilerName(std::uint32_t compiler);
// The id of exactly that name, or -1.
int WorkspaceCompilerId(std::wstring_view name);

// Backslash and double quote get a backslash before them. Stops when fewer than 3 places remain.
void JsonEscape(const wchar_t* source, wchar_t* out, std::size_t capacity);

// First occurrence of the key in double quotes, wherever it is. 1 when the value was found; cut to the capacity.
int JsonExtractString(const wchar_t* text, const wchar_t* key, wchar_t* out, std::size_t capacity);
int JsonExtractInt(const wchar_t* text, const wchar_t* key, int defaultValue);

// The entries of the "files" list, at most `maximum`. Returns their number.
int JsonParseFiles(const wchar_t* text, wchar_t (*paths)[kPathCapacity], int* cursors, int maximum);

// What `flags` reads as after a trip through the file: a quote cuts it, a backslash goes.
std::wstring WorkspaceFlagsAsRead(const wchar_t* flags);
