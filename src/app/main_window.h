// The main window: the frame that holds every pane and the hub of the program's messages. UI thread only.
#pragma once

#include "base/command_handler.h"

#include <windows.h>

#include <shellapi.h>

#include <vector>

struct Settings;

// Registers the window class and creates, shows and drop-enables the window. Null on failure.
HWND MainWindow_Init(HINSTANCE instance, int showCommand);
LRESULT CALLBACK MainWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// --- The handlers that MainWndProc routes to, by file.
// main_window_create_win.cpp
bool MainWnd_OnCreate(HWND window, const CREATESTRUCTW& create);
void MainWnd_ApplyTheme();  // colours and fonts of the frame, after a change of theme or DPI
void MainWnd_OnDpiChanged(HWND window, int dpi, const RECT& suggested);
// startup_win.cpp
void MainWnd_OnStartup();
void MainWnd_CommandLineDone();  // start-up completion waits for this
void MainWnd_OnReinitEditor(int tab);
void MainWnd_OnAutoSaveTimer();
void MainWnd_OnClose(HWND window);
bool MainWnd_OnQueryEndSession();
void MainWnd_OnEndSession(bool ending);
void MainWnd_OnDestroy(HWND window);
void EnsureEditableStartupTab();
// layout_win.cpp
void MainWnd_OnSize(WPARAM kind, int width, int height);
void MainWnd_OnMinMaxInfo(MINMAXINFO& info);
void ApplyLayoutRatios(int width, int height);
void CaptureSplitterRatio();
// splitter_win.cpp
HWND CreateSplitter(HWND parent, int id);
LRESULT CALLBACK SplitterProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
// notify_win.cpp
LRESULT MainWnd_OnNotify(const NMHDR& header);
void MainWnd_OnDropFiles(HDROP drop);
// commands_win.cpp
void MainWnd_OnCommand(int command, int notification, HWND control);
void MainWnd_OnInitMenuPopup(HMENU menu);
std::vector<CommandHandler> AllCommandHandlers();  // the tables of all areas
// settings_apply_win.cpp
void MainWnd_OnSettingsChanged(const Settings& before);
void MainWnd_ApplyTimers(HWND window);  // of automatic saving, from the settings
// events_win.cpp
void MainWnd_ConnectEvents();   // what the areas tell reaches whoever shows it (base/events.h)
void MainWnd_OnOutputTimer();   // TIMER_OUTPUT
void MainWindow_UpdateTitle();  // caption from the active document
void MainWindow_Layout();       // every pane's rectangle from the settings and splitter positions (layout_win.cpp)
void MainWindow_UpdateCompilerSelection();  // the compiler's name in toolbar, status bar and menu
void MainWindow_RequestStateRefresh();      // menu, toolbar and position once the message queue is empty
void MainWnd_NotePlace(HWND window);        // where the window is, for the settings
// refresh_win.cpp
void MainWnd_RunPendingRefresh();  // what MainWindow_RequestStateRefresh asked for; the queue is empty
