// The table of panes: how each is created, where it is placed and what shows it. The frame holds the rows and places
// the windows (app/panes_win.cpp). Other code shows and hides panes with the functions here. UI thread only.
#pragma once

#include "settings/settings.h"
#include "ui/pane_id.h"

#include <windows.h>

#include <cstdint>
#include <span>
#include <vector>

// A window of a pane and its place; an empty place hides it.
struct PanePart {
    HWND window;
    PaneRect area;
};

struct PaneSpec {
    PaneId id;
    const wchar_t* title;  // for the log
    PaneArea area;
    int controlId;
    HWND* window;                                // where its window is stored; null until it is created
    HWND (*create)(HWND parent, int controlId);  // returns null on failure
    bool lazy = false;                           // created when it is first shown, to save time at start-up
    void (*applyTheme)() = nullptr;              // renews colours and fonts; called while there is a window
    std::int32_t Settings::*setting = nullptr;   // whether it is shown; null: not kept between runs
    bool hasTitle = false;                       // with the button that closes it
    bool comesBack = false;                      // a pane without a setting in the file: kept in panesShown
    std::int32_t Settings::*height = nullptr;    // of a pane in BelowBottom, at 96 dpi; null: one line
    int command = 0;                             // of the View menu, which shows and hides it; 0: none
    void (*onShown)() = nullptr;                 // called by PaneShow after it has opened the pane
    // WM_NOTIFY; returns true when it was for the pane.
    bool (*handleNotify)(const NMHDR& header, LRESULT* result) = nullptr;
    // Its windows with their places in the area, for a pane that has more than one.
    std::vector<PanePart> (*parts)(const PaneRect& area) = nullptr;
};

// Called once, before any of the functions below. `rows` is in the order of PaneId and must outlive the windows.
void PanesConnect(std::span<const PaneSpec> rows);
std::span<const PaneSpec> Panes();

bool PaneIsShown(PaneId id);
std::uint32_t PanesShown();  // PaneBit of each pane that is shown
// Shows or hides the pane, and places all panes. A pane that is hidden loses the keyboard focus.
void PaneShow(PaneId id, bool shown);
// The same without placing the panes: code that changes several panes raises layoutWanted once afterwards.
void PaneSetShown(PaneId id, bool shown);
// The pane that the command of the View menu shows and hides. Null when there is none.
const PaneSpec* PaneOfCommand(int command);
// The pane to which the window belongs. Null when there is none.
const PaneSpec* PaneOfWindow(HWND window);

// After the settings were read: shows the panes that were shown at the end of the last run, and gives the error list the
// height that it had. The file does not keep the settings of the error list itself.
void PanesRestore();
// Puts that into the settings.
void PanesRemember();
