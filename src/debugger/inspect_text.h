// Memory as text, from bytes that were read already. Pure.
#pragma once

#include <cstdint>
#include <span>
#include <string>

// Rows of 16 bytes: address, hexadecimal digits, characters; each ends with "\r\n". Empty for a count outside 1..4096.
std::wstring HexDumpText(std::uint64_t address, std::span<const std::uint8_t> bytes);
// "bytes 55 48 ..." of the first 8.
std::wstring InstructionBytesText(std::span<const std::uint8_t> bytes);
