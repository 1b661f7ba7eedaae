// What an editing pane is told at its creation and by the [Editor] settings. Pure.
#pragma once

#include "documents/editor_message.h"
#include "settings/settings.h"

#include <vector>

// Input and display rules that depend on no setting; once, at creation.
const EditorMessages& PaneSetUpMessages();

// A value to set where the editor has another one: most setters make Scintilla lay out and wrap the whole document again.
struct PaneSetting {
    unsigned get;
    unsigned set;
    std::intptr_t value;
    bool operator==(const PaneSetting&) const = default;
};
using PaneSettings = std::vector<PaneSetting>;

PaneSettings EdgeLineSettings(bool on);      // at column 80, or none
PaneSettings VirtualSpaceSettings(bool on);  // the caret may stand beyond the end of a line

// Tabs, zoom, edge line, virtual space, wrap, white space, guides. In the order in which they are set.
PaneSettings PaneSettingsOf(const Settings& settings);

// A block caret that does not blink, in that colour (0xBBGGRR), on a line that is marked.
PaneSettings CaretSettings(std::uint32_t colour);
