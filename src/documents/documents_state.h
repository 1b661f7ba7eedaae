// The open documents and what belongs to all of them. UI thread only.
#pragma once

#include "base/bounded_text.h"
#include "documents/document.h"
#include "documents/nav_history.h"

#include <windows.h>

#include <vector>

struct DocumentsState {
    std::vector<DocumentTab> tabs;              // in the order of the tabs
    int activeTab = -1;                         // index into tabs, -1 with none
    std::uint64_t timesShown = 0;               // for DocumentTab.lastShown
    DocumentId returnTo = 0;                    // shown after the active one is closed; 0: its neighbour is shown
    HWND hEditor = nullptr;                     // editor of the active tab, null with none
    HWND hStickyHeader = nullptr;               // label above the editor (sticky_label_win.cpp)
    wchar_t lastDirectory[kPathCapacity] = {};  // folder of the file last opened or saved under a new name
    NavHistory navigation;
    bool wordListOpen = false;  // a list of words at the caret takes Enter, Escape and the arrows before the editor
};
// A part of `g_app` (app/app_state.h).
extern DocumentsState& g_documents;

inline int TabCount() { return static_cast<int>(g_documents.tabs.size()); }
inline bool IsTabIndex(int index) { return index >= 0 && index < TabCount(); }
