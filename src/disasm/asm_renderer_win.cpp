// Runs on the ASM pane's own thread, on copies; touches no window and no global record. Line maps come from the pure
// readers: a program without one is an ordinary program here, and nothing is to be reported.
#include "disasm/asm_renderer.h"

#include "base/handles.h"
#include "base/path.h"
#include "compile/build_paths.h"
#include "disasm/asm_pane.h"
#include "disasm/listing_text.h"
#include "disasm/renderer.h"
#include "files/file_io.h"
#include "files/shared_read.h"
#include "files/text_encoding.h"
#include "program/map_paths.h"
#include "program/pbd_map.h"
#include "program/pe_headers.h"
#include "program/sdbg_map.h"

#include <windows.h>

#include <algorithm>
#include <span>

namespace {

constexpr std::size_t kMostProgram = std::size_t{256} << 20;
constexpr std::size_t kMostSource = std::size_t{32} << 20;
constexpr std::int32_t kMostSources = 256;
constexpr std::size_t kLinesAtOnce = 500;
constexpr std::size_t kInstructionsAtOnce = 2000;  // some milliseconds at most

struct MapOwner {
    SdbgMap map = {};
    MapOwner() = default;
    ~MapOwner() { SdbgFree(&map); }
    MapOwner(const MapOwner&) = delete;
    MapOwner& operator=(const MapOwner&) = delete;
};

std::string Utf8Text(std::wstring_view wide) {
    const HeapBlock<char> text(WideToUtf8(std::wstring(wide).c_str()));
    return text != nullptr ? text.get() : "";
}

std::span<const std::uint8_t> BytesOf(const std::string& text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::string SourceText(const std::wstring& path) {
    std::string bytes;
    if (!ReadSharedFile(path, kMostSource, &bytes) || IsValidUtf8Bytes(bytes.data(), bytes.size())) return bytes;
    const int size = static_cast<int>(bytes.size());
    std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, wide.data(), static_cast<int>(wide.size()));
    return Utf8Text(wide);
}

bool ReadMap(const AsmRequest& request, const std::string& program, SdbgMap* map) {
    std::uint32_t size = 0;
    std::uint32_t rva = 0;
    std::uint32_t offset = 0;
    const std::uint8_t* section = FindSdbgSection(BytesOf(program).data(), program.size(), &size, &rva, &offset);
    if (section != nullptr && SdbgParseSection({section, size}, map)) return true;
    std::string side;
    std::string source;
    PbdParts parts;
    return ReadSharedFile(request.program + L".pbd", kMostProgram, &side) &&
           ReadSharedFile(request.source, kMostSource, &source) &&
           PbdBuildMap(BytesOf(program), BytesOf(side), source, map, &parts);
}

void AddSource(const AsmRequest& request, std::uint32_t fileId, const std::wstring& path, DisasmProgram& program) {
    const bool main = SamePathText(path, request.source);
    const std::size_t slash = path.find_last_of(L'\\');
    program.sources.push_back({.fileId = fileId,
                               .name = main ? "" : Utf8Text(path.substr(slash == std::wstring::npos ? 0 : slash + 1)),
                               .text = SourceText(path)});
    if (request.caretLine <= 0 || !SamePathText(path, request.caretFile)) return;
    program.focusFile = fileId;
    program.focusLine = static_cast<std::uint32_t>(request.caretLine);
}

// What the map says of lines, and the sources' texts.
void AddLines(const AsmRequest& request, const SdbgMap& map, DisasmProgram& program) {
    for (const SdbgLine& line : std::span(map.lines, static_cast<std::size_t>(map.lineCount)))
        program.lines.push_back({.rva = line.rva, .fileId = line.fileId, .line = line.line});
    const MapSource compiled = {.source = request.source, .staged = request.staged};
    for (std::int32_t i = 0; i < std::min(map.fileCount, kMostSources); ++i) {
        const std::uint32_t id = map.files[i].fileId;
        const std::wstring path = PathOfMapFile(map.files[i].path, map.lines[0].fileId == id, compiled);
        if (!path.empty()) AddSource(request, id, path, program);
    }
    if (program.sources.empty()) AddSource(request, 1, request.source, program);
}

bool IsOlder(const std::wstring& a, const std::wstring& b) {
    WIN32_FILE_ATTRIBUTE_DATA first = {};
    WIN32_FILE_ATTRIBUTE_DATA second = {};
    return GetFileAttributesExW(PathForSystem(a.c_str()).c_str(), GetFileExInfoStandard, &first) != FALSE &&
           GetFileAttributesExW(PathForSystem(b.c_str()).c_str(), GetFileExInfoStandard, &second) != FALSE &&
           CompareFileTime(&first.ftLastWriteTime, &second.ftLastWriteTime) < 0;
}

void PutListing(AsmFeed& feed, const AsmRequest& request, const std::string& text) {
    AsmFeedBeginPart(feed, "\r\n=== Listing in columns ===\r\n");
    // Not every compiler writes one: it may be left from another.
    if (IsOlder(request.listing, request.source))
        AsmFeedPut(feed, "(The source was changed after this listing was written.)\r\n");
    DisasmListing listing = {.rest = text};
    std::string piece;
    for (bool more = true; more;) {
        piece.clear();
        more = DisasmListingNext(listing, kLinesAtOnce, &piece);
        if (!AsmFeedPut(feed, piece)) return;
    }
}

void PutProgram(AsmFeed& feed, const AsmRequest& request) {
    std::string bytes;
    if (request.program.empty() || !FileExists(request.program.c_str())) return;
    AsmFeedBeginPart(feed, "\r\n=== Code of " + Utf8Text(request.program) + " ===\r\n");
    if (!ReadSharedFile(request.program, kMostProgram, &bytes)) {
        AsmFeedPut(feed, "(The program cannot be read.)\r\n");
        return;
    }
    if (IsOlder(request.program, request.source))
        AsmFeedPut(feed, "(The source was changed after the program was built: its lines may be others.)\r\n");
    DisasmProgram program;
    program.file.assign(bytes.begin(), bytes.end());
    {
        MapOwner owner;
        if (ReadMap(request, bytes, &owner.map)) AddLines(request, owner.map, program);
    }
    const DisasmRendererPtr renderer = DisasmRendererNew(std::move(program));
    std::string piece;
    bool placed = false;
    for (bool more = true; more && !AsmFeedIsCancelled(feed);) {
        piece.clear();
        more = DisasmRenderNext(*renderer, kInstructionsAtOnce, &piece);
        if (!placed && !piece.empty() && DisasmBeganAtFocus(*renderer)) AsmFeedMarkPlace(feed);
        placed = placed || !piece.empty();
        if (!AsmFeedPut(feed, piece)) return;
    }
}

}  // namespace

void AsmRender(AsmFeed& feed, const AsmRequest& request, const std::string* listing) {
    if (listing != nullptr) PutListing(feed, request, *listing);
    PutProgram(feed, request);
}
