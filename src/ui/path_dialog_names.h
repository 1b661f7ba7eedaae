// The names that a file dialog is given. Pure.
#pragma once

#include <array>
#include <string>

// The names to suggest, in order: the path, the file name alone, an empty name. The next one is for a dialog that
// refuses the one before it (FNERR_INVALIDFILENAME).
std::array<std::wstring, 3> FileDialogNames(const std::wstring& path);
