// The output pane (Rich Edit, read-only), the diagnostics in it and their list. UI thread only.
#pragma once

#include "output/diagnostics.h"

#include <windows.h>

void OutputPaneInit(HWND pane);
// Appends a short text at once, coloured by severity, records its diagnostics and scrolls to the end. When other text
// still waits, this text is queued after it.
void OutputPaneAppend(const wchar_t* text, COLORREF colour);
void OutputPaneClear();
// Removes the oldest lines when there are too many, and shows the rest again. Called on TIMER_OUTPUT.
void OutputPaneTrim();
void OutputPaneScrollToEnd();
void OutputPaneApplyFont();
// Applies font, colours and margins from the settings and the theme to any Rich Edit pane (output, ASM, chat).
void PaneApplyFontAndTheme(HWND richEdit);
// Goes to the place that the pane's current line names, if it names one (double-click, Enter): the source of a
// diagnostic, or the log where it goes on with the lines that the pane leaves out.
void OutputPaneNavigateError();

// Selects the line of the pane that tells a record of `g_output.errors` and scrolls to it. Nothing when the line is not in
// the pane.
void OutputPaneShowRecord(int index);

// Of the output pane, or of the error list when it has the keyboard: goes to the source of the chosen line, copies all.
void OutputGoToSource();
void OutputCopyAll();

void CompilerClearErrors();
void CompilerNavigateToError(int index);
void CompilerNextError();
void CompilerVisitNextError();  // the command: the first record first
void CompilerPrevError();
// Goes to the diagnostic that the keyboard is on, in the text, in the error list or in the pane, else to the current
// one, and copies it. False: there is none, or its file could not be opened, which the user was told.
bool CompilerShowChosenError(CompilerError* error);
// The keyboard is on a diagnostic, or on a line of the pane that leads to a log.
bool CompilerIsOnDiagnostic();

// Creates the error list (a list view); null on failure. It shows the records of `g_output.errors`.
HWND ErrorListCreate(HWND parent, int controlId);
void ErrorListRefresh();
void ErrorListShowLines();  // edits have moved diagnostics
void ErrorListApplyTheme();
void ErrorListCopyAll();
int ErrorListSelected();      // row from 0; -1: none
void ErrorListShowCurrent();  // selects the current record's row
bool ErrorListHandleNotify(const NMHDR& header, LRESULT* result);
