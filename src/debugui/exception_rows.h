// The rows of the dialog of exceptions, and the setting that they make. Pure.
#pragma once

#include "debugger/exception_rules.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

using ExceptionRows = std::vector<ExceptionRule>;  // a row each; the first is that for all others

inline constexpr int kExceptionCodeDigits = 8;

// A row for all others, one for each known exception, and one for each other code in the setting.
ExceptionRows ExceptionRowsOf(const std::wstring& setting);
// The rules that differ from the one for all others, and that one.
std::wstring ExceptionSettingOf(const ExceptionRows& rows);
// Code, name, "passed" and "stops", with tabs between them.
std::wstring ExceptionRowText(const ExceptionRule& row);
// The code that was typed, with or without "0x"; nothing when it is none.
std::optional<std::uint32_t> ExceptionCodeTyped(std::wstring_view text);
// The index of the row of a code. A new row behaves as all others.
std::size_t ExceptionRowFor(ExceptionRows* rows, std::uint32_t code);
