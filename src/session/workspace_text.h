// The workspace file as text: composing it, and reading it back by plain search for its keys. The readers accept the
// layout that the writer produces, not any JSON. Pure.
#pragma once

#include "base/bounded_text.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

inline constexpr int kWorkspaceMaxFiles = 64;

struct WorkspaceTab {
    std::wstring path;  // empty: a document without a file, which is counted but not written
    std::int32_t cursor = 0;
};

// The whole file. Each file is followed by a comma unless it belongs to the very last tab: a tab without a path after it
// leaves the comma there, which the readers accept. `flags` is written as it stands, without escaping.
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

// Where a workspace is saved. A given path that is relative counts from the program's folder; with none given, the current
// workspace is meant, or the default one.
std::wstring WorkspacePathFor(std::wstring_view given, std::wstring_view current, const wchar_t* programFolder);

// What a workspace file says.
struct Workspace {
    std::vector<WorkspaceTab> files;  // at most kWorkspaceMaxFiles
    int activeFile = 0;
    int compiler = -1;                  // -1: none that is known
    std::optional<std::wstring> flags;  // of that compiler
};
Workspace WorkspaceParse(const wchar_t* text);

// The flags to set for what was read. The file holds them without escaping, so that a quote or a backslash in them does not
// survive the trip: flags that are in the settings whole are not replaced by their own mutilated copy.
std::wstring WorkspaceFlagsToSet(const std::wstring& own, const std::wstring& read);

// Carets by the number of the tab that they belong to: entries go to tabs by position, so that a file that is gone shifts
// the later carets.
struct WorkspaceCaret {
    int tab;
    std::int32_t position;
};
std::vector<WorkspaceCaret> WorkspaceCarets(const Workspace& workspace, int tabCount);
