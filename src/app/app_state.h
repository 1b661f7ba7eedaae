// The one global record of the program. Every area's part of it is declared by that area; this file puts them
// together, so that it can be read as a table of contents. Owned by the UI thread; a field that another thread may
// touch says so.
#pragma once

#include "build/build_state.h"
#include "debugger/debug_state.h"
#include "editor/nav_history.h"
#include "scintilla/scintilla_library.h"
#include "settings/run_overrides.h"
#include "settings/settings.h"
#include "tabs/document.h"

#include <windows.h>

#include <vector>

struct AppState {
    HINSTANCE hInstance = nullptr;
    ScintillaLibrary scintilla;  // the two editing libraries, loaded for the whole run

    // Windows, empty until created; all children of hMainWnd.
    HWND hMainWnd = nullptr;
    HWND hTabCtrl = nullptr;
    HWND hToolbar = nullptr;
    HWND hStatusBar = nullptr;
    HWND hOutput = nullptr;   // Rich Edit
    HWND hAsmPane = nullptr;  // Rich Edit
    HWND hAiChat = nullptr;   // Rich Edit
    HWND hAiInput = nullptr;
    HWND hAiSend = nullptr;
    HWND hStickyHeader = nullptr;
    HWND hTerminal = nullptr;
    HWND hErrorList = nullptr;
    HWND hProjectTree = nullptr;
    HWND hDebugPane = nullptr;
    HWND hFindDialog = nullptr;  // modeless, empty while closed

    // Documents
    std::vector<DocumentTab> tabs;
    int activeTab = -1;                         // index into tabs, -1 with none
    HWND hEditor = nullptr;                     // editor of the active tab
    wchar_t lastDirectory[kPathCapacity] = {};  // folder of the file last opened or saved under a new name
    NavHistory navigation;

    Settings settings;  // what Editor.ini holds
    RunOverrides overrides;  // of them, what the command line set for this run only

    // View state that lasts for one run
    bool showOutput = true;
    bool showAsmPane = false;
    bool showDebugPane = false;
    int debugPaneWidth = 0;  // pixels wanted of the area below the editor, 0: half of it
    bool splitHorizontal = false;  // kept and restored by sessions
    bool fullScreen = false;       // kept and restored by sessions
    int dpi = 96;                  // of the monitor the main window is on

    BuildState build;       // shared with the build's reader thread under g_buildCs
    CompilerErrors errors;  // diagnostics of the last build; filled on the UI thread

    DebuggerState debugger;
    DebugFlags debug;

    // Session and workspace
    wchar_t sessionPath[kPathCapacity] = {};    // current named session, empty with none
    wchar_t workspacePath[kPathCapacity] = {};  // current workspace, empty: the default beside the executable
};

extern AppState g_app;
extern bool g_selftestTabsMode;  // a self-test run: no questions, no saves at the end

inline int TabCount() { return static_cast<int>(g_app.tabs.size()); }
inline bool IsTabIndex(int index) { return index >= 0 && index < TabCount(); }
