// A compiler's listing made readable: code in columns, tabs expanded, control characters visible. Line for line: each
// line of the listing is one line of the result, and nothing of it is lost but blanks. Pure; any bytes are legal input.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

struct DisasmListing {
    std::string_view rest;  // what is not rendered yet; borrowed
};

// Appends the next lines, at most `budget`, each ending in "\r\n", as UTF-8 without control characters. False: that was
// the last.
bool DisasmListingNext(DisasmListing& listing, std::size_t budget, std::string* out);

// One line, without its line end.
std::string DisasmListingLine(std::string_view line);
