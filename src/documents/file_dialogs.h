// The system's open and save dialogs with this program's file types. UI thread only.
#pragma once

#include <cstddef>

// `path` holds the suggested name (empty: none) and gets the chosen one. `capacity` is in characters. `directory` is
// where the dialog starts. False when the user cancelled, and when the dialog failed (the path is too long for the
// buffer, for example); a failure is shown to the user.
bool AskOpenPath(wchar_t* path, std::size_t capacity, const wchar_t* directory);
bool AskSavePath(wchar_t* path, std::size_t capacity, const wchar_t* directory);
