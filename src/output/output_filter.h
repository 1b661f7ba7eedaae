// Drops the repetitions that some compilers print: an "error[", "help:" or "fix:" line equal to the last line of the
// same kind. Pure.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

inline constexpr std::size_t kFilterLineLimit = 4096;  // characters remembered of a line
inline constexpr std::size_t kFilterKinds = 3;

struct OutputFilter {
    std::wstring last[kFilterKinds];  // the last line of each kind; empty before the first
};

// Returns false when the line repeats the last one of its kind and is to be dropped. A trailing line break is ignored.
bool OutputFilterPasses(OutputFilter& filter, std::wstring_view line);
void OutputFilterReset(OutputFilter& filter);
