// The rows of the lists of recent files and sessions. Pure.
#pragma once

#include "settings/settings.h"

#include <string>
#include <string_view>
#include <vector>

// The text of a row: its digit as mnemonic and the path, whose middle is left out when it is long. `index` counts from
// 0 to 9.
std::wstring RecentMenuText(int index, std::wstring_view path);

// The rows of the recent sessions that the user is shown. The editor's own session is none of them, because nobody has named
// it and a start offers it by itself; `ownSession` is its path. Only names are compared: it may be that of another folder.
std::vector<int> SessionRowsToOffer(const Settings& settings, std::wstring_view ownSession);

// Removes a row; those below it move up.
void RecentRowRemove(wchar_t (&rows)[kMruCapacity][kPathCapacity], std::int32_t& count, int row);
