// The project tree: folders and source files below the project root, filled folder by folder as they are opened.
// UI thread only.
#pragma once

#include <windows.h>

HWND ProjectTreeCreate(HWND parent, int controlId);
// ProjectTreePopulate is declared in app/shell.h: file commands call it too.
bool ProjectTreeHandleNotify(const NMHDR& header, LRESULT* result);
void ProjectTreeApplyTheme();
