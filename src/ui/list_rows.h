// The rows of a list as text and marks. Pure.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

enum class ListTone : std::uint8_t {
    Normal,
    Quiet,    // known but not in force: disabled, a hint
    Source,   // a line of source between others, over all columns
    Problem,  // an error text in its last cell
};
enum class ListMark : std::uint8_t {
    None,
    Unchecked,
    Checked,
    Current,  // a filled arrow: the place that matters now
    Chosen,   // an arrow's outline: what other views show
};

struct ListRow {
    std::vector<std::wstring> cells;
    std::uint32_t changed = 0;  // bit n: cell n is not what it was before
    ListTone tone = ListTone::Normal;
    ListMark mark = ListMark::None;
    bool operator==(const ListRow&) const = default;
};

struct ListContent {
    std::vector<ListRow> rows;
    int reveal = -1;     // row to select and bring into view; -1: selection and place stay
    bool stale = false;  // no longer true: all of it is shown quietly
};
