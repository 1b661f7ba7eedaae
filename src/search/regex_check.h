// What the editing component's regular expressions cannot do, told to the user instead of "not found": the component
// reports a faulty expression and a missing match alike, and it works byte by byte. Pure.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The component's expressions have no alternation, so its patterns are split at each bar that is neither escaped nor in
// a class. Empty alternatives are left out. False when a bar stands inside parentheses, which cannot be done this way.
bool SplitAlternatives(std::string_view pattern, std::vector<std::string>& alternatives);

// Null when one alternative is an expression that the component takes and that means what it says; else a sentence for
// the user.
const wchar_t* RegexFault(std::string_view pattern);
