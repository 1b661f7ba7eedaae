// The file finder and the command palette: a window over the editor with a field and a list, made when it is first
// used. UI thread only.
#pragma once

#include "base/command_handler.h"

#include <windows.h>

#include <span>

std::span<const CommandHandler> QuickOpenCommandHandlers();
// True when the message is a key for the open window, which then has handled it: the program's own keys do not count
// there.
bool QuickOpenIsMessage(const MSG& message);
// Searches again in the open window, because a source has other texts now.
void QuickOpenRenew();
// Places the open window anew, above the editor.
void QuickOpenPlace();
// Closes the open window. The keyboard goes back to where it was.
void QuickOpenClose();
