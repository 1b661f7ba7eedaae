// The titles above the panes: a label with the pane's name and a button that closes it. UI thread only.
#pragma once

#include "app/layout.h"
#include "ui/panes.h"

#include <windows.h>

#include <vector>

int PaneTitleHeight();  // pixels
// The windows of the titles of a layout, which are made when a title is first shown.
std::vector<PanePart> PaneTitleParts(const PaneLayout& layout);
bool PaneTitleDraw(const DRAWITEMSTRUCT& item);           // WM_DRAWITEM; false: not of a title
bool PaneTitleOnCommand(HWND control, int notification);  // WM_COMMAND; false: not of a title
// Shows which pane has the keyboard. Cheap when nothing has changed.
void PaneTitlesShowFocus();
