// The commands for lines, letters and carets at work in an editor: over every selection, one step of undo each. They do
// nothing in an editor that cannot be changed. UI thread only.
#pragma once

#include <windows.h>

#include <functional>

// `command` is one of IDM_LINES_..., IDM_CASE_..., IDM_TABS_TO_BLANKS and IDM_BLANKS_TO_TABS.
void EditorLineCommand(HWND editor, int command);
void EditorToggleComment(HWND editor);  // the lines become comments, or text again when all are
// Cuts what is selected, or lets `erase` take it away. Bookmarks and breakpoints of whole lines go with them, instead of
// staying with the line below; undo brings them back.
void EditorCut(HWND editor);
void EditorCutLine(HWND editor);  // the lines of the selection
void EditorPaste(HWND editor);    // undo selects again what it has replaced
void EditorErase(HWND editor, const std::function<void()>& erase);
// The same for Backspace and Del (`forward`): the marks of a line that is added to the one above go there with its text.
void EditorEraseCharacter(HWND editor, bool forward, const std::function<void()>& erase);
// EditorErase where `change` puts something in the place of what is selected: marks stay on a line that stays.
void EditorReplace(HWND editor, const std::function<void()>& change);
