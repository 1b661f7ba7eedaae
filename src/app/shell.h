// What the areas may ask of the shell. The areas below `app/` cannot include it, yet some of their work changes
// what the frame around them shows; these are the only calls that go upward. UI thread only.
#pragma once

#include <windows.h>

// Caption from the active document.
void MainWindow_UpdateTitle();
// Recomputes every pane's rectangle from the settings and splitter positions, and applies it.
void MainWindow_Layout();
// The compiler's name in toolbar, status bar and menu check marks follows `g_app.settings.activeCompiler`.
void MainWindow_UpdateCompilerSelection();
// Applies every editor setting (font, zoom, margins, wrap, theme) to every open tab.
void SettingsApplyToEditor();

// Menu, toolbar and position shown anew once the message queue is empty, however often this is asked.
void MainWindow_RequestStateRefresh();
// A document's text is about to go, with its editor or in a reload; and an editor has its text (again).
void MainWindow_OnTextLeaving(HWND editor);
void MainWindow_OnTextArrived(HWND editor);

// Status bar: line, column, selection, encoding, line ending of the active editor.
void StatusBarUpdatePosition();
// Status bar: the text of the first part ("Building...", "Build stopped"). Stays until the next one.
void StatusBarSetText(const wchar_t* text);
// Status bar: time and moving mark of what runs (BuildProgressText); empty: nothing runs.
void StatusBarSetProgress(const wchar_t* text);
// Enabled and checked state of every menu and toolbar command.
void MenuUpdateState();

// Keyboard focus to the active editor, now; or retried for a short while until it has it.
void FocusCurrentEditor();
void QueueFocusCurrentEditor();

// Fills the project tree from `g_app.settings.projectRoot`.
void ProjectTreePopulate();
