// What the views of the debug pane say about registers, flags and values, as rows of text. Pure.
#pragma once

#include "base/hex_text.h"
#include "debugger/expressions.h"
#include "debugger/registers.h"
#include "ui/list_rows.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Hexadecimal digits of an address. Addresses of 64-bit programs mostly use 47 bits; 12 digits save room then.
constexpr int PaneAddressDigits(bool x64, std::uint64_t address) { return !x64 ? 8 : address >> 48 == 0 ? 12 : 16; }

// Names of the flags that are set, in a fixed order: "CF ZF IF"; "-" with none.
std::wstring FlagsText(std::uint32_t flags);
// Rows of name, value and meaning: decimal, names of flags, a lower half as a DOUBLE. `before` may be null.
std::vector<ListRow> RegisterPaneRows(const RegisterSet& now, const RegisterSet* before);
// True for one of the sixteen (32-bit: eight) registers that a user may change; false for the instruction pointer and
// the flags.
bool IsGeneralRegister(bool x64, std::wstring_view name);
// Value of what the user typed: an expression, with or without a sign before it.
Evaluation RegisterInput(const RegisterSet& registers, std::string_view text);
// "RAX = 000000000000002A (42)" in the width of the named register or part; empty when the word names none.
std::wstring RegisterTipText(const RegisterSet& registers, std::wstring_view word);
