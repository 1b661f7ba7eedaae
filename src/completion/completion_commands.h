// The commands of completion: the list, the tips, the snippets. UI thread only.
#pragma once

#include "base/command_handler.h"

#include <span>

std::span<const CommandHandler> CompletionCommandHandlers();
