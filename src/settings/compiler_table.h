// What follows from the table of compilers (compilers.h): which one a file belongs to, where it is found, where its results
// go; and, by the accessors, what the settings make of it. UI thread, except the rules on given inputs.
#pragma once

#include "settings/compilers.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

// The row of a compiler; the first row for an id that is none.
const CompilerProfile& Profile(std::uint32_t id);
// The same row, for its name and its menu command.
inline const CompilerProfile& CompilerEntry(std::uint32_t id) { return Profile(id); }
const CompilerProfile* CompilerOfCommand(int command);  // null: not a command that selects one
// "KVXC64", or "KVXC64 (not found)".
std::wstring CompilerLabel(std::uint32_t id, bool installed);

// --- Rules on given inputs.
using CompilerProbe = std::function<bool(std::uint32_t id)>;  // is this compiler installed?
std::uint32_t PickCompilerForFile(std::wstring_view path, std::uint32_t activeCompiler, const CompilerProbe& exists);
std::uint32_t CompilerNext(std::uint32_t id);
// The first of a compiler's candidates that is there, beside the executable's folder. Empty: none, or an unknown id.
std::wstring FindCompiler(std::uint32_t id, const wchar_t* exeDirectory,
                          const std::function<bool(const wchar_t* path)>& fileExists);
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

// The start-up search beside the executable; fills only paths that are not valid. Saves nothing and tells nobody.
void SettingsAutoDetectCompilers();
