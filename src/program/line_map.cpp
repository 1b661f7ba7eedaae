#include "program/line_map.h"

#include "base/bounded_text.h"
#include "program/basic_lines.h"
#include "program/pe_headers.h"

bool SdbgMapOfProgram(std::span<const std::uint8_t> program, SdbgMap* map) {
    std::uint32_t length = 0;
    std::uint32_t rva = 0;
    std::uint32_t rawOffset = 0;
    const std::uint8_t* const section = FindSdbgSection(program.data(), program.size(), &length, &rva, &rawOffset);
    if (section == nullptr || !SdbgParseSection({section, length}, map)) return false;
    GetPeImageBase(program.data(), program.size(), &map->imageBase);
    map->textRva = GetTextBaseRva(program.data(), program.size());
    return true;
}

std::wstring PbdSidePath(std::wstring_view executable) {
    return std::wstring(executable.substr(0, kPathCapacity)) + L".pbd";
}

std::wstring SourceBesideProgram(std::wstring_view executable) {
    return std::wstring(executable.substr(0, executable.rfind(L'.'))) + L".bas";
}

std::vector<ControlLineChange> MoveControlLines(SdbgMap* map, std::string_view source,
                                                const std::function<bool(std::uint32_t fileId)>& isSource) {
    std::vector<ControlLineChange> changes;
    const BasicLineIndex index = BuildBasicLineIndex(source);
    for (SdbgLine& record : std::span{map->lines, static_cast<std::size_t>(map->lineCount)}) {
        const std::uint32_t statement = IsControlOnly(index, record.line) ? PreviousPbmainLine(index, record.line) : 0;
        if (statement == 0 || !isSource(record.fileId)) continue;
        changes.push_back({record.rva, record.line, statement});
        record.line = statement;
    }
    return changes;
}
