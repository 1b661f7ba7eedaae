// The tab bar: one owner-drawn tab and one editor for each open document. UI thread only.
#pragma once

#include <windows.h>

// Takes over the tab control (created by the main window): owner drawing, close buttons, drag, middle click.
void TabBarInit(HWND tabControl);

// Adds a document with its own editor; reads the file when `path` is not empty. Returns the new tab's index, or -1
// when the file could not be read or no window could be made. Does not select it.
int TabBarAdd(const wchar_t* path, const wchar_t* label);

// Selects a tab in the control and shows its editor. Returns 1, or 0 for an index out of range.
int TabBarSelect(int index);
// TabBarSelect with the focus in the editor.
int TabBarActivate(int index);
// Shows the editor of `g_app.activeTab` and hides the others; status bar, title and menu follow.
void TabBarSyncActiveEditor();

// Destroys the tab's editor and forgets the document, without asking. Returns 1, or 0 for an index out of range.
int TabBarRemove(int index);
// The user would rather keep the tab that was to be closed: it was not selected only to go back from it.
void TabBarCloseRefused();
// Moves a document to another place in the row.
int TabBarMove(int from, int to);

// Breaks typed from now on are those of the record's `lineEnding`.
void TabBarUpdateLineEnding(int index);

// Label, modified mark and tooltip from the record.
void TabBarUpdateTitle(int index);
// Repaints the tabs: build marks, theme.
void TabBarRefresh();

int TabBarFindEditor(HWND editor);        // index of the tab that owns the editor, or -1
int TabBarFindPath(const wchar_t* path);  // index of the tab bound to that file, case-insensitively, or -1

// Height that the bar wants at the current DPI, pixels.
int TabBarHeight();

// WM_DRAWITEM and WM_NOTIFY of the tab control, from the main window. Returns true when handled.
bool TabBarHandleDrawItem(const DRAWITEMSTRUCT& item);
bool TabBarHandleNotify(const NMHDR& header);
// After a change of DPI or theme.
void TabBarApplyTheme();
