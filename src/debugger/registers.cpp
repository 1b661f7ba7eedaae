// Registers by their names, and as text. Must not know a thread.
#include "debugger/registers.h"

#include "base/hex_text.h"
#include "base/scan_text.h"
#include "base/texts.h"

#include <iterator>

namespace {

constexpr const wchar_t* kNames64[] = {L"RAX", L"RBX", L"RCX", L"RDX", L"RSI", L"RDI", L"RBP", L"RSP",
                                       L"R8",  L"R9",  L"R10", L"R11", L"R12", L"R13", L"R14", L"R15"};
constexpr const wchar_t* kNames32[] = {L"EAX", L"EBX", L"ECX", L"EDX", L"ESI", L"EDI", L"EBP", L"ESP"};
constexpr const wchar_t* kXmmNames[] = {L"XMM0", L"XMM1", L"XMM2",  L"XMM3",  L"XMM4",  L"XMM5",  L"XMM6",  L"XMM7",
                                        L"XMM8", L"XMM9", L"XMM10", L"XMM11", L"XMM12", L"XMM13", L"XMM14", L"XMM15"};
constexpr const wchar_t* kSegmentNames[] = {L"CS", L"DS", L"ES", L"FS", L"GS", L"SS"};

bool SameName(std::string_view text, const wchar_t* name) {
    for (const char c : text) {
        if (*name == L'\0' || static_cast<wchar_t>(UpperAscii(c)) != *name) return false;
        ++name;
    }
    return *name == L'\0';
}

// Names of parts: the low 32, 16 and 8 bits, and bits 8 to 15, of the first registers.
struct PartRow {
    const wchar_t* name;
    int index;
    int shift;
    std::uint64_t mask;
};
constexpr std::uint64_t kLow32 = 0xFFFFFFFF, kLow16 = 0xFFFF, kLow8 = 0xFF;
constexpr PartRow kParts[] = {
    {L"EAX", 0, 0, kLow32}, {L"EBX", 1, 0, kLow32}, {L"ECX", 2, 0, kLow32}, {L"EDX", 3, 0, kLow32},
    {L"ESI", 4, 0, kLow32}, {L"EDI", 5, 0, kLow32}, {L"EBP", 6, 0, kLow32}, {L"ESP", 7, 0, kLow32},
    {L"AX", 0, 0, kLow16},  {L"BX", 1, 0, kLow16},  {L"CX", 2, 0, kLow16},  {L"DX", 3, 0, kLow16},
    {L"SI", 4, 0, kLow16},  {L"DI", 5, 0, kLow16},  {L"BP", 6, 0, kLow16},  {L"SP", 7, 0, kLow16},
    {L"AL", 0, 0, kLow8},   {L"BL", 1, 0, kLow8},   {L"CL", 2, 0, kLow8},   {L"DL", 3, 0, kLow8},
    {L"AH", 0, 8, kLow8},   {L"BH", 1, 8, kLow8},   {L"CH", 2, 8, kLow8},   {L"DH", 3, 8, kLow8},
};
constexpr PartRow kParts64[] = {
    {L"SIL", 4, 0, kLow8}, {L"DIL", 5, 0, kLow8}, {L"BPL", 6, 0, kLow8}, {L"SPL", 7, 0, kLow8}};

template <std::size_t N>
std::optional<std::uint64_t> PartByName(const RegisterSet& registers, std::string_view name, const PartRow (&rows)[N]) {
    for (const PartRow& row : rows)
        if (SameName(name, row.name))
            return registers.general[static_cast<std::size_t>(row.index)] >> row.shift & row.mask;
    return std::nullopt;
}

// R8D, R8W, R8B and so on.
std::optional<std::uint64_t> NumberedPart(const RegisterSet& registers, std::string_view name) {
    if (name.size() < 3) return std::nullopt;
    const char suffix = UpperAscii(name.back());
    const auto whole = FullRegisterByName(registers, name.substr(0, name.size() - 1));
    if (!whole || !IsDigit(name[1])) return std::nullopt;
    if (suffix == 'D') return *whole & kLow32;
    if (suffix == 'W') return *whole & kLow16;
    return suffix == 'B' ? std::optional(*whole & kLow8) : std::nullopt;
}

}  // namespace

std::vector<RegisterRow> RegisterRows(const RegisterSet& registers) {
    std::vector<RegisterRow> rows;
    const int wordDigits = registers.x64 ? 16 : 8;
    const std::size_t generals = registers.x64 ? std::size(kNames64) : std::size(kNames32);
    for (std::size_t i = 0; i < generals; ++i)
        rows.push_back({registers.x64 ? kNames64[i] : kNames32[i], HexText(registers.general[i], wordDigits)});
    rows.push_back({registers.x64 ? L"RIP" : L"EIP", HexText(registers.ip, wordDigits)});
    rows.push_back({L"EFL", HexText(registers.flags, 8)});
    for (std::size_t i = 0; i < std::size(kSegmentNames); ++i)
        rows.push_back({kSegmentNames[i], HexText(registers.segments[i], 4)});
    for (std::size_t i = 0; i < (registers.x64 ? std::size(kXmmNames) : 8); ++i)
        rows.push_back({kXmmNames[i], HexText(registers.xmmHigh[i], 16) + HexText(registers.xmmLow[i], 16)});
    return rows;
}

std::optional<std::uint64_t> FullRegisterByName(const RegisterSet& registers, std::string_view name) {
    for (std::size_t i = 0; i < std::size(kNames64); ++i)
        if (SameName(name, kNames64[i])) return registers.general[i];
    return SameName(name, L"RIP") ? std::optional(registers.ip) : std::nullopt;
}

std::optional<std::uint64_t> RegisterByName(const RegisterSet& registers, std::string_view name) {
    if (const auto part = PartByName(registers, name, kParts)) return part;
    if (!registers.x64) return SameName(name, L"EIP") ? std::optional(registers.ip) : std::nullopt;
    if (const auto whole = FullRegisterByName(registers, name)) return whole;
    if (const auto part = PartByName(registers, name, kParts64)) return part;
    return NumberedPart(registers, name);
}

std::wstring FormatRegisters(const RegisterSet& registers) {
    if (!registers.x64) return Text(L"x86 registers not available on x64 host");
    std::wstring text;
    for (std::size_t i = 0; i < std::size(kNames64); ++i) {
        const std::wstring name = kNames64[i];
        text += name + (name.size() < 3 ? L" =" : L"=") + HexText(registers.general[i], 16);
        text += i % 4 == 3 ? L"\r\n" : L"  ";
    }
    return text + L"RIP=" + HexText(registers.ip, 16) + L"  EFL=" + HexText(registers.flags, 8);
}
