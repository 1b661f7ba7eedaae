// The files that a second start hands to the copy that runs already. Pure.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The files of a command line that a running copy can open instead, as absolute as `folder`, the current one with its
// backslash, makes them; possibly none. Nothing when this start needs a window of its own: "--new", and whatever is more
// than files.
std::optional<std::vector<std::wstring>> FilesToHandOver(std::span<const std::wstring> arguments,
                                                         const std::wstring& folder);
std::wstring HandoverText(std::span<const std::wstring> files);
std::vector<std::wstring> FilesOfHandover(std::wstring_view text);
