// Protected bytes as the text that the settings file holds. Pure.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// "[DPAPI]" and two upper-case hexadecimal digits for each byte.
std::wstring SecretText(std::span<const std::uint8_t> sealed);

// The bytes of such a text, with digits of either case. Empty for any other text.
std::vector<std::uint8_t> SecretBytes(std::wstring_view stored);
