// Bookmarks, breakpoints, the marks of a stop and marked matches of lines that a command moves or takes out. Undo and redo
// take them along: the step of undo gets an action of its own before and after the change of the text, which Scintilla
// reports when it comes to it. UI thread.
#pragma once

#include "editor/line_changes.h"
#include "scintilla/sci.h"

#include <windows.h>

#include <cstdint>
#include <vector>

// A mark that is off its line. `line`: index into LineMarksMove::after.
struct TakenMark {
    std::int32_t line = 0;
    int marker = 0;
    int handle = -1;  // that it had
};
// A marked match, or the part of one that is in the line. Bytes from the start of the line.
struct TakenMatch {
    std::int32_t line = 0;
    LRESULT start = 0;
    LRESULT length = 0;
};
// What a command has done to a block of lines.
struct LineMarksMove {
    int token = 0;
    LRESULT first = 0;                // line of the block before the change
    std::vector<std::int32_t> after;  // for each line of the block, its line after the change; -1: it is gone
    std::vector<TakenMark> gone;      // marks of lines that are gone
    std::vector<TakenMark> taken;     // while undo or redo is at work
    std::vector<TakenMatch> goneMatches, takenMatches;
};
struct LineMarkMoves {
    std::vector<LineMarksMove> made;  // in the order of their tokens
    int lastToken = 0;
};

// Whether a line of the block has a bookmark or a breakpoint.
bool LineMarksAreIn(HWND editor, const LineBlock& block);
// Takes the marks off the lines of the block, which are about to be changed within a step of undo.
LineMarksMove LineMarksTake(HWND editor, const LineBlock& block);
// Whether bookmarks or breakpoints are among them.
bool LineMarksTakenAreUsers(const LineMarksMove& move);
// Puts them on the lines that `move.after` says by now; without one, the lines of the block are gone.
void LineMarksPut(HWND editor, LineMarksMove move);
// Undo or redo has come to an action with this token.
void LineMarksOnUndo(HWND editor, int token, bool undo);
