// A thread's registers as values, for 64-bit and 32-bit programs. Pure.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Which registers of a frame can be used.
enum class FrameState : std::uint8_t {
    Whole,
    Coming,    // of the innermost procedure, whose own frame does not stand yet: the frame pointer is the caller's
    OfCaller,  // only instruction, frame and stack pointer are known, the last two when they are not 0
};

struct RegisterSet {
    bool x64 = true;
    // RAX RBX RCX RDX RSI RDI RBP RSP R8..R15; for a 32-bit program the first eight are EAX..ESP, the rest 0.
    std::array<std::uint64_t, 16> general{};
    std::uint64_t ip = 0;
    std::uint32_t flags = 0;
    std::array<std::uint64_t, 16> xmmLow{}, xmmHigh{};  // 8 of them in a 32-bit program
    std::array<std::uint16_t, 6> segments{};            // CS DS ES FS GS SS
    FrameState frame = FrameState::Whole;
    bool operator==(const RegisterSet&) const = default;
};

inline constexpr int kBp = 6, kSp = 7;  // indexes into `general`

// The names that a program of this kind knows them by.
inline const wchar_t* FramePointerName(bool x64) { return x64 ? L"RBP" : L"EBP"; }
inline const wchar_t* StackPointerName(bool x64) { return x64 ? L"RSP" : L"ESP"; }

struct RegisterRow {
    const wchar_t* name;  // "RAX", "EAX", "RIP", "EFL", "XMM0"
    std::wstring value;   // hexadecimal, the register's full width
};
// Every register of the program's kind, in the order of display.
std::vector<RegisterRow> RegisterRows(const RegisterSet& registers);
// Value of a general register, the instruction pointer, or a part of a register (AL, AX, EAX, R8D, R8W, R8B ...) by its
// name in any letter case. Nothing when the program's kind has no such register.
std::optional<std::uint64_t> RegisterByName(const RegisterSet& registers, std::string_view name);

// Value of a 64-bit general register or RIP by its whole name, in any letter case.
std::optional<std::uint64_t> FullRegisterByName(const RegisterSet& registers, std::string_view name);

// "RAX=... " in five lines; for a 32-bit program, a text that says that registers are not available.
std::wstring FormatRegisters(const RegisterSet& registers);
