// A thread's registers as values, for 64-bit and 32-bit programs, and the small expressions over them. Pure.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct RegisterSet {
    bool x64 = true;
    // RAX RBX RCX RDX RSI RDI RBP RSP R8..R15; for a 32-bit program the first eight are EAX..ESP, the rest 0.
    std::array<std::uint64_t, 16> general{};
    std::uint64_t ip = 0;
    std::uint32_t flags = 0;
    std::array<std::uint64_t, 16> xmmLow{}, xmmHigh{};  // 8 of them in a 32-bit program
    std::array<std::uint16_t, 6> segments{};            // CS DS ES FS GS SS
    bool operator==(const RegisterSet&) const = default;
};

inline constexpr int kBp = 6, kSp = 7;  // indexes into `general`

struct RegisterRow {
    const wchar_t* name;  // "RAX", "EAX", "RIP", "EFL", "XMM0"
    std::wstring value;   // hexadecimal, the register's full width
};
// Every register of the program's kind, in the order of display.
std::vector<RegisterRow> RegisterRows(const RegisterSet& registers);
// A general register, instruction pointer or part of one (AL, AX, EAX, R8D, R8W, R8B ...) by name, any letter case.
std::optional<std::uint64_t> RegisterByName(const RegisterSet& registers, std::string_view name);

// "RAX=... " in five lines; for 32-bit programs the text that says so.
std::wstring FormatRegisters(const RegisterSet& registers);

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
