// The rows of the start page: recent files, recent sessions and samples, each with the command that opens it. Pure.
#pragma once

#include "settings/settings.h"

#include <string>
#include <vector>

struct StartRow {
    int command;          // posted to the main window
    wchar_t key;          // that opens the row; 0: none
    const wchar_t* kind;  // shown to the user
    std::wstring name;
    std::wstring folder;
};
// `samples` are the paths of sources; at most as many are taken as there are commands for them.
std::vector<StartRow> StartRows(const Settings& settings, const std::vector<std::wstring>& samples);
