#include "disasm/code_text.h"

#include <algorithm>
#include <array>

namespace {

constexpr char kDigits[] = "0123456789ABCDEF";

}  // namespace

int AddressDigits(bool x64, std::uint64_t highest) {
    if (highest >> 48 != 0) return 16;
    return x64 || highest >> 32 != 0 ? 12 : 8;
}

void AppendHex(std::string& out, std::uint64_t value, int digits) {
    for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4) out += kDigits[value >> shift & 15];
}

void AppendAddress(std::string& out, std::uint64_t address, int digits) {
    out += "  ";
    AppendHex(out, address, digits);
    out += "  ";
}

void AppendAddressAndBytes(std::string& out, std::uint64_t address, int digits, std::span<const std::uint8_t> bytes) {
    AppendAddress(out, address, digits);
    for (const std::uint8_t byte : bytes) {
        AppendHex(out, byte, 2);
        out += ' ';
    }
    if (bytes.size() * 3 < kBytesColumn) out.append(kBytesColumn - bytes.size() * 3, ' ');
}

std::size_t PrefixLength(std::string_view instruction) {
    constexpr std::array<std::string_view, 10> prefixes = {"rep ",  "repe ", "repne ",    "repz ",     "repnz ",
                                                           "lock ", "bnd ",  "xacquire ", "xrelease ", "notrack "};
    std::size_t length = 0;
    for (bool found = true; found;) {
        found = false;
        for (const std::string_view prefix : prefixes) {
            if (!instruction.substr(length).starts_with(prefix)) continue;
            length += prefix.size();
            found = true;
        }
    }
    return length;
}

void AppendAligned(std::string& out, std::string_view instruction) {
    const std::size_t blank = instruction.find(' ', PrefixLength(instruction));
    if (blank == std::string_view::npos) {
        out += instruction;
        return;
    }
    out += instruction.substr(0, blank);
    out.append(blank < kMnemonicColumn ? kMnemonicColumn - blank : 1, ' ');
    out += instruction.substr(std::min(instruction.find_first_not_of(' ', blank), instruction.size()));
}
