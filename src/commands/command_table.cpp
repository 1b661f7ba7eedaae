// The table of commands, and the rule that decides whether a command is enabled and checked. Pure.
#include "commands/command_table.h"

#include "resources/ids.h"
#include "settings/compilers.h"
#include "settings/settings.h"
#include "ui/pane_id.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <utility>

namespace {

using enum CommandPlace;

template <int form>
bool IsForm(const CommandView& view) {
    return view.fileForm == form;
}

template <int ending>
bool IsEnding(const CommandView& view) {
    return view.lineEnding == ending;
}

template <int width>
bool IsTabWidth(const CommandView& view) {
    return view.tabWidth == width;
}

template <PaneId id>
bool ShowsPane(const CommandView& view) {
    return (view.panes & PaneBit(id)) != 0;
}

constexpr std::uint32_t kEdits = kHasTab;

constexpr CommandRow kCommands[] = {
    {IDM_FILE_NEW, kAlways},
    {IDM_FILE_OPEN, kAlways},
    {IDM_FILE_SAVE, kHasTab},
    {IDM_FILE_SAVE_AS, kHasTab},
    {IDM_FILE_SAVE_ALL, kAnyModified},
    {IDM_FILE_RELOAD, kHasFile},
    {IDM_FILE_CLOSE, kHasTab},
    {IDM_FILE_CLOSE_ALL, kHasTab},
    {IDM_FILE_EXIT, kAlways},
    {IDM_RECENT_FILES_NONE, kNever},
    {IDM_RECENT_FILES_CLEAR, kAlways},
    {IDM_SESSION_OPEN, kAlways},
    {IDM_SESSION_SAVE, kHasTab},
    {IDM_SESSION_SAVE_AS, kHasTab},
    {IDM_RECENT_SESSIONS_NONE, kNever},
    {IDM_FILE_RECOVERED, kAlways},  // says when there are none
    {IDM_EDIT_UNDO, kCanUndo},
    {IDM_EDIT_REDO, kCanRedo},
    {IDM_EDIT_CUT, kCanCut},
    {IDM_EDIT_COPY, kCanCopy},
    {IDM_EDIT_PASTE, kCanPaste},
    {IDM_EDIT_SELECT_ALL, kCanSelectAll},
    {IDM_EDIT_FIND, kEdits},
    {IDM_EDIT_REPLACE, kEdits},
    {IDM_EDIT_GOTO, kEdits},
    {IDM_FIND_NEXT, kEdits},
    {IDM_FIND_PREVIOUS, kEdits},
    {IDM_SEARCH_INCREMENTAL, kEdits},
    {IDM_SEARCH_CLEAR_MARKS, kEdits},
    {IDM_FILES_FIND, kAlways},
    {IDM_FILES_REPLACE, kAlways},
    {IDM_FILES_NEXT, kAlways},  // says why there is none
    {IDM_FILES_PREVIOUS, kAlways},
    {IDM_FILES_STOP, kSearching, nullptr, Internal},
    {IDM_QUICK_OPEN, kAlways},
    {IDM_COMMAND_PALETTE, kAlways},
    {IDM_SYMBOL_DEFINITION, kHasTab},
    {IDM_SYMBOL_REFERENCES, kHasTab},
    {IDM_SYMBOL_RENAME, kHasTab},
    {IDM_SYMBOL_IN_DOCUMENT, kHasTab},
    {IDM_SYMBOL_IN_PROJECT, kAlways},
    {IDM_PARAMETER_INFO, kHasTab},
    {IDM_SHOW_DECLARATION, kHasTab},
    {IDM_PEEK_DEFINITION, kHasTab},
    {IDM_PEEK_CALLERS, kHasTab},
    {IDM_BOOKMARK_TOGGLE, kHasTab},
    {IDM_BOOKMARK_NEXT, kHasTab},
    {IDM_BOOKMARK_PREVIOUS, kHasTab},
    {IDM_BOOKMARKS_CLEAR, kHasTab},
    {IDM_EDIT_FORMAT_DOCUMENT, kHasTab | kBasicSource},
    {IDM_EDIT_FORMAT_SELECTION, kHasTab | kBasicSource | kHasSelection},
    {IDM_EDIT_COMMENT, kEdits},
    {IDM_EDIT_MATCH, kHasTab},
    {IDM_EDIT_COMPLETE, kEdits},
    {IDM_EDIT_SNIPPETS, kAlways},
    {IDM_LINES_DUPLICATE, kEdits},
    {IDM_LINES_DELETE, kEdits},
    {IDM_LINES_UP, kEdits},
    {IDM_LINES_DOWN, kEdits},
    {IDM_LINES_JOIN, kEdits},
    {IDM_LINES_SORT, kEdits},
    {IDM_LINES_SORT_DOWN, kEdits},
    {IDM_LINES_UNIQUE, kEdits},
    {IDM_LINES_TRIM, kEdits},
    {IDM_TABS_TO_BLANKS, kEdits},
    {IDM_BLANKS_TO_TABS, kEdits},
    {IDM_CASE_UPPER, kEdits},
    {IDM_CASE_LOWER, kEdits},
    {IDM_CASE_TITLE, kEdits},
    {IDM_CARET_ABOVE, kHasTab},
    {IDM_CARET_BELOW, kHasTab},
    {IDM_SELECT_NEXT, kHasTab},
    {IDM_SELECT_EACH, kHasTab},
    {IDM_SELECT_COLUMNS, kHasTab | kHasCorners, [](const CommandView& view) { return view.columns; }},
    {IDM_FOLD, kHasTab},
    {IDM_UNFOLD, kHasTab},
    {IDM_FOLD_ALL, kHasTab},
    {IDM_UNFOLD_ALL, kHasTab},
    {IDM_FOLD_LEVEL_FIRST, kHasTab},
    {IDM_FOLD_LEVEL_2, kHasTab},
    {IDM_FOLD_LEVEL_3, kHasTab},
    {IDM_FOLD_LEVEL_4, kHasTab},
    // The forms in the order of FileForm, the endings in that of LineEnding.
    {IDM_ENCODE_UTF8, kEdits, IsForm<0>},
    {IDM_ENCODE_ANSI, kEdits, IsForm<1>},
    {IDM_ENCODE_UTF16_LE, kEdits, IsForm<2>},
    {IDM_ENCODE_UTF16_BE, kEdits, IsForm<3>},
    {IDM_REOPEN_UTF8, kHasFile},
    {IDM_REOPEN_ANSI, kHasFile},
    {IDM_REOPEN_UTF16_LE, kHasFile},
    {IDM_REOPEN_UTF16_BE, kHasFile},
    {IDM_ENDING_CRLF, kEdits, IsEnding<0>},
    {IDM_ENDING_LF, kEdits, IsEnding<1>},
    {IDM_ENDING_CR, kEdits, IsEnding<2>},
    {IDM_TAB_WIDTH_2, kAlways, IsTabWidth<2>},
    {IDM_TAB_WIDTH_3, kAlways, IsTabWidth<3>},
    {IDM_TAB_WIDTH_4, kAlways, IsTabWidth<4>},
    {IDM_TAB_WIDTH_8, kAlways, IsTabWidth<8>},
    {IDM_TAB_INSERTS_TAB, kAlways, [](const CommandView& v) { return v.tabKeyInsertsTab; }},
    {IDM_TAB_INSERTS_BLANKS, kAlways, [](const CommandView& v) { return v.tabWidth != 0 && !v.tabKeyInsertsTab; }},
    {IDM_VIEW_TOOLBAR, kAlways, [](const CommandView& v) { return v.toolbar; }},
    {IDM_VIEW_STATUS_BAR, kAlways, [](const CommandView& v) { return v.statusBar; }},
    {IDM_VIEW_OUTPUT, kAlways, ShowsPane<PaneId::Output>},
    {IDM_VIEW_ASM, kAlways, ShowsPane<PaneId::Asm>},
    {IDM_VIEW_AI, kAlways, ShowsPane<PaneId::Ai>},
    {IDM_VIEW_TREE, kAlways, ShowsPane<PaneId::Tree>},
    {IDM_VIEW_TERMINAL, kAlways, ShowsPane<PaneId::Terminal>},
    {IDM_VIEW_ERROR_LIST, kAlways, ShowsPane<PaneId::ErrorList>},
    {IDM_VIEW_FILES_RESULTS, kAlways, ShowsPane<PaneId::FilesResults>},
    {IDM_VIEW_OUTLINE, kAlways, ShowsPane<PaneId::Outline>},
    {IDM_TREE_REVEAL, kHasFile},
    {IDM_PANE_RESIZE, kAlways},
    {IDM_PANE_CLOSE, kAlways},
    {IDM_PANE_SIZES, kAlways},
    {IDM_VIEW_WHITESPACE, kAlways, [](const CommandView& v) { return v.whitespace; }},
    {IDM_VIEW_WORD_WRAP, kAlways, [](const CommandView& v) { return v.wrap; }},
    {IDM_VIEW_ERROR_TEXTS, kAlways, [](const CommandView& v) { return v.errorTexts; }},
    {IDM_VIEW_FOLD, kHasTab},  // says when no block is at the caret
    {IDM_VIEW_ZOOM_IN, kAlways},
    {IDM_VIEW_ZOOM_OUT, kAlways},
    {IDM_VIEW_ZOOM_RESET, kAlways},
    {IDM_STYLE_CODE, kAlways, [](const CommandView& v) { return v.style == 1; }},
    {IDM_STYLE_STUDIO, kAlways, [](const CommandView& v) { return v.style == 2; }},
    {IDM_STYLE_PLUS, kAlways, [](const CommandView& v) { return v.style == 3; }},
    {IDM_STYLE_SUBLIME, kAlways, [](const CommandView& v) { return v.style == 4; }},
    {IDM_STYLE_CLASSIC, kAlways, [](const CommandView& v) { return v.style == 5; }},
    {IDM_STYLE_FONT, kAlways},
    {IDM_STYLE_OWN, kAlways, [](const CommandView& v) { return v.style == 0; }},
    {IDM_VIEW_LIGHT_THEME, kAlways, [](const CommandView& v) { return v.theme == 0; }},
    {IDM_VIEW_DARK_THEME, kAlways, [](const CommandView& v) { return v.theme != 0; }},
    // Always enabled, because a build that cannot start says why.
    {IDM_BUILD, kAlways},
    {IDM_BUILD_RUN, kAlways},
    {IDM_BUILD_STOP, kBuilding},
    {IDM_BUILD_CLEAN, kCanBuild | kIdle},
    {IDM_RUN_IN_OUTPUT, kAlways},  // says why nothing can be run
    {IDM_KEEP_CONSOLE, kAlways, [](const CommandView& v) { return v.keepsConsole; }},
    {IDM_BUILD_SYNTAX, kAlways},
    {IDM_BUILD_ALL, kAlways},
    {IDM_NEXT_COMPILER, kAlways},
    {IDM_COMPILER_MENU, kAlways, nullptr, Internal},
    {IDM_TOOLBAR_MORE, kAlways, nullptr, Internal},
    {IDM_PROFILE_DEBUG, kAlways, [](const CommandView& v) { return v.profile == 0; }},
    {IDM_PROFILE_RELEASE, kAlways, [](const CommandView& v) { return v.profile == 1; }},
    {IDM_PROFILE_FAST, kAlways, [](const CommandView& v) { return v.profile == 2; }},
    {IDM_ERROR_NEXT, kHasErrors},
    {IDM_ERROR_PREVIOUS, kHasErrors},
    {IDM_ERROR_SOURCE, kAlways, nullptr, Internal},
    {IDM_OUTPUT_COPY_ALL, kAlways, nullptr, Internal},
    {IDM_OUTPUT_CLEAR, kAlways},
    {IDM_PROJECT_SETTINGS, kAlways},
    {IDM_WORKSPACE_NEW, kAlways},
    {IDM_WORKSPACE_OPEN, kAlways},
    {IDM_WORKSPACE_SAVE, kAlways},
    {IDM_PROJECT_FOLDER, kAlways},
    {IDM_PROJECT_NEW, kAlways},
    {IDM_PROJECT_OPEN, kAlways},
    {IDM_PROJECT_CLOSE, kProjectOpen},
    {IDM_PROJECT_EDIT, kProjectOpen},
    {IDM_PROJECT_SET_MAIN, kProjectOpen | kHasFile},
    {IDM_PROJECT_KEEP_ARGUMENTS, kProjectOpen, nullptr, Internal},
    {IDM_DEBUG_START, kAlways},  // in a session it ends the session
    {IDM_DEBUG_BUILD_START, kNoSession, nullptr, Internal},
    {IDM_DEBUG_STOP, kSession},
    {IDM_DEBUG_STEP_INTO, kProgramStopped},
    {IDM_DEBUG_STEP_OVER, kProgramStopped},
    {IDM_DEBUG_STEP_OUT, kProgramStopped},
    {IDM_DEBUG_RUN_TO_CURSOR, kProgramStopped | kHasTab},
    {IDM_DEBUG_CONTINUE, kProgramStopped},
    {IDM_DEBUG_PAUSE, kProgramRunning},
    {IDM_DEBUG_BREAKPOINT, kHasTab},
    {IDM_DEBUG_CONDITIONAL, kHasTab},
    {IDM_DEBUG_ENABLE_BREAKPOINT, kHasTab},
    {IDM_DEBUG_REMOVE_BREAKPOINTS, kAlways},
    {IDM_DEBUG_REGISTERS, kProgramStopped},
    {IDM_DEBUG_CALL_STACK, kProgramStopped},
    {IDM_DEBUG_DISASSEMBLY, kProgramStopped},
    {IDM_DEBUG_MEMORY, kProgramStopped},
    {IDM_DEBUG_BUTTON_START, kNoSession, nullptr, Internal},
    {IDM_DEBUG_BUTTON_STOP, kSession, nullptr, Internal},
    {IDM_DEBUG_BUTTON_STEP_INTO, kProgramStopped, nullptr, Internal},
    {IDM_DEBUG_BUTTON_STEP_OVER, kProgramStopped, nullptr, Internal},
    {IDM_DEBUG_BUTTON_STEP_OUT, kProgramStopped, nullptr, Internal},
    {IDM_VIEW_DEBUG_PANE, kAlways, ShowsPane<PaneId::Debug>},
    {IDM_DEBUG_STEPS_FOLLOW, kAlways, [](const CommandView& v) { return v.stepsFollow; }},
    {IDM_DEBUG_RESTART, kAlways},  // without a session it starts the program that was debugged last
    {IDM_DEBUG_SET_NEXT, kProgramStopped | kHasTab},
    {IDM_DEBUG_STEP_INSTRUCTION, kProgramStopped},
    {IDM_DEBUG_STEP_OVER_INSTRUCTION, kProgramStopped},
    {IDM_DEBUG_EXCEPTIONS, kAlways},
    {IDM_DEBUG_PROGRAM, kAlways},
    {IDM_DEBUG_NAME_PLACE, kHasTab},
    {IDM_AI_OPENAI, kAlways},  // says why nothing can be asked, as the next ones
    {IDM_AI_LMSTUDIO, kAlways},
    {IDM_AI_TRANSCRIBE, kAlways, nullptr, Internal},
    {IDC_AI_SEND, kAlways, nullptr, Internal},
    {IDM_AI_EDIT, kAlways},
    {IDM_AI_APPLY, kAiReply},
    {IDM_AI_DO, kAlways},
    {IDM_AI_UNDO, kAiPending},
    {IDM_AI_CANCEL, kAiRunning},
    {IDM_AI_EXPLAIN, kHasErrors},
    {IDM_AI_FIX, kHasErrors},
    {IDM_AI_COPY_CODE, kAiCode},
    {IDM_AI_INSERT_CODE, kAiCode | kHasTab},
    {IDM_AI_NEW_CHAT, kAlways},
    {IDM_HELP_ABOUT, kAlways},
    {IDM_HELP_KEYS, kAlways},
    {IDM_HELP_DOCUMENTATION, kAlways},
    {IDM_NEXT_TAB, kHasTab},
    {IDM_PREVIOUS_TAB, kHasTab},
    {IDM_NEXT_PANE, kAlways},
    {IDM_PREVIOUS_PANE, kAlways},
    {IDM_NAV_BACK, kHasTab},
    {IDM_NAV_FORWARD, kHasTab},
    {IDM_TAB_CLOSE_OTHERS, kHasTab | kHasOtherTabs},
    {IDM_TAB_CLOSE_RIGHT, kHasTab | kHasTabsRight},
    {IDM_TAB_COPY_PATH, kHasFile},
    {IDM_TAB_RECENT, kHasTab},
    {IDM_TAB_RECENT_BACK, kHasTab},
    {IDM_TAB_LIST, kHasTab},
    {IDM_TAB_LAST, kHasTab},
    {IDM_TAB_REOPEN, kHasClosed},
    {IDM_TAB_PIN, kHasTab, [](const CommandView& v) { return v.pinned; }},
    {IDM_TAB_CLOSE_SAVED, kHasTab | kHasSaved},
    {IDM_TAB_COPY_NAME, kHasTab},
    {IDM_TAB_OPEN_FOLDER, kHasFile},
};

// Added to kCommands: the commands that select a compiler, one for each row of g_compilers, and those of the lists of
// recent files and sessions and of the first tabs, whose items the menu gets when it opens.
template <std::uint32_t id>
bool IsCompiler(const CommandView& view) {
    return view.compiler == static_cast<int>(id);
}

constexpr int kNumberedTabs = 9;
template <int index>
bool IsActiveTab(const CommandView& view) {
    return view.tab == index;
}

template <std::size_t... ids>
constexpr auto AllCommands(std::index_sequence<ids...>) {
    std::array<CommandRow, std::size(kCommands) + kCompilerCount + 3 * kMruCapacity + kNumberedTabs> all = {};
    [&]<int... tabs>(std::integer_sequence<int, tabs...>) {
        ((all[all.size() - kNumberedTabs + tabs] = {IDM_TAB_NUMBER_FIRST + tabs, kHasTab, IsActiveTab<tabs>, Internal}),
         ...);
    }
    (std::make_integer_sequence<int, kNumberedTabs>());
    std::ranges::copy(kCommands, all.begin());
    ((all[std::size(kCommands) + ids] = {g_compilers[ids].command, kAlways, IsCompiler<ids>}), ...);
    for (std::size_t i = 0, next = std::size(kCommands) + kCompilerCount; i < kMruCapacity; ++i) {
        const int row = static_cast<int>(i);
        all[next++] = {IDM_RECENT_FILE_FIRST + row, kAlways, nullptr, Internal};
        all[next++] = {IDM_RECENT_SESSION_FIRST + row, kAlways, nullptr, Internal};
        all[next++] = {IDM_SAMPLE_FIRST + row, kAlways, nullptr, Internal};
    }
    return all;
}
constexpr auto kAllCommands = AllCommands(std::make_index_sequence<kCompilerCount>());

// Virtual key numbers, defined here because this file includes no <windows.h>.
constexpr std::uint16_t kCancel = 0x03, kTab = 0x09, kEscape = 0x1B, kSpace = 0x20, kPageUp = 0x21, kPageDown = 0x22,
                        kLeft = 0x25, kUp = 0x26, kRight = 0x27, kDown = 0x28, kNumpadDivide = 0x6F, kSlash = 0xBF,
                        kOpenBracket = 0xDB, kCloseBracket = 0xDD, kZero = 0x30, kNumpad0 = 0x60, kNumpadAdd = 0x6B,
                        kNumpadSubtract = 0x6D, kF1 = 0x70, kF2 = 0x71, kF3 = 0x72, kF4 = 0x73, kF5 = 0x74, kF8 = 0x77,
                        kF9 = 0x78, kF10 = 0x79, kF6 = 0x75, kF7 = 0x76, kF11 = 0x7A, kF12 = 0x7B, kBackquote = 0xC0,
                        kOemPlus = 0xBB, kOemMinus = 0xBD, kComma = 0xBC;

constexpr ExtraKey kExtraKeys[] = {
    {kCancel, true, false, false, IDM_BUILD_STOP},
    {kTab, true, false, false, IDM_TAB_RECENT},
    {kTab, true, true, false, IDM_TAB_RECENT_BACK},
    {kPageDown, true, false, false, IDM_NEXT_TAB, true},
    {kPageUp, true, false, false, IDM_PREVIOUS_TAB, true},
    {'1', true, false, false, IDM_TAB_NUMBER_FIRST},
    {'2', true, false, false, IDM_TAB_NUMBER_FIRST + 1},
    {'3', true, false, false, IDM_TAB_NUMBER_FIRST + 2},
    {'4', true, false, false, IDM_TAB_NUMBER_FIRST + 3},
    {'5', true, false, false, IDM_TAB_NUMBER_FIRST + 4},
    {'6', true, false, false, IDM_TAB_NUMBER_FIRST + 5},
    {'7', true, false, false, IDM_TAB_NUMBER_FIRST + 6},
    {'8', true, false, false, IDM_TAB_NUMBER_FIRST + 7},
    {'9', true, false, false, IDM_TAB_LAST},
    {'T', true, true, false, IDM_TAB_REOPEN},
    {'E', true, false, false, IDM_TAB_LIST},
    {kOemPlus, true, false, false, IDM_VIEW_ZOOM_IN},
    {kOemPlus, true, true, false, IDM_VIEW_ZOOM_IN},
    {kNumpadAdd, true, false, false, IDM_VIEW_ZOOM_IN},
    {kOemMinus, true, false, false, IDM_VIEW_ZOOM_OUT},
    {kNumpadSubtract, true, false, false, IDM_VIEW_ZOOM_OUT},
    {kZero, true, false, false, IDM_VIEW_ZOOM_RESET},
    {kNumpad0, true, false, false, IDM_VIEW_ZOOM_RESET},
    {kF3, false, false, false, IDM_FIND_NEXT},
    {kF3, false, true, false, IDM_FIND_PREVIOUS},
    {kF4, false, false, false, IDM_ERROR_NEXT},
    {kF4, false, true, false, IDM_ERROR_PREVIOUS},
    {kF4, true, false, false, IDM_FILE_CLOSE},
    {kF8, false, false, false, IDM_ERROR_NEXT},
    {kF8, false, true, false, IDM_ERROR_PREVIOUS},
    {kLeft, false, false, true, IDM_NAV_BACK},
    {kRight, false, false, true, IDM_NAV_FORWARD},
    {kF5, true, false, false, IDM_DEBUG_CONTINUE},
    {kF5, false, true, false, IDM_DEBUG_STOP},
    {kF10, true, false, false, IDM_DEBUG_RUN_TO_CURSOR},
    {kF9, true, false, false, IDM_DEBUG_CONDITIONAL},
    {kCancel, true, false, true, IDM_DEBUG_PAUSE},
    {kF5, true, true, false, IDM_DEBUG_RESTART},
    {kF10, true, true, false, IDM_DEBUG_SET_NEXT},
    {kF11, true, false, false, IDM_DEBUG_STEP_INSTRUCTION},
    {kF11, true, true, false, IDM_DEBUG_STEP_OVER_INSTRUCTION},
    {kF2, true, false, false, IDM_BOOKMARK_TOGGLE},
    {kF2, false, false, false, IDM_BOOKMARK_NEXT, true},
    {kF2, false, true, false, IDM_BOOKMARK_PREVIOUS, true},
    {kF2, true, true, false, IDM_BOOKMARKS_CLEAR},
    {kSlash, true, false, false, IDM_EDIT_COMMENT, true},
    {kNumpadDivide, true, false, false, IDM_EDIT_COMMENT, true},
    {'Q', true, false, false, IDM_EDIT_COMMENT, true},
    {'D', true, false, false, IDM_LINES_DUPLICATE, true},
    {'K', true, true, false, IDM_LINES_DELETE, true},
    {kUp, false, false, true, IDM_LINES_UP, true},
    {kDown, false, false, true, IDM_LINES_DOWN, true},
    {'J', true, false, false, IDM_LINES_JOIN, true},
    {'U', true, true, false, IDM_CASE_UPPER, true},
    {'U', true, false, false, IDM_CASE_LOWER, true},
    {kUp, true, false, true, IDM_CARET_ABOVE, true},
    {kDown, true, false, true, IDM_CARET_BELOW, true},
    {'D', true, true, false, IDM_SELECT_NEXT, true},
    {'A', true, true, false, IDM_SELECT_EACH, true},
    {kOpenBracket, true, true, false, IDM_FOLD, true},
    {kCloseBracket, true, true, false, IDM_UNFOLD, true},
    {kZero, false, false, true, IDM_FOLD_ALL, true},
    {kZero, false, true, true, IDM_UNFOLD_ALL, true},
    {'1', false, false, true, IDM_FOLD_LEVEL_FIRST, true},
    {'2', false, false, true, IDM_FOLD_LEVEL_2, true},
    {'3', false, false, true, IDM_FOLD_LEVEL_3, true},
    {'4', false, false, true, IDM_FOLD_LEVEL_4, true},
    {'M', true, false, false, IDM_EDIT_MATCH, true},
    {kSpace, true, false, false, IDM_EDIT_COMPLETE, true},
    {kF2, false, false, true, IDM_TOOLBAR_MORE},
    {kF7, true, false, false, IDM_NEXT_COMPILER},
    {kF6, false, false, false, IDM_NEXT_PANE},
    {kF6, false, true, false, IDM_PREVIOUS_PANE},
    {kComma, true, false, false, IDM_PROJECT_SETTINGS},
    {kBackquote, true, false, false, IDM_VIEW_OUTPUT},
    {kBackquote, true, true, false, IDM_VIEW_TERMINAL},
    {'E', true, true, false, IDM_VIEW_TREE},
    {'M', true, true, false, IDM_VIEW_ERROR_LIST},
    {'R', true, false, false, IDM_FILE_RELOAD, true},
    {'I', true, false, false, IDM_SEARCH_INCREMENTAL},
    {'C', false, true, true, IDM_TAB_COPY_PATH},
    {L'R', true, true, false, IDM_RUN_IN_OUTPUT},
    {kF12, false, false, false, IDM_SYMBOL_DEFINITION},
    {kF12, false, true, false, IDM_SYMBOL_REFERENCES},
    {'R', false, true, true, IDM_SYMBOL_RENAME},
    {'O', false, true, true, IDM_VIEW_OUTLINE},
    {'E', false, true, true, IDM_TREE_REVEAL},
    {'T', true, false, false, IDM_SYMBOL_IN_DOCUMENT},
    {'T', false, true, true, IDM_SYMBOL_IN_PROJECT},
    {kSpace, true, true, false, IDM_PARAMETER_INFO},
    {kF12, true, false, false, IDM_SHOW_DECLARATION},
    {kF12, false, false, true, IDM_PEEK_DEFINITION},
    {kF12, false, true, true, IDM_PEEK_CALLERS},
    {'H', true, true, false, IDM_FILES_FIND},
    {'J', true, true, false, IDM_FILES_REPLACE},
    {kF8, true, false, false, IDM_FILES_NEXT},
    {kF8, true, true, false, IDM_FILES_PREVIOUS},
    {'C', true, true, false, IDM_AI_COPY_CODE},
    {'I', true, true, false, IDM_AI_INSERT_CODE},
    {'P', true, false, false, IDM_QUICK_OPEN},
    {'P', true, true, false, IDM_COMMAND_PALETTE},
    {kF8, false, false, true, IDM_PANE_RESIZE},
    {kEscape, false, true, false, IDM_PANE_CLOSE},
    {kF1, false, false, false, IDM_HELP_DOCUMENTATION},
};

}  // namespace

std::span<const CommandRow> CommandTable() { return kAllCommands; }

const CommandRow* FindCommand(int id) {
    const auto row = std::ranges::find(kAllCommands, id, &CommandRow::id);
    return row == kAllCommands.end() ? nullptr : &*row;
}

CommandState CommandStateOf(int id, const CommandView& view) {
    const CommandRow* row = FindCommand(id);
    if (row == nullptr) return {};
    return {.enabled = (row->needs & view.conditions) == row->needs,
            .checked = row->checked != nullptr && row->checked(view)};
}

std::span<const ExtraKey> ExtraKeys() { return kExtraKeys; }

std::wstring NameOfExtraKey(const ExtraKey& key) {
    static constexpr struct {
        std::uint16_t key;
        const wchar_t* name;
    } kNames[] = {{kCancel, L"Break"},      {kTab, L"Tab"},           {kSpace, L"Space"},    {kLeft, L"Left"},
                  {kRight, L"Right"},       {kNumpad0, L"Num0"},      {kNumpadAdd, L"Num+"}, {kNumpadSubtract, L"Num-"},
                  {kOemPlus, L"+"},         {kOemMinus, L"-"},        {kBackquote, L"`"},    {kComma, L","},
                  {kPageUp, L"PageUp"},     {kPageDown, L"PageDown"}, {kUp, L"Up"},          {kDown, L"Down"},
                  {kNumpadDivide, L"Num/"}, {kSlash, L"/"},           {kOpenBracket, L"["},  {kCloseBracket, L"]"},
                  {kEscape, L"Esc"}};
    std::wstring name = key.control ? L"Ctrl+" : L"";
    if (key.alt) name += L"Alt+";
    if (key.shift) name += L"Shift+";
    const auto* const named = std::ranges::find(kNames, key.key, [](const auto& row) { return row.key; });
    constexpr int kBeforeF1 = 0x6F;
    if (named != std::end(kNames)) return name + named->name;
    if (key.key > kBeforeF1 && key.key <= kF12) return name + L"F" + std::to_wstring(key.key - kBeforeF1);
    return name + static_cast<wchar_t>(key.key);
}

bool MenuKeyIsOfAnother(int command) { return command == IDM_DEBUG_START; }

std::wstring FirstExtraKeyOf(int command) {
    const auto* const key = std::ranges::find(kExtraKeys, command, &ExtraKey::command);
    return key != std::end(kExtraKeys) ? NameOfExtraKey(*key) : std::wstring();
}

int CommandOfExtraKey(std::uint32_t key, bool control, bool shift, bool alt, bool inEditor) {
    for (const ExtraKey& extra : kExtraKeys)
        if (extra.key == key && extra.control == control && extra.shift == shift && extra.alt == alt &&
            (inEditor || !extra.editorOnly))
            return extra.command;
    return 0;
}
