// What the files of the debug pane share: the table of views, and what a refresh reads of the program. Private to this
// folder. UI thread only.
#pragma once

#include "debugger/named_places.h"
#include "debugui/debug_pane.h"
#include "debugui/kept_names.h"
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
extern const PaneView kBreakpointsView, kStackView, kRegistersView, kLocalsView, kWatchesView, kMemoryView,
    kThreadsView, kDisassemblyView;

// --- Frame (debug_pane_win.cpp)
const PaneView& PaneCurrentView();
void PaneFocusView();
// Handles Tab and Shift+Tab (within the pane), Ctrl+PageDown and Ctrl+PageUp (next and previous view) and Escape (to
// the editor). True when the key was one of them.
bool PaneHandleFocusKey(HWND from, WPARAM key);
std::wstring PaneAddressText();  // of the address box of the shown view, trimmed
void PaneCatchUp();              // shows now what a change of the view has only asked for
unsigned PaneRefreshCount();     // refreshes since the start, for tests
ListView& PaneList();            // of the shown view
// ShowPopupMenu with the pane as the owner; `screen` in screen coordinates.
UINT PaneShowMenu(std::span<const MenuItem> items, POINT screen);

// Menu items that every list has; their ids are above those of the views.
enum PaneMenu : UINT { kPaneCopyRow = 0x1000, kPaneCopyAll };
void PaneCopyRows(UINT command);  // one of the two; any other is ignored
// A menu of the kinds of values below a cell. Nothing: none was chosen.
std::optional<WatchKind> PaneAskKind(int row, int column, WatchKind now);
// Go to other views.
void PaneShowMemory(const std::wstring& expression);
void PaneShowCode(const std::wstring& expression);
// Without a kind it is what the expression or its name asks for.
void PaneAddWatch(const std::wstring& expression, std::optional<WatchKind> kind = {});
// Gives the name "i = RBP-4, LONG" in the procedure of PaneFrameNow, or changes the name `before`. Without a kind it
// gets `kind`. The problem, or empty.
std::wstring PaneNamePlace(const std::wstring& definition, const std::string& before, WatchKind kind);

// Says in the output pane why the names could not be kept (KeepNames); empty: nothing.
void PaneTellNames(const std::wstring& problem);

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
// The frame that names and expressions mean: that of the stop, or the one chosen in the call stack. For a stop outside
// the program's lines it is the nearest one on a line.
struct PaneFrame {
    std::size_t index = 0;
    RegisterSet registers;
    SourceScope scope;  // without a file: no source is known
    ProgramMemory memory;
    NameScope Names() const;  // valid while the frame is
};
// Null without a stopped program. Valid until the next refresh, and until names change.
const PaneFrame* PaneFrameNow();
void PaneChooseFrame(std::size_t index);
// Value of an expression in that frame.
Evaluation PaneEvaluate(const std::wstring& expression);
// The same for what means a place: a name that the user has given is then its address.
Evaluation PaneEvaluatePlace(const std::wstring& expression);
// The kind of what stands at the place that an expression means: that of its name; Value for a sum with names.
std::optional<WatchKind> PaneKindOf(const std::wstring& expression);
// Writes what was typed as the value of a place; the problem, or empty.
std::wstring PaneWriteValue(WatchKind kind, const Evaluation& address, const std::wstring& text);
std::string PaneUtf8(const std::wstring& text);
