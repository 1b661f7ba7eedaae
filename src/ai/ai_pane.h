// The pane of the assistant: the chat, the line below it and its button. UI thread only.
#pragma once

#include "ui/panes.h"

#include <windows.h>

#include <vector>

HWND AiPaneCreate(HWND parent, int controlId);  // the chat; null when it cannot be made
void AiPaneApplyTheme();
std::vector<PanePart> AiPaneParts(const PaneRect& area);
