// Words that people look for a setting by and that its own texts do not have. Pure.
#pragma once

#include "settingsui/settings_pages.h"

#include <cstddef>

// The words in English, separated by blanks; empty for many settings. `field` is the offset of the setting in Settings,
// or in CompilerSettings with `ofCompiler`. What shows no setting is told by its control.
const wchar_t* WordsOfSetting(std::size_t field, SettingControl control, bool ofCompiler);
