// The AI chat pane: the chat, the input line below it and the Send button. UI thread only.
#pragma once

#include "ui/panes.h"

#include <windows.h>

#include <vector>

HWND AiPaneCreate(HWND parent, int controlId);  // returns the chat's window; null when it cannot be made
void AiPaneApplyTheme();
// The windows of the pane with their places in `area`.
std::vector<PanePart> AiPaneParts(const PaneRect& area);
