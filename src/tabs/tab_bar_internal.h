// State and functions that the files of the tab bar share. Private to this folder. UI thread.
#pragma once

#include "tabs/tab_bar_layout.h"
#include "tabs/tab_pointer.h"
#include "ui/wheel.h"

#include <windows.h>

#include <vector>

struct TabBarState {
    TabPointer pointer;
    bool tracking = false;  // TrackMouseEvent was called and WM_MOUSELEAVE has not come yet
    HWND tooltip = nullptr;
    WheelRest wheel;
    bool manyComing = false;  // between TabBarOnComing(true) and (false)
};
extern TabBarState g_tabBar;

TabMetrics TabBarMetrics();
// Rectangles of all tabs in the control's client coordinates. Tabs that are scrolled out are outside the client area.
std::vector<TabRect> TabBarRects();
// Sets the width of the tabs by the width of the strip, and repaints it.
void TabBarUpdateWidths();

// Paint the whole strip, or one tab.
void TabBarPaint(HDC dc, const RECT& client);
void TabBarPaintTab(HDC dc, int index, const TabRect& rect);
// Paints the two arrows of a strip that has no room for all tabs.
void TabBarPaintScroller(HDC dc, const RECT& client, bool pressedLeft, bool pressedRight);

// Places the control's own arrows at the right end and subclasses them for painting. Does nothing while all tabs fit.
void TabBarPlaceScroller(HWND tabControl);

// Subclasses the control for pointer and painting. False when the subclass could not be set.
bool TabBarInstallSubclass(HWND tabControl);
