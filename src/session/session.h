// Session files (open documents and view state) and the workspace file. UI thread only.
#pragma once

#include "base/events.h"
#include "documents/document.h"
#include "session/session_text.h"
#include "session/workspace_text.h"

#include <windows.h>

#include <string>

// While start-up or a restore runs, the documents are not yet those that the session and the workspace in the files
// have. Timers and the end of the program save neither then.
bool SessionSavesAllowed();
void SessionStartupDone();

int SessionSave(const wchar_t* path);              // 1 when the file was written
int SessionLoad(const wchar_t* path, HWND owner);  // 1 when it was restored; replaces all open documents
int SessionHasFiles(const wchar_t* path);          // 1 when it lists a file
bool SessionFileIsOurs(const wchar_t* path);       // false for a file that cannot be read or is no session
// Saves the auto-save file: on a timer, and when the program ends. Does nothing, and returns 1, in a self-test run, when
// `autoSaveEnabled` is 0, or when saves are not allowed. Returns 0 when it could not be written.
int SessionAutoSave(HWND window);
// Tries for a moment to read the auto-save file. When it is there but cannot be read, it is not overwritten in this run,
// and the user is told.
void SessionCheckAutoSave();
// Path of the auto-save file: the settings file's full path with "_autosave.kvxsess" appended. `capacity` is in
// characters.
void SessionAutoSavePath(wchar_t* out, size_t capacity);
// Puts a session file first in the list of recent sessions.
void SessionMRUAdd(const wchar_t* path);

// A restore opens the files when they are first shown. What the session says of them is applied then: marks when the text
// is there, places when the editor has its size.
void SessionOnTextArrived(DocumentId document);
void SessionOnShown(DocumentId document);
void SessionOnClosed(DocumentId document);
// Where a document is: caret, selection, scrolling and bookmarks; and the way back there.
SessionFile SessionPlaceOf(const DocumentTab& tab);
void SessionApplyPlace(int tab, const SessionFile& place);
// Where the caret is, or will be when the document is first shown. Bytes.
std::uint64_t SessionCaretOf(const DocumentTab& tab);

WorkspaceFile WorkspaceFileAt(const wchar_t* path);
std::wstring WorkspaceDefaultPath();
// Null: the current workspace, else the default one. Returns 0 when the file could not be written or is not ours. Without
// an open file the default workspace is deleted, and any other stays as it is.
int WorkspaceSave(const wchar_t* path);
int WorkspaceLoad(const wchar_t* path);  // 1 when it was applied; replaces all open documents
void WorkspaceNew();                     // does nothing when a document stays open
