// What the files of the pane of results share. Private to files_pane*. UI thread only.
#pragma once

#include "resources/ids.h"
#include "search/files_results.h"

#include <windows.h>

#include <commctrl.h>

#include <string>

struct FilesPane {
    HWND pane = nullptr, list = nullptr;
    HIMAGELIST heightOnly = nullptr;  // image list that sets the height of the rows
    bool touched = false;             // the user has done something with the list since the search began
    int summaryRight = 0;             // pixels, where the line of the state ends
};
extern FilesPane g_filesPane;

// From the right to the left.
inline constexpr int kFilesButtons[] = {IDC_FILES_AGAIN, IDC_FILES_REPLACE_NOW, IDC_FILES_UNREADABLE};

// --- files_pane_draw_win.cpp
LRESULT FilesDrawItem(const NMLVCUSTOMDRAW& draw);
std::wstring FilesRowText(ResultRow row);  // for the keyboard and for screen readers

// Where the parts of a row begin, in pixels: the mark of a file's row is left of `tick`.
struct FilesRowPlaces {
    int tick = 0, text = 0;  // the same when there is no box
};
FilesRowPlaces FilesRowPlacesOf(ResultRow row);
