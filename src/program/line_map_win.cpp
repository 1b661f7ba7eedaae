// Line maps from files: opens, maps or reads them, hands the bytes to the pure parts, and says what failed. UI thread.
#include "program/line_map.h"

#include "base/bounded_text.h"
#include "base/handles.h"
#include "base/log.h"
#include "files/file_io.h"
#include "program/basic_lines.h"
#include "program/debug_say.h"
#include "program/pbd_map.h"
#include "program/pe_headers.h"
#include "settings/compiler_id.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace {

constexpr std::uint64_t kSizeLimit = 0xFFFFFFFFU;  // this size and more is a failure
constexpr std::size_t kSidePathCapacity = 1032;

std::wstring g_sourcePath;  // of the program that is debugged

struct ViewTraits {
    using Type = void*;
    static bool IsOpen(void* view) { return view != nullptr; }
    static void Close(void* view) { UnmapViewOfFile(view); }
};

struct FileBytes {
    HeapBlock<std::uint8_t> block;
    std::size_t size = 0;

    explicit operator bool() const { return block != nullptr; }
    std::span<const std::uint8_t> Bytes() const { return {block.get(), size}; }
    std::string_view Text() const { return {reinterpret_cast<const char*>(block.get()), size}; }
};

FileBytes ReadBytes(const wchar_t* path) {
    FileBytes file;
    file.block.reset(ReadWholeFileW(path, &file.size));
    return file;
}

UniqueHandle OpenToRead(const wchar_t* path, std::size_t* size) {
    if (path == nullptr || path[0] == L'\0') return {};
    UniqueHandle file{CreateFileW(PathForSystem(path).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr)};
    // A device name ("CON", a pipe) opens too, and reading it would wait for someone to type.
    if (!file || GetFileType(file.Get()) != FILE_TYPE_DISK) return {};
    LARGE_INTEGER length = {};
    if (GetFileSizeEx(file.Get(), &length) == FALSE || static_cast<std::uint64_t>(length.QuadPart) >= kSizeLimit)
        return {};
    *size = static_cast<std::size_t>(length.QuadPart);
    return file;
}

bool MapFromExecutable(const std::uint8_t* file, std::size_t size, SdbgMap* map) {
    std::uint32_t length = 0;
    std::uint32_t rva = 0;
    std::uint32_t rawOffset = 0;
    const std::uint8_t* const section = FindSdbgSection(file, size, &length, &rva, &rawOffset);
    if (section == nullptr || !SdbgParseSection({section, length}, map)) return false;
    GetPeImageBase(file, size, &map->imageBase);
    map->textRva = GetTextBaseRva(file, size);
    return true;
}

// The executable's name with everything from its last '.' replaced.
std::wstring SourceBeside(const wchar_t* executable) {
    const std::wstring path = executable;
    return path.substr(0, path.rfind(L'.')) + L".bas";
}

bool BuildPbd(const wchar_t* executable, const wchar_t* sideFile, const std::wstring& source, SdbgMap* map,
              PbdParts* parts) {
    const FileBytes program = ReadBytes(executable);
    const FileBytes side = ReadBytes(sideFile);
    if (!program || !side || !FileExists(source.c_str())) return false;
    const FileBytes text = ReadBytes(source.c_str());
    return PbdBuildMap(program.Bytes(), side.Bytes(), text.Text(), map, parts);
}

}  // namespace

const wchar_t* DebugSourcePath() { return g_sourcePath.c_str(); }
void DebugSetSourcePath(const wchar_t* path) { g_sourcePath = path == nullptr ? L"" : path; }

std::uint8_t* ReadWholeFileW(const wchar_t* path, std::size_t* size) {
    *size = 0;
    std::size_t length = 0;
    const UniqueHandle file = OpenToRead(path, &length);
    if (!file || length == 0) return nullptr;
    HeapBlock<std::uint8_t> bytes{static_cast<std::uint8_t*>(std::malloc(length))};
    DWORD read = 0;
    if (!bytes || ReadFile(file.Get(), bytes.get(), static_cast<DWORD>(length), &read, nullptr) == FALSE ||
        read != length)
        return nullptr;
    *size = length;
    return bytes.release();
}

bool SdbgLoad(const wchar_t* executable, SdbgMap* map) {
    *map = {};
    std::size_t size = 0;
    const UniqueHandle file = OpenToRead(executable, &size);
    if (!file) return false;
    const UniqueHandle mapping{CreateFileMappingW(file.Get(), nullptr, PAGE_READONLY, 0, 0, nullptr)};
    if (!mapping) return false;
    const UniqueResource<ViewTraits> view{MapViewOfFile(mapping.Get(), FILE_MAP_READ, 0, 0, 0)};
    if (!view || !MapFromExecutable(static_cast<const std::uint8_t*>(view.Get()), size, map)) return false;
    SdbgIndex(map);
    return true;
}

bool PbdLoad(const wchar_t* executable, SdbgMap* map) {
    *map = {};
    wchar_t sideFile[kSidePathCapacity] = {};
    SafeCopyW(sideFile, std::wstring_view{executable}.substr(0, kPathCapacity));
    SafeCatW(sideFile, L".pbd");
    if (!FileExists(sideFile)) {
        DebugSay(kDebugRed, L"[Debug] No PowerBASIC debug database found: %s\n", sideFile);
        return false;
    }
    const std::wstring source = g_sourcePath.empty() ? SourceBeside(executable) : g_sourcePath;
    PbdParts parts;
    if (!BuildPbd(executable, sideFile, source, map, &parts)) {
        SdbgFree(map);
        AppLogMsg(L"FAIL: PbdLoad unusable pbd=%s source=%s lineCount=%d trapCount=%d", sideFile, source.c_str(),
                  parts.lineCount, parts.trapCount);
        DebugSay(kDebugRed, L"[Debug] PowerBASIC debug database contains no usable line map\n");
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
    const FileBytes file = ReadBytes(source);
    if (!file) return;
    const BasicLineIndex index = BuildBasicLineIndex(file.Text());
    bool changed = false;
    for (SdbgLine& record : std::span{map->lines, static_cast<std::size_t>(map->lineCount)}) {
        if (!IsControlOnly(index, record.line)) continue;
        const std::uint32_t statement = PreviousPbmainLine(index, record.line);
        if (statement == 0) continue;
        AppLogMsg(L"DBG SdbgNormalize: file=%s rva=0x%08lX structuralLine=%d mappedLine=%d", source,
                  static_cast<unsigned long>(record.rva), static_cast<int>(record.line), static_cast<int>(statement));
        record.line = statement;
        changed = true;
    }
    if (changed) SdbgIndex(map);
}

bool DebugLoadMap(const wchar_t* executable, std::uint32_t compilerId, SdbgMap* map) {
    if (compilerId == kCompilerKeldorBasic) return PbdLoad(executable, map);
    if (!SdbgLoad(executable, map)) {
        DebugSay(kDebugRed, L"[Debug] No .sdbg section found in EXE.\n");
        return false;
    }
    NormalizeSdbgControlLines(map, g_sourcePath.c_str());
    return true;
}

int CollectPbmainSourceLines(const wchar_t* source, std::uint32_t* out, int capacity) {
    return CollectPbmainLines(ReadBytes(source).Text(), out, capacity);
}

bool IsBasicControlOnlySourceLine(const wchar_t* source, int line) {
    return IsControlOnly(BuildBasicLineIndex(ReadBytes(source).Text()), line);
}

std::uint32_t PreviousPbmainExecutableLine(const wchar_t* source, int line) {
    return PreviousPbmainLine(BuildBasicLineIndex(ReadBytes(source).Text()), line);
}
