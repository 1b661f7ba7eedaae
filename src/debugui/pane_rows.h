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

// Digits of an address in a program of that kind: of 64 bits programs use 47, and the zeros before them cost room.
constexpr int PaneAddressDigits(bool x64, std::uint64_t address) { return !x64 ? 8 : address >> 48 == 0 ? 12 : 16; }

// Names of the flags that are set, in a fixed order: "CF ZF IF"; "-" with none.
std::wstring FlagsText(std::uint32_t flags);
// Name, value and what it says in other words: decimal, flags by name, a lower half as a DOUBLE. `before` may be null.
std::vector<ListRow> RegisterPaneRows(const RegisterSet& now, const RegisterSet* before);
// One of the sixteen (or eight) that a user may write to; not the instruction pointer, not the flags.
bool IsGeneralRegister(bool x64, std::wstring_view name);
// What the user typed as a value: an expression, with or without a sign before it.
Evaluation RegisterInput(const RegisterSet& registers, std::string_view text);
// "RAX = 000000000000002A (42)" in the width of the part that is named; empty for any other word.
std::wstring RegisterTipText(const RegisterSet& registers, std::wstring_view word);
