// Recognises the diagnostic lines of a compiler and splits them into file, line, column and message. Pure.
#pragma once

#include "base/bounded_text.h"
#include "output/last_build.h"
#include "output/source_marks.h"

#include <cstdint>
#include <string_view>
#include <vector>

inline constexpr int kMaxCompilerErrors = 64;
inline constexpr std::size_t kErrorMessageCapacity = 512;

struct CompilerError {
    wchar_t file[kPathCapacity];             // as printed by the compiler, cut to 1023 characters
    std::int32_t line;                       // 1-based, 0 when not given
    std::int32_t column;                     // 1-based, below 1 when not given
    std::uint32_t compilerId;                // the compiler that printed it
    wchar_t message[kErrorMessageCapacity];  // the text after the keyword, cut to 511 characters
    std::int32_t severity;                   // 0 error, 1 warning
    std::int32_t build;                      // position in CompilerErrors::builds, from 1; 0: of no known build
};

// The diagnostics of one build, or of the builds of a batch, in the order printed. UI thread only.
struct CompilerErrors {
    std::vector<CompilerError> items;  // kMaxCompilerErrors at most
    int current = 0;
    bool visited = false;             // the user has been led to one of them
    std::vector<BuildRecord> builds;  // what the printed file names are relative to
    SourceMarks marks;                // all diagnostics, for their marks in the texts
};

inline int ErrorCount(const CompilerErrors& errors) { return static_cast<int>(errors.items.size()); }

bool IsErrorLine(std::wstring_view line);    // contains " error:" or " fatal error:"
bool IsWarningLine(std::wstring_view line);  // contains " warning:"

// What the end of a build says of its first error, which may be far above: "First error at a.bas:12: message". `build`: its
// position in `builds`, from 1. Empty: it has none.
std::wstring FirstErrorText(const CompilerErrors& errors, std::int32_t build);
// The record that such a line tells; -1: it is another line.
int RecordOfFirstErrorText(const CompilerErrors& errors, std::wstring_view line);

// Reads "file(line,column): error: message" and "file:line:column: error: message", and the same with " fatal error:"
// and " warning:". Returns 1 when `record` was filled (all but the compiler id and the build). Returns 0 for any other line, and
// `record` is then unchanged.
int ParseErrorLine(std::wstring_view line, CompilerError* record);
