// Registers out of the area that the FXSAVE instruction writes. Pure.
#pragma once

#include "debugger/registers.h"

#include <cstddef>
#include <cstdint>
#include <span>

// Reads the first `count` XMM registers, 16 at most. Those that the area is too short for stay as they are.
void ReadSavedXmm(std::span<const std::uint8_t> area, std::size_t count, RegisterSet* out);
