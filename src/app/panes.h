// The main window's use of the table of panes (ui/panes.h). UI thread only.
#pragma once

#include "app/layout.h"
#include "ui/panes.h"

#include <windows.h>

#include <array>
#include <vector>

void ConnectPanes();           // before the next ones
void CreatePaneOf(PaneId id);  // of a pane that is not lazy
void CreateWantedPanes();      // creates the lazy panes that are shown and have no window yet
void ThemePanes();             // applies colours and fonts to all panes
std::array<PaneWish, kPaneCount> PaneWishes();
std::vector<PanePart> PaneParts(const PaneLayout& layout);  // the windows of all panes; some may be null
bool NotifyPanes(const NMHDR& header, LRESULT* result);     // WM_NOTIFY; true: handled
