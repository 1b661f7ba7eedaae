// What stands at an address of a stopped program, read as a value of a kind. Knows memory as functions that read it. Pure.
#pragma once

#include "debugger/stack_walk.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

// In the numbers of DebugWatchValue.
enum class WatchKind : std::uint8_t {
    Long,
    Quad,
    Text,  // UTF-8
    Double,
    Byte,  // without a sign, as Word and Dword
    Word,
    Dword,
    Integer,  // 16 bits
    Single,
    WideText,     // UTF-16
    Value,        // the address itself: what an expression comes to
    TextPointer,  // the address of a text in UTF-8, in the width of the program; 0 is the empty text
};
inline constexpr int kWatchKinds = 12;
const wchar_t* WatchKindName(WatchKind kind);  // "LONG", "STRING"
bool IsTextKind(WatchKind kind);

inline constexpr std::size_t kLongestWatchText = 127;  // bytes that are shown of a text
inline constexpr wchar_t kUnreadableWatch[] = L"<unreadable>";

// A number in 15 significant digits, as the C runtime of the program writes it.
using DoubleWriter = std::function<std::wstring(double)>;

// Whether a value as it is shown says that there is none, with or without the reason.
bool IsUnreadableWatch(std::wstring_view shown);
// Why a value of the kind is unreadable there: "the program has no memory at 0x10".
std::wstring WhyUnreadable(WatchKind kind, std::uint64_t address, const ProgramMemory& memory);

// For TextPointer: where its text is, 0 for the empty text; nothing: the memory cannot be read.
std::optional<std::uint64_t> AddressOfText(std::uint64_t address, const ProgramMemory& memory);

// "-5 (0xFFFFFFFB)", "\"text\"" up to its NUL byte, "1.5"; a text in pointed brackets says why there is no value. `kind`
// is the number of a WatchKind; any other number is an unknown kind.
std::wstring WatchValueText(int kind, std::uint64_t address, const ProgramMemory& memory, const DoubleWriter& write);
