// State and functions that the files of the tab bar share. Private to this folder. UI thread.
#pragma once

#include "documents/document.h"
#include "tabs/tab_bar_layout.h"
#include "tabs/tab_look.h"
#include "tabs/tab_pointer.h"
#include "ui/wheel.h"

#include <windows.h>

#include <map>
#include <string>
#include <vector>

// The name that a tab shows.
struct TabName {
    std::wstring path, label;             // of the document, for which the others were made
    std::wstring folder;                  // tells it from tabs with the same name; empty: not needed
    int labelWidth = 0, folderWidth = 0;  // pixels
};

struct TabBarState {
    TabPointer pointer;
    int pressedButton = -1;              // TabButton that is held down, -1: none
    int scroll = 0;                      // pixels
    std::vector<TabName> names;          // in the order of the row
    std::map<std::wstring, int> widths;  // of texts in UiFont, until the font changes
    bool tracking = false;               // TrackMouseEvent was called and WM_MOUSELEAVE has not come yet
    HWND tooltip = nullptr;
    WheelRest wheel;
    bool manyComing = false;  // between TabBarOnComing(true) and (false)
};
extern TabBarState g_tabBar;

TabMetrics TabBarMetrics();
TabStrip TabBarStrip();  // in the control's client coordinates
// The name of the tab with its folder.
std::wstring TabBarNameOf(int index);
TabState TabStateOf(const DocumentTab& tab);
// Scrolls so that the tab is seen, or by so many pixels.
void TabBarShowTab(int index);
void TabBarScrollBy(int pixels);

// Paint the whole strip, or one tab.
void TabBarPaint(HDC dc, const RECT& client);
void TabBarPaintTab(HDC dc, int index, const TabRect& rect);
COLORREF TabColourOf(TabColour colour);
// A look without its label.
void TabDrawShapes(HDC dc, const TabLook& look);

// Shows the menu of the tab's document; `at`: in client coordinates of the strip.
void TabMenuShow(HWND strip, int index, POINT at);
// Path, state and encoding of the tab's document.
std::wstring TabTipOf(int index);

bool TabBarInstallSubclass(HWND tabControl);
