// The functions and statements that are built into BASIC, for call tips and for what is shown about a word. Pure.
#pragma once

#include "language/basic_words.h"

#include <span>
#include <string_view>
#include <vector>

struct Builtin {
    // "LEFT$(text AS STRING, count AS LONG) AS STRING", or a statement "LOCATE row, column". Brackets are around what may
    // be left out. "..." stands for more arguments like the last one.
    std::string_view signature;
    std::string_view text;  // what it does, in one line
};
// All of them. Several may have one name.
std::span<const Builtin> Builtins();

// The name with which the signature begins, as it is written: "LEFT$".
std::string_view BuiltinName(const Builtin& builtin);
// Those of a name, which is without a type suffix, as far as the dialect has the word. Empty: none.
std::vector<const Builtin*> BuiltinsNamed(std::string_view name, const Dialect& dialect);
