// Line maps from files: the executable's ".sdbg" section, or a ".pbd" beside it. UI thread, but for the pure part at the end.
// Failures leave the map empty and say so in the output pane, never in a box.
#pragma once

#include "program/sdbg_map.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

bool SdbgLoad(const wchar_t* executable, SdbgMap* map);
// The source is `DebugSourcePath()` when there is one, else the executable's name with ".bas".
bool PbdLoad(const wchar_t* executable, SdbgMap* map);
// Records of structural lines (ELSE, END IF) get the line of the PBMAIN statement before them; reads the source once.
void NormalizeSdbgControlLines(SdbgMap* map, const wchar_t* source);
// The loader that fits the compiler, normalised. False: the output pane says why.
bool DebugLoadMap(const wchar_t* executable, std::uint32_t compilerId, SdbgMap* map);

// The file's bytes as a new block that the caller frees; null for an empty or unreadable one.
std::uint8_t* ReadWholeFileW(const wchar_t* path, std::size_t* size);
int CollectPbmainSourceLines(const wchar_t* source, std::uint32_t* out, int capacity);
bool IsBasicControlOnlySourceLine(const wchar_t* source, int line);
std::uint32_t PreviousPbmainExecutableLine(const wchar_t* source, int line);

// The source of the program that is debugged, empty while unknown; set before a start.
const wchar_t* DebugSourcePath();
void DebugSetSourcePath(const wchar_t* path);

// --- The rules (line_map.cpp). Pure; any bytes are legal input.
// The map of the ".sdbg" section with the addresses of its program; without an index (SdbgIndex). False, and the map is
// empty: there is none.
bool SdbgMapOfProgram(std::span<const std::uint8_t> program, SdbgMap* map);
// The side file's name; an executable's path beyond 1024 characters is cut.
std::wstring PbdSidePath(std::wstring_view executable);
// The executable's name with everything from its last '.' replaced by ".bas".
std::wstring SourceBesideProgram(std::wstring_view executable);

struct ControlLineChange {
    std::uint32_t rva = 0;
    std::uint32_t from = 0;  // lines
    std::uint32_t to = 0;
};
// The rule of NormalizeSdbgControlLines on the source's bytes; what was changed. The index is then to be made anew.
std::vector<ControlLineChange> MoveControlLines(SdbgMap* map, std::string_view source);
