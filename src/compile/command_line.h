// Assembles the compiler's command line in buffers of fixed size. A part that does not fit is refused, never cut. Pure.
#pragma once

#include "settings/compiler_table.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

inline constexpr std::size_t kFlagsCapacity = 1024;  // these capacities count wide characters with the terminator
inline constexpr std::size_t kListingArgCapacity = 1152;
inline constexpr std::size_t kArgumentsCapacity = 4096;
inline constexpr std::size_t kCommandLineCapacity = 32768;

// AppendArgSafe, AppendSwitchPathSafe and AppendAsmOutputArgSafe return 1, or 0 when the result would not fit; `buffer`
// is then unchanged. Arguments are separated by one blank. An empty argument adds nothing.
int AppendArgSafe(wchar_t* buffer, std::size_t capacity, std::wstring_view text);
int AppendSwitchPathSafe(wchar_t* buffer, std::size_t capacity, std::wstring_view switchText, std::wstring_view path);
// Adds a listing argument. For KVXA32 a blank separates "/ASMOUT:" from its path, because that compiler requires it.
int AppendAsmOutputArgSafe(wchar_t* buffer, std::size_t capacity, std::uint32_t id, std::wstring_view argument);

// Puts the path in double quotes in place of "{asm}" in the template. Without "{asm}" the path is added at the end,
// after a blank unless the template ends in ':' or '='. `out` is empty when the template or the path is empty. Returns
// 0 when the result does not fit, else 1.
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
    std::span<const std::wstring> includeFolders;  // of the project; they come first
    std::wstring_view includePath;                 // of the settings; empty: none
    std::wstring_view listingTemplate;
    std::wstring_view listing;  // empty: no listing wanted
    std::wstring_view source;   // the staged copy or the source itself
    std::wstring_view output;
};

enum class CommandProblem : std::uint8_t { None, FlagsTooLong, IncludeTooLong, ListingTooLong, CommandTooLong };

CommandProblem AssembleCommandLine(const CommandParts& parts, std::wstring* commandLine);
// Returns the line for the output pane.
const wchar_t* CommandProblemText(CommandProblem problem);
