// The commands for lines, letters, carets, folding, and the form of the active document's file. UI thread only.
#pragma once

#include "base/command_handler.h"

#include <span>

std::span<const CommandHandler> EditorCommandHandlers();
