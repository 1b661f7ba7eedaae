// Replaces the text of an editor by another of which most is the same. UI thread only.
#pragma once

#include <windows.h>

#include <string_view>

// Changes only the lines that differ, as one undo step, so that markers, folds and the places of the other lines stay. The
// caret stays on its line when that is there. Returns the number of places that were changed; 0 also for an editor that
// cannot be changed.
int EditorChangeLines(HWND editor, std::string_view utf8);
