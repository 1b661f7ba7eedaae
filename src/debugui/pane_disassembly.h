// Which instructions the disassembly view shows around an address. Pure.
#pragma once

#include "disasm/disasm.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

inline constexpr std::size_t kInstructionsBefore = 60;
inline constexpr std::size_t kInstructionsShown = 200;
inline constexpr std::size_t kLongestInstruction = 15;  // bytes

// Instructions of `bytes`, which stand at `address`, with one that begins at `target`: code cannot be read backwards, so the
// starts of lines (`lineStarts`, ascending) are tried first, and other places after them, until one leads to the target.
std::vector<DisasmInstruction> DisasmAround(std::span<const std::uint8_t> bytes, std::uint64_t address,
                                            std::uint64_t target, bool x64, std::span<const std::uint64_t> lineStarts);
// "48 89 E5", at most six bytes, then "..".
std::wstring CodeBytesText(std::span<const std::uint8_t> bytes);
