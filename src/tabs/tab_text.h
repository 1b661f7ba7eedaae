// The words about a tab. Pure.
#pragma once

#include "tabs/tab_look.h"

#include <string>
#include <string_view>

// What the tooltip says of a document, in words: "Unsaved changes, last build failed".
std::wstring TabStateText(const TabState& state);

// A row of the menu's list of tabs: "&1 main.bas". Rows from the tenth on have no access key.
std::wstring TabMenuText(int index, std::wstring_view name);

// The name of a tab with the folder that tells it from others; `folder` may be empty.
std::wstring TabFullName(std::wstring_view name, std::wstring_view folder);
