// A compiler's diagnostic lines: telling them apart and taking them to pieces. Pure.
#pragma once

#include "base/bounded_text.h"

#include <cstdint>
#include <string_view>

inline constexpr int kMaxCompilerErrors = 64;
inline constexpr std::size_t kErrorMessageCapacity = 512;

struct CompilerError {
    wchar_t file[kPathCapacity];             // as printed by the compiler, cut to 1023 characters
    std::int32_t line;                       // 1-based, 0 when not given
    std::int32_t column;                     // 1-based, below 1 when not given
    std::uint32_t compilerId;                // of the build that printed it
    wchar_t message[kErrorMessageCapacity];  // what follows the keyword, cut to 511 characters
    std::int32_t severity;                   // 0 error, 1 warning
};

// The diagnostics of one build, in the order printed. UI thread only.
struct CompilerErrors {
    CompilerError items[kMaxCompilerErrors] = {};
    int count = 0;
    int current = 0;
};

bool IsErrorLine(std::wstring_view line);    // contains " error:" or " fatal error:"
bool IsWarningLine(std::wstring_view line);  // contains " warning:"

// "file(line,column): error: message" or "file:line:column: error: message", likewise " fatal error:" and " warning:".
// Returns 1 when `record` was filled (all but the compiler id), 0 for any other line; `record` is then untouched.
int ParseErrorLine(std::wstring_view line, CompilerError* record);
