// What is said of a stop: its place as text, and the warnings that a source and the program no longer agree. Pure.
#pragma once

#include "program/sdbg_map.h"

#include <cstdint>
#include <string>
#include <vector>

// What a map gives beyond this is no line of a source.
inline constexpr std::uint32_t kLastMapLine = 0x7FFFFFFF;

struct StopPlace {
    std::uint32_t fileId = 0;
    int line = 0;  // from 1; 0: no source
};
// The place of a stop. A trap of the program's own leaves the session without a line (`currentLine` 0), although the map
// may know one for its address: `found` says so, in `fileId` and `line`.
StopPlace StopPlaceOf(std::int32_t currentLine, std::uint32_t currentFileId, bool found, std::uint32_t fileId,
                      std::uint32_t line);
// "steps.bas:12", or the address when the file name is empty: "0x0000000140001000, no source".
std::wstring StopPlaceText(const std::wstring& fileName, int line, std::uint64_t address, bool x64);

// What is known of a source that the program was built from.
struct SourceAge {
    bool newer = false;    // written after the program
    bool unsaved = false;  // open, with changes that are not saved
};
// The warnings of this session, each said once.
struct StaleWarnings {
    std::vector<std::wstring> said;
};
// The lines for the output pane that a source of this name deserves and that were not said yet; they count as said.
std::vector<std::wstring> NewStaleWarnings(StaleWarnings* warnings, const std::wstring& fileName, SourceAge age);
