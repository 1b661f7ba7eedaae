// The diagnostics of the last build in the texts of the open documents: a line below the place, a sign in the margin, the
// message in a tip, in the status bar and, by a setting, behind the line. The marks move with the edits until the next
// build begins. UI thread only.
#pragma once

#include "output/diagnostics.h"
#include "scintilla/sci.h"

#include <string>

// --- The record (g_output.errors.marks) has changed
void SourceMarksWanted();      // new diagnostics: TIMER_SOURCE_MARKS marks them, a part at a time
void SourceMarksForget();      // before the record is emptied: takes the marks away
void SourceMarksOnTimer();     // TIMER_SOURCE_MARKS
void SourceMarksOnBuildEnd();  // tells what was left out, and gives the margin of documents without marks back

// --- Documents
void SourceMarksOnTextArrived(DocumentId document);
void SourceMarksOnTextLeaving(DocumentId document);
void SourceMarksOnSaved(DocumentId document);
void SourceMarksOnEdit(DocumentId document, const SCNotification& change);  // SCN_MODIFIED
void SourceMarksOnView(DocumentId document);                                // SCN_UPDATEUI, before the paint
void SourceMarksOnCaret(DocumentId document);  // tells the diagnostics of the caret's line in the status bar
bool SourceMarksAreTold(DocumentId document);  // they stand in the status bar now
void SourceMarksOnJump();                      // the same for the active document, also when the caret was on that line
void SourceMarksFollowRename(const std::wstring& from, const std::wstring& to);  // of a file or a folder
void SourceMarksRenew();                                                         // the settings have changed

// --- What stands at a place
// The messages at a position, or of its whole line; empty: none.
std::wstring SourceMarksTip(DocumentId document, LRESULT position, bool ofLine);
// The diagnostic at the caret's line of the active document, with the line on which it is now. False: there is none.
bool SourceMarkAtCaret(CompilerError* error);
// Where the place of a recorded diagnostic is now (bytes); -1: not marked in this document.
LRESULT SourceMarkPositionOf(DocumentId document, const CompilerError& error);
// The line of a recorded diagnostic (from 1): where it is now in an open document, or was when its file was saved; as
// printed when neither is known.
std::int32_t SourceMarkLineOf(const CompilerError& error);
