// Numbers, registers and comparisons that the user writes: in conditions, and in the debug pane. Pure.
#pragma once

#include "debugger/registers.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// A condition's side: hexadecimal with 0x, decimal up to the first other character, or for a 64-bit program a 64-bit
// register's name that is the whole rest of the text. Everything else is 0; a blank after a register's name, too.
std::uint64_t EvaluateExpression(const RegisterSet& registers, std::string_view text);

// "left OP right", split at the first of >=, <=, !=, ==, >, < (tried in this order) that occurs anywhere.
struct Condition {
    enum class Operator { None, GreaterEqual, LessEqual, NotEqual, Equal, Greater, Less } op = Operator::None;
    std::string_view left, right;  // without leading blanks and tabs
};
Condition ParseCondition(std::string_view text);
bool Compare(Condition::Operator op, std::uint64_t left, std::uint64_t right);  // None: true

// What the debug pane accepts as an address or a value: numbers (0x1F, &H1F, 31), registers of both kinds of program and
// their parts, + - * and brackets. Nothing, with the reason, for anything else.
struct Evaluation {
    std::optional<std::uint64_t> value;
    std::wstring problem;
};
Evaluation EvaluatePaneExpression(const RegisterSet& registers, std::string_view text);
