// The rows of the file finder and the command palette, drawn with the letters that match. UI thread only.
#pragma once

#include "commands/quick_source.h"

#include <windows.h>

#include <string_view>
#include <vector>

// A row as it is drawn: the name, then the rest of the text in a quiet colour, then the keys.
struct QuickListRow {
    FuzzyText text;
    std::vector<std::size_t> positions;  // characters of the text that match, ascending
    QuickExtra extra;
};

// `rowOf` is called for each row that is drawn. Null on failure.
HWND QuickListCreate(HWND parent, int id, QuickListRow (*rowOf)(int row));
void QuickListShow(int count, int selected);  // so many rows; -1: none is selected
int QuickListSelected();                      // -1: none
// Moves the selection by a key: Up and Down (round the ends), Page Up and Page Down, Home and End. False for other keys.
bool QuickListMove(WPARAM key);
void QuickListApplyTheme();
int QuickListRowHeight();  // pixels
// True when the notification was for the list. `*chosen` becomes a row that was clicked.
bool QuickListHandleNotify(const NMHDR& header, LRESULT* result, int* chosen);
