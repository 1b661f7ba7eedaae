// The commands for lines, letters and carets at work in an editor: over every selection, one step of undo each. They do
// nothing in an editor that cannot be changed. UI thread only.
#pragma once

#include <windows.h>

// `command` is one of IDM_LINES_..., IDM_CASE_..., IDM_TABS_TO_BLANKS and IDM_BLANKS_TO_TABS.
void EditorLineCommand(HWND editor, int command);
void EditorToggleComment(HWND editor);  // the lines become comments, or text again when all are
