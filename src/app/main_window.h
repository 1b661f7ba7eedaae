// The main window, which holds every pane and routes the program's messages. UI thread only.
#pragma once

#include "base/command_handler.h"
#include "base/events.h"

#include <windows.h>

#include <shellapi.h>

#include <cstdint>
#include <vector>

struct Settings;

inline constexpr wchar_t kMainClass[] = L"KVXEEditorWnd";

// Registers the window class, creates and shows the window, and lets it accept dropped files. Null on failure.
HWND MainWindow_Init(HINSTANCE instance, int showCommand);
LRESULT CALLBACK MainWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// --- The functions of the main window, by file
// main_window_create_win.cpp
bool MainWnd_OnCreate(HWND window, const CREATESTRUCTW& create);
void MainWnd_ApplyTheme();  // colours and fonts of bars and panes, after a change of theme or DPI
void MainWnd_OnDpiChanged(HWND window, int dpi, const RECT& suggested);
void MainWnd_OnSystemColours(HWND window, UINT message);  // colours or the high-contrast mode of the system
void MainWnd_RenewColours();                              // those of editors and frame
// startup_win.cpp
void MainWnd_OnStartup();
void MainWnd_CommandLineDone();  // start-up is completed after this call
void MainWnd_OnReinitEditor(int tab, DocumentId id);
void MainWnd_OnAutoSaveTimer();
void MainWnd_OnClose(HWND window);
bool MainWnd_OnQueryEndSession();
void MainWnd_OnEndSession(bool ending);
void MainWnd_OnDestroy(HWND window);
void EnsureEditableStartupTab();
// layout_win.cpp
void MainWnd_OnSize(WPARAM kind, int width, int height);
void MainWnd_OnMinMaxInfo(MINMAXINFO& info);
void ApplyLayoutRatios(int width, int height);  // sets the bars by the ratios for a client area of this size, in pixels
void CaptureSplitterRatio();                    // keeps the ratios of the bars
void RestoreSplitterRatio();                    // takes the ratios from the settings, and the bars where there are none
int FirstOutputSplit();                         // where the output's bar is at a first start, in pixels
// notify_win.cpp
LRESULT MainWnd_OnNotify(const NMHDR& header);
void MainWnd_OnDropFiles(HDROP drop);
// commands_win.cpp
void MainWnd_OnCommand(int command, int notification, HWND control);
void MainWnd_OnInitMenuPopup(HMENU menu);
std::vector<CommandHandler> AllCommandHandlers();  // the tables of all areas
// late_keys_win.cpp
void MainWnd_OnLateKey(std::uint32_t key, LPARAM bits);  // MSG_LATE_KEY
// notices_win.cpp
void MainWnd_OnNoticeWanted(const wchar_t* text);
void MainWnd_ShowNotices();    // in message boxes, one after the other
void MainWnd_AskAboutFiles();  // that other programs have changed, when the user can be asked; called as the one above
// settings_apply_win.cpp
void MainWnd_OnSettingsChanged(const Settings& before);
void MainWnd_ApplyTimers(HWND window);     // starts or stops the timers for automatic saving by the settings
void MainWnd_WaitForSession(HWND window);  // the session is saved at its usual interval from now on, if at all
void MainWnd_SaveSessionSoon();            // once in a pause of what changes it
// events_win.cpp
void MainWnd_ConnectEvents();  // connects base/events.h
void MainWnd_OnOutputTimer();  // TIMER_OUTPUT
// main_window_win.cpp
void MainWindow_UpdateTitle();  // sets the caption by the active document
// layout_win.cpp
void MainWindow_Layout();  // places every pane by the settings
// main_window_create_win.cpp
void MainWindow_UpdateCompilerSelection();  // shows the active compiler in toolbar and status bar
// refresh_win.cpp
void MainWindow_RequestStateRefresh();  // asks for MainWnd_RunPendingRefresh
// window_place_win.cpp
void MainWnd_RestorePlace(HWND window);  // where it was in the last run, when a monitor is there
bool MainWnd_StartsMaximised();          // known once the place was restored
void MainWnd_NotePlace(HWND window);     // keeps the window's place for the settings file
// refresh_win.cpp
void MainWnd_RunPendingRefresh();  // refreshes toolbar and position; called when the message queue is empty
void MainWnd_OnPositionTimer();
