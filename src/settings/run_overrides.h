// What the command line changed for one run: such a value is used and shown, but the settings file keeps its own until
// the user changes the setting himself. Pure.
#pragma once

#include "settings/settings.h"

struct RunOverrides {
    bool compiler = false, font = false, fontSize = false;  // given on the command line
    std::int32_t storedCompiler = 0, usedCompiler = 0;
    std::int32_t storedFontSize = 0, usedFontSize = 0;
    wchar_t storedFont[64] = {}, usedFont[64] = {};
};

// Notes a value given for this run and puts it into `settings`.
void OverrideCompiler(RunOverrides& overrides, Settings& settings, std::int32_t compiler);
void OverrideFont(RunOverrides& overrides, Settings& settings, std::wstring_view face);
void OverrideFontSize(RunOverrides& overrides, Settings& settings, std::int32_t points);

// Gives `settings`, a copy that is about to be stored, back the values that were only for this run.
void RestoreStored(const RunOverrides& overrides, Settings& settings);

// Ends the overrides of values that are others now: from here on the setting is the user's own.
void EndChangedOverrides(RunOverrides& overrides, const Settings& settings);
