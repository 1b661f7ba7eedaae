// The tab bar: shows the row of documents. The pointer on it shows and moves documents; closing them is left to the
// main window's commands. UI thread only.
#pragma once

#include "base/events.h"

#include <windows.h>

// Sets up the tab control that the main window has created: owner drawing, close buttons, drag, middle click.
void TabBarInit(HWND tabControl);

// --- The events of the row (base/events.h). `index`, `from` and `to` are places in the row.
void TabBarOnComing(bool coming);
void TabBarOnOpened(DocumentId document);
void TabBarOnActivated();
void TabBarOnChanged(DocumentId document);
void TabBarOnMoved(int from, int to);
void TabBarOnClosed(int index);

// Repaints the tabs, after a change of a status light or the theme.
void TabBarRefresh();

// Height of the bar at the current DPI, in pixels.
int TabBarHeight();

// The main window's WM_DRAWITEM and WM_NOTIFY. False when they are not from the tab control.
bool TabBarHandleDrawItem(const DRAWITEMSTRUCT& item);
bool TabBarHandleNotify(const NMHDR& header);
// Called after a change of the DPI or the theme.
void TabBarApplyTheme();

// Puts the first nine tabs into the menu that has the command of the list of all tabs; another menu stays as it is.
void TabMenuFill(HMENU menu);
