// Finding and replacing in a Scintilla editor. Knows no dialog. UI thread only.
#pragma once

#include "search/find_engine.h"

#include <windows.h>

// The editor's text and its own search. Valid as long as the editor.
FindText FindTextOf(HWND editor);

// Replaces the selection when it is a match. True when it was; the caret is then after the new text.
bool ReplaceSelection(HWND editor, const FindQuery& query, std::string_view replacement, FindSpan scope);

// Replaces every match in the scope as one step of undo. What is replaced is what matched before the first change.
struct ReplaceAllResult {
    std::size_t count = 0;
    std::ptrdiff_t grown = 0;  // change of the scope's length, bytes
};
ReplaceAllResult ReplaceAllInScope(HWND editor, const FindQuery& query, std::string_view replacement, FindSpan scope);
