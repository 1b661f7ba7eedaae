// The sticky header: the heading of the procedure or type around the caret, in a label above the editor. UI thread only.
#pragma once

#include <windows.h>

#include <cstddef>

// Shows the nearest line above the caret that opens a procedure or a type in the label window.
void UpdateStickyHeader(HWND editor, HWND label);

// Shows or hides the label of the active editor after it was scrolled, so that it repeats no line that is visible.
void StickyHeaderOnScroll(HWND editor);
int StickyHeaderHeight();  // of the active editor, in pixels; 0: the header is not shown

// Draws the label for its WM_DRAWITEM. False when the item is not the label.
bool StickyHeaderDraw(const DRAWITEMSTRUCT& item);

// The text of that line, cut to `capacity` characters with the terminator; empty when there is no such line. Returns
// its length in characters.
std::size_t EditorPaneProcedureLine(HWND editor, wchar_t* out, std::size_t capacity);
