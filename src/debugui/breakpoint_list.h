// The user's breakpoints, kept per file for the whole run: across sessions, rebuilds, and closing a file. In an open
// file, marker 2 stands on the line of each and moves with the text; the list holds what a marker cannot. UI thread
// only.
#pragma once

#include "debugger/debug_state.h"
#include "debugui/breakpoints.h"

#include <cstdint>
#include <string>

// Brings the list up to date: takes over what edits did to the markers of the open files, and reads the hits from the
// program.
void BreakpointsUpdate();
// Every breakpoint, sorted by file and line, as of the last update. The reference and the indexes are valid until the
// next call of a function of this header.
const UserBreakpoints& BreakpointList();
// Grows when a breakpoint comes, goes or gets another rule.
std::uint64_t BreakpointChanges();

// F9, or a click into the margin: makes or removes the breakpoint of a line (from 1), in a running session, too.
void BreakpointToggle(DocumentId document, int line);
void BreakpointRemove(std::size_t index);  // index into BreakpointList(); one that is out of range is ignored
void BreakpointRemoveAll();
void BreakpointEnable(std::size_t index, bool enabled);
void BreakpointSetStopFrom(std::size_t index, std::uint32_t count);  // it stops from that hit on; 0 and 1: at each
void BreakpointSetCondition(std::size_t index, const std::string& condition);
void BreakpointJump(std::size_t index);  // opens the file and goes to the line
// Updates the list and finds the breakpoint of a line (from 1); with `make`, makes it when there is none. Index, or -1.
int BreakpointAt(DocumentId document, int line, bool make);

// Plants every enabled breakpoint that belongs to the new session (DebugSetPlantHook).
void BreakpointsPlantAll(DebuggerState* state);
// At a stop: when the program stands where its start made it stop, removes the start's breakpoint, unless the user has
// one there.
void BreakpointsDropStart(DebuggerState* state);
// At the end of a session: all breakpoints are idle again.
void BreakpointsOnSessionEnd();
// Tooltip of the breakpoint on a line (from 1) and of those in a block folded at this line. Empty: none.
std::wstring BreakpointTip(DocumentId document, int line);
// After the editor has painted: moves the signs of folded breakpoints to the lines that are folded now.
void BreakpointsOnPainted(DocumentId document);
// After an edit moved lines of an open document: `line` (from 0) is the first that moved, by `added`.
void BreakpointsOnLinesMoved(DocumentId document, int line, int added);
// A command for lines has put a marker of a document on another line, and it has another handle; -1: it is off.
void BreakpointsOnMarkerRenewed(DocumentId document, int before, int after);
// The first is called before a document loses its editor or its text is replaced; the second when the document has its
// text (again).
void BreakpointsKeepLines(DocumentId document);
void BreakpointsRestoreMarkers(DocumentId document);
// A file, or a folder with files, has got another name; the open documents of it have it already.
void BreakpointsFollowRename(const std::wstring& from, const std::wstring& to);
