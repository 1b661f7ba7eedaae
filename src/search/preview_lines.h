// The lines that a preview of a file shows. Pure.
#pragma once

#include <string>
#include <string_view>
#include <vector>

struct PreviewLines {
    int first = 1;                    // number of the first line
    std::vector<std::wstring> lines;  // tabs are replaced by blanks, long lines are cut
    std::wstring problem;             // said instead of lines
};
// At most `most` lines. `line` (from 1; 0: none) is among them, after a few others, when the text has it.
PreviewLines PreviewLinesOf(std::string_view utf8, int line, int most);
