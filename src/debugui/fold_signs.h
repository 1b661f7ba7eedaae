// Signs of breakpoints that a folded block hides: marker 10 on the header line of the block. UI thread only.
#pragma once

#include "base/events.h"

#include <windows.h>

#include <span>

// The line that stands for a hidden one: the header of the outermost folded block around it. All lines from 0; -1: the
// line is not hidden.
int FoldHeaderOf(HWND editor, int line);
// Puts the signs of a document right. Costs little while they are right, so it may be called after every paint.
void FoldSignsUpdate(DocumentId document, HWND editor, std::span<const int> breakpointLines);
// The editor moved its markers with an edit (MovedLine).
void FoldSignsOnLinesMoved(DocumentId document, int first, int added);
// The document loses its editor or its text, and its signs with it.
void FoldSignsForget(DocumentId document);
