// The seams between the files of the debug pane: its views as a table, the list they share, what is read of the program
// once a refresh. Private to this folder. UI thread only.
#pragma once

#include "debugui/debug_pane.h"
#include "debugui/pane_rows.h"

#include <windows.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

// --- Views (pane_<name>_win.cpp)
struct PaneColumn {
    const wchar_t* title;
    int characters;   // width; the last column takes what is left
    int least;        // characters that it keeps where there is not room for all columns
    bool fixedPitch;  // in the font of the output pane
};

struct PaneContent {
    std::vector<PaneRow> rows;
    std::wstring hint;            // instead of rows, while there are none
    std::wstring problem;         // beside the address box
    int reveal = -1;              // row to select and bring into view, -1: selection and place stay
    bool stale = false;           // the program runs: this is how it stood at the last stop
    std::uint32_t processId = 0;  // of the program that it was read from
};

struct PaneView {
    const wchar_t* title;
    std::span<const PaneColumn> columns;  // none: the memory window
    bool ofStop;                          // shows a stopped program and nothing else
    bool hasMarks;
    void (*fill)(PaneContent& content);
    void (*activate)(int row, int column) = nullptr;  // Enter (column -1), double-click
    void (*edit)(int row, int column) = nullptr;      // F2 (column -1), click on a cell of the selected row
    bool (*key)(int row, int key) = nullptr;          // further keys; true: taken
    void (*typed)(int row, wchar_t character) = nullptr;
    void (*check)(int row) = nullptr;
    void (*menu)(int row, POINT screen) = nullptr;
    const wchar_t* addressCue = nullptr;  // has an address box; what it shows while that is empty
};
extern const PaneView kBreakpointsView, kStackView, kRegistersView, kWatchesView, kMemoryView, kThreadsView,
    kDisassemblyView;

// --- Frame (debug_pane_win.cpp)
const wchar_t* PaneTitle(DebugTab tab);
struct PaneFonts {
    HFONT text = nullptr;               // of the frame
    HFONT fixed = nullptr;              // of the output pane
    int textWidth = 0, fixedWidth = 0;  // of an average character, pixels
    int lineHeight = 0;                 // of a row, pixels
    int fixedHeight = 0;                // of a line of the memory view, pixels
};
const PaneFonts& PaneFontsNow();
int PaneScaled(int pixels);
COLORREF PaneMix(COLORREF a, COLORREF b, int percentOfB);
void PaneFillRect(HDC dc, const RECT& area, COLORREF colour);
COLORREF PaneQuietColour();  // text of what is known but not in force
const PaneView& PaneCurrentView();
void PaneFocusView();
// Tab and Shift+Tab inside the pane, Ctrl+PageDown and Ctrl+PageUp to the next view, Escape to the editor; true when the
// key was one of them.
bool PaneHandleFocusKey(HWND from, WPARAM key);
std::wstring PaneAddressText();  // what stands in the address box of the view that is shown, without blanks around it
unsigned PaneRefreshCount();     // refreshes since the start, for tests

// --- Row of tabs and address box (pane_tabs_win.cpp)
HWND PaneTabsCreate(HWND parent);
HWND PaneAddressCreate(HWND parent);
// Puts the tabs into a row of that size. Where they do not all fit, those around the selected one are shown, and the
// button behind them has the others in its menu.
void PaneTabsPlace(HWND tabs, HWND more, int width, int height);
HWND PaneMoreCreate(HWND parent);
void PaneMoreDraw(const DRAWITEMSTRUCT& draw);
void PaneMoreShowMenu(HWND tabs, HWND more);

// --- List (pane_list_win.cpp), columns and rows of the view that is shown
HWND PaneListCreate(HWND parent);
void PaneListShowView(DebugTab tab);              // its columns and its place
void PaneListUpdate(const PaneContent& content);  // its rows; the content must outlive the list's next update
void PaneListApplyTheme();
bool PaneListHandleNotify(const NMHDR& header, LRESULT* result);
int PaneListSelected();  // -1: none
void PaneListSelect(int row);
RECT PaneListCell(int row, int column);  // client coordinates

// --- Editing in place (pane_edit_win.cpp)
// Returns why the text cannot be taken, or an empty text when it has been.
using PaneCommit = std::function<std::wstring(const std::wstring& text)>;
// An edit field over a cell; Enter takes its text unless it is the one that was there, Escape drops it. `append`: the text
// is the user's first character, and the caret goes behind it.
void PaneEditBegin(int row, int column, const std::wstring& text, bool append, PaneCommit commit);
void PaneEditCancel();
bool PaneEditColours(HDC dc);  // for WM_CTLCOLOREDIT of its parent

struct PaneMenuItem {
    UINT id;  // 0: a separator
    const wchar_t* text;
    bool enabled = true;
    bool checked = false;
};
// Its corner at a place, the left one or with TPM_RIGHTALIGN the right one. 0: none chosen.
UINT PaneShowMenu(std::span<const PaneMenuItem> items, POINT screen, UINT side = TPM_LEFTALIGN);
void PaneCopyText(const std::wstring& text);

// --- Memory window (pane_memory_win.cpp)
HWND PaneMemoryCreate(HWND parent);
void PaneMemoryApplyTheme();

// --- The program (pane_program_win.cpp)
struct PaneProgram {
    bool session = false;
    bool stopped = false;
    std::uint64_t serial = 0;  // of the stop
    std::uint32_t processId = 0;
    std::uint32_t thread = 0;              // that the views show
    std::uint32_t chosenThread = 0;        // by the user, until the next stop; 0: the one that stopped
    std::optional<RegisterSet> registers;  // of that thread
    std::optional<RegisterSet> before;     // at the stop before
};
const PaneProgram& PaneProgramNow();
void PaneProgramRead();
void PaneChooseThread(std::uint32_t id);
// "steps.bas:12", "ntdll.dll+0x1F2C", or empty.
std::wstring PanePlaceText(std::uint64_t address);
// A line of source from the open editor or the file, without blanks around it; empty when it is not to be had.
std::wstring PaneSourceLine(std::uint32_t fileId, std::uint32_t line);
void PaneGoTo(std::uint32_t fileId, std::uint32_t line);
// An address over the registers of the thread that is shown.
Evaluation PaneEvaluate(const std::wstring& expression);
std::string PaneUtf8(const std::wstring& text);
