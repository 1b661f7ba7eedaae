// The compiler's command line: bounded assembly of its arguments, which refuses rather than cuts. Pure.
#pragma once

#include "settings/compiler_table.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

inline constexpr std::size_t kFlagsCapacity = 1024;  // wide characters, terminator included, as below
inline constexpr std::size_t kListingArgCapacity = 1152;
inline constexpr std::size_t kArgumentsCapacity = 4096;
inline constexpr std::size_t kCommandLineCapacity = 32768;

// The first three return 0, leaving `buffer` as it was, when the result would not fit, else 1. Arguments are separated
// by one blank; an empty one adds nothing.
int AppendArgSafe(wchar_t* buffer, std::size_t capacity, std::wstring_view text);
int AppendSwitchPathSafe(wchar_t* buffer, std::size_t capacity, std::wstring_view switchText, std::wstring_view path);
// A listing argument; for KVXA32 "/ASMOUT:" and its path are parted by the blank that this compiler wants.
int AppendAsmOutputArgSafe(wchar_t* buffer, std::size_t capacity, std::uint32_t id, std::wstring_view argument);

// The path in double quotes in place of "{asm}"; without that token right after a final ':' or '=', else after a blank. Empty
// for an empty template or path. 0 when it does not fit.
int FormatTemplateArg(std::wstring_view pattern, std::wstring_view path, wchar_t* out, std::size_t capacity);

// Adds a flag to a buffer of kFlagsCapacity unless it is empty, already occurs there, or does not fit.
void AppendBuildFlag(wchar_t* flags, std::wstring_view flag);

// The flags that a profile (0 Debug, 1 Release, 2 Fast) adds to a normal build; empty for any other number.
std::wstring_view ProfileFlags(int profile, std::wstring_view debugFlags);

struct CommandParts {
    CommandStyle style = CommandStyle::Kvx;
    std::uint32_t compilerId = 0;
    std::wstring_view compiler;
    std::wstring_view flags;
    std::wstring_view includeSwitch;
    std::wstring_view includePath;  // empty: none
    std::wstring_view listingTemplate;
    std::wstring_view listing;  // empty: no listing wanted
    std::wstring_view source;   // as staged
    std::wstring_view output;
};

enum class CommandProblem : std::uint8_t { None, FlagsTooLong, IncludeTooLong, ListingTooLong, CommandTooLong };

CommandProblem AssembleCommandLine(const CommandParts& parts, std::wstring* commandLine);
// The line for the output pane.
const wchar_t* CommandProblemText(CommandProblem problem);
