// Showing places of the program in the editor. UI thread only.
#pragma once

#include "debugger/debug_state.h"

#include <windows.h>

#include <cstdint>
#include <string>

// What a map says beyond it is no line of a source.
inline constexpr std::uint32_t kLastMapLine = 0x7FFFFFFF;

// Opens or activates the file of the current stop, puts marker 4 and the line's background there, scrolls it into view
// and writes "[Debug] Stopped at steps.bas:12 (step into)". A stop without source shows its address alone; a line that
// the text does not have gets no marker. The suffix may be null.
void DebugShowCurrentLocation(const DebuggerState* state, const wchar_t* suffix);
// The text behind "Stopped at": "steps.bas:12", or an address.
std::wstring DebugPlaceText(const DebuggerState* state);
// The two halves of it: the line of text, and the place in the editor.
void DebugSayLocation(const DebuggerState* state, const wchar_t* suffix);
void DebugMarkLocation(const DebuggerState* state);
// Takes the mark of the current line out of its editor.
void DebugClearLocation();
// An editor has its text (again): the mark returns to where the program stands, when that is there.
void DebugRestoreLocation(HWND editor);

// Path of a file id of the session's map (debugger/map_paths.h), of the source for id 1 of a map without files. Empty
// when there is none.
std::wstring DebugFilePath(const DebuggerState* state, std::uint32_t fileId);
// File id of a path in the session's map, or 0 when the file is not part of the program.
std::uint32_t DebugFileIdOfPath(const DebuggerState* state, const wchar_t* path);
// True the first time in a session: that a file cannot be shown is said once.
bool DebugIsFirstTold(const std::wstring& path);
// Forgets what the three above remember of a map: before a session and after it.
void DebugForgetFiles();

// Opens the file and puts the caret on the line (from 1), without moving the mark. False when it cannot be shown.
bool DebugGoTo(const DebuggerState* state, std::uint32_t fileId, int line);
// The editor of a file, opened or activated; null when it cannot be, which the output pane says without a box.
HWND DebugShowFile(const std::wstring& path);
// Caret to the line (from 1), or to the last one of a shorter text, with lines above and below it on the screen.
void DebugScrollToLine(HWND editor, int line);
