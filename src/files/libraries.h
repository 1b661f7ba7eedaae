// Loads DLLs so that nobody else's copy of them runs: neither the current folder nor a folder of PATH is ever searched,
// because a source may have been opened from a folder with a planted DLL. UI thread only.
#pragma once

#include <windows.h>

#include <string>

// Limits every search for a DLL in this process to the program's folder and the system's, also for delay-loaded
// libraries and for those that other libraries load by name. Called once, before anything is loaded. False when the
// system refuses.
bool LibrariesLimitSearch();
// Load `name` from the program's folder, or from the system's. Null on failure, with the reason in GetLastError().
HMODULE LoadProgramLibrary(const wchar_t* name);
HMODULE LoadSystemLibrary(const wchar_t* name);
// The system's own folder, without a backslash at its end. Empty when it is not known.
std::wstring SystemFolder();
