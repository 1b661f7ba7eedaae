// Session files (open documents and view state) and the workspace file. UI thread only.
#pragma once

#include <windows.h>

int SessionSave(const wchar_t* path);              // 1 when the file was written
int SessionLoad(const wchar_t* path, HWND owner);  // 1 when it was restored; replaces all open documents
int SessionHasFiles(const wchar_t* path);          // 1 when it lists a file
void SessionAutoSave(HWND window);                 // does nothing in a self-test run or when `autoSaveEnabled` is 0
// Path of the auto-save file: the settings file's full path with "_autosave.kvxsess" appended. `capacity` is in
// characters.
void SessionAutoSavePath(wchar_t* out, size_t capacity);
// Puts a session file first in the list of recent sessions.
void SessionMRUAdd(const wchar_t* path);

int WorkspaceSave(const wchar_t* path);  // null: the current workspace. 0 when the file could not be written
int WorkspaceLoad(const wchar_t* path);  // 1 when it was applied; replaces all open documents
void WorkspaceNew();                     // does nothing when a document stays open
