// How one line of code looks, in executables and listings alike: address, bytes, mnemonic, operands in columns. Pure.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// Digits of addresses in a program: 8, 12, or 16 where 12 do not suffice.
int AddressDigits(bool x64, std::uint64_t highest);
void AppendHex(std::string& out, std::uint64_t value, int digits);  // upper case, with leading zeros
// "  000140001020  48 8B 45 F0                     ", ready for the instruction.
void AppendAddressAndBytes(std::string& out, std::uint64_t address, int digits, std::span<const std::uint8_t> bytes);
// "mov     rax, [rbp-0x10]": operands begin in column 8 or one blank after what stands there (with "rep", "lock").
void AppendAligned(std::string& out, std::string_view instruction);
// The bytes of a prefix that takes the place of the mnemonic ("rep ", "lock "), with its blank; 0: none.
std::size_t PrefixLength(std::string_view instruction);

inline constexpr std::size_t kBytesColumn = 32;    // width of the bytes
inline constexpr std::size_t kMnemonicColumn = 8;  // width of the mnemonic
