// The system's open and save dialogs over this program's source types. UI thread only.
#pragma once

#include <cstddef>

// `path`: in the suggested name (empty: none), out the chosen one. False when the user cancelled; a failure of the
// dialog itself, a path too long for the buffer among them, is reported to the user and is false too.
bool AskOpenPath(wchar_t* path, std::size_t capacity, const wchar_t* directory);
bool AskSavePath(wchar_t* path, std::size_t capacity, const wchar_t* directory);
