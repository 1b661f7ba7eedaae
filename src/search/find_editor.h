// Finding and replacing in a Scintilla editor. Knows no dialog. UI thread only.
#pragma once

#include "search/find_engine.h"
#include "ui/redraw.h"

#include <windows.h>

#include <optional>

// The editor's text as it is now. Valid until the text changes.
RegexText EditorTextOf(HWND editor);
FindSpan EditorSelection(HWND editor);
const char* EditorLineBreak(HWND editor);  // that new lines of the document get

// While one exists, all edits of the editor are one undo step, and it is not painted. Scintilla would otherwise set its
// scroll bar for each edit that adds or removes lines, which takes milliseconds.
class EditorEdits {
public:
    explicit EditorEdits(HWND editor);
    ~EditorEdits();
    EditorEdits(const EditorEdits&) = delete;
    EditorEdits& operator=(const EditorEdits&) = delete;

private:
    HWND editor_;
    std::optional<RedrawPause> pause_;
};

// Replaces `match` when it is a match in the scope, and puts the caret after the new text. False when it is none.
bool ReplaceMatch(HWND editor, const FindQuery& query, const ReplaceForm& form, FindSpan match, FindSpan scope);

// Replaces every match in the scope as one undo step. The matches are found before the first change.
struct ReplaceAllResult {
    std::size_t count = 0;                   // matches replaced
    RegexResult end = RegexResult::NoMatch;  // else the text is as it was before
};
ReplaceAllResult ReplaceAllInScope(HWND editor, const FindQuery& query, const ReplaceForm& form, FindSpan scope,
                                   const FindGoesOn& goesOn = {});
