// Where the parts of the assistant's pane go. Pure.
#pragma once

#include "ui/pane_id.h"

struct AiPaneLayout {
    PaneRect chat, input, send;
};
// An empty area leaves all of them empty.
AiPaneLayout LayOutAiPane(const PaneRect& area, int dpi);
