// What the user typed into the list of the file finder: which list is meant, what is to be matched, and a place in the
// file. Pure.
#pragma once

#include <string>
#include <string_view>

struct QuickQuery {
    wchar_t prefix = L'\0';  // the first character when it chooses another list than that of the files
    std::wstring pattern;    // what is matched; what follows the prefix
    int line = 0;            // from 1; 0: no place was typed
    int column = 0;          // from 1; 0: none was typed
    bool operator==(const QuickQuery&) const = default;
};

// `prefixes` are the characters that choose a list. Without one of them a place may follow the pattern: "name:12",
// "name:12:5" or "name(12)"; the colon counts as soon as it is typed. After ':' as a prefix the place is all there is.
QuickQuery QuickQueryOf(std::wstring_view typed, std::wstring_view prefixes);
