// Source files and diagnostics: the texts that were read, and the errors at their places.
// Knows nothing of the language.
#pragma once

#include "profile.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace standin {

inline constexpr size_t kMaxSourceBytes = 16u << 20;
inline constexpr size_t kMaxLineBytes = 8192;
inline constexpr int kMaxErrors = 100;

struct SourceFile {
    std::string name;  // UTF-8, as on the command line or joined with the including file's folder
    std::string text;  // without a byte-order mark
};

struct Pos {
    int file = 0;    // index into Sources::files
    int line = 0;    // 1-based
    int column = 0;  // 1-based, in bytes
};

// The kinds of diagnostics. The table in source.cpp holds the code, title and help text of each.
enum class Code {
    Text,
    Unsupported,
    Syntax,
    Undeclared,
    Duplicate,
    Mismatch,
    Block,
    File,
    Limit,
    Constant,
    Unused,
    Narrowing,
    Unreachable,
    NoResult,
    Suspicious,
    Count
};

struct Diagnostic {
    Code code;
    Pos pos;
    std::string message;
    std::string fix;  // a suggested replacement line, or empty
};

struct Sources {
    std::vector<SourceFile> files;
    std::vector<Diagnostic> diagnostics;
    std::set<std::tuple<int, int, int>> errorPlaces;  // one error a place; column 0: a line with unreadable text
    int errors = 0;
    int warnings = 0;
};

bool IsWarning(Code code);

// Records a diagnostic. After kMaxErrors errors nothing more is recorded.
void Report(Sources& sources, Code code, Pos pos, std::string message, std::string fix = {});
bool TooManyErrors(const Sources& sources);

// Returns all diagnostics in the order of files, lines and columns, in the profile's shape.
std::string FormatDiagnostics(const Sources& sources, const Profile& profile);

// Returns the whole file, or nothing with the reason for a message in `why`. `path` is UTF-8.
std::optional<std::string> ReadWholeFile(const std::string& path, std::string& why);
// Writes the whole file. On failure removes what was written and returns false.
bool WriteWholeFile(const std::string& path, std::string_view bytes);
void RemoveFile(const std::string& path);  // reports nothing when the file does not exist
bool FileExists(const std::string& path);
// Returns the same text for the same file, however its path is written.
std::string CanonicalName(const std::string& path);
bool IsAbsolute(std::string_view path);
// Joins `dir` and `name` with the separator that `dir` uses. Returns `name` when `dir` is empty.
std::string JoinPath(const std::string& dir, const std::string& name);
std::string FolderOf(const std::string& path);  // without the final separator unless it is a root; "" when none

}  // namespace standin
