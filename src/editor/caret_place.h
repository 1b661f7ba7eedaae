// Places in an editor that come from outside it: a compiler's message, a session, a dialog, an older state of the text.
// They may be outside the text, inside a character or between CR and LF, where the next typed key would break the
// text's encoding, and in a folded block, where nobody sees them. Whoever moves a caret to such a place does it by these
// functions. Positions are bytes of the editor's text; lines count from 0. UI thread only.
#pragma once

#include <windows.h>

// The position itself, or the nearest one before it at which a caret may stand.
LRESULT CaretPositionAt(HWND editor, LRESULT position);

// Opens the folded blocks that hide the line. Does not scroll.
void CaretUncoverLine(HWND editor, LRESULT line);

// Moves a caret that stands on a hidden line to the first line of the folded block around it, which is shown. For the
// moment after a block was folded.
void CaretLeaveHiddenLine(HWND editor);

// Moves the caret to a position, or selects from `anchor` to `caret`, uncovers the place and scrolls to it.
void CaretGoTo(HWND editor, LRESULT position);
// The same. A place that was out of sight comes into the middle of the view, with what is around it.
void CaretGoToMiddle(HWND editor, LRESULT position);
// Folds the block at the caret's line, or the one around it, or unfolds it. False: there is none.
bool CaretToggleFold(HWND editor);

// Scrolls so that the caret's line is in the middle third of the view, when it is not.
void CaretShowInMiddle(HWND editor);
void CaretSelect(HWND editor, LRESULT anchor, LRESULT caret);
