// Places of the parts of the AI chat pane, in pixels. Pure.
#pragma once

#include "ui/pane_id.h"

struct AiPaneLayout {
    PaneRect chat, input, send;
};
// All parts are empty when the area is.
AiPaneLayout LayOutAiPane(const PaneRect& area, int dpi);
