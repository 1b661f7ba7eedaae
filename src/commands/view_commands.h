// The View menu: what is shown, how big, in which colours and font. UI thread only.
#pragma once

#include "base/command_handler.h"

#include <span>

std::span<const CommandHandler> ViewCommandHandlers();
