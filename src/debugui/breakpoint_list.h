// The user's breakpoints in the window, kept per file for the whole run: across sessions, rebuilds, and closing a file. In
// an open file, marker 2 says where one is and moves with the text; the list adds what a marker cannot hold. UI thread only.
#pragma once

#include "debugger/debug_state.h"
#include "debugui/breakpoints.h"

#include <cstdint>
#include <string>

// Takes over what edits did to the markers of the open files, and reads the hits from the program.
void BreakpointsUpdate();
// Every breakpoint, by file and line, as the last update left it. The reference holds until the next call into this
// header; so do indexes.
const UserBreakpoints& BreakpointList();

// F9, and a click into the margin: `line` from 1. Plants or removes it in a running session.
void BreakpointToggle(DocumentId document, int line);
void BreakpointRemove(std::size_t index);  // index into BreakpointList(); one that is out of range is ignored
void BreakpointRemoveAll();
void BreakpointEnable(std::size_t index, bool enabled);
void BreakpointSetCondition(std::size_t index, const std::string& condition);
void BreakpointJump(std::size_t index);  // opens the file and goes to the line
// Updates the list and finds the breakpoint of a line (from 1), which `make` sets when there is none. Index, or -1.
int BreakpointAt(DocumentId document, int line, bool make);

// A session has been created: plants every enabled one that belongs to it (DebugSetPlantHook).
void BreakpointsPlantAll(DebuggerState* state);
// The program has stopped. When it stands where its start made it stop, the start's breakpoint goes, unless it is the
// user's too.
void BreakpointsDropStart(DebuggerState* state);
// A session has ended: all are idle again.
void BreakpointsOnSessionEnd();
// Tooltip of the breakpoint on a line (from 1), and of those that a block folded at this line hides. Empty: none.
std::wstring BreakpointTip(DocumentId document, int line);
// The editor has drawn itself: the signs of folded breakpoints follow what was folded or unfolded since.
void BreakpointsOnPainted(DocumentId document);
// Lines of an open document moved: `line` from 0 is the first that did, by `added`.
void BreakpointsOnLinesMoved(DocumentId document, int line, int added);
// A document is about to lose its editor, or its text is about to be replaced; and it has its text (again).
void BreakpointsKeepLines(DocumentId document);
void BreakpointsRestoreMarkers(DocumentId document);
