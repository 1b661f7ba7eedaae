// The folder of the settings file, of the session and of the default workspace: that of the program, or one of the user's
// own when the program's folder takes no files, as under "Program Files". It is in "KVX-Editor" under the local
// application data, and each installation has its own there. Earlier versions kept the settings of all installations in
// "KVX-Editor" itself: an installation begins with copies of these. UI thread only.
#pragma once

#include <functional>
#include <string>
#include <string_view>

// The name of the folder of an installation: the last part of the program's folder and a number made of its path. Letter
// case and trailing backslashes do not count. Pure (settings_place.cpp).
std::wstring InstallationFolderName(std::wstring_view programFolder);

// The folders that come into question, with their trailing backslashes.
struct SettingsFolders {
    std::wstring program;
    std::wstring own;     // of this installation, under the user's application data; empty: he has none
    std::wstring shared;  // of all installations of earlier versions
};
struct SettingsFolderSteps {
    std::function<bool(const std::wstring& folder)> hasSettings;
    std::function<bool(const std::wstring& folder)> takesFiles;
    std::function<bool(const std::wstring& folder)> make;
    std::function<bool(const std::wstring& from, const std::wstring& to)> copy;
};
// The user's folder to use from the start on, or empty: the program's is used. Pure.
std::wstring FolderAtStart(const SettingsFolders& folders, const SettingsFolderSteps& steps);
// The same after a save to the program's folder has failed with this error of the system.
std::wstring FolderAfterFailure(const SettingsFolders& folders, const SettingsFolderSteps& steps, unsigned long error);

// The folder in use, with its trailing backslash.
std::wstring SettingsFolder();

// Decides before the settings are loaded: the user's folder when it has settings already and the program's folder still
// takes no files.
void SettingsChooseFolder();

// After a save to the folder in use has failed with this error: changes over to the user's folder when the program's
// folder takes no files. Returns true when it has changed.
bool SettingsLeaveFolder(unsigned long error);

// True when a file can be made in the folder.
bool FolderTakesFiles(const std::wstring& folder);

// For tests: stands for the program's folder, with a trailing backslash. Empty: the executable's. Starts anew.
void SettingsFolderForTest(const std::wstring& programFolder);
