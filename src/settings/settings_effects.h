// What must be shown anew after a change of settings. Pure.
#pragma once

#include "settings/settings.h"

struct SettingsEffects {
    bool editors = false;   // font, theme, style, margins, view options of every editor
    bool frame = false;     // colours and fonts of the frame and its panes
    bool layout = false;    // what is shown, and how large
    bool compiler = false;  // the active compiler's name
    bool operator==(const SettingsEffects&) const = default;
};
SettingsEffects SettingsEffectsOf(const Settings& before, const Settings& now);
