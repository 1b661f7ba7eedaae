// The command lines that the settings of a compiler lead to. Pure.
#pragma once

#include "settings/settings.h"

#include <cstdint>
#include <string>

// Those of a build with a listing and of a syntax check, with an empty line between.
std::wstring CommandPreviewOf(std::uint32_t compiler, const Settings& settings);
