// The rows of the dialog of exceptions. Must not know a window.
#include "debugui/exception_rows.h"

#include "base/hex_text.h"
#include "base/texts.h"

#include <algorithm>

ExceptionRows ExceptionRowsOf(const std::wstring& setting) {
    const ExceptionRows chosen = ParseExceptionRules(setting);
    ExceptionRows rows = {{.code = kOtherExceptions, .action = ActionOfException(chosen, kOtherExceptions)}};
    for (const KnownException& known : KnownExceptions())
        rows.push_back({.code = known.code, .action = ActionOfException(chosen, known.code)});
    for (const ExceptionRule& rule : chosen)
        if (std::ranges::find(rows, rule.code, &ExceptionRule::code) == rows.end()) rows.push_back(rule);
    return rows;
}

std::wstring ExceptionSettingOf(const ExceptionRows& rows) {
    ExceptionRows chosen = {rows.front()};
    for (const ExceptionRule& row : rows)
        if (row.code != kOtherExceptions && row.action != rows.front().action) chosen.push_back(row);
    return ExceptionRulesText(chosen);
}

std::wstring ExceptionRowText(const ExceptionRule& row) {
    const bool others = row.code == kOtherExceptions;
    std::wstring text = others ? Text(L"All others") : L"0x" + HexText(row.code, kExceptionCodeDigits);
    text += others ? L"\t" : std::wstring(L"\t") + ExceptionName(row.code);
    text += std::wstring(L"\t") + (row.action.pass ? Text(L"passed") : L"");
    return text + L"\t" + (row.action.stop ? Text(L"stops") : L"");
}

std::optional<std::uint32_t> ExceptionCodeTyped(std::wstring_view text) {
    if (text.starts_with(L"0x") || text.starts_with(L"0X")) text.remove_prefix(2);
    const ExceptionRows read = ParseExceptionRules(std::wstring(text) + L":");
    if (read.empty() || read.front().code == kOtherExceptions) return std::nullopt;
    return read.front().code;
}

std::size_t ExceptionRowFor(ExceptionRows* rows, std::uint32_t code) {
    auto row = std::ranges::find(*rows, code, &ExceptionRule::code);
    if (row == rows->end()) row = rows->insert(row, {.code = code, .action = rows->front().action});
    return static_cast<std::size_t>(row - rows->begin());
}
