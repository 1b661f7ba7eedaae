// Texts about a stop: its place, and warnings that a source no longer matches the program. Pure.
#pragma once

#include "program/sdbg_map.h"

#include <cstdint>
#include <string>
#include <vector>

// Larger numbers in a map are no lines of a source.
inline constexpr std::uint32_t kLastMapLine = 0x7FFFFFFF;

struct StopPlace {
    std::uint32_t fileId = 0;
    int line = 0;  // from 1; 0: no source
};
// The place of a stop. At a trap of the program's own, `currentLine` may be 0 although the map has a line for the
// address; `found` then says that `fileId` and `line` hold it.
StopPlace StopPlaceOf(std::int32_t currentLine, std::uint32_t currentFileId, bool found, std::uint32_t fileId,
                      std::uint32_t line);
// "steps.bas:12", or the address when the file name is empty: "0x0000000140001000, no source". `ofCaller`: the stop is
// in code without source, which that line has called: "0x00007FF812345678, called from steps.bas:12".
std::wstring StopPlaceText(const std::wstring& fileName, int line, bool ofCaller, std::uint64_t address, bool x64);

// The age of a source that the program was built from.
struct SourceAge {
    bool newer = false;    // written after the program
    bool unsaved = false;  // open, with changes that are not saved
};
// The warnings of this session, each said once.
struct StaleWarnings {
    std::vector<std::wstring> said;
    std::wstring lookedAt;           // path of the file whose time was asked for last
    std::uint64_t lookedAtTime = 0;  // GetTickCount64 value
};
// True when the time of the file must be asked for at a stop in it: at the first of some stops, then once a second,
// because the system takes longer for the answer than the program for a step. The look then counts as taken.
bool TakeStaleLook(StaleWarnings* warnings, const std::wstring& path, std::uint64_t now);
// Warnings about a source for the output pane, without those that were given in this session; they then count as given.
std::vector<std::wstring> NewStaleWarnings(StaleWarnings* warnings, const std::wstring& fileName, SourceAge age);
