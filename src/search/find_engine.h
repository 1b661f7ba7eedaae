// Finding and replacing in one editor. Knows no dialog. UI thread only.
#pragma once

#include "search/find_rules.h"

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

struct FindQuery {
    FindOptions options;
    std::vector<std::string> patterns;  // one, or the alternatives of a regular expression; never empty once prepared
};

// What to look for, from the text as typed. Null, or a sentence for the user that says why not.
const wchar_t* PrepareQuery(std::string_view text, const FindOptions& options, FindQuery& query);

struct FindResult {
    bool wrapped = false;  // found only past the end of the scope
    std::optional<FindSpan> match;
};

// The next match seen from the selection; an empty match where the caret already is does not count again.
FindResult FindInScope(HWND editor, const FindQuery& query, FindSpan scope, bool forward);

// Replaces the selection when it is a match. True when it was; the caret is then behind the new text.
bool ReplaceSelection(HWND editor, const FindQuery& query, std::string_view replacement, FindSpan scope);

// Replaces every match in the scope as one step of undo. What is replaced is what matched before the first change: the
// new text is not searched. `grown` gets the change of the scope's length in bytes.
struct ReplaceAllResult {
    std::size_t count = 0;
    std::ptrdiff_t grown = 0;
};
ReplaceAllResult ReplaceAllInScope(HWND editor, const FindQuery& query, std::string_view replacement, FindSpan scope);
