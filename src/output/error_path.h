// The whole path of a file name that a compiler has printed. Asks the system.
#pragma once

#include <string>

// Absolute, without "." and "..", and with the long names of what was printed by short ones (8.3).
std::wstring ErrorPathWhole(const std::wstring& path);
