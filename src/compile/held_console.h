// A console that stays open when its program has ended, until a key is pressed. The editor starts a copy of itself for
// it, which shows no window but the console: no command interpreter is involved, so that every path and argument reaches
// the program as it is.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// --- What the copy is started with. Pure.
struct HeldProgram {
    std::wstring commandLine;  // of the program
    std::wstring farewell;     // shown at its end; {1} stands for its exit code
};
// The words behind the name of the editor. `farewell` has no quotation mark.
std::wstring HeldArguments(const HeldProgram& program);
// Reads a whole command line; nothing: it is that of a usual start.
std::optional<HeldProgram> HeldProgramOf(std::wstring_view commandLine);
std::wstring FarewellText(std::wstring_view farewell, std::uint32_t exitCode);

// The exit code of a program that the editor has ended to build it anew: nobody waits for its console.
inline constexpr std::uint32_t kEndedForBuild = 0xE0004B59;

// --- In the copy
// Runs the program in a new console and waits for a key. Returns its exit code.
int HoldConsole(const HeldProgram& program);
