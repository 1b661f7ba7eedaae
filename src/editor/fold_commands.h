// The commands for folding. UI thread only.
#pragma once

#include <windows.h>

// Folds the block at the caret, or the one around it when that is folded; unfolds the block at the caret.
void EditorFoldAtCaret(HWND editor, bool fold);
void EditorFoldAll(HWND editor, bool fold);  // the outermost blocks; unfolding opens all
// Folds the blocks that are `level` deep, counted from 1, and opens those around them.
void EditorFoldLevel(HWND editor, int level);
