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

// Instructions of `bytes`, which stand at `address`, with one that begins at `target`. Code cannot be decoded
// backwards, so starts before the target are tried until one leads to it: first those of lines (`lineStarts`,
// ascending), then others. Empty when the target is not within `bytes`.
std::vector<DisasmInstruction> DisasmAround(std::span<const std::uint8_t> bytes, std::uint64_t address,
                                            std::uint64_t target, bool x64, std::span<const std::uint64_t> lineStarts,
                                            const DisasmSymbols& symbols = {});
// "48 89 E5"; at most six bytes, and ".." when there are more.
std::wstring CodeBytesText(std::span<const std::uint8_t> bytes);
