// What the views of the debug pane say about registers, flags and values, as rows of text. Pure.
#pragma once

#include "base/hex_text.h"
#include "debugger/expressions.h"
#include "debugger/registers.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

enum class PaneTone : std::uint8_t {
    Normal,
    Quiet,    // known but not in force: disabled, a hint
    Source,   // a line of source between instructions, over all columns
    Problem,  // an error text in its last cell
};
enum class PaneMark : std::uint8_t {
    None,
    Unchecked,
    Checked,
    Current,  // where the program stands
    Chosen,   // what the other views show
};

struct PaneRow {
    std::vector<std::wstring> cells;
    std::uint32_t changed = 0;  // bit n: cell n is not what it was at the last stop
    PaneTone tone = PaneTone::Normal;
    PaneMark mark = PaneMark::None;
    bool operator==(const PaneRow&) const = default;
};

struct ColumnRoom {
    int wanted = 0;  // pixels
    int least = 0;   // not more than that
};
// Widths of columns beside each other. With room to spare the last one takes it; with too little each gives up the same
// part of what it can.
std::vector<int> FitColumns(std::span<const ColumnRoom> columns, int room);

// Tabs from `first` to before `end` are to be seen whole in a row.
struct TabSpan {
    int first = 0;
    int end = 0;
    bool operator==(const TabSpan&) const = default;
};
// As many as there is room for, the selected one among them, from `first` on if that is possible.
TabSpan FitTabs(std::span<const int> widths, int room, int selected, int first);

// Digits of an address in a program of that kind: of 64 bits programs use 47, and the zeros before them cost room.
constexpr int PaneAddressDigits(bool x64, std::uint64_t address) { return !x64 ? 8 : address >> 48 == 0 ? 12 : 16; }

// Names of the flags that are set, in a fixed order: "CF ZF IF"; "-" with none.
std::wstring FlagsText(std::uint32_t flags);
// Name, value and what it says in other words: decimal, flags by name, a lower half as a DOUBLE. `before` may be null.
std::vector<PaneRow> RegisterPaneRows(const RegisterSet& now, const RegisterSet* before);
// One of the sixteen (or eight) that a user may write to; not the instruction pointer, not the flags.
bool IsGeneralRegister(bool x64, std::wstring_view name);
// What the user typed as a value: an expression, with or without a sign before it.
Evaluation RegisterInput(const RegisterSet& registers, std::string_view text);
// "RAX = 000000000000002A (42)" in the width of the part that is named; empty for any other word.
std::wstring RegisterTipText(const RegisterSet& registers, std::wstring_view word);
