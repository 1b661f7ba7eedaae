// The formatter indents BASIC source by its block structure. Pure.
#pragma once

#include <string>
#include <string_view>

struct FormatOptions {
    int indentWidth = 4;  // columns
    bool useTabs = false;
    bool upperKeywords = true;  // keywords become upper case; strings and comments do not change
};

// Formats whole lines of UTF-8 and keeps their ends.
std::string FormatBasicSource(std::string_view text, const FormatOptions& options);

// The lines `first` to `last` (from 0) of the formatted text. `text` must begin at the start of the document, because the
// blocks above decide about a line, and must reach beyond `last` to the end of a statement that continues there.
std::string FormatBasicLines(std::string_view text, const FormatOptions& options, int first, int last);

// A line as the formatter writes its keywords, in capitals; all else stays, so it is as long as before. `inAssembly`: the
// line is inside a block of inline assembly.
std::string KeywordsInCapitals(std::string_view line, bool inAssembly);
