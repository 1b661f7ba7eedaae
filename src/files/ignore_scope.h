// Reads the ignore files that hold in a folder. Any thread; on a share that is gone this may take long.
#pragma once

#include "files/ignore_rules.h"

#include <memory>
#include <string>

inline constexpr wchar_t kIgnoreFile[] = L".gitignore";
inline constexpr wchar_t kRepository[] = L".git";  // a folder that holds it is a repository of its own

// Folders have a backslash at their end.
// The rules of the repository's folders around the folder, from the repository's own folder inwards; null: none. Those of
// the folder itself are not among them.
std::shared_ptr<const IgnoreScope> IgnoreScopeAround(const std::wstring& folder);
// `outer` with the rules of the folder's own ignore file, which is there. `outer` itself when it cannot be read.
std::shared_ptr<const IgnoreScope> IgnoreScopeInside(std::shared_ptr<const IgnoreScope> outer,
                                                     const std::wstring& folder);
