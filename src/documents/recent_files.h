// The "most recent first" lists of the settings: files, sessions, search terms. Pure.
#pragma once

#include <cstddef>
#include <string_view>

enum class RecentMatch { Exact, IgnoreCase };  // when two entries are the same one

// `rows` is `capacity` terminated texts of `rowCapacity` characters each, of which the first `count` are in use.
// Puts `text` first: an entry that is already there moves, otherwise all move down and the one past the last place
// is lost. Empty text, and text that a row cannot hold whole, is ignored. Returns the new count.
int RecentListAdd(wchar_t* rows, std::size_t rowCapacity, int capacity, int count, std::wstring_view text,
                  RecentMatch match);

template <int Capacity, std::size_t RowCapacity>
int RecentListAdd(wchar_t (&rows)[Capacity][RowCapacity], int count, std::wstring_view text, RecentMatch match) {
    return RecentListAdd(rows[0], RowCapacity, Capacity, count, text, match);
}
