// The lists of recent files and sessions in the File menu, and the commands of named sessions. UI thread only.
#pragma once

#include "base/command_handler.h"

#include <windows.h>

#include <span>

// Fills the menu with the current list when it is one of these two; leaves any other as it is.
void RecentMenuFill(HMENU menu);
std::span<const CommandHandler> RecentCommandHandlers();
