// What the program knows of the five compilers: names, switches, and which one a file belongs to. The tables are
// pure data; the accessors combine them with the settings. UI thread, except CompilerProfile data (constant).
#pragma once

#include "settings/compiler_id.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

enum class CommandStyle : std::uint8_t { Kvx, Keldor };  // "-o OUTPUT SOURCE", or SOURCE first

struct CompilerProfile {
    std::uint32_t id;
    const wchar_t* name;
    const wchar_t* syntaxFlags;  // syntax check, when the settings give none
    const wchar_t* includeSwitch;
    const wchar_t* asmFlag;  // listing template; "{asm}" is the path. Empty: no listing
    CommandStyle commandStyle;
    const wchar_t* debugFlags;  // fixed, not a setting
};
// The first profile for an id that is none.
const CompilerProfile& Profile(std::uint32_t id);

struct CompilerMenuEntry {
    std::uint32_t id;
    const wchar_t* name;
    int command;  // menu command that selects it
};
const CompilerMenuEntry& CompilerEntry(std::uint32_t id);
const CompilerMenuEntry* CompilerEntryByCommand(int command);  // null: not a selecting command

// Which compiler a BASIC source goes to that does not say: the first of these that is installed.
inline constexpr std::uint32_t g_defaultOrder[kCompilerCount] = {3, 2, 0, 1, 4};

// Where the start-up search looks: a folder relative to the executable's, and a file name. In the order of the search.
struct CompilerCandidate {
    const wchar_t* directory;
    const wchar_t* file;
};
std::span<const CompilerCandidate> CompilerCandidates(std::uint32_t id);

// --- The rules behind the accessors, on given inputs.
using CompilerProbe = std::function<bool(std::uint32_t id)>;  // is this compiler installed?
std::uint32_t PickCompilerForFile(std::wstring_view path, std::uint32_t activeCompiler, const CompilerProbe& exists);
std::uint32_t CompilerNext(std::uint32_t id);
// The executable of a source: its last extension replaced by ".exe", or ".exe" appended.
void CompilerMakeOutputPath(const wchar_t* source, wchar_t* out, std::size_t capacity);
// The listing of a source: everything from the last '.' of the whole path replaced by ".asm".
void CompilerMakeAsmPath(const wchar_t* source, wchar_t* out, std::size_t capacity);

// --- Accessors over the settings. An id outside 0..4 reads id 0's data. The views stay valid until the settings change.
// Writes what each compiler's settings come to into the log; there is nothing else to prepare.
void CompilerBridgeInit();
const wchar_t* CompilerName(std::uint32_t id);
const wchar_t* CompilerPath(std::uint32_t id);
void CompilerPathResolved(std::uint32_t id, wchar_t* out, std::size_t capacity);
const wchar_t* CompilerFlags(std::uint32_t id);
const wchar_t* CompilerIncludePath(std::uint32_t id);
const wchar_t* CompilerSyntaxFlags(std::uint32_t id);
const wchar_t* CompilerDebugFlags(std::uint32_t id);
bool CompilerExists(std::uint32_t id);
bool IsCompilerPathValid(const wchar_t* path);
std::uint32_t CompilerDefaultForFile(const wchar_t* path);

// The start-up search beside the executable; fills only paths that are not valid. Saves nothing.
void SettingsAutoDetectCompilers();
