// Message boxes owned by the main window; in a self-test run only log lines. UI thread only.
#pragma once

void ErrorMessage(const wchar_t* format, ...);
void InfoMessage(const wchar_t* format, ...);

// A self-test run: no questions, no saves at the end.
extern bool g_selftestTabsMode;
