// The project tree: folders and source files below the project root. A folder is read when it is first opened. UI
// thread only.
#pragma once

#include <windows.h>

// Null when the window cannot be made.
HWND ProjectTreeCreate(HWND parent, int controlId);
// Fills the tree from `g_settings.projectRoot`.
void ProjectTreePopulate();
// Makes `folder` (with a trailing backslash) the root when there is none yet.
void ProjectTreeOfferRoot(const wchar_t* folder);
// The main window's WM_NOTIFY. True when the tree handled it; `result` is then the answer.
bool ProjectTreeHandleNotify(const NMHDR& header, LRESULT* result);
void ProjectTreeApplyTheme();
