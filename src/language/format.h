// The formatter indents BASIC source by its block structure. Pure.
#pragma once

#include <string>
#include <string_view>

struct FormatOptions {
    int indentWidth = 4;  // columns
    bool useTabs = false;
    bool upperKeywords = true;  // keywords become upper case; strings and comments do not change
};

// Formats whole lines of UTF-8 and keeps their ends. `startDepth` is the number of levels by which the first line is
// indented.
std::string FormatBasicSource(std::string_view text, const FormatOptions& options, int startDepth = 0);
