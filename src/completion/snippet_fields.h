// A snippet in the editor: its insertion, and the walk through its fields. UI thread only.
#pragma once

#include "language/snippets.h"
#include "scintilla/sci.h"

#include <windows.h>

// Puts the snippet in place of the text from `start` to `end` (bytes) as one step of undo, and goes to its first field.
void SnippetInsert(HWND editor, LRESULT start, LRESULT end, const Snippet& snippet, bool lowerCase);
// Takes the keys that walk through the fields: Tab, Shift+Tab, Enter, Escape. False when the key is not for them.
bool SnippetTakesKey(HWND editor, WPARAM key);
void SnippetOnNotify(HWND editor, const SCNotification& notification);
void SnippetForget(HWND editor);  // the editor is about to go
