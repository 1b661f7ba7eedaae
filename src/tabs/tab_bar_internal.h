// What the files of the tab bar share. Private to this folder. UI thread.
#pragma once

#include "tabs/tab_bar_layout.h"
#include "tabs/tab_pointer.h"

#include <windows.h>

#include <vector>

struct TabBarState {
    TabPointer pointer;
    bool tracking = false;  // WM_MOUSELEAVE was asked for
    HWND tooltip = nullptr;
};
extern TabBarState g_tabBar;

TabMetrics TabBarMetrics();
// Rectangles of all tabs in the control's client coordinates, some of them scrolled out.
std::vector<TabRect> TabBarRects();
// Shares the strip's width among the tabs.
void TabBarUpdateWidths();

// The whole strip, or one tab of it.
void TabBarPaint(HDC dc, const RECT& client);
void TabBarPaintTab(HDC dc, int index, const TabRect& rect);
// The two arrows of an overflowing strip.
void TabBarPaintScroller(HDC dc, const RECT& client, bool pressedLeft, bool pressedRight);

// The control's own arrows, made to fit the strip and its theme. Nothing while all tabs fit.
void TabBarPlaceScroller(HWND tabControl);

// Pointer, painting and tooltip of the strip.
bool TabBarInstallSubclass(HWND tabControl);
