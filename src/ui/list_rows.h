// The rows of a list: texts and marks. Pure.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

enum class ListTone : std::uint8_t {
    Normal,
    Quiet,    // a hint, or what is disabled
    Source,   // a line of source, over all columns
    Problem,  // the last cell is an error text
};
enum class ListMark : std::uint8_t {
    None,
    Unchecked,
    Checked,
    Current,  // a filled arrow: where the program stopped
    Chosen,   // the outline of an arrow: what the other views show
    Breakpoint,
    Error,
    Warning,
    CurrentBreakpoint,  // an arrow on the dot: the program stopped where a breakpoint is
};

struct ListRow {
    std::vector<std::wstring> cells;
    std::uint32_t changed = 0;  // bit n: cell n has changed
    ListTone tone = ListTone::Normal;
    ListMark mark = ListMark::None;
    bool operator==(const ListRow&) const = default;
};

struct ListContent {
    std::vector<ListRow> rows;
    int reveal = -1;     // row to select and scroll to; -1: selection and scroll position stay
    bool stale = false;  // out of date: all of it is drawn in the quiet colour
};
