// The files of the session's line map, by number and by path. A map may name tens of thousands, and a path costs several
// calls to work out: each table is made once, when it is first asked for. UI thread only.
#include "debugui/location.h"

#include "base/path.h"
#include "output/last_build.h"
#include "program/line_map.h"
#include "program/map_paths.h"

#include <unordered_map>
#include <unordered_set>

namespace {

struct MapFiles {
    std::unordered_map<std::uint32_t, std::int32_t> index;  // of map.files, by file id
    std::unordered_map<std::uint32_t, std::wstring> paths;  // by file id, those that were asked for
    std::unordered_map<std::wstring, std::uint32_t> ids;    // by PathKey
    std::unordered_set<std::wstring> told;
    bool hasIndex = false;
    bool hasIds = false;
};
MapFiles g_files;

// In each table the first file of the map wins.
int IndexOf(const SdbgMap& map, std::uint32_t fileId) {
    for (std::int32_t i = 0; !g_files.hasIndex && i < map.fileCount; ++i)
        g_files.index.try_emplace(map.files[i].fileId, i);
    g_files.hasIndex = true;
    const auto found = g_files.index.find(fileId);
    return found != g_files.index.end() && found->second < map.fileCount ? found->second : -1;
}

std::wstring WorkOutPath(const SdbgMap& map, std::uint32_t fileId, const MapSource& compiled) {
    if (map.fileCount == 0) return fileId == 1 ? compiled.source : std::wstring();
    const int index = IndexOf(map, fileId);
    if (index < 0) return {};
    return PathOfMapFile(map.files[index].path, map.lineCount > 0 && map.lines[0].fileId == fileId, compiled);
}

MapSource Compiled() { return {.source = DebugSourcePath(), .staged = LastBuild().staged}; }

void MakeIds(const SdbgMap& map) {
    g_files.hasIds = true;
    const MapSource compiled = Compiled();
    if (map.fileCount == 0) g_files.ids.emplace(PathKey(compiled.source), 1);
    for (std::int32_t i = 0; i < map.fileCount; ++i) {
        const std::uint32_t id = map.files[i].fileId;
        // Of several files of one number, the first is the one that its lines are shown in.
        if (id == 0 || IndexOf(map, id) != i) continue;
        const std::wstring path = WorkOutPath(map, id, compiled);
        if (!path.empty()) g_files.ids.try_emplace(PathKey(path), id);
    }
}

}  // namespace

void DebugForgetFiles() { g_files = {}; }

bool DebugIsFirstTold(const std::wstring& path) { return g_files.told.insert(path).second; }

std::wstring DebugFilePath(const DebuggerState* state, std::uint32_t fileId) {
    if (state->active == 0 || fileId == 0) return {};
    const auto known = g_files.paths.find(fileId);
    if (known != g_files.paths.end()) return known->second;
    std::wstring path = WorkOutPath(state->map, fileId, Compiled());
    if (!path.empty()) g_files.paths.emplace(fileId, path);
    return path;
}

std::uint32_t DebugFileIdOfPath(const DebuggerState* state, const wchar_t* path) {
    if (state->active == 0 || path == nullptr || path[0] == L'\0') return 0;
    if (!g_files.hasIds) MakeIds(state->map);
    const auto found = g_files.ids.find(PathKey(path));
    return found == g_files.ids.end() ? 0 : found->second;
}
