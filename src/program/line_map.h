// Loads line maps from files: from the executable's ".sdbg" section or from a ".pbd" file beside it. UI thread only,
// except the pure part at the end. A failure leaves the map empty and is reported in the output pane, never in a
// message box.
#pragma once

#include "program/sdbg_map.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

bool SdbgLoad(const wchar_t* executable, SdbgMap* map);
// Loads the ".pbd" beside the executable. The source is `DebugSourcePath()`; when that is empty, it is the executable's
// name with ".bas".
bool PbdLoad(const wchar_t* executable, SdbgMap* map);
// Gives records of ELSE and END IF lines the line of the PBMAIN statement before them. Reads the source once. Records of
// files that the map names and that are not the source keep their lines.
void NormalizeSdbgControlLines(SdbgMap* map, const wchar_t* source);
// Loads the map with the loader for this compiler and normalises it. Returns false after it has reported why in the
// output pane.
bool DebugLoadMap(const wchar_t* executable, std::uint32_t compilerId, SdbgMap* map);

// Returns the file's bytes in a block that the caller frees with free(); null for a file that is empty or cannot be
// read.
std::uint8_t* ReadWholeFileW(const wchar_t* path, std::size_t* size);
int CollectPbmainSourceLines(const wchar_t* source, std::uint32_t* out, int capacity);
bool IsBasicControlOnlySourceLine(const wchar_t* source, int line);
std::uint32_t PreviousPbmainExecutableLine(const wchar_t* source, int line);

// The source of the debugged program; empty while unknown. Set before the debugger starts.
const wchar_t* DebugSourcePath();
void DebugSetSourcePath(const wchar_t* path);

// --- The rules (line_map.cpp). Pure; any bytes are legal input.
// Fills the map from the ".sdbg" section of a program, without an index (SdbgIndex). Returns false, and the map is
// empty, when there is no valid section.
bool SdbgMapOfProgram(std::span<const std::uint8_t> program, SdbgMap* map);
// The path of the ".pbd" file. An executable's path beyond 1024 characters is cut.
std::wstring PbdSidePath(std::wstring_view executable);
// The executable's path with everything from its last '.' replaced by ".bas".
std::wstring SourceBesideProgram(std::wstring_view executable);

struct ControlLineChange {
    std::uint32_t rva = 0;
    std::uint32_t from = 0;  // lines
    std::uint32_t to = 0;
};
// Does the work of NormalizeSdbgControlLines on the source's bytes and returns the changes. `isSource` tells for a file
// id of the map whether that file is the source. The index must be made again afterwards.
std::vector<ControlLineChange> MoveControlLines(SdbgMap* map, std::string_view source,
                                                const std::function<bool(std::uint32_t fileId)>& isSource);
