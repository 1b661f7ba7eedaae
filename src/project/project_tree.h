// The project tree: folders and files below the project root. A folder is read when it is first opened, and again when
// another program has changed it. Nothing is read or watched for a tree that is not shown. UI thread only.
#pragma once

#include <windows.h>

// Null when the window cannot be made.
HWND ProjectTreeCreate(HWND parent, int controlId);
// Shows the root and the filters of `g_settings`. What is shown already is read again; open folders, selection and
// scrolling stay.
void ProjectTreePopulate();
// Makes `folder` (with a trailing backslash) the root when there is none yet.
void ProjectTreeOfferRoot(const wchar_t* folder);
// Shows the tree and in it the active document's file, opening the folders down to it. Says why when it cannot.
void ProjectTreeRevealActive();
// Another document is active now. Its file is marked, and found when the tree follows.
void ProjectTreeOnActive();
// The file of the active document may have another name.
void ProjectTreeOnRenamed();
void ProjectTreeOnProject();  // which folders are left out may have changed
// The main window's WM_NOTIFY. True when the tree handled it; `result` is then the answer.
bool ProjectTreeHandleNotify(const NMHDR& header, LRESULT* result);
void ProjectTreeApplyTheme();
