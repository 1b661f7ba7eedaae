// What the frame does with the table of panes (ui/panes.h). UI thread only.
#pragma once

#include "app/layout.h"
#include "ui/panes.h"

#include <windows.h>

#include <array>
#include <vector>

void CreatePanes();        // connects the table and makes those that are there from the start
void CreateWantedPanes();  // those that are made when they are first shown
void ThemePanes();         // colours and fonts of all
std::array<PaneWish, kPaneCount> PaneWishes();
std::vector<PanePart> PaneParts(const PaneLayout& layout);  // every window of every pane; null ones among them
bool NotifyPanes(const NMHDR& header, LRESULT* result);     // WM_NOTIFY; true: taken
