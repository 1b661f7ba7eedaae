// The terminal line: Enter runs its text as a command, whose output goes to the output pane. UI thread only.
#pragma once

#include <windows.h>

LRESULT CALLBACK TerminalSubclassProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR data);

// Shows in the empty line what is to be typed there: a command, or the input of the program that runs.
void TerminalShowCue();

// A program that got its input from the line has ended. Returns whether the line holds text that was typed for it. The
// next Enter does not run that text as a command.
bool TerminalProgramEnded();
