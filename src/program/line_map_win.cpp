// Loads line maps from files: maps or reads the files, gives their bytes to the pure functions, and reports failures.
// UI thread only.
#include "program/line_map.h"

#include "base/bounded_text.h"
#include "base/handles.h"
#include "base/log.h"
#include "base/path.h"
#include "base/texts.h"
#include "files/file_io.h"
#include "output/last_build.h"
#include "program/basic_lines.h"
#include "program/debug_say.h"
#include "program/map_paths.h"
#include "program/pbd_map.h"
#include "settings/compiler_id.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace {

constexpr std::uint64_t kSizeLimit = 0xFFFFFFFFU;  // a file of this size or more is refused

std::wstring g_sourcePath;  // of the debugged program

struct ViewTraits {
    using Type = void*;
    static bool IsOpen(void* view) { return view != nullptr; }
    static void Close(void* view) { UnmapViewOfFile(view); }
};

// The file's bytes; empty for a file that is empty or cannot be read.
std::string BytesOfFile(const wchar_t* path) {
    std::string bytes;
    if (path == nullptr || path[0] == L'\0' || !ReadSharedFile(path, kSizeLimit - 1, &bytes)) bytes.clear();
    return bytes;
}

std::span<const std::uint8_t> AsBytes(const std::string& text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

UniqueHandle OpenProgramFile(const wchar_t* path, std::size_t* size) {
    if (path == nullptr || path[0] == L'\0') return {};
    UniqueHandle file{CreateFileW(PathForSystem(path).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr)};
    // A device name ("CON", a pipe) can be opened too, and reading it could wait for input for ever.
    if (!file || GetFileType(file.Get()) != FILE_TYPE_DISK) return {};
    LARGE_INTEGER length = {};
    if (GetFileSizeEx(file.Get(), &length) == FALSE || static_cast<std::uint64_t>(length.QuadPart) >= kSizeLimit)
        return {};
    *size = static_cast<std::size_t>(length.QuadPart);
    return file;
}

bool BuildPbdOfFiles(const wchar_t* executable, const wchar_t* sideFile, const std::wstring& source, SdbgMap* map,
                     PbdParts* parts) {
    const std::string program = BytesOfFile(executable);
    const std::string side = BytesOfFile(sideFile);
    if (program.empty() || side.empty() || !FileExists(source.c_str())) return false;
    return PbdBuildMap(AsBytes(program), AsBytes(side), BytesOfFile(source.c_str()), map, parts);
}

// True when the map names no file for the id, or one that is the source.
bool MeansSource(const SdbgMap& map, std::uint32_t fileId, const std::wstring& source) {
    const char* const name = SdbgFileIdToPath(&map, fileId);
    if (name == nullptr) return true;
    const std::wstring path =
        PathOfMapFile(name, fileId == map.lines[0].fileId, {.source = source, .staged = LastBuild().staged});
    return PathEqualsIgnoreCase(path, source);
}

std::wstring WholePath(const wchar_t* path) {
    wchar_t whole[kPathCapacity];
    return PathNormalizeInput(path, whole, kPathCapacity) ? whole : path;
}

}  // namespace

const wchar_t* DebugSourcePath() { return g_sourcePath.c_str(); }
void DebugSetSourcePath(const wchar_t* path) { g_sourcePath = path == nullptr ? L"" : path; }

std::uint8_t* ReadWholeFileW(const wchar_t* path, std::size_t* size) {
    *size = 0;
    const std::string bytes = BytesOfFile(path);
    if (bytes.empty()) return nullptr;
    HeapBlock<std::uint8_t> block{static_cast<std::uint8_t*>(std::malloc(bytes.size()))};
    if (!block) return nullptr;
    std::ranges::copy(bytes, block.get());
    *size = bytes.size();
    return block.release();
}

bool SdbgLoad(const wchar_t* executable, SdbgMap* map) {
    *map = {};
    std::size_t size = 0;
    const UniqueHandle file = OpenProgramFile(executable, &size);
    if (!file) return false;
    const UniqueHandle mapping{CreateFileMappingW(file.Get(), nullptr, PAGE_READONLY, 0, 0, nullptr)};
    if (!mapping) return false;
    const UniqueResource<ViewTraits> view{MapViewOfFile(mapping.Get(), FILE_MAP_READ, 0, 0, 0)};
    if (!view || !SdbgMapOfProgram({static_cast<const std::uint8_t*>(view.Get()), size}, map)) return false;
    SdbgIndex(map);
    return true;
}

bool PbdLoad(const wchar_t* executable, SdbgMap* map) {
    *map = {};
    const std::wstring side = PbdSidePath(executable);
    const wchar_t* const sideFile = side.c_str();
    if (!FileExists(sideFile)) {
        DebugSay(kDebugRed, Text(L"[Debug] No PowerBASIC debug database found: %s\n"), sideFile);
        return false;
    }
    const std::wstring source = g_sourcePath.empty() ? SourceBesideProgram(executable) : g_sourcePath;
    PbdParts parts;
    if (!BuildPbdOfFiles(executable, sideFile, source, map, &parts)) {
        SdbgFree(map);
        AppLogMsg(L"FAIL: PbdLoad unusable pbd=%s source=%s lineCount=%d trapCount=%d", sideFile, source.c_str(),
                  parts.lineCount, parts.trapCount);
        DebugSay(kDebugRed, Text(L"[Debug] PowerBASIC debug database contains no usable line map\n"));
        return false;
    }
    SdbgIndex(map);
    AppLogMsg(
        L"DBG PbdLoad: pbd=%s source=%s lines=%d traps=%d map=%d imageBase=0x%llX startRva=0x%08lX firstLine=%d "
        L"firstRva=0x%08lX",
        sideFile, source.c_str(), parts.lineCount, parts.trapCount, map->lineCount, map->imageBase,
        static_cast<unsigned long>(parts.startRva), static_cast<int>(map->lines[0].line),
        static_cast<unsigned long>(map->lines[0].rva));
    return true;
}

void NormalizeSdbgControlLines(SdbgMap* map, const wchar_t* source) {
    if (map->lines == nullptr || map->lineCount <= 0 || source == nullptr || source[0] == L'\0') return;
    const std::string text = BytesOfFile(source);
    std::unordered_map<std::uint32_t, bool> known;  // because a path costs several calls to work out
    const auto isSource = [&, whole = WholePath(source)](std::uint32_t fileId) {
        const auto [place, isNew] = known.try_emplace(fileId, true);
        if (isNew) place->second = MeansSource(*map, fileId, whole);
        return place->second;
    };
    const std::vector<ControlLineChange> changes = MoveControlLines(map, text, isSource);
    for (const ControlLineChange& change : changes)
        AppLogMsg(L"DBG SdbgNormalize: file=%s rva=0x%08lX structuralLine=%d mappedLine=%d", source,
                  static_cast<unsigned long>(change.rva), static_cast<int>(change.from), static_cast<int>(change.to));
    if (!changes.empty()) SdbgIndex(map);
}

bool DebugLoadMap(const wchar_t* executable, std::uint32_t compilerId, SdbgMap* map) {
    if (compilerId == kCompilerKeldorBasic) return PbdLoad(executable, map);
    if (!SdbgLoad(executable, map)) {
        DebugSay(kDebugRed, Text(L"[Debug] No .sdbg section found in EXE.\n"));
        return false;
    }
    NormalizeSdbgControlLines(map, g_sourcePath.c_str());
    return true;
}

int CollectPbmainSourceLines(const wchar_t* source, std::uint32_t* out, int capacity) {
    return CollectPbmainLines(BytesOfFile(source), out, capacity);
}

bool IsBasicControlOnlySourceLine(const wchar_t* source, int line) {
    return IsControlOnly(BuildBasicLineIndex(BytesOfFile(source)), line);
}

std::uint32_t PreviousPbmainExecutableLine(const wchar_t* source, int line) {
    return PreviousPbmainLine(BuildBasicLineIndex(BytesOfFile(source)), line);
}
