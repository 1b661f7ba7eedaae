// The effects of a changed setting on what is shown or running. The table in settings_schema.cpp gives them for each
// setting, and app/settings_apply_win.cpp applies them. Pure.
#pragma once

#include "settings/settings.h"

#include <cstdint>

// Bits. A setting with none of them is read whenever it is needed.
enum SettingEffect : std::uint16_t {
    kEffectEditors = 1,   // font and colours of every editor, whose text is then styled anew
    kEffectFrame = 2,     // colours and fonts of the frame and its panes
    kEffectLayout = 4,    // which panes are shown, and how large
    kEffectCompiler = 8,  // the name of the active compiler, and whether it is installed
    kEffectTimers = 16,   // automatic saving
    kEffectProject = 32,  // the root of the project tree
    kEffectShell = 64,    // which source types the shell opens with the editor
    kEffectView = 128,    // zoom, wrapping, margins and other view options of every editor
};

// The effects of all settings that differ between the two.
std::uint32_t SettingsEffectsOf(const Settings& before, const Settings& now);

// The interval in ms of the timer that saves modified documents; 0: no timer. Any number of minutes is allowed.
std::uint32_t AutoSaveInterval(std::int32_t minutes);
