// Signs of breakpoints in folded blocks: marker 10 on the header line of the block. UI thread only.
#pragma once

#include "base/events.h"

#include <windows.h>

#include <span>

// The header line of the outermost folded block around a hidden line. Lines are from 0; -1: the line is not hidden.
int FoldHeaderOf(HWND editor, int line);
// Corrects the signs of a document. It costs little when they are correct, so it may be called after every paint.
void FoldSignsUpdate(DocumentId document, HWND editor, std::span<const int> breakpointLines);
// Follows an edit, with which the editor moved its markers; parameters as for MovedLine.
void FoldSignsOnLinesMoved(DocumentId document, int first, int added);
// Forgets the signs of a document that loses its editor or its text.
void FoldSignsForget(DocumentId document);
