// What may be written at a place of a BASIC text: which kinds of names and words, and what of the word stands there
// already. Also how a typed word fits a longer name. Pure; any thread.
#pragma once

#include "language/blocks.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

enum class CompletionPlace : std::uint8_t {
    Nothing,      // a comment, a string, a number, DATA
    Statement,    // a statement may begin
    Expression,   // inside one
    Type,         // after AS
    Label,        // after GOTO, GOSUB, RESUME
    Member,       // after a dot
    Directive,    // after the mark of a metastatement
    BlockWord,    // after END, EXIT, ITERATE
    NewName,      // a name that is being declared
    EntryName,    // the same, after FUNCTION: where a program starts has a name of its own
    Parameter,    // a parameter begins: BYVAL...
    AfterName,    // behind a declared name: AS...
    Instruction,  // of inline assembly
    Operand,
};

struct CompletionContext {
    CompletionPlace place = CompletionPlace::Nothing;
    std::size_t start = 0;               // of the word, bytes from the start of the text
    std::string prefix;                  // what stands of it before the caret, with the mark of an equate
    std::vector<std::string> qualifier;  // Member: "a(1).b." gives a, b; empty when no name stands before the dot
    bool inCode = false;                 // false: in a comment, a string, a number or DATA, where nothing is offered
};
// The context of the end of `before`, which begins at the start of a line with this state. Blocks of WITH are seen when
// they begin in it.
CompletionContext CompletionContextAt(std::string_view before, ScanState state, const Dialect& dialect);

// The innermost block that is open at the start of the last line of `before`; Count: none that begins in it.
BlockKind InnermostBlockAt(std::string_view before, ScanState state, const Dialect& dialect);

// The letters of a prefix that were typed as a name: without "%" or "$".
std::size_t CompletionLetters(std::string_view prefix);

// How a typed word fits a name.
enum class NameFit : std::uint8_t {
    Equal,   // without regard to case
    Prefix,  // the name begins so
    Humps,   // its letters begin the parts of the name: "gpa" fits GetPixelArea, "%wc" fits %WM_CLOSE
    None,
};
NameFit FitOfName(std::string_view typed, std::string_view name);

// Each name and equate of a text once that begins so, as it is written first and not counting keywords. The one that
// begins at `except` does not count. Ends at `most` names.
std::vector<std::string> NamesInText(std::string_view text, ScanState state, const Dialect& dialect,
                                     std::string_view prefix, std::size_t except, std::size_t most);

// A keyword as it is to be written: in capitals when the settings say so (`capitals`), else as the letters are that were
// typed.
std::string SpelledKeyword(std::string_view word, std::string_view typed, bool capitals);
