// What is done with an exception of the program: it is continued as handled unless the user wants it passed to the
// program, and it is a stop when the user wants that. Pure.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct ExceptionAction {
    bool pass = false;  // the program's own handlers get it; otherwise it is continued as handled
    bool stop = false;  // the program stops when it is raised, before any handler runs
    bool operator==(const ExceptionAction&) const = default;
};

inline constexpr std::uint32_t kOtherExceptions = 0;  // the code of the rule for all codes without one
struct ExceptionRule {
    std::uint32_t code = kOtherExceptions;
    ExceptionAction action;
    bool operator==(const ExceptionRule&) const = default;
};

// The setting: rules separated by ';', each a code in hexadecimal or "other", a colon, and the letters p (pass) and s
// (stop), as in "C0000005:ps;other:p". What cannot be read is left out; of two rules for a code the first counts.
std::vector<ExceptionRule> ParseExceptionRules(std::wstring_view text);
// Rules that do nothing are left out, unless the one for all others does something.
std::wstring ExceptionRulesText(std::span<const ExceptionRule> rules);
ExceptionAction ActionOfException(std::span<const ExceptionRule> rules, std::uint32_t code);

struct KnownException {
    std::uint32_t code;
    const wchar_t* name;  // "Access violation"
};
std::span<const KnownException> KnownExceptions();
// The name of a code, or "Exception" for one without a name.
const wchar_t* ExceptionName(std::uint32_t code);

struct ExceptionReport {
    std::uint32_t code = 0;
    bool firstChance = true;
    std::array<std::uint64_t, 2> information{};  // the first two of the exception's own parameters
    bool x64 = true;
    std::wstring place;   // "steps.bas:12"; empty: no source
    bool called = false;  // the exception is in code without source, which `place` has called
    bool passed = false;
};
// "Access violation: reading 0x0000000000000010, at steps.bas:12, passed to the program"
std::wstring ExceptionText(const ExceptionReport& report);
