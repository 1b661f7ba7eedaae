// The texts for the file dialogs: the file types and the suggested names. Pure.
#pragma once

#include <array>
#include <string>

// The table of file types in the form of OPENFILENAMEW::lpstrFilter: each text ends with a NUL, the list with one more.
std::wstring FileDialogFilter();

// The names to suggest, in order: the path, the file name alone, an empty name. The next one is for a dialog that
// refuses the one before it (FNERR_INVALIDFILENAME).
std::array<std::wstring, 3> FileDialogNames(const std::wstring& path);
