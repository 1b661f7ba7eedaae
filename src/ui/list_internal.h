// The seam between a list and its drawing. Private to list_view_win.cpp and list_draw_win.cpp. UI thread only.
#pragma once

#include "ui/list_view.h"

LRESULT ListViewDrawItem(const ListView& list, const NMLVCUSTOMDRAW& draw);
LRESULT ListViewDrawHeader(const ListView& list, const NMCUSTOMDRAW& draw);
int ListViewMarkWidth(const ListKind& kind, int column);  // pixels before the text of the column
int ListViewCellPadding();                                // pixels left of a cell's text
