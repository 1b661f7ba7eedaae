// Formats one line of code for executables and listings: address, bytes, mnemonic and operands in columns. Pure.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// The number of hexadecimal digits for a program's addresses: 8 for x86, 12 for x64, 16 where 12 do not suffice.
int AddressDigits(bool x64, std::uint64_t highest);
void AppendHex(std::string& out, std::uint64_t value, int digits);  // in upper case, with leading zeros
// Appends "  000140001020  48 8B 45 F0                     "; the instruction follows.
void AppendAddressAndBytes(std::string& out, std::uint64_t address, int digits, std::span<const std::uint8_t> bytes);
void AppendAddress(std::string& out, std::uint64_t address, int digits);  // "  000140001020  "
// Appends "mov     rax, [rbp-0x10]": the operands begin in column 8, or one blank after a longer mnemonic. A prefix
// such as "rep" or "lock" is part of the mnemonic.
void AppendAligned(std::string& out, std::string_view instruction);
// The length of a prefix at the start ("rep ", "lock "), its blank included; 0 when there is none.
std::size_t PrefixLength(std::string_view instruction);

inline constexpr std::size_t kBytesColumn = 32;    // characters for the bytes
inline constexpr std::size_t kMnemonicColumn = 8;  // characters for the mnemonic
