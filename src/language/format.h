// The formatter: indents BASIC source by its blocks, writes keywords in capitals, and puts blanks around operators. The
// tokens stay as they are, but for the case of keywords. A keyword that the text declares as a procedure of its own is a
// name there. Pure.
#pragma once

#include "language/blocks.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>

struct FormatOptions {
    int indentWidth = 4;  // columns
    bool useTabs = false;
    bool upperKeywords = true;  // keywords become upper case; strings and comments do not change
    const Dialect* dialect = &AnyDialect();
};

// Whether a line holds a label and nothing else but a comment.
bool IsLabelOnly(std::span<const Token> tokens);

// Formats whole lines of UTF-8 and keeps their ends.
std::string FormatBasicSource(std::string_view text, const FormatOptions& options);

// The lines `first` to `last` (from 0) of the formatted text. `text` must begin at the start of the document, because the
// blocks above decide about a line, and must reach beyond `last` to the end of a statement that continues there.
// `goesOn` is asked now and then with the share of the work that is done, 0 to 1; when it is false, the work stops and
// the result is not complete.
std::string FormatBasicLines(std::string_view text, const FormatOptions& options, int first, int last,
                             const std::function<bool(double share)>& goesOn = {});

// A line as the formatter writes its keywords, in capitals; all else stays, so it is as long as before. `before` is the
// state above the line, of which `table` holds the blocks. Without a table no block is open.
std::string KeywordsInCapitals(std::string_view line, LineState before, const Dialect& dialect,
                               BlockTable* table = nullptr);
