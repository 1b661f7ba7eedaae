// The calls around a place of BASIC: which procedures' arguments the caret stands in, and in which argument. Knows no
// declarations, so it cannot tell a call from an array's subscript; its caller looks each name up. Pure.
#pragma once

#include "language/scanner.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

struct CallContext {
    std::string name;                    // of what is called, without a type suffix
    std::vector<std::string> qualifier;  // "a(1).b.Name(": a, b; empty when nothing with a name stands before the dot
    bool isMember = false;               // a dot stands before the name
    bool startsStatement = false;        // the name is the first word of its statement
    bool parentheses = false;            // the arguments are in parentheses
    std::size_t nameStart = 0;           // bytes from the start of the text
    std::size_t argumentsStart = 0;      // behind the parenthesis, or behind the name
    std::size_t argument = 0;            // commas and semicolons before the place, from 0
    // Without parentheses: what tells statements of one name apart.
    std::string second;            // the word right behind the name, in capitals: SORT of ARRAY SORT
    bool file = false;             // "#" stands right behind the name
    std::string keyword;           // the last keyword, in capitals: FOR of OPEN name FOR mode
    std::size_t afterKeyword = 0;  // commas since then
};

// The calls around the end of `text`, innermost first; it begins at the start of a line in `state` and should begin with
// its statement. Empty in comments, inline assembly, metastatements and declarations of procedures.
std::vector<CallContext> CallsAround(std::string_view text, ScanState state, const Dialect& dialect);
