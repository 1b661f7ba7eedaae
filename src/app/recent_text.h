// The rows of the lists of recent files and sessions. Pure.
#pragma once

#include "settings/settings.h"

#include <string>
#include <string_view>

// The text of a row: its digit as mnemonic and the path, whose middle is left out when it is long. `index` counts from
// 0 to 9.
std::wstring RecentMenuText(int index, std::wstring_view path);

// Removes a row; those below it move up.
void RecentRowRemove(wchar_t (&rows)[kMruCapacity][kPathCapacity], std::int32_t& count, int row);
