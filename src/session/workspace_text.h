// Writes and reads the text of a workspace file. The readers search for the keys and accept only the layout that
// WorkspaceCompose writes, not any JSON. Pure.
#pragma once

#include "base/bounded_text.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

inline constexpr int kWorkspaceMaxFiles = 64;     // that are opened
inline constexpr int kWorkspaceMaxListed = 1024;  // that are read, so that a save can keep the others

struct WorkspaceTab {
    std::wstring path;        // empty: a document without a file, which is not written
    std::int32_t cursor = 0;  // byte position
};

// The text of the whole file. A comma follows each file except one of the last tab, so a last tab without a path leaves
// a comma at the end of the list; the readers accept it. `flags` is written without escaping.
std::wstring WorkspaceCompose(std::span<const WorkspaceTab> tabs, std::int32_t activeFile, std::uint32_t compiler,
                              const wchar_t* flags);

// The compiler's name in the file; that of the first compiler for an unknown id.
const wchar_t* WorkspaceCompilerName(std::uint32_t compiler);
// The id of exactly that name, or -1.
int WorkspaceCompilerId(std::wstring_view name);

// Copies the text with a backslash before each backslash and double quote. Stops when `out` has fewer than 3 characters
// left.
void JsonEscape(const wchar_t* source, wchar_t* out, std::size_t capacity);

// Reads the value of the first "KEY" in the text. JsonExtractString cuts it to `capacity` characters and returns 1, or
// 0 when there is none; JsonExtractInt then returns `defaultValue`.
int JsonExtractString(const wchar_t* text, const wchar_t* key, wchar_t* out, std::size_t capacity);
int JsonExtractInt(const wchar_t* text, const wchar_t* key, int defaultValue);

// Reads the entries of the "files" list, which ends at the first "]" that is not in a quoted text, at most `maximum`, into `paths` and `cursors`. Returns their number.
int JsonParseFiles(const wchar_t* text, wchar_t (*paths)[kPathCapacity], int* cursors, int maximum);

// The path to save a workspace to: `given`, else `current`, else the default one. A relative path counts from the
// program's folder.
std::wstring WorkspacePathFor(std::wstring_view given, std::wstring_view current, const wchar_t* programFolder);

// True when the text has what WorkspaceCompose writes: a list of files, whose entries have a path, and at least one of the
// other members. Other programs write JSON files with a list of that name, too.
bool WorkspaceIsOurs(const wchar_t* text);

// A file counts as a workspace of ours when it has the members that WorkspaceCompose writes. Missing: also an empty file,
// which holds nothing to lose.
enum class WorkspaceFile : std::uint8_t { Missing, Ours, Foreign, Unreadable };
// `text`: the content of the file; null when it cannot be read.
WorkspaceFile WorkspaceFileOf(bool exists, const wchar_t* text);

// What a save does. An empty workspace has no file, but one that the user has named is not deleted behind his back.
enum class WorkspaceSaveStep : std::uint8_t { Refuse, Write, DeleteFile, LeaveFile };
WorkspaceSaveStep WorkspaceSaveStepOf(WorkspaceFile file, std::span<const WorkspaceTab> tabs, bool isDefaultFile);

// The values of a workspace file.
struct Workspace {
    std::vector<WorkspaceTab> files;  // at most kWorkspaceMaxListed
    int activeFile = 0;
    int compiler = -1;                  // CompilerId, -1: unknown
    std::optional<std::wstring> flags;  // flags of `compiler`; no value: not in the file
};
Workspace WorkspaceParse(const wchar_t* text);

// The flags to set after `read` was read from a file. Flags are written without escaping, so a quote or a backslash in
// them is lost. When `read` is such a damaged copy of `own`, the result is `own`.
std::wstring WorkspaceFlagsToSet(const std::wstring& own, const std::wstring& read);

// The carets to set. An entry's place in the list decides its tab, so when a file is gone, the carets of the later
// entries go to other tabs.
struct WorkspaceCaret {
    int tab;
    std::int32_t position;
};
std::vector<WorkspaceCaret> WorkspaceCarets(const Workspace& workspace, int tabCount);
