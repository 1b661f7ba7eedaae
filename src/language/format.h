// The formatter indents BASIC source by its block structure. Pure.
#pragma once

#include <functional>
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
// `goesOn` is asked now and then with the share of the work that is done, 0 to 1; when it is false, the work stops and
// the result is not complete.
std::string FormatBasicLines(std::string_view text, const FormatOptions& options, int first, int last,
                             const std::function<bool(double share)>& goesOn = {});

// A line as the formatter writes its keywords, in capitals; all else stays, so it is as long as before. `inAssembly`: the
// line is inside a block of inline assembly.
std::string KeywordsInCapitals(std::string_view line, bool inAssembly);
