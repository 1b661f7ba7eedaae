// The buttons of the toolbar, in their order: the command, the conditions that show the button, and its rank in a
// narrow bar. Pure.
#pragma once

#include "base/texts.h"
#include "commands/command_table.h"
#include "commands/icons.h"
#include "commands/toolbar_fit.h"
#include "resources/ids.h"

#include <cstdint>

// Value of `shownWhen` for a button that is always shown.
inline constexpr std::uint32_t kShownAlways = 0;

// Ranks of the buttons (BarItem::rank). In a narrow bar the buttons for panes are left out first, those that build, run
// and debug last.
enum ToolbarRank { kPanes, kEditing, kFiles, kErrors, kRunning };

struct ButtonRow {
    int command;  // 0: a gap between groups
    Icon icon = Icon::New;
    int rank = kStays;
    bool showsState = false;       // has a check mark
    const wchar_t* tip = nullptr;  // its name, for commands without a menu text; null: from the menu text
    int twin = 0;  // the command of the menu that does the same, whose name and keys the button has; 0: its own
    std::uint32_t shownWhen = kShownAlways;  // shown while one of these conditions holds
    std::uint32_t hiddenWhen = 0;            // and none of these holds; only with `shownWhen`
};

inline constexpr ButtonRow kToolbarButtons[] = {
    {IDM_FILE_NEW, Icon::New, kFiles},
    {IDM_FILE_OPEN, Icon::Open, kFiles},
    {IDM_FILE_SAVE, Icon::Save, kFiles},
    {IDM_FILE_SAVE_ALL, Icon::SaveAll, kFiles},
    {0},
    {IDM_EDIT_UNDO, Icon::Undo, kEditing},
    {IDM_EDIT_REDO, Icon::Redo, kEditing},
    {0},
    {IDM_EDIT_CUT, Icon::Cut, kEditing},
    {IDM_EDIT_COPY, Icon::Copy, kEditing},
    {IDM_EDIT_PASTE, Icon::Paste, kEditing},
    {IDM_EDIT_FIND, Icon::Find, kFiles},
    {0},
    {IDM_COMPILER_MENU, Icon::New, kStays, false, English(L"Compiler and build profile")},
    {IDM_BUILD, Icon::Build, kRunning},
    {IDM_BUILD_RUN, Icon::Run, kRunning},
    {IDM_BUILD_STOP, Icon::Stop, kRunning},
    {IDM_BUILD_SYNTAX, Icon::SyntaxCheck, kErrors},
    {IDM_ERROR_PREVIOUS, Icon::PreviousError, kErrors},
    {IDM_ERROR_NEXT, Icon::NextError, kErrors},
    {0},
    // The debugger's buttons have their places whether a program is debugged or not. One place is shared by what goes on:
    // start, continue and pause.
    {IDM_DEBUG_BUTTON_START, Icon::DebugStart, kRunning, false, English(L"Build and Debug"), 0, kNoSession},
    {IDM_DEBUG_CONTINUE, Icon::Continue, kRunning, false, nullptr, 0, kSession, kProgramRunning},
    {IDM_DEBUG_PAUSE, Icon::Pause, kRunning, false, nullptr, 0, kProgramRunning},
    {IDM_DEBUG_BUTTON_STOP, Icon::DebugStop, kRunning, false, nullptr, IDM_DEBUG_STOP},
    {IDM_DEBUG_BUTTON_STEP_OVER, Icon::StepOver, kRunning, false, nullptr, IDM_DEBUG_STEP_OVER},
    {IDM_DEBUG_BUTTON_STEP_INTO, Icon::StepInto, kRunning, false, nullptr, IDM_DEBUG_STEP_INTO},
    {IDM_DEBUG_BUTTON_STEP_OUT, Icon::StepOut, kRunning, false, nullptr, IDM_DEBUG_STEP_OUT},
    {IDM_DEBUG_RUN_TO_CURSOR, Icon::RunToCursor, kRunning},
    {IDM_DEBUG_BREAKPOINT, Icon::Breakpoint, kRunning},
    {0},
    {IDM_AI_DO, Icon::Dictate, kPanes},
    {IDM_VIEW_OUTPUT, Icon::Output, kPanes, true},
    {IDM_VIEW_ASM, Icon::AsmPane, kPanes, true},
    {IDM_VIEW_AI, Icon::Ai, kPanes, true},
    // The last one, because it comes and goes.
    {IDM_AI_UNDO, Icon::Undo, kRunning, false, nullptr, 0, kAiPending},
    {IDM_TOOLBAR_MORE, Icon::More, kStays, false, English(L"More Buttons")},
};

// The conditions that show and hide buttons. A change of another condition does not fit the buttons again.
inline constexpr std::uint32_t kShowingConditions = [] {
    std::uint32_t conditions = 0;
    for (const ButtonRow& row : kToolbarButtons) conditions |= row.shownWhen | row.hiddenWhen;
    return conditions;
}();
