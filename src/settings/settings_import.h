// What a settings file that is to be imported holds: which settings it gives, and which of its lines mean nothing to
// this program. What it does not give stays as it is, so that a damaged file costs nothing. Pure.
#pragma once

#include "settings/settings_schema.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The INI functions read UTF-16 that begins with its little-endian mark, and anything else by the system's code page. The
// bytes of a file that is in UTF-8 or in another UTF-16, as an editor may have saved it, as what they read; nothing when
// the file is right as it is.
std::optional<std::string> IniBytesAsUtf16(std::string_view bytes);

// As GetPrivateProfileSection returns it: lines "key=value", each ended by a NUL.
struct IniSectionText {
    std::wstring name;
    std::wstring lines;
};

struct ImportFinding {
    std::vector<const SettingRow*> given;     // with a value that can be taken
    bool recentSessions = false;              // the file has a list of recent sessions
    std::vector<std::wstring> notUnderstood;  // "[Editor] TabWdth", in the order of the file
};
ImportFinding LookAtImport(std::span<const IniSectionText> sections);

// After an import has filled `now`: takes back from `before` what the file did not give, and the values that are of no
// use here: paths of compilers that are not there, and keys that another account has protected. Adds these keys to
// `notUnderstood`.
void KeepWhatImportLacks(ImportFinding& finding, const Settings& before, Settings& now);
