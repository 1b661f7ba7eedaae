// Finds what Scintilla's regular expressions cannot do, so that the user is told. Scintilla itself reports a faulty
// expression like a missing match, and it works byte by byte. Pure.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Splits a pattern at each | that is neither escaped nor in a class, because Scintilla's expressions have no
// alternation. Leaves out empty alternatives. False when a | is inside parentheses, because such a pattern cannot be
// split.
bool SplitAlternatives(std::string_view pattern, std::vector<std::string>& alternatives);

// Null when Scintilla handles the pattern (one alternative) as it is meant; else a sentence for the user that names the
// fault.
const wchar_t* RegexFault(std::string_view pattern);
