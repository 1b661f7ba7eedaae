// `Editor.ini`: where it is, and the operations that read, write, copy and delete it. UI thread only. SettingsLoad and
// SettingsSave are in settings.h.
#pragma once

#include "settings/settings.h"

#include <cstddef>

// Full path of the settings file. Empty or null `overridePath`: "Editor.ini" in the executable's folder; an absolute one
// as it is; any other joined to the executable's folder.
void GetIniPath(const wchar_t* overridePath, wchar_t* out, std::size_t capacity);
void GetIniDir(const wchar_t* overridePath, wchar_t* out, std::size_t capacity);  // with its trailing backslash

// Stored compiler paths to absolute ones and back, against the executable's folder. `in` and `out` may be the same.
void ResolveExeRelative(const wchar_t* in, wchar_t* out, std::size_t capacity);
void MakeExeRelativePath(const wchar_t* in, wchar_t* out, std::size_t capacity);

// Text that the INI functions give back unchanged, whatever is in it (see EncodeIniValue). `defaultText` is taken when
// the key is not there. False only on a failed write.
void ReadIniText(const wchar_t* iniPath, const wchar_t* section, const wchar_t* key, const wchar_t* defaultText,
                 wchar_t* out, std::size_t capacity);
bool WriteIniText(const wchar_t* iniPath, const wchar_t* section, const wchar_t* key, const wchar_t* text);

// Recent sessions, in [Session] of the settings file; loaded and saved with the settings, too.
void SessionMRULoad(const wchar_t* overridePath = nullptr);
void SessionMRUSave(const wchar_t* overridePath = nullptr);

// The settings dialog's operations; until there is a dialog, nothing calls them. True on success; a failed import leaves file
// and record as they were. Import and reset tell of what they changed.
bool SettingsExport(const wchar_t* target);
bool SettingsImport(const wchar_t* source);
// Deletes the file and sets the record to its factory state.
void SettingsResetAll();
