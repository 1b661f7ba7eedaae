// Where `Editor.ini` is, and the operations that read, write, copy and delete it. SettingsLoad and SettingsSave are in
// settings.h. Capacities count wide characters, the terminator included. UI thread only.
#pragma once

#include "settings/settings.h"

#include <cstddef>
#include <string>
#include <vector>

// The full path of the settings file. Without `overridePath` (null or empty) it is "Editor.ini" in the executable's
// folder. An absolute path is taken as it is; any other is joined to the executable's folder. The user's own folder takes
// its place when that one cannot be written (settings/settings_place.h).
void GetIniPath(const wchar_t* overridePath, wchar_t* out, std::size_t capacity);
void GetIniDir(const wchar_t* overridePath, wchar_t* out, std::size_t capacity);  // with its trailing backslash

// Convert compiler paths between the stored form and absolute ones, against the executable's folder. `in` and `out` may
// be the same buffer.
void ResolveExeRelative(const wchar_t* in, wchar_t* out, std::size_t capacity);
void MakeExeRelativePath(const wchar_t* in, wchar_t* out, std::size_t capacity);

// Read and write any text, encoded with EncodeIniValue. Reading returns `defaultText` when the key is missing. Writing
// returns false when it failed.
void ReadIniText(const wchar_t* iniPath, const wchar_t* section, const wchar_t* key, const wchar_t* defaultText,
                 wchar_t* out, std::size_t capacity);
bool WriteIniText(const wchar_t* iniPath, const wchar_t* section, const wchar_t* key, const wchar_t* text);

// Load and save the recent sessions, in [Session] of the settings file. SettingsLoad and SettingsSave do so, too.
void SessionMRULoad(const wchar_t* overridePath = nullptr);
void SessionMRUSave(const wchar_t* overridePath = nullptr);

// Export and import return true on success. Import and reset raise settingsChanged. An import takes what the file gives
// and leaves every other setting as it is (settings/settings_import.h); the settings from before are in "Editor.ini.bak".
// `notUnderstood` gets the keys of the file that mean nothing here. An import that fails leaves file and record
// unchanged; a file without any setting of this program fails with ERROR_INVALID_DATA. After a failure of either,
// GetLastError() tells why.
bool SettingsExport(const wchar_t* target);
bool SettingsImport(const wchar_t* source, std::vector<std::wstring>* notUnderstood = nullptr);
// Tells the user, once a run, which keys of the loaded file could not be unprotected: they belong to another account or
// are damaged. They are kept.
void SettingsTellLockedKeys();
// Deletes the file and resets the record with SettingsReset.
void SettingsResetAll();
