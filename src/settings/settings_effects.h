// What a change of settings means for what is already shown or running. The table of settings says it for each of them
// (settings_schema.cpp); whoever carries it out is app/settings_apply_win.cpp. Pure.
#pragma once

#include "settings/settings.h"

#include <cstdint>

// Bits; 0: whoever needs the setting reads it when it is needed.
enum SettingEffect : std::uint16_t {
    kEffectEditors = 1,   // font, colours, margins and view options of every editor
    kEffectFrame = 2,     // colours and fonts of the frame and its panes
    kEffectLayout = 4,    // which panes are shown, and how large
    kEffectCompiler = 8,  // the name of the active compiler, and whether it is installed
    kEffectTimers = 16,   // automatic saving
    kEffectProject = 32,  // the root of the project tree
    kEffectShell = 64,    // which source types the shell opens with the editor
};

// The effects of all settings that differ.
std::uint32_t SettingsEffectsOf(const Settings& before, const Settings& now);

// The interval of the timer that saves modified documents, in ms; 0: none. `minutes` may be anything.
std::uint32_t AutoSaveInterval(std::int32_t minutes);
