// What the files of the debug pane share: the table of views, and what a refresh reads of the program. Private to this
// folder. UI thread only.
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
    std::wstring hint;            // shown instead of rows, while there are none
    std::wstring problem;         // shown beside the address box
    std::uint32_t processId = 0;  // of the program that the content was read from
};

struct PaneView {
    const wchar_t* title;
    const ListKind* list;  // null: the memory window
    bool ofStop;           // shows a stopped program and nothing else
    void (*fill)(PaneContent& content);
    const wchar_t* addressCue = nullptr;  // cue of the address box while that is empty; null: no box
};
extern const PaneView kBreakpointsView, kStackView, kRegistersView, kWatchesView, kMemoryView, kThreadsView,
    kDisassemblyView;

// --- Frame (debug_pane_win.cpp)
const PaneView& PaneCurrentView();
void PaneFocusView();
// Handles Tab and Shift+Tab (within the pane), Ctrl+PageDown and Ctrl+PageUp (next and previous view) and Escape (to
// the editor). True when the key was one of them.
bool PaneHandleFocusKey(HWND from, WPARAM key);
std::wstring PaneAddressText();  // of the address box of the shown view, trimmed
unsigned PaneRefreshCount();     // refreshes since the start, for tests
ListView& PaneList();            // of the shown view
// ShowPopupMenu with the pane as the owner; `screen` in screen coordinates.
UINT PaneShowMenu(std::span<const MenuItem> items, POINT screen);

// --- Address box (pane_address_win.cpp)
HWND PaneAddressCreate(HWND parent);

// --- Memory window (pane_memory_win.cpp)
HWND PaneMemoryCreate(HWND parent);
void PaneMemoryApplyTheme();
int PaneMemoryLineHeight();  // in pixels, of a row

// --- The program (pane_program_win.cpp)
const PaneProgram& PaneProgramNow();
void PaneProgramRead();
void PaneChooseThread(std::uint32_t id);
// "steps.bas:12", "ntdll.dll+0x1F2C", or empty.
std::wstring PanePlaceText(std::uint64_t address);
// A line of source (from 1) from the open editor or the file, trimmed; empty when it cannot be had.
std::wstring PaneSourceLine(std::uint32_t fileId, std::uint32_t line);
void PaneGoTo(std::uint32_t fileId, std::uint32_t line);
// Value of an expression with the registers of the shown thread.
Evaluation PaneEvaluate(const std::wstring& expression);
std::string PaneUtf8(const std::wstring& text);
