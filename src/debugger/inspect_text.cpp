// Memory as text. Must not know a process.
#include "debugger/inspect_text.h"

#include "base/hex_text.h"

#include <algorithm>

namespace {

constexpr std::size_t kBytesInRow = 16, kMostBytes = 4096, kInstructionBytes = 8;
constexpr std::uint8_t kFirstPrintable = 32, kLastPrintable = 126;

std::wstring HexDumpRow(std::uint64_t address, std::span<const std::uint8_t> bytes) {
    std::wstring row = HexText(address, 8) + L"  ";
    std::wstring characters;
    for (std::size_t i = 0; i < kBytesInRow; ++i) {
        if (i >= bytes.size()) {
            row += L"   ";
            characters += L' ';
            continue;
        }
        row += HexText(bytes[i], 2) + L' ';
        const bool printable = bytes[i] >= kFirstPrintable && bytes[i] <= kLastPrintable;
        characters += printable ? static_cast<wchar_t>(bytes[i]) : L'.';
    }
    return row + L" |" + characters + L"|\r\n";
}

}  // namespace

std::wstring HexDumpText(std::uint64_t address, std::span<const std::uint8_t> bytes) {
    std::wstring text;
    if (bytes.size() > kMostBytes) return text;
    for (std::size_t at = 0; at < bytes.size(); at += kBytesInRow)
        text += HexDumpRow(address + at, bytes.subspan(at, std::min(kBytesInRow, bytes.size() - at)));
    return text;
}

std::wstring InstructionBytesText(std::span<const std::uint8_t> bytes) {
    std::wstring text = L"bytes";
    for (const std::uint8_t byte : bytes.first(std::min(kInstructionBytes, bytes.size())))
        text += L' ' + HexText(byte, 2);
    return text;
}
