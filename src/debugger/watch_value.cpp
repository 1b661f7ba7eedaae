// Values of a stopped program as text. Must not know a process.
#include "debugger/watch_value.h"

#include "base/hex_text.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "files/text_encoding.h"

#include <algorithm>
#include <array>
#include <optional>

namespace {

template <typename Number>
std::optional<Number> NumberAt(std::uint64_t address, const ProgramMemory& memory) {
    Number value = {};
    return memory.read(address, &value, sizeof(value)) ? std::optional(value) : std::nullopt;
}

// "-5 (0xFFFFFFFB)", in the width of the number.
template <typename Signed, typename Unsigned>
std::wstring WholeNumberText(std::uint64_t address, const ProgramMemory& memory) {
    const auto value = NumberAt<Signed>(address, memory);
    if (!value) return kUnreadableWatch;
    const std::wstring digits = HexText(static_cast<Unsigned>(*value), 2 * static_cast<int>(sizeof(Signed)));
    return std::to_wstring(*value) + L" (0x" + digits + L")";
}

std::wstring QuotedText(std::uint64_t address, const ProgramMemory& memory) {
    std::array<char, kLongestWatchText> bytes = {};
    const std::size_t count = memory.readSome(address, bytes.data(), bytes.size());
    if (count == 0) return kUnreadableWatch;
    const auto* const end = std::find(bytes.begin(), bytes.begin() + count, '\0');
    const auto length = static_cast<std::size_t>(end - bytes.begin());
    if (!IsValidUtf8Bytes(bytes.data(), length)) return Text(L"\"<encoding error>\"");
    return L"\"" + Utf8ToWideText({bytes.data(), length}) + L"\"";
}

// Each unit becomes one character; those that are half of a pair stay as they are.
std::wstring QuotedWideText(std::uint64_t address, const ProgramMemory& memory) {
    std::array<std::uint16_t, kLongestWatchText> units = {};
    const std::size_t count = memory.readSome(address, units.data(), sizeof(units)) / sizeof(std::uint16_t);
    if (count == 0) return kUnreadableWatch;
    std::wstring text = L"\"";
    for (std::size_t i = 0; i < count && units[i] != 0; ++i) text += static_cast<wchar_t>(units[i]);
    return text + L"\"";
}

}  // namespace

const wchar_t* WatchKindName(WatchKind kind) {
    switch (kind) {
        case WatchKind::Long: return L"LONG";
        case WatchKind::Quad: return L"QUAD";
        case WatchKind::Text: return L"ASCIIZ";
        case WatchKind::Double: return L"DOUBLE";
        case WatchKind::Byte: return L"BYTE";
        case WatchKind::Word: return L"WORD";
        case WatchKind::Dword: return L"DWORD";
        case WatchKind::Integer: return L"INTEGER";
        case WatchKind::Single: return L"SINGLE";
        case WatchKind::WideText: return Text(L"Wide text");
        case WatchKind::Value: return Text(L"Value");
        case WatchKind::TextPointer: return L"STRING";
    }
    return L"";
}

bool IsTextKind(WatchKind kind) {
    return kind == WatchKind::Text || kind == WatchKind::WideText || kind == WatchKind::TextPointer;
}

bool IsUnreadableWatch(std::wstring_view shown) { return shown.starts_with(kUnreadableWatch); }

std::wstring WhyUnreadable(WatchKind kind, std::uint64_t address, const ProgramMemory& memory) {
    if (kind == WatchKind::TextPointer) address = AddressOfText(address, memory).value_or(address);
    if (address == 0) return Text(L"its address is 0, so it is not set yet");
    return TextWith(L"the program has no memory at {1}", {L"0x" + HexText(address, 1)});
}

std::optional<std::uint64_t> AddressOfText(std::uint64_t address, const ProgramMemory& memory) {
    std::uint64_t value = 0;
    return memory.read(address, &value, memory.wordBytes) ? std::optional(value) : std::nullopt;
}

std::wstring WatchValueText(int kind, std::uint64_t address, const ProgramMemory& memory, const DoubleWriter& write) {
    if (kind < 0 || kind >= kWatchKinds) return Text(L"<unknown kind>");
    switch (static_cast<WatchKind>(kind)) {
        case WatchKind::Long: return WholeNumberText<std::int32_t, std::uint32_t>(address, memory);
        case WatchKind::Quad: return WholeNumberText<std::int64_t, std::uint64_t>(address, memory);
        case WatchKind::Text: return QuotedText(address, memory);
        case WatchKind::Byte: return WholeNumberText<std::uint8_t, std::uint8_t>(address, memory);
        case WatchKind::Word: return WholeNumberText<std::uint16_t, std::uint16_t>(address, memory);
        case WatchKind::Dword: return WholeNumberText<std::uint32_t, std::uint32_t>(address, memory);
        case WatchKind::Integer: return WholeNumberText<std::int16_t, std::uint16_t>(address, memory);
        case WatchKind::Single: {
            const auto value = NumberAt<float>(address, memory);
            return value ? write(static_cast<double>(*value)) : kUnreadableWatch;
        }
        case WatchKind::WideText: return QuotedWideText(address, memory);
        case WatchKind::Value: return std::to_wstring(address) + L" (0x" + HexText(address, 1) + L")";
        case WatchKind::TextPointer: {
            const auto text = AddressOfText(address, memory);
            if (!text) return kUnreadableWatch;
            return *text == 0 ? L"\"\"" : QuotedText(*text, memory);
        }
        case WatchKind::Double: break;
    }
    const auto value = NumberAt<double>(address, memory);
    return value ? write(*value) : kUnreadableWatch;
}
