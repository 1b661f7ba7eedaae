// What a call tip says: the declaration of what is called, with the parameter that the caret is in. Pure.
#pragma once

#include "language/builtins.h"
#include "language/call_context.h"
#include "language/symbols.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

struct SignatureParameter {
    std::size_t start = 0, end = 0;  // bytes of the signature's text
    std::string keyword;             // in capitals: the word before it in a statement
};
struct Signature {
    std::string text;  // in one line
    std::string note;  // what a built-in one does; else empty
    std::vector<SignatureParameter> parameters;
    bool open = false;         // more arguments are like the last parameter
    bool parentheses = false;  // around the parameters
    std::string second;        // SORT of ARRAY SORT
    bool file = false;         // "#" behind the name
    bool assigns = false;      // MID$(...) = text
};
// Of a procedure or a macro.
Signature SignatureOfSymbol(const SymbolTable& table, const Symbol& symbol);
Signature SignatureOfBuiltin(const Builtin& builtin);

// Which parameter the caret is in; nothing: behind all of them, or there are none.
std::optional<std::size_t> ParameterAt(const Signature& signature, const CallContext& call);
// The signature that suits the arguments that are there; not empty.
std::size_t BestSignature(std::span<const Signature> signatures, const CallContext& call);

struct TipText {
    std::string text;                // lines with "\n" between them; "\001" and "\002" are arrows up and down
    std::size_t start = 0, end = 0;  // bytes of it that are to be marked
    bool operator==(const TipText&) const = default;
};
inline constexpr std::size_t kLeastTipColumns = 24;
// The text for one of the signatures, in lines of at most `columns` characters where that is possible.
TipText TipTextOf(std::span<const Signature> signatures, std::size_t shown, const CallContext& call,
                  std::size_t columns);

// A text of several lines, each broken at blanks where it is longer than `columns` characters, in at most `mostLines`.
std::string BrokenLines(std::string_view text, std::size_t columns, std::size_t mostLines);
