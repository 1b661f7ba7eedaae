// A row of tabs for the views of a pane. When not all tabs fit, those around the selected one are shown, and a button
// at the end has the others in its menu. UI thread only.
#pragma once

#include "ui/fit.h"

#include <windows.h>

#include <span>

// One row of tabs. The pane that shows it owns it, and keeps it until its windows are destroyed.
struct TabRow {
    HWND tabs = nullptr;  // a tab control
    HWND more = nullptr;  // the button with the menu of the other tabs
    std::span<const wchar_t* const> titles;
    // Called first for each key; returns true when it has handled the key.
    bool (*handleKey)(HWND from, WPARAM key) = nullptr;
    // Called after Down or Enter in the row and after a choice from the menu: gives the view the focus.
    void (*enterView)() = nullptr;

    // What the row was last fitted to. Placing it again with the same values does nothing, because panes do so at every
    // refresh.
    struct Fitted {
        int width = 0, titles = 0, selected = 0;
        bool operator==(const Fitted&) const = default;
    };
    Fitted fitted;
    int blank = -1;  // pixels around a title, as the control has them; -1: it has to be told, and its height too
    TabSpan shown;
};

// Creates both windows with these control ids; returns false on failure. The parent gets TCN_SELCHANGE for a selected
// tab, BN_CLICKED for the button, and WM_DRAWITEM for drawing the button.
bool TabRowCreate(TabRow& row, HWND parent, int tabsId, int moreId);
int TabRowSelected(const TabRow& row);
void TabRowSelect(const TabRow& row, int index);  // sends no notification
int TabRowHeight();                               // pixels
void TabRowPlace(TabRow& row, int width);         // along the upper edge of the pane; `width` in pixels
void TabRowApplyTheme(TabRow& row);
void TabRowDrawMore(const DRAWITEMSTRUCT& draw);
void TabRowShowMore(const TabRow& row);
