// The commands of the View menu: panes, bars, zoom, theme, style and font. UI thread only.
#pragma once

#include "base/command_handler.h"

#include <span>

std::span<const CommandHandler> ViewCommandHandlers();
