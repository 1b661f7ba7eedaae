// Line maps are read by the pure functions, which report nothing, because here a program without a map is no error.
#include "disasm/asm_renderer.h"

#include "base/path.h"
#include "disasm/listing_text.h"
#include "disasm/renderer.h"
#include "program/line_map.h"
#include "program/pbd_map.h"
#include "program/sdbg_map.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <utility>

namespace {

constexpr std::size_t kMostProgram = std::size_t{256} << 20;
constexpr std::size_t kMostSource = std::size_t{32} << 20;
constexpr std::int32_t kMostSources = 256;
constexpr std::size_t kLinesAtOnce = 500;
constexpr std::size_t kInstructionsAtOnce = 2000;  // takes a few milliseconds at most

struct MapOwner {
    SdbgMap map = {};
    MapOwner() = default;
    ~MapOwner() { SdbgFree(&map); }
    MapOwner(const MapOwner&) = delete;
    MapOwner& operator=(const MapOwner&) = delete;
};

std::span<const std::uint8_t> SpanOfText(const std::string& text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

bool ReadMapOfProgram(const AsmSurroundings& around, const AsmRequest& request, const std::string& program,
                      SdbgMap* map) {
    if (SdbgMapOfProgram(SpanOfText(program), map)) return true;
    std::string side;
    std::string source;
    PbdParts parts;
    return around.read(PbdSidePath(request.program), kMostProgram, &side) &&
           around.read(request.source, kMostSource, &source) &&
           PbdBuildMap(SpanOfText(program), SpanOfText(side), source, map, &parts);
}

void AddSource(const AsmSurroundings& around, const AsmRequest& request, std::uint32_t fileId, const std::wstring& path,
               DisasmProgram& program) {
    const bool main = SamePathText(path, request.source);
    const std::size_t slash = path.find_last_of(L'\\');
    program.sources.push_back(
        {.fileId = fileId,
         .name = main ? "" : around.utf8(path.substr(slash == std::wstring::npos ? 0 : slash + 1)),
         .text = around.sourceText(path)});
    if (request.caretLine <= 0 || !SamePathText(path, request.caretFile)) return;
    program.focusFile = fileId;
    program.focusLine = static_cast<std::uint32_t>(request.caretLine);
}

// Adds the map's lines and the texts of the sources to `program`.
void AddLines(const AsmSurroundings& around, const AsmRequest& request, const SdbgMap& map, DisasmProgram& program) {
    for (const SdbgLine& line : std::span(map.lines, static_cast<std::size_t>(map.lineCount)))
        program.lines.push_back({.rva = line.rva, .fileId = line.fileId, .line = line.line});
    const MapSource compiled = {.source = request.source, .staged = request.staged};
    for (std::int32_t i = 0; i < std::min(map.fileCount, kMostSources); ++i) {
        const std::uint32_t id = map.files[i].fileId;
        const std::wstring path = around.mapFile(map.files[i].path, map.lines[0].fileId == id, compiled);
        if (!path.empty()) AddSource(around, request, id, path, program);
    }
    if (program.sources.empty()) AddSource(around, request, 1, request.source, program);
}

void PutListingColumns(const AsmSurroundings& around, const AsmRequest& request, const std::string& text) {
    around.beginPart("\r\n=== Listing in columns ===\r\n");
    // The listing may be older, because not every compiler writes one and another compiler may have left it.
    if (around.isOlder(request.listing, request.source))
        around.put("(The source was changed after this listing was written.)\r\n");
    DisasmListing listing = {.rest = text, .bytes = request.bytes};
    std::string piece;
    for (bool more = true; more;) {
        piece.clear();
        more = DisasmListingNext(listing, kLinesAtOnce, &piece);
        if (!around.put(piece)) return;
    }
}

// Adds the program's code. The part around the caret comes first, if there is one.
void PutCode(const AsmSurroundings& around, DisasmProgram program) {
    const DisasmRendererPtr renderer = DisasmRendererNew(std::move(program));
    std::string piece;
    bool placed = false;
    for (bool more = true; more && !around.cancelled();) {
        piece.clear();
        more = DisasmRenderNext(*renderer, kInstructionsAtOnce, &piece);
        if (!placed && !piece.empty() && DisasmBeganAtFocus(*renderer)) around.markPlace();
        placed = placed || !piece.empty();
        if (!around.put(piece)) return;
    }
}

void PutProgramCode(const AsmSurroundings& around, const AsmRequest& request) {
    if (request.program.empty() || !around.exists(request.program)) return;
    around.beginPart("\r\n=== Code of " + around.utf8(request.program) + " ===\r\n");
    std::string bytes;
    if (!around.read(request.program, kMostProgram, &bytes)) {
        around.put("(The program cannot be read.)\r\n");
        return;
    }
    if (around.isOlder(request.program, request.source))
        around.put("(The source was changed after the program was built: its lines may be others.)\r\n");
    DisasmProgram program;
    program.file.assign(bytes.begin(), bytes.end());
    program.bytes = request.bytes;
    {
        MapOwner owner;
        if (ReadMapOfProgram(around, request, bytes, &owner.map)) AddLines(around, request, owner.map, program);
    }
    PutCode(around, std::move(program));
}

}  // namespace

void AsmRenderIn(const AsmSurroundings& around, const AsmRequest& request, const std::string* listing) {
    if (listing != nullptr) PutListingColumns(around, request, *listing);
    PutProgramCode(around, request);
}
