// Numbers, registers and comparisons that the user writes: in conditions, and in the debug pane. Pure.
#pragma once

#include "debugger/registers.h"
#include "debugger/stack_walk.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

// Value of one side of a condition: a hexadecimal number after 0x; a decimal number, which ends at the first other
// character; or, in a 64-bit program, the name of a 64-bit register. Anything else is 0, even such a name with a blank
// after it.
std::uint64_t EvaluateExpression(const RegisterSet& registers, std::string_view text);

// "left OP right", split at the first of >=, <=, !=, ==, >, < (tried in this order) that occurs anywhere.
struct Condition {
    enum class Operator { None, GreaterEqual, LessEqual, NotEqual, Equal, Greater, Less } op = Operator::None;
    std::string_view left, right;  // without leading blanks and tabs
};
Condition ParseCondition(std::string_view text);
// True when the condition holds; one with the operator None always does. Without registers (null) both sides are 0.
bool ConditionHolds(const Condition& condition, const RegisterSet* registers);

// Value of a text that the debug pane takes as an address or a value: numbers (0x1F, &H1F, 1Fh, 31), registers of the
// program's kind and their parts, + - * and brackets, and memory: [RSP+8] is the word of the program's width there,
// BYTE [n], WORD [n], DWORD [n] and QWORD [n] (or DWORD PTR [n]) are narrower or wider. For anything else there is no value, and `problem`
// says why. In a 32-bit program the value is cut to 32 bits. Without `read` no memory can be named.
struct Evaluation {
    std::optional<std::uint64_t> value;
    std::wstring problem;
};
// The value of a name that the user has given, or with `place` its address; nothing: there is no such name.
using NameReader = std::function<std::optional<Evaluation>(std::string_view name, bool place)>;
// With `names`, a name is its value, also where a part of a register has the same name, and VARPTR(name) is its address.
Evaluation EvaluatePaneExpression(const RegisterSet& registers, std::string_view text, const MemoryReader& read = {},
                                  const NameReader& names = {});
// The name that `text` begins with: letters, digits and underscores, then type suffixes. Empty: none.
std::string_view NameAtStart(std::string_view text);
// The same without its type suffixes.
std::string_view WithoutTypeSuffix(std::string_view name);
