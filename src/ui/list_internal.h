// What the files of a list share. Private to list_*_win.cpp. UI thread only.
#pragma once

#include "ui/list_view.h"

// --- list_view_win.cpp: columns and rows
inline LRESULT ListViewSend(const ListView& list, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
    return SendMessageW(list.window, message, wParam, lParam);
}
inline HWND ListViewHeader(const ListView& list) { return reinterpret_cast<HWND>(ListViewSend(list, LVM_GETHEADER)); }
int ListViewRowCount(const ListView& list);
const ListRow* ListViewRow(const ListView& list, int row);  // null for an index out of range
void ListViewFitColumns(ListView& list);                    // to the width of the window
void ListViewForget(const ListView& list);                  // its window is destroyed

// --- list_input_win.cpp: the window's messages
LRESULT CALLBACK ListViewProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR data);

// --- list_draw_win.cpp
LRESULT ListViewDrawItem(const ListView& list, const NMLVCUSTOMDRAW& draw);
LRESULT ListViewDrawHeader(const ListView& list, const NMCUSTOMDRAW& draw);
int ListViewMarkWidth(const ListKind& kind, int column);  // pixels before the text of the column
int ListViewCellPadding();                                // pixels left of a cell's text
