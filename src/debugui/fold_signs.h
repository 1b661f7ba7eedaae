// Signs of breakpoints that nobody sees: marker 10 on the header line of a folded block that has some in it. UI thread
// only.
#pragma once

#include <windows.h>

#include <span>

// The line that stands for a hidden one: the header of the outermost folded block around it. All lines from 0; -1: the
// line is not hidden.
int FoldHeaderOf(HWND editor, int line);
// Puts the signs of an editor right; cheap while they are, so it may be asked after every paint.
void FoldSignsUpdate(HWND editor, std::span<const int> breakpointLines);
// The editor moved its markers with an edit (MovedLine).
void FoldSignsOnLinesMoved(HWND editor, int first, int added);
