// The files of the session's line map. UI thread only.
#include "debugui/map_files.h"

#include "debugui/location.h"
#include "output/last_build.h"
#include "program/line_map.h"
#include "program/map_paths.h"

#include <optional>

namespace {

struct SessionFiles {
    MapFiles files;
    std::optional<MapSource> compiled;  // what the program was built from; set when first needed
};
SessionFiles g_session;

std::wstring ResolveMapPath(const char* name, bool first) {
    if (!g_session.compiled) g_session.compiled = MapSource{.source = DebugSourcePath(), .staged = LastBuild().staged};
    return name != nullptr ? PathOfMapFile(name, first, *g_session.compiled) : g_session.compiled->source;
}

}  // namespace

void DebugForgetFiles() { g_session = {}; }

bool DebugFirstTold(const std::wstring& path) { return g_session.files.told.insert(path).second; }

std::wstring DebugFilePath(const DebuggerState* state, std::uint32_t fileId) {
    return state->active != 0 ? MapFilePath(&g_session.files, state->map, fileId, ResolveMapPath) : std::wstring();
}

std::uint32_t DebugFileIdOfPath(const DebuggerState* state, const wchar_t* path) {
    return state->active != 0 && path != nullptr ? MapFileId(&g_session.files, state->map, path, ResolveMapPath) : 0;
}
