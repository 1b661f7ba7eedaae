// Session files (open documents and view state) and the workspace file. UI thread only.
#pragma once

#include <windows.h>

int SessionSave(const wchar_t* path);
int SessionLoad(const wchar_t* path, HWND owner);
int SessionHasFiles(const wchar_t* path);
void SessionAutoSave(HWND window);
// The auto-save file: the settings file's full path with "_autosave.kvxsess" appended.
void SessionAutoSavePath(wchar_t* out, size_t capacity);
void SessionMRUAdd(const wchar_t* path);

int WorkspaceSave(const wchar_t* path);
int WorkspaceLoad(const wchar_t* path);
void WorkspaceNew();
