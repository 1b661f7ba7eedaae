// The project tree: folders and source files below the project root; each folder is read when it is first opened. UI thread
// only.
#pragma once

#include <windows.h>

HWND ProjectTreeCreate(HWND parent, int controlId);
// Fills the tree from `g_settings.projectRoot`.
void ProjectTreePopulate();
// The first folder that the user opened a file in becomes the root. `folder` has its trailing backslash.
void ProjectTreeOfferRoot(const wchar_t* folder);
bool ProjectTreeHandleNotify(const NMHDR& header, LRESULT* result);
void ProjectTreeApplyTheme();
