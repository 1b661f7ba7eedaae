// The commands of tabs: closing several, reopening, pinning, walking. UI thread only.
#pragma once

#include "base/command_handler.h"

#include <span>

std::span<const CommandHandler> TabCommandHandlers();
