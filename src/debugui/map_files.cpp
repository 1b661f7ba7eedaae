// Tables over the files of a line map. Must not know a disk.
#include "debugui/map_files.h"

#include "base/path.h"

namespace {

int IndexOfFile(MapFiles* files, const SdbgMap& map, std::uint32_t fileId) {
    for (std::int32_t i = 0; !files->hasIndex && i < map.fileCount; ++i)
        files->index.try_emplace(map.files[i].fileId, i);
    files->hasIndex = true;
    const auto found = files->index.find(fileId);
    return found != files->index.end() && found->second < map.fileCount ? found->second : -1;
}

std::wstring WorkOutPath(MapFiles* files, const SdbgMap& map, std::uint32_t fileId, const MapPathResolver& resolve) {
    if (map.fileCount == 0) return fileId == 1 ? resolve(nullptr, true) : std::wstring();
    const int index = IndexOfFile(files, map, fileId);
    if (index < 0) return {};
    const char* name = map.files[index].path;
    return name == nullptr ? std::wstring() : resolve(name, map.lineCount > 0 && map.lines[0].fileId == fileId);
}

void MakeIds(MapFiles* files, const SdbgMap& map, const MapPathResolver& resolve) {
    files->hasIds = true;
    if (map.fileCount == 0) files->ids.emplace(PathKey(resolve(nullptr, true)), 1);
    for (std::int32_t i = 0; i < map.fileCount; ++i) {
        const std::uint32_t id = map.files[i].fileId;
        // When several files have one number, only the first can be shown.
        if (id == 0 || IndexOfFile(files, map, id) != i) continue;
        const std::wstring path = WorkOutPath(files, map, id, resolve);
        if (!path.empty()) files->ids.try_emplace(PathKey(path), id);
    }
}

}  // namespace

std::wstring MapFilePath(MapFiles* files, const SdbgMap& map, std::uint32_t fileId, const MapPathResolver& resolve) {
    if (fileId == 0) return {};
    const auto known = files->paths.find(fileId);
    if (known != files->paths.end()) return known->second;
    std::wstring path = WorkOutPath(files, map, fileId, resolve);
    if (!path.empty()) files->paths.emplace(fileId, path);
    return path;
}

std::uint32_t MapFileId(MapFiles* files, const SdbgMap& map, const std::wstring& path, const MapPathResolver& resolve) {
    if (path.empty()) return 0;
    if (!files->hasIds) MakeIds(files, map, resolve);
    const auto found = files->ids.find(PathKey(path));
    return found == files->ids.end() ? 0 : found->second;
}
