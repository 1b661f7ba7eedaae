// Writes line maps. The reader of a map decides which lines are statements, so this file looks at the text of the
// lines, not at the tree.
#include "debug_map.h"

#include "lexer.h"

namespace standin {
namespace {

bool IsBlankChar(char c) { return c == ' ' || c == '\t'; }

// True when the first `count` characters are followed by nothing, a line end or one of `allowed`.
bool EndsAfter(std::string_view line, size_t count, std::string_view allowed) {
    return line.size() <= count || line[count] == '\r' || allowed.find(line[count]) != std::string_view::npos;
}

bool IsStatementLine(std::string_view raw) {
    std::string line = UpperCase(raw);
    line.erase(0, line.find_first_not_of(" \t"));
    if (line.empty() || line[0] == '\r' || line[0] == '\'' || raw[0] == '#') return false;
    if (line.starts_with("REM") && EndsAfter(line, 3, " \t")) return false;
    if (line.starts_with("ELSE") && EndsAfter(line, 4, " \t'")) return false;
    return !(line.starts_with("END IF") && EndsAfter(line, 6, " \t'"));
}

void Put32(std::vector<uint8_t>& out, size_t value) {
    for (int i = 0; i < 4; ++i) out.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

}  // namespace

std::vector<int> StatementLinesOfMain(std::string_view source) {
    std::vector<int> lines;
    bool inside = false;
    for (int number = 1; !source.empty(); ++number) {
        const std::string_view line = source.substr(0, source.find('\n'));
        source.remove_prefix(std::min(line.size() + 1, source.size()));
        size_t first = 0;
        while (first < line.size() && IsBlankChar(line[first])) ++first;
        const std::string text = UpperCase(line.substr(first, 16));
        if (!inside) {
            inside = text.starts_with("FUNCTION PBMAIN") || text.starts_with("SUB PBMAIN");
        } else if (IsStatementLine(line)) {
            lines.push_back(number);
            if (text.starts_with("END FUNCTION") || text.starts_with("END SUB")) break;
        }
    }
    return lines;
}

// Version 1 has 16-bit line numbers and no files. Code of included files and of lines above 65535 therefore gets line 0
// ("unknown").
std::vector<uint8_t> BuildSdbg(const Generator& g, uint32_t textRva) {
    const bool v1 = g.profile.debugMap == DebugMap::SdbgV1;
    std::vector<uint8_t> out;
    for (const char c : std::string_view(v1 ? "SDBG" : "SDB2")) out.push_back(static_cast<uint8_t>(c));
    Put32(out, g.records.size());
    for (const LineRecord& record : g.records) {
        if (v1) {
            const int line = record.pos.file == 0 && record.pos.line <= 0xFFFF ? record.pos.line : 0;
            out.push_back(static_cast<uint8_t>(line));
            out.push_back(static_cast<uint8_t>(line >> 8));
        } else {
            Put32(out, static_cast<size_t>(record.pos.file) + 1);
            Put32(out, static_cast<size_t>(record.pos.line));
        }
        Put32(out, textRva + record.offset);
    }
    if (v1) return out;
    Put32(out, g.sources.files.size());
    for (size_t i = 0; i < g.sources.files.size(); ++i) {
        const std::string& name = g.sources.files[i].name;
        Put32(out, i + 1);
        Put32(out, name.size());
        out.insert(out.end(), name.begin(), name.end());
    }
    return out;
}

std::string BuildPbd(uint32_t mainAddress) {
    std::string out = "KVXPBD1\n";
    out += std::string_view("PBMAIN\0\0", 8);
    for (int i = 0; i < 4; ++i) out += static_cast<char>(mainAddress >> (8 * i));
    out += std::string(4, '\0');
    return out;
}

}  // namespace standin
