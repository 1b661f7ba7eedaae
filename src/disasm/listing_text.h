// Makes a compiler's listing readable: code in columns, tabs expanded, control characters visible. Each line of the
// listing gives one line of the result, and only blanks are lost. Pure; any bytes are legal input.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

struct DisasmListing {
    std::string_view rest;  // the text not rendered yet; borrowed
    bool bytes = true;      // shown before an instruction
};

// Appends at most `budget` of the next lines, each ending in "\r\n", as UTF-8 without control characters. Returns false
// after the last line.
bool DisasmListingNext(DisasmListing& listing, std::size_t budget, std::string* out);

// Renders one line without its line break. Without `bytes` those before an instruction are left out.
std::string DisasmListingLine(std::string_view line, bool bytes = true);
