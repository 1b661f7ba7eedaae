// The formatter at work in an editor. UI thread only.
#pragma once

#include <windows.h>

// Formats the document, or the lines of its selection, as one step of undo. Nothing without an editor.
void EditorFormat(HWND editor, bool selectionOnly);
