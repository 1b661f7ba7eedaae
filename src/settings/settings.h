// The record of all persistent settings, which `Editor.ini` holds. The table in settings_schema.h gives the section,
// key, type, default and limits of each field, and loading and saving follow that table. Owned by the UI thread.
#pragma once

#include "base/bounded_text.h"
#include "settings/compiler_id.h"

#include <cstdint>

inline constexpr int kMruCapacity = 10;
inline constexpr int kSearchHistoryCapacity = 20;
inline constexpr int kFilesSearchCapacity = 12;
inline constexpr int kColorOverrides = 7;

struct CompilerSettings {
    wchar_t path[kPathCapacity];         // the compiler; on disk relative to the folder of our executable
    wchar_t flags[1024];                 // extra switches of a normal build (512 on disk for all but KVXA32)
    wchar_t includePath[kPathCapacity];  // include folder for this compiler
    wchar_t asmFlag[64];                 // switch for a listing; "{asm}" stands for its path
    wchar_t syntaxFlags[512];            // switches of a syntax check; empty: those of the table of compilers
    wchar_t description[2048];           // free text; its default describes the dialect
    std::int32_t registerExtension;      // 0 or 1: the shell offers the editor for this compiler's sources
};

// The place of the main window. The frame updates it whenever it changes.
struct WindowPlace {
    bool known = false;
    int left = 0, top = 0, width = 0, height = 0;  // pixels, of the window when it is neither maximised nor minimised
    bool maximised = false;
};

// The place of the main window when it is neither maximised nor minimised, in pixels of the screen at `dpi`. It stands
// beside WindowPlace, which a run reads only from the system's folder. Width 0: not known.
struct StoredPlace {
    std::int32_t left, top, width, height;
    std::int32_t maximised;
    std::int32_t dpi;
};

// What part of its area a setting in pixels took. It holds while the setting has the value `of`; a setting that was
// changed otherwise counts itself.
inline constexpr std::int32_t kFullRatio = 10000;
struct StoredRatio {
    std::int32_t ratio;  // in 1/10000; 0: not known
    std::int32_t of;
};

struct Settings {
    CompilerSettings compilers[kCompilerCount];

    // Editor
    wchar_t includePath[kPathCapacity];  // global include folder
    wchar_t fontName[64];
    std::int32_t fontSize;  // points, 6..72
    std::int32_t showWhitespace;
    std::int32_t wordWrap;
    std::int32_t editorZoom;         // Scintilla zoom steps
    std::int32_t editorStylePreset;  // 0..5: row of the style table
    std::int32_t activeCompiler;     // CompilerId
    std::int32_t theme;              // 0 light, 1 dark
    std::int32_t tabWidth;
    std::int32_t useTabs;
    std::int32_t showLineNumbers;
    std::int32_t edgeColumn;
    std::int32_t showToolbar;
    std::int32_t showStatusbar;
    std::int32_t statusHidden;  // bits of the fields of the status bar that are not shown (commands/status_bar_fit.h)
    wchar_t language[64];       // of the program's texts, from the next start on (settings/language.h)
    wchar_t outputFont[64];
    std::int32_t outputFontSize;      // points
    std::int32_t readableOutput;      // errors and warnings of the output in colours with enough contrast
    std::int32_t showErrorTexts;      // the text of each error behind its line of the source
    std::int32_t restoreLastSession;  // whether workspace.json is loaded and saved
    std::int32_t buildOnSave;
    std::int32_t autoSaveInterval;  // minutes; 0: off
    std::int32_t enableAutoComplete;
    std::int32_t autoCompleteTrigger;  // characters typed before completion opens
    std::int32_t autoUpperKeywords;
    std::int32_t autoCloseBlocks;  // Return behind a line that opens a block adds the line that closes it
    std::int32_t showCallTips;     // "(" and "," tell the parameters of what is called
    std::int32_t showIndentGuides;
    std::int32_t showTerminal;
    std::int32_t showEdgeLine;
    std::int32_t showChangeMargin;
    std::int32_t enableVirtualSpace;
    std::int32_t showErrorList;
    std::int32_t errorListHeight;
    std::int32_t colors[kColorOverrides];  // COLORREF of each kOverriddenRoles; 0: that of the style
    std::int32_t searchHistoryCount;
    wchar_t searchHistory[kSearchHistoryCapacity][256];
    std::int32_t replaceHistoryCount;
    wchar_t replaceHistory[kSearchHistoryCapacity][256];
    std::int32_t filesSearchCount;
    wchar_t filesSearches[kFilesSearchCapacity][1024];  // with all options (search/files_options.h), newest first
    std::int32_t newFileEncoding;  // of a document without a file, and under a new name: 0 ANSI, 1 UTF-8
    std::int32_t backupOnSave;
    wchar_t programArguments[1024];        // of a program that is debugged or run
    wchar_t programFolder[kPathCapacity];  // in which it starts; empty: its own
    std::int32_t stepsFollowProgram;       // the debugger's steps; 0: to the next line by address
    std::int32_t backupSettings;
    std::int32_t reloadChangedFiles;  // without a question, documents without unsaved edits
    std::int32_t autoSaveEnabled;     // whether the session is saved on a timer

    // Build
    std::int32_t profile;             // 0 Debug, 1 Release, 2 Fast
    std::int32_t saveAllBeforeBuild;  // every modified document that has a file, not only the one to build
    std::int32_t keepConsoleOpen;     // after Build & Run of a console program, until a key is pressed
    wchar_t preBuildCmd[1024];
    wchar_t postBuildCmd[1024];

    // Debugger
    std::int32_t debugView;        // the view of the debug pane that was shown last (debugui/debug_pane.h)
    wchar_t exceptionRules[1024];  // which exceptions are passed to the program and which stop it; empty: none

    // Project
    wchar_t projectRoot[kPathCapacity];
    wchar_t projectFile[kPathCapacity];  // of the open project; empty: none
    std::int32_t showProjectTree;
    std::int32_t showOutline;
    std::int32_t projectTreeWidth;  // pixels at 96 dpi
    std::int32_t projectTreeExtra;  // what the tree is wider than that
    // What the project tree shows, and whether it goes to the file of the active tab.
    std::int32_t treeSourcesOnly;
    std::int32_t treeHidden;
    std::int32_t treeBinaries;
    std::int32_t treeGitIgnore;
    std::int32_t treeFollowsTab;

    // Assistant. The keys are clear text in memory and protected on disk.
    std::int32_t showAiSidebar;
    std::int32_t aiSidebarWidth;  // pixels at 96 dpi
    std::int32_t aiEnabled;       // derived: whether one of the services is on
    std::int32_t openAIEnabled;
    std::int32_t lmStudioEnabled;
    std::int32_t primaryAi;  // 0 OpenAI, 1 LM Studio
    wchar_t openAIKey[256];
    wchar_t openAIUrl[1024];
    wchar_t openAITranscriptionModel[64];
    wchar_t openAICodeModel[64];
    wchar_t lmStudioUrl[1024];
    wchar_t lmStudioKey[256];
    wchar_t lmStudioModel[64];
    wchar_t transcribeTestText[1024];
    std::int32_t appendLastError;
    std::int32_t aiStream;     // replies are asked for piece by piece
    std::int32_t aiHistoryKb;  // earlier questions and answers that go with a message of the chat; 0: none

    // Recent files and sessions, newest first
    std::int32_t mruCount;
    wchar_t mruFiles[kMruCapacity][kPathCapacity];
    std::int32_t sessionMruCount;
    wchar_t sessionMruFiles[kMruCapacity][kPathCapacity];

    // Window
    std::int32_t splitter;  // top edge of the output pane, pixels from the top of the client area
    StoredRatio splitterRatio;
    StoredRatio sidebarRatio;  // of aiSidebarWidth in the client area
    StoredPlace place;
    // Sizes of panes that share a place, in pixels at 96 dpi; 0: half of the place.
    std::int32_t debugPaneWidth;
    std::int32_t resultsWidth;
    std::int32_t outlineHeight;
    std::int32_t errorListSize;  // at the end of the last run; 0: not known
    std::int32_t panesShown;     // PaneBit of the panes that come back (ui/panes.h)
};

// Both work on `g_settings`. `overridePath` may be null and means "Editor.ini" beside the executable then; the other
// rules are in settings_store.h. Loading cannot fail, because every setting has a default. A save returns 0 when it has
// failed; it leaves the old file unchanged then and writes a line to the log. A file that was there but could not be read
// is not written in this run: a save returns 1 and does nothing.
void SettingsLoad(const wchar_t* overridePath);
int SettingsSave(const wchar_t* overridePath);

// The settings before the file is read: every default, but with a fixed-pitch editor font.
void SettingsDefaults(Settings& settings);
