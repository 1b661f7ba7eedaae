// The texts of inspection from bytes already read. Pure.
#pragma once

#include <cstdint>
#include <span>
#include <string>

// Rows of 16: address, hexadecimal, characters; each ends with "\r\n". Counts outside 1..4096 give no text.
std::wstring HexDumpText(std::uint64_t address, std::span<const std::uint8_t> bytes);
// "bytes 55 48 ..." of the first 8.
std::wstring InstructionBytesText(std::span<const std::uint8_t> bytes);
