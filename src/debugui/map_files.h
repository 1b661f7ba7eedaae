// The files of a line map, by number and by path. A map may name tens of thousands of files, and a path costs several
// calls to work out; so each table is made once, when it is first asked for. Pure.
#pragma once

#include "program/sdbg_map.h"

#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <unordered_set>

// What the tables remember of one map. An empty record is right for a new map.
struct MapFiles {
    std::unordered_map<std::uint32_t, std::int32_t> index;  // of map.files, by file id
    std::unordered_map<std::uint32_t, std::wstring> paths;  // by file id, those that were asked for
    std::unordered_map<std::wstring, std::uint32_t> ids;    // by PathKey
    std::unordered_set<std::wstring> told;                  // files that could not be shown, and of which that was said
    bool hasIndex = false;
    bool hasIds = false;
};

// The path that a file name of the map means; null: the compiled source itself. `first`: the map begins with that file.
using MapPathResolver = std::function<std::wstring(const char* name, bool first)>;

// Path of a file id, empty when there is none. In a map without files, id 1 is the compiled source.
std::wstring MapFilePath(MapFiles* files, const SdbgMap& map, std::uint32_t fileId, const MapPathResolver& resolve);
// File id of a path, letter case aside, or 0. Of several files of one number or one path, the first in the map counts.
std::uint32_t MapFileId(MapFiles* files, const SdbgMap& map, const std::wstring& path, const MapPathResolver& resolve);
