// The formatter: BASIC source indented by its block structure. Pure.
#pragma once

#include <string>
#include <string_view>

struct FormatOptions {
    int indentWidth = 4;  // columns
    bool useTabs = false;
    bool upperKeywords = true;  // keywords in capitals; strings and comments are never touched
};

// `text` is whole lines; line ends are kept as they are. `startDepth`: indentation level of the first line.
std::string FormatBasicSource(std::string_view text, const FormatOptions& options, int startDepth = 0);
