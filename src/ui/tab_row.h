// A row of tabs over the views of a pane. Where they do not all fit, those around the selected one are shown, and a
// button at the end has the others in its menu. Knows titles, not what is shown below them. UI thread only.
#pragma once

#include "ui/fit.h"

#include <windows.h>

#include <span>

// One row of tabs; belongs to the pane that shows it and lives as long as its windows.
struct TabRow {
    HWND tabs = nullptr;  // a tab control
    HWND more = nullptr;  // the button for the others
    std::span<const wchar_t* const> titles;
    // A key before the row answers it; true: taken.
    bool (*handleKey)(HWND from, WPARAM key) = nullptr;
    // Down or Enter in the row, or a choice from the menu: the keyboard goes to the view.
    void (*enterView)() = nullptr;

    // What the row was last fitted to: panes ask again at every refresh.
    struct Fitted {
        int width = 0, titles = 0, selected = 0;
        bool operator==(const Fitted&) const = default;
    };
    Fitted fitted;
    TabSpan shown;
};

// Makes both windows with these control ids; false when that fails. The choice arrives at the parent as TCN_SELCHANGE, a
// click on the button as BN_CLICKED, its drawing as WM_DRAWITEM.
bool TabRowCreate(TabRow& row, HWND parent, int tabsId, int moreId);
int TabRowSelected(const TabRow& row);
void TabRowSelect(const TabRow& row, int index);  // sends no notification
int TabRowHeight();                               // pixels
void TabRowPlace(TabRow& row, int width);         // along the upper edge of the pane
void TabRowApplyTheme(TabRow& row);
void TabRowDrawMore(const DRAWITEMSTRUCT& draw);
void TabRowShowMore(const TabRow& row);
