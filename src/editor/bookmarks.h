// The bookmarks of a document: markers on its lines, which sessions keep. UI thread only.
#pragma once

#include <windows.h>

void BookmarkToggle(HWND editor);  // on the caret's line
// Moves the caret to the next or previous bookmark; after the last one comes the first. False when there is none.
bool BookmarkGo(HWND editor, bool forward);
void BookmarksClear(HWND editor);
