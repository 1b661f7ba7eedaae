// Exceptions: their names, and the user's rules for them. Must not know a process.
#include "debugger/exception_rules.h"

#include "base/hex_digit.h"
#include "base/hex_text.h"
#include "base/texts.h"

#include <algorithm>

namespace {

constexpr std::uint32_t kAccessViolation = 0xC0000005, kPageError = 0xC0000006;

constexpr KnownException kKnown[] = {
    {kAccessViolation, English(L"Access violation")},
    {kPageError, English(L"Page that cannot be read in")},
    {0xC0000008, English(L"Invalid handle")},
    {0xC000001D, English(L"Illegal instruction")},
    {0xC0000025, English(L"Exception that cannot be continued")},
    {0xC000008C, English(L"Array bounds exceeded")},
    {0xC000008D, English(L"Floating point: denormal operand")},
    {0xC000008E, English(L"Floating point: division by zero")},
    {0xC000008F, English(L"Floating point: inexact result")},
    {0xC0000090, English(L"Floating point: invalid operation")},
    {0xC0000091, English(L"Floating point: overflow")},
    {0xC0000092, English(L"Floating point: stack check")},
    {0xC0000093, English(L"Floating point: underflow")},
    {0xC0000094, English(L"Integer division by zero")},
    {0xC0000095, English(L"Integer overflow")},
    {0xC0000096, English(L"Privileged instruction")},
    {0xC00000FD, English(L"Stack overflow")},
    {0x80000001, English(L"Guard page")},
    {0x80000002, English(L"Misaligned data")},
    {0x40010005, L"Ctrl+C"},
    {0x406D1388, English(L"Name of a thread")},
    {0xE06D7363, English(L"C++ exception")},
    {0x20474343, English(L"C++ exception (GCC)")},
    {0xE0434352, English(L".NET exception")},
};

constexpr wchar_t kOther[] = L"other";

bool ReadCode(std::wstring_view text, std::uint32_t* code) {
    *code = kOtherExceptions;
    if (text == kOther) return true;
    constexpr std::size_t kDigits = 8;
    if (text.empty() || text.size() > kDigits) return false;
    for (const wchar_t c : text) {
        const int digit = c < 0x80 ? HexValue(static_cast<char>(c)) : -1;
        if (digit < 0) return false;
        *code = *code << 4 | static_cast<std::uint32_t>(digit);
    }
    return *code != kOtherExceptions;
}

bool ReadRule(std::wstring_view text, ExceptionRule* rule) {
    const std::size_t colon = text.find(L':');
    if (colon == std::wstring_view::npos || !ReadCode(text.substr(0, colon), &rule->code)) return false;
    const std::wstring_view letters = text.substr(colon + 1);
    rule->action = {.pass = letters.find(L'p') != std::wstring_view::npos,
                    .stop = letters.find(L's') != std::wstring_view::npos};
    return true;
}

const wchar_t* AccessText(std::uint64_t kind) {
    constexpr std::uint64_t kWrite = 1, kExecute = 8;
    return kind == kWrite ? Text(L"writing") : kind == kExecute ? Text(L"executing") : Text(L"reading");
}

}  // namespace

std::vector<ExceptionRule> ParseExceptionRules(std::wstring_view text) {
    std::vector<ExceptionRule> rules;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(L';'), text.size());
        ExceptionRule rule;
        if (ReadRule(text.substr(0, end), &rule) &&
            std::ranges::find(rules, rule.code, &ExceptionRule::code) == rules.end())
            rules.push_back(rule);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return rules;
}

std::wstring ExceptionRulesText(std::span<const ExceptionRule> rules) {
    std::wstring text;
    for (const ExceptionRule& rule : rules) {
        // A rule that does nothing still counts against a rule for all others.
        if (rule.action == ExceptionAction{} && ActionOfException(rules, kOtherExceptions) == ExceptionAction{})
            continue;
        if (!text.empty()) text += L';';
        text += rule.code == kOtherExceptions ? std::wstring(kOther) : HexText(rule.code, 8);
        text += L':';
        if (rule.action.pass) text += L'p';
        if (rule.action.stop) text += L's';
    }
    return text;
}

ExceptionAction ActionOfException(std::span<const ExceptionRule> rules, std::uint32_t code) {
    for (const std::uint32_t wanted : {code, kOtherExceptions}) {
        const auto rule = std::ranges::find(rules, wanted, &ExceptionRule::code);
        if (rule != rules.end()) return rule->action;
    }
    return {};
}

std::span<const KnownException> KnownExceptions() { return kKnown; }

const wchar_t* ExceptionName(std::uint32_t code) {
    const auto known = std::ranges::find(kKnown, code, &KnownException::code);
    return known != std::end(kKnown) ? Text(known->name) : Text(L"Exception");
}

std::wstring ExceptionText(const ExceptionReport& report) {
    std::wstring text = ExceptionName(report.code);
    if (report.code == kAccessViolation || report.code == kPageError)
        text += std::wstring(L": ") + AccessText(report.information[0]) + L" 0x" +
                HexText(report.information[1], report.x64 ? 16 : 8);
    if (!report.place.empty())
        text =
            TextWith(report.called ? English(L"{1}, called from {2}") : English(L"{1}, at {2}"), {text, report.place});
    if (!report.firstChance) return TextWith(L"{1}, which the program does not handle", {text});
    return report.passed ? TextWith(L"{1}, passed to the program", {text}) : text;
}
