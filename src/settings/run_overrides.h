// Settings that the command line changed for one run. Such a value is used and shown, but the settings file keeps the
// stored one until the user changes the setting. Pure.
#pragma once

#include "settings/settings.h"

struct RunOverrides {
    bool compiler = false, font = false, fontSize = false;  // given on the command line
    std::int32_t storedCompiler = 0, usedCompiler = 0;
    std::int32_t storedFontSize = 0, usedFontSize = 0;
    wchar_t storedFont[64] = {}, usedFont[64] = {};
};

// Notes a value that is given for this run and puts it into `settings`.
void OverrideCompiler(RunOverrides& overrides, Settings& settings, std::int32_t compiler);
void OverrideFont(RunOverrides& overrides, Settings& settings, std::wstring_view face);
void OverrideFontSize(RunOverrides& overrides, Settings& settings, std::int32_t points);

// Puts the stored values back into `settings`, a copy that is about to be saved.
void RestoreStored(const RunOverrides& overrides, Settings& settings);

// Ends the override of each setting that no longer has the value of this run, because the user has changed it.
void EndChangedOverrides(RunOverrides& overrides, const Settings& settings);
