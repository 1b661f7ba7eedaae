// Protected bytes as the text that the settings file holds. Pure.
#include "settings/secret_text.h"

#include "base/hex_digit.h"
#include "base/hex_text.h"

namespace {

constexpr std::wstring_view kSecretPrefix = L"[DPAPI]";

}  // namespace

std::wstring SecretText(std::span<const std::uint8_t> sealed) {
    std::wstring text{kSecretPrefix};
    for (const std::uint8_t byte : sealed) text += HexText(byte, 2);
    return text;
}

bool IsSecretText(std::wstring_view stored) { return stored.starts_with(kSecretPrefix); }

std::wstring SecretPieceKey(std::wstring_view key, int piece) {
    return std::wstring{key} + (piece > 1 ? std::to_wstring(piece) : std::wstring{});
}

std::vector<std::uint8_t> SecretBytes(std::wstring_view stored) {
    std::vector<std::uint8_t> bytes;
    if (!stored.starts_with(kSecretPrefix)) return bytes;
    const std::wstring_view digits = stored.substr(kSecretPrefix.size());
    if (digits.size() % 2 != 0) return bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const int high = HexValue(digits[i]);
        const int low = HexValue(digits[i + 1]);
        if (high < 0 || low < 0) return {};
        bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
    }
    return bytes;
}
