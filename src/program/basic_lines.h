// Which lines of a BASIC source are statements, as the debugger needs to know it. Pure. A source is its bytes, split at LF;
// lines count from 1 and keep their CR.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

inline constexpr int kMaxPbmainLines = 512;  // statements and traps that a ".pbd" map pairs

// Nothing but blanks, or an apostrophe or REM comment.
bool IsBasicCommentOrBlank(std::string_view line);
// ELSE or END IF and nothing that belongs to it. "ELSE IF" counts, "ELSEIF" does not.
bool IsBasicControlOnlyLine(std::string_view line);

// The statements of PBMAIN, its closing line included, into `out`; returns their number (at most `capacity`).
int CollectPbmainLines(std::string_view source, std::uint32_t* out, int capacity);

// A source read once for any number of questions.
struct BasicLineIndex {
    std::vector<bool> controlOnly;      // [line - 1]
    std::vector<std::uint32_t> pbmain;  // statements of PBMAIN, ascending, at most kMaxPbmainLines
};
BasicLineIndex BuildBasicLineIndex(std::string_view source);
bool IsControlOnly(const BasicLineIndex& index, std::int64_t line);                // false outside the source
std::uint32_t PreviousPbmainLine(const BasicLineIndex& index, std::int64_t line);  // last one below `line`, or 0
