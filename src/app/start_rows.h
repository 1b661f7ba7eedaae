// The rows of the start page: recent files, recent sessions and samples, each with the command that opens it. Pure.
#pragma once

#include "settings/settings.h"

#include <string>
#include <string_view>
#include <vector>

struct StartRow {
    int command;          // posted to the main window
    wchar_t key;          // that opens the row; 0: none
    const wchar_t* kind;  // shown to the user
    std::wstring name;
    std::wstring folder;
};
// `ownSession`: as for SessionRowsToOffer. `samples` are the paths of sources; at most as many are taken as there are
// commands for them.
std::vector<StartRow> StartRows(const Settings& settings, std::wstring_view ownSession,
                                const std::vector<std::wstring>& samples);
