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

// True when the text is in that form, whoever has protected it.
bool IsSecretText(std::wstring_view stored);

// A protected text that is longer than this continues in further keys: "OpenAIKey", "OpenAIKey2", "OpenAIKey3". Each of
// them but the last holds exactly this many characters.
inline constexpr std::size_t kSecretPiece = 511;
inline constexpr int kSecretPieces = 16;                        // no key of ours needs as many
std::wstring SecretPieceKey(std::wstring_view key, int piece);  // `piece` counts from 1
