// Places of the program in the editors: the mark of the current line, the files of the line map, going to a line. UI
// thread only.
#pragma once

#include "base/events.h"
#include "debugger/debug_state.h"
#include "debugui/stop_view.h"

#include <windows.h>

#include <cstdint>
#include <string>

// Opens or activates the file of the current stop, sets marker 4 and the line's background there, scrolls it into view,
// and writes "[Debug] Stopped at steps.bas:12 (step into)". For a stop without source, only the address is written; a
// line that the text does not have gets no marker. `suffix` may be null.
void DebugShowCurrentLocation(const DebuggerState* state, const wchar_t* suffix);
// The two halves of DebugShowCurrentLocation: the line in the output pane, and the place in the editor.
void DebugSayLocation(const DebuggerState* state, const wchar_t* suffix);
void DebugMarkLocation(const DebuggerState* state);
// The place of the stop: "steps.bas:12", or an address.
std::wstring DebugPlaceText(const DebuggerState* state);
// Removes the mark of the current line from its editor.
void DebugClearLocation();
// The breakpoints of a document are drawn anew: puts the arrow over theirs, which may hide it.
void DebugShowStopOver(DocumentId document);
// Sets the mark again in a document that has its text (again), when the program stands in that file.
void DebugRestoreLocation(DocumentId document);

// A mark of a stop has come back with its line by undo, with the handle `after`. It stays off when the program does not
// stand there any more.
void DebugOnMarkerRenewed(DocumentId document, int before, int after);

// Path of a file id of the session's map (program/map_paths.h), or of the source for id 1 of a map without files. Empty
// when there is none.
std::wstring DebugFilePath(const DebuggerState* state, std::uint32_t fileId);
// File id of a path in the session's map, or 0 when the file is not part of the program.
std::uint32_t DebugFileIdOfPath(const DebuggerState* state, const wchar_t* path);
// True the first time in a session that this is called for a file, to report once that it cannot be shown.
bool DebugFirstTold(const std::wstring& path);
// Forgets what the three functions above remember of a map. Called before a session and after it.
void DebugForgetFiles();

// Opens the file and puts the caret on the line (from 1), without moving the mark. False when it cannot be shown.
bool DebugGoTo(const DebuggerState* state, std::uint32_t fileId, int line);
// Opens or activates a file. False when it cannot be shown; the output pane then says so, without a message box.
bool DebugShowFile(const std::wstring& path);
// Puts the caret on the line (from 1), or on the last one of a shorter text, with lines above and below it in view.
void DebugScrollToLine(HWND editor, int line);
