// The seams between the files of the debug pane: its views as a table, what is read of the program once a refresh.
// Private to this folder. UI thread only.
#pragma once

#include "debugui/debug_pane.h"
#include "debugui/pane_program.h"
#include "debugui/pane_rows.h"
#include "ui/list_view.h"
#include "ui/menu.h"

#include <windows.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

// --- Views (pane_<name>_win.cpp)
struct PaneContent : ListContent {
    std::wstring hint;            // instead of rows, while there are none
    std::wstring problem;         // beside the address box
    std::uint32_t processId = 0;  // of the program that it was read from
};

struct PaneView {
    const wchar_t* title;
    const ListKind* list;  // null: the memory window
    bool ofStop;           // shows a stopped program and nothing else
    void (*fill)(PaneContent& content);
    const wchar_t* addressCue = nullptr;  // has an address box; what it shows while that is empty
};
extern const PaneView kBreakpointsView, kStackView, kRegistersView, kWatchesView, kMemoryView, kThreadsView,
    kDisassemblyView;

// --- Frame (debug_pane_win.cpp)
const PaneView& PaneCurrentView();
void PaneFocusView();
// Tab and Shift+Tab inside the pane, Ctrl+PageDown and Ctrl+PageUp to the next view, Escape to the editor; true when the
// key was one of them.
bool PaneHandleFocusKey(HWND from, WPARAM key);
std::wstring PaneAddressText();  // what stands in the address box of the view that is shown, without blanks around it
unsigned PaneRefreshCount();     // refreshes since the start, for tests
ListView& PaneList();            // of the view that is shown
// Owned by the pane; otherwise as ShowPopupMenu.
UINT PaneShowMenu(std::span<const MenuItem> items, POINT screen);

// --- Address box (pane_address_win.cpp)
HWND PaneAddressCreate(HWND parent);

// --- Memory window (pane_memory_win.cpp)
HWND PaneMemoryCreate(HWND parent);
void PaneMemoryApplyTheme();
int PaneMemoryLineHeight();  // pixels of a row

// --- The program (pane_program_win.cpp)
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
