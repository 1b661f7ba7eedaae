// The file types as a file dialog takes them. Pure.
#pragma once

#include <string>

// The table of file types in the form of OPENFILENAMEW::lpstrFilter: each text ends with a NUL, the list with one more.
std::wstring FileDialogFilter();
