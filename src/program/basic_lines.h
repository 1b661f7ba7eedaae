// Finds the lines of a BASIC source that are statements, for the debugger. Pure. A source is its bytes, split at LF;
// lines count from 1 and keep their CR.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

inline constexpr int kMaxPbmainLines = 512;  // most statements, and most traps, that a ".pbd" map pairs

// True for a line of blanks only and for an apostrophe or REM comment.
bool IsBasicCommentOrBlank(std::string_view line);
// True for ELSE and END IF without a statement on the same line. "ELSE IF" counts as ELSE, "ELSEIF" does not.
bool IsBasicControlOnlyLine(std::string_view line);

// Writes the line numbers of PBMAIN's statements, its closing line included, to `out`. Returns their number, at most
// `capacity`.
int CollectPbmainLines(std::string_view source, std::uint32_t* out, int capacity);

// The results for a source, so that it is read once only.
struct BasicLineIndex {
    std::vector<bool> controlOnly;      // [line - 1]
    std::vector<std::uint32_t> pbmain;  // line numbers of PBMAIN's statements, ascending, at most kMaxPbmainLines
};
BasicLineIndex BuildBasicLineIndex(std::string_view source);
bool IsControlOnly(const BasicLineIndex& index, std::int64_t line);  // false for a line outside the source
std::uint32_t PreviousPbmainLine(const BasicLineIndex& index, std::int64_t line);  // the last before `line`, or 0
