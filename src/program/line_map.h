// Line maps from files: the executable's ".sdbg" section, or a ".pbd" beside it. UI thread. Failures leave the map
// empty and say so in the output pane, never in a box.
#pragma once

#include "program/sdbg_map.h"

#include <cstddef>
#include <cstdint>

bool SdbgLoad(const wchar_t* executable, SdbgMap* map);
// The source is `DebugSourcePath()` when there is one, else the executable's name with ".bas".
bool PbdLoad(const wchar_t* executable, SdbgMap* map);
// Records of structural lines (ELSE, END IF) get the line of the PBMAIN statement before them; reads the source once.
void NormalizeSdbgControlLines(SdbgMap* map, const wchar_t* source);
// The loader that fits the compiler, normalised. False: the output pane says why.
bool DebugLoadMap(const wchar_t* executable, std::uint32_t compilerId, SdbgMap* map);

// The file's bytes as a new block that the caller frees; null for an empty, unreadable or shortened one.
std::uint8_t* ReadWholeFileW(const wchar_t* path, std::size_t* size);
int CollectPbmainSourceLines(const wchar_t* source, std::uint32_t* out, int capacity);
bool IsBasicControlOnlySourceLine(const wchar_t* source, int line);
std::uint32_t PreviousPbmainExecutableLine(const wchar_t* source, int line);

// The source of the program that is debugged, empty while unknown; set before a start.
const wchar_t* DebugSourcePath();
void DebugSetSourcePath(const wchar_t* path);
