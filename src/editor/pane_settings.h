// The messages for an editing pane at its creation, and for the [Editor] settings. Pure.
#pragma once

#include "editor/editor_message.h"
#include "settings/settings.h"

#include <vector>

// SC_MOD_...: the changes that a pane reports. A notification for each restyled or folded line would take longer than the
// styling.
extern const int kPaneEvents;

// What depends on no setting: input, notifications, display. Sent once, at creation.
const EditorMessages& PaneSetUpMessages();

// A value with the messages that get and set it. It is set only when the editor has another value, because most setters
// make Scintilla lay out and wrap the whole document again.
struct PaneSetting {
    unsigned get;
    unsigned set;
    std::intptr_t value;
    bool operator==(const PaneSetting&) const = default;
};
using PaneSettings = std::vector<PaneSetting>;

PaneSettings EdgeLineSettings(bool on);      // at column 80, or no line
PaneSettings VirtualSpaceSettings(bool on);  // lets the caret go beyond the end of a line

// Tabs, zoom, edge line, virtual space, wrap, white space and indentation guides, in the order in which they are set.
// `plain`: without word wrap.
PaneSettings PaneSettingsOf(const Settings& settings, bool plain);

// A block caret of that colour (0xBBGGRR) that does not blink, on a highlighted line.
PaneSettings CaretSettings(std::uint32_t colour);
