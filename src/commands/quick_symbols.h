// The lists of symbols in the window of the file finder (commands/quick_source.h). UI thread only.
#pragma once

#include <windows.h>

inline constexpr LPARAM kSymbolNamesBuilt = 1;  // lParam of MSG_SYMBOLS_PLACES for QuickSymbolsOnBuilt
void QuickSymbolsOnBuilt(WPARAM wParam);
