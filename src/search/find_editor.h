// Finding and replacing in a Scintilla editor. Knows no dialog. UI thread only.
#pragma once

#include "search/find_engine.h"

#include <windows.h>

// The editor's text with Scintilla's search. Valid as long as the editor exists.
FindText FindTextOf(HWND editor);

// Replaces the selection when it is a match in the scope, and puts the caret after the new text. False when it is no
// match.
bool ReplaceSelection(HWND editor, const FindQuery& query, std::string_view replacement, FindSpan scope);

// Replaces every match in the scope as one undo step. The matches are found before the first change.
struct ReplaceAllResult {
    std::size_t count = 0;     // matches replaced
    std::ptrdiff_t grown = 0;  // change of the scope's length, bytes
    bool stopped = false;      // by `goesOn`; the text is then as it was before
};
ReplaceAllResult ReplaceAllInScope(HWND editor, const FindQuery& query, std::string_view replacement, FindSpan scope,
                                   const FindGoesOn& goesOn = {});
