// The table of panes: what each is made by, where it goes, what shows it. The frame holds the rows (app/panes_win.cpp)
// and places the windows; whoever shows or hides a pane does it here. UI thread only.
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
    HWND* window;                                // where its window is kept; null while there is none
    HWND (*create)(HWND parent, int controlId);  // null when it cannot be made
    bool lazy = false;                           // made when it is first shown, because a start should not pay for it
    void (*applyTheme)() = nullptr;              // colours and fonts, while there is a window
    std::int32_t Settings::*setting = nullptr;   // whether it is shown, kept between runs; null: for this run only
    bool shownAtStart = false;                   // without a setting
    std::int32_t Settings::*height = nullptr;    // of a row below the bottom, at 96 dpi; null: one line
    int command = 0;                             // of the View menu, shows and hides it; 0: none
    void (*onShown)() = nullptr;                 // the user has opened it
    bool (*handleNotify)(const NMHDR& header, LRESULT* result) = nullptr;  // WM_NOTIFY of its windows; true: taken
    // Its windows where it has more than one.
    std::vector<PanePart> (*parts)(const PaneRect& area) = nullptr;
};

// Called once, before any of the others; `rows` is in the order of PaneId and outlives the program's windows.
void PanesConnect(std::span<const PaneSpec> rows);
std::span<const PaneSpec> Panes();

bool PaneIsShown(PaneId id);
std::uint32_t PanesShown();  // PaneBit of each that is shown
// Shows or hides it, and places all panes. The keyboard leaves a pane that goes.
void PaneShow(PaneId id, bool shown);
// The same without placing them: whoever changes several asks for one layout afterwards.
void PaneSetShown(PaneId id, bool shown);
// The pane that the command of the View menu is for; null: none.
const PaneSpec* PaneOfCommand(int command);
// The pane to which the window belongs; null: none.
const PaneSpec* PaneOfWindow(HWND window);
