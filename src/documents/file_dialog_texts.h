// What the file dialogs are given. Pure.
#pragma once

#include <array>
#include <string>

// The dialogs' own form of the table of file types: texts separated and ended by NULs.
std::wstring FileDialogFilter();

// The names to suggest, one after the other while the dialog refuses them as odd or too long: the path, the file's name
// alone, nothing.
std::array<std::wstring, 3> FileDialogNames(const std::wstring& path);
