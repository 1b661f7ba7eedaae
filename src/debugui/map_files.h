// The files of a line map, by number and by path. Each table is made once, at the first question, because a map may
// name tens of thousands of files and a path costs several calls to work out. Pure.
#pragma once

#include "program/sdbg_map.h"

#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <unordered_set>

// The tables of one map. Start every map with an empty record.
struct MapFiles {
    std::unordered_map<std::uint32_t, std::int32_t> index;  // index into map.files, by file id
    std::unordered_map<std::uint32_t, std::wstring> paths;  // by file id; only those that were asked for
    std::unordered_map<std::wstring, std::uint32_t> ids;    // by PathKey
    std::unordered_set<std::wstring> told;                  // files that the user was told cannot be shown
    bool hasIndex = false;
    bool hasIds = false;
};

// Works out the path for a file name of the map; a null name means the compiled source. `first`: it is the map's first
// file.
using MapPathResolver = std::function<std::wstring(const char* name, bool first)>;

// Path of a file id, empty when there is none. In a map without files, id 1 is the compiled source.
std::wstring MapFilePath(MapFiles* files, const SdbgMap& map, std::uint32_t fileId, const MapPathResolver& resolve);
// File id of a path, letter case ignored, or 0. Of several files with one number or one path, the first in the map
// counts.
std::uint32_t MapFileId(MapFiles* files, const SdbgMap& map, const std::wstring& path, const MapPathResolver& resolve);
