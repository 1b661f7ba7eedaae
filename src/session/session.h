// Session files (open documents and view state) and the workspace file. UI thread only.
#pragma once

#include <windows.h>

int SessionSave(const wchar_t* path);              // 1 when the file was written
int SessionLoad(const wchar_t* path, HWND owner);  // 1 when it was restored: it replaces all open documents
int SessionHasFiles(const wchar_t* path);          // 1 when it lists a file
void SessionAutoSave(HWND window);                 // nothing in a self-test run, or when the setting is off
// The auto-save file: the settings file's full path with "_autosave.kvxsess" appended.
void SessionAutoSavePath(wchar_t* out, size_t capacity);
void SessionMRUAdd(const wchar_t* path);

int WorkspaceSave(const wchar_t* path);  // null: the current workspace. 0 when the file could not be written
int WorkspaceLoad(const wchar_t* path);  // 1 when it was applied: it replaces all open documents
void WorkspaceNew();                     // nothing happens when one of the open documents is not closed
