// Rules on the table of compilers (compilers.h): which compiler a file belongs to, where a compiler is found, where its
// results go. The accessors combine the table with the settings. UI thread, except for the rules on given inputs.
#pragma once

#include "settings/compilers.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

// The row of a compiler; the first row for an unknown id.
const CompilerProfile& Profile(std::uint32_t id);
// The same as Profile().
inline const CompilerProfile& CompilerEntry(std::uint32_t id) { return Profile(id); }
const CompilerProfile* CompilerOfCommand(int command);  // null: the command does not select a compiler
// "KVXC64", or "KVXC64 (not found)".
std::wstring CompilerLabel(std::uint32_t id, bool installed);

// --- Rules on given inputs.
using CompilerProbe = std::function<bool(std::uint32_t id)>;  // whether the compiler is installed
// The compiler of a file, by the markers in its path and then by its extension. Without an extension: kDefaultCompiler.
std::uint32_t PickCompilerForFile(std::wstring_view path, std::uint32_t activeCompiler, const CompilerProbe& exists);
// The next id, with the first one after the last; 0 for an unknown id.
std::uint32_t CompilerNext(std::uint32_t id);
// The next one that is installed; when none is, CompilerNext.
std::uint32_t CompilerNextInstalled(std::uint32_t id, const CompilerProbe& exists);
// The path of the first of a compiler's candidates that exists, relative to the executable's folder. Empty when none
// exists, and for an unknown id.
std::wstring FindCompiler(std::uint32_t id, const wchar_t* exeDirectory,
                          const std::function<bool(const wchar_t* path)>& fileExists);
// The executable of a source: the last extension of its name is replaced by ".exe", or ".exe" is appended.
void CompilerMakeOutputPath(const wchar_t* source, wchar_t* out, std::size_t capacity);
// The listing of a source: everything from the last '.' of the whole path is replaced by ".asm". Without a '.' it is
// the path itself.
void CompilerMakeAsmPath(const wchar_t* source, wchar_t* out, std::size_t capacity);

// --- Accessors on the settings. For an unknown id they return the data of id 0. The texts stay valid until the
// settings change.
// Writes the name, the path and the presence of each compiler to the log.
void CompilerBridgeInit();
const wchar_t* CompilerName(std::uint32_t id);
const wchar_t* CompilerPath(std::uint32_t id);
// The absolute path: a relative one is resolved against the folder of Editor.ini. Empty when none is set. `capacity`
// counts wide characters, the terminator included.
void CompilerPathResolved(std::uint32_t id, wchar_t* out, std::size_t capacity);
const wchar_t* CompilerFlags(std::uint32_t id);
const wchar_t* CompilerIncludePath(std::uint32_t id);
const wchar_t* CompilerSyntaxFlags(std::uint32_t id);
const wchar_t* CompilerDebugFlags(std::uint32_t id);
// Whether the resolved path is that of an existing file. Asks the disk, which may take long: what is painted asks
// CompilerSeemsInstalled() (settings/compiler_presence.h).
bool CompilerExists(std::uint32_t id);
// Whether the path is that of an existing file. False for null and for an empty text.
bool IsCompilerPathValid(const wchar_t* path);
// PickCompilerForFile with the settings and the compilers that are installed. `path` may be null.
std::uint32_t CompilerDefaultForFile(const wchar_t* path);

// Searches beside the executable for each compiler whose path is not valid, and puts what it finds into the settings.
// Neither saves them nor raises settingsChanged.
void SettingsAutoDetectCompilers();
