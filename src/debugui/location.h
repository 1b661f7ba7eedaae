// Showing places of the program in the editor. UI thread only.
#pragma once

#include "debugger/debug_state.h"

#include <windows.h>

#include <cstdint>
#include <string>

// Opens or activates the file of the current stop, puts marker 4 and the line's background there, scrolls it into view
// and writes "[Debug] Stopped at steps.bas:12 (step into)". A stop without source shows its address alone. The suffix
// may be null.
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

// Path of a file id of the session's map: of the source for id 1 of a single file or a staged copy, else as the map says,
// relative names beside the source. Empty when there is none.
std::wstring DebugFilePath(const DebuggerState* state, std::uint32_t fileId);
// File id of a path in the session's map, or 0 when the file is not part of the program.
std::uint32_t DebugFileIdOfPath(const DebuggerState* state, const wchar_t* path);
// Forgets what the two above remember of a map: before a session and after it.
void DebugForgetFiles();

// Opens the file and puts the caret on the line (from 1), without moving the mark. False when it cannot be shown.
bool DebugGoTo(const DebuggerState* state, std::uint32_t fileId, int line);
// The editor of a file, opened or activated; null, without a box, when it cannot be.
HWND DebugShowFile(const std::wstring& path);
// Caret to the line (from 1), with lines above and below it on the screen.
void DebugScrollToLine(HWND editor, int line);
