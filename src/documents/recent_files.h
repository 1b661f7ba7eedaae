// The "most recent first" lists of the settings: files, sessions, search terms. Pure.
#pragma once

#include <cstddef>
#include <string_view>

enum class RecentMatch { Exact, IgnoreCase };  // how two entries are compared

// Puts `text` first. An equal entry moves to the front; otherwise all entries move down and a full list loses its last
// one. `rows` has `capacity` rows of `rowCapacity` characters, each a terminated text; the first `count` are in use.
// Ignores an empty text and one that does not fit a row. Returns the new count.
int RecentListAdd(wchar_t* rows, std::size_t rowCapacity, int capacity, int count, std::wstring_view text,
                  RecentMatch match);

template <int Capacity, std::size_t RowCapacity>
int RecentListAdd(wchar_t (&rows)[Capacity][RowCapacity], int count, std::wstring_view text, RecentMatch match) {
    return RecentListAdd(rows[0], RowCapacity, Capacity, count, text, match);
}
