// The five compilers that the stand-in imitates: each is one row of a table, whose fields are all the differences.
// Knows nothing of the language or of machine code.
#pragma once

#include <array>
#include <string_view>

namespace standin {

enum class DiagnosticShape { Colon, Parens };  // file:line:column: ...   or   file(line,column): ...
enum class DebugMap { SdbgV1, SdbgV2, PbdTraps };
enum class CommandStyle { Kvx, Keldor };

struct Profile {
    std::string_view name;
    bool x64;  // PE32+ when true, PE32 otherwise
    CommandStyle style;
    DiagnosticShape shape;
    bool explains;  // adds "error[...]", "help:" and "fix:" lines below each error
    DebugMap debugMap;
    std::string_view syntaxSwitch;   // empty: checks only when /L is absent
    std::string_view includeSwitch;  // the directory follows directly, or as the next argument
    std::string_view debugSwitch;
    std::string_view listingSwitch;  // empty: no listing; the file follows the colon, or is the next argument
};

inline constexpr std::array<Profile, 5> kProfiles = {{
    {"KVXA64", true, CommandStyle::Kvx, DiagnosticShape::Colon, false, DebugMap::SdbgV2, "-S", "-I", "--debug", ""},
    {"KVXB64", true, CommandStyle::Kvx, DiagnosticShape::Parens, false, DebugMap::SdbgV2, "--syntax-only", "-I",
     "--debug", "--asm:"},
    {"KVXC64", true, CommandStyle::Kvx, DiagnosticShape::Colon, true, DebugMap::SdbgV2, "--syntax-only", "-I",
     "--debug", "--asm:"},
    {"KVXA32", false, CommandStyle::Kvx, DiagnosticShape::Parens, false, DebugMap::SdbgV1, "-S", "-I", "--debug",
     "/ASMOUT:"},
    {"KeldorBASIC", false, CommandStyle::Keldor, DiagnosticShape::Parens, false, DebugMap::PbdTraps, "", "/I", "/D",
     "/ASMOUT:"},
}};

// Returns the index of the row of that name, or kProfiles.size().
constexpr size_t FindProfile(std::string_view name) {
    size_t i = 0;
    while (i < kProfiles.size() && kProfiles[i].name != name) ++i;
    return i;
}

}  // namespace standin
