// The program's folder in the user's own application data. Any thread.
#pragma once

#include <string>

// Its path with the trailing backslash, whether it exists or not. Empty when the user has no application data.
std::wstring UserFolderPath();
// The same, and creates it when it is missing. Empty when that fails.
std::wstring UserFolder();
// Creates a folder whose parent exists. True when it exists afterwards.
bool EnsureFolder(const std::wstring& folder);
