// The tab bar: draws the row of documents and turns clicks into commands. Changes no document itself. UI thread only.
#pragma once

#include "base/events.h"

#include <windows.h>

// Takes over the tab control (created by the main window): owner drawing, close buttons, drag, middle click.
void TabBarInit(HWND tabControl);

// --- Changes of the row (base/events.h)
void TabBarOnOpened(DocumentId document);
void TabBarOnActivated();
void TabBarOnChanged(DocumentId document);
void TabBarOnMoved(int from, int to);
void TabBarOnClosed(int index);

// Repaints the tabs: build marks, theme.
void TabBarRefresh();

// Height that the bar wants at the current DPI, pixels.
int TabBarHeight();

// WM_DRAWITEM and WM_NOTIFY of the tab control, from the main window. Returns true when handled.
bool TabBarHandleDrawItem(const DRAWITEMSTRUCT& item);
bool TabBarHandleNotify(const NMHDR& header);
// After a change of DPI or theme.
void TabBarApplyTheme();
