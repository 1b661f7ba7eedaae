// What the program knows of the five compilers: names, switches, and which one a file belongs to. The tables are
// pure data; the accessors combine them with the settings. UI thread, except CompilerProfile data (constant).
#pragma once

#include "settings/compiler_id.h"

#include <cstddef>
#include <cstdint>

enum class CommandStyle : std::uint8_t { Kvx, Keldor };  // "-o OUTPUT SOURCE", or SOURCE first

struct CompilerProfile {
    std::uint32_t id;
    const wchar_t* name;
    const wchar_t* syntaxFlags;    // syntax check, when the settings give none
    const wchar_t* includeSwitch;
    const wchar_t* asmFlag;        // listing template; "{asm}" is the path. Empty: no listing
    CommandStyle commandStyle;
};
const CompilerProfile& Profile(std::uint32_t id);

struct CompilerMenuEntry {
    std::uint32_t id;
    const wchar_t* name;
    int command;                   // menu command that selects it
};
const CompilerMenuEntry& CompilerEntry(std::uint32_t id);
const CompilerMenuEntry* CompilerEntryByCommand(int command);  // null: not a selecting command

inline constexpr std::uint32_t g_defaultOrder[kCompilerCount] = {3, 2, 0, 1, 4};

// Accessors over the settings. An id outside 0..4 reads id 0's data. The views stay valid until the settings change.
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
std::uint32_t CompilerNext(std::uint32_t id);
std::uint32_t CompilerDefaultForFile(const wchar_t* path);
void CompilerMakeOutputPath(const wchar_t* source, wchar_t* out, std::size_t capacity);
void CompilerMakeAsmPath(const wchar_t* source, wchar_t* out, std::size_t capacity);

// The start-up search beside the executable; fills only paths that are not valid. Saves nothing.
void SettingsAutoDetectCompilers();
