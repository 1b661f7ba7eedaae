// The system's dialogs that ask for a file or a folder. UI thread only.
#pragma once

#include <windows.h>

#include <string>

struct PathQuestion {
    HWND owner = nullptr;
    const wchar_t* filter = nullptr;     // in English, as OPENFILENAMEW::lpstrFilter
    const wchar_t* extension = nullptr;  // added to a name without one; null: none
    const wchar_t* folder = nullptr;     // where the dialog starts; null or empty: the system chooses
    bool save = false;  // asks before a file that is there is overwritten; otherwise the file must exist
};
// `path` is the suggested name (empty: none) and becomes the chosen one, of less than kPathCapacity characters. False
// when the user cancelled and when the dialog failed, which the user is told.
bool AskFilePath(const PathQuestion& question, std::wstring& path);

// `folder` is the one that is selected at first, and becomes the chosen one. False when the user cancelled or chose what
// is no folder on a disk, which the user is told.
bool AskFolderPath(HWND owner, const wchar_t* title, std::wstring& folder);
