// Source files and diagnostics: what was read, from where, and what is wrong with it at which place.
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
    std::string name;  // UTF-8, as given on the command line or joined from the including file's folder
    std::string text;  // without a byte-order mark
};

struct Pos {
    int file = 0;    // index into Sources::files
    int line = 0;    // 1-based
    int column = 0;  // 1-based, in bytes
};

// One kind of trouble; the table in source.cpp holds its code, title and help text.
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
    std::string fix;  // a replacement line to offer, or empty
};

struct Sources {
    std::vector<SourceFile> files;
    std::vector<Diagnostic> diagnostics;
    std::set<std::tuple<int, int, int>> errorPlaces;  // one error a place; column 0: a line with unreadable text
    int errors = 0;
    int warnings = 0;
};

bool IsWarning(Code code);

// Records one diagnostic; beyond kMaxErrors errors nothing more is kept.
void Report(Sources& sources, Code code, Pos pos, std::string message, std::string fix = {});
bool TooManyErrors(const Sources& sources);

// All diagnostics in the order of files, lines and columns, in the personality's shape.
std::string FormatDiagnostics(const Sources& sources, const Profile& profile);

// Whole file, or nothing with `why` set to a reason fit for a message. `path` is UTF-8.
std::optional<std::string> ReadWholeFile(const std::string& path, std::string& why);
// Writes the whole file; on failure removes what was written and returns false.
bool WriteWholeFile(const std::string& path, std::string_view bytes);
void RemoveFile(const std::string& path);  // silently when it is not there
bool FileExists(const std::string& path);
// The same text for the same file, however it was spelled.
std::string CanonicalName(const std::string& path);
bool IsAbsolute(std::string_view path);
// "dir" + "name" with the separator that `dir` uses; `name` alone when `dir` is empty.
std::string JoinPath(const std::string& dir, const std::string& name);
std::string FolderOf(const std::string& path);  // without the final separator unless it is a root; "" when none

}  // namespace standin
