#include "sample_files.h"

#include <algorithm>
#include <sstream>

namespace samples {
namespace {

std::string Upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? char(c - 32) : c; });
    return text;
}

}  // namespace

std::string Utf8(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

std::string Unix(std::string text) {
    std::erase(text, '\r');
    return text;
}

std::vector<std::string> Lines(const std::string& text) {
    std::istringstream in(Unix(text));
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

std::string Expected(std::string_view name) {
    return Unix(ReadBytes(kFolder / "expected" / (std::string(name) + ".txt")));
}

uint32_t Number(std::string_view bytes, size_t at, size_t size) {
    uint32_t value = 0;
    for (size_t i = 0; i < size; ++i)
        if (at + i < bytes.size()) value |= uint32_t{static_cast<uint8_t>(bytes[at + i])} << (8 * i);
    return value;
}

std::map<std::string, Section> ReadSections(const std::string& program) {
    std::map<std::string, Section> sections;
    const size_t pe = Number(program, 60);
    if (program.substr(0, 2) != "MZ" || program.substr(pe, 4) != std::string_view("PE\0\0", 4)) return sections;
    const size_t table = pe + (Number(program, pe + 24, 2) == 0x20B ? 264 : 248);
    for (size_t i = 0; i < Number(program, pe + 6, 2); ++i) {
        const size_t at = table + 40 * i;
        Section& one = sections[program.substr(at, 8).c_str()];
        one = {Number(program, at + 8), Number(program, at + 12), Number(program, at + 16), {}};
        one.raw = program.substr(Number(program, at + 20), one.rawSize);
    }
    return sections;
}

std::vector<uint32_t> TrapsOf(const std::string& program, const std::string& pbd) {
    const Section text = ReadSections(program)[".text"];
    const uint32_t base = Number(program, Number(program, 60) + 52);
    const uint32_t low = base + text.rva, high = low + text.virtualSize;
    uint32_t start = 0;
    for (size_t at = 0; pbd.find("PBMAIN") != std::string::npos && at + 4 <= pbd.size(); ++at) {
        const uint32_t value = Number(pbd, at);
        if (low + 64 < value && value < high && (start == 0 || value < start)) start = value;
    }
    std::vector<uint32_t> traps;
    if (start == 0) return traps;
    for (size_t at = start - low; at < text.raw.size(); ++at)
        if (text.raw[at] == '\xCC' && text.raw[at - 1] != '\xCC') traps.push_back(text.rva + static_cast<uint32_t>(at));
    return traps;
}

std::vector<int> StatementLines(const std::string& source) {
    std::vector<int> found;
    bool inside = false;
    int number = 0;
    for (const std::string& raw : Lines(source)) {
        ++number;
        const std::string line = Upper(raw.substr(std::min(raw.find_first_not_of(" \t"), raw.size())));
        const bool alone =
            line == "ELSE" || line == "END IF" || line.starts_with("ELSE ") || line.starts_with("END IF ");
        const bool comment = line.empty() || line[0] == '\'' || line == "REM" || line.starts_with("REM ");
        if (inside && !alone && !comment && raw[0] != '#') found.push_back(number);
        if (line.starts_with("FUNCTION PBMAIN") || line.starts_with("SUB PBMAIN"))
            inside = true;
        else if (inside && (line.starts_with("END FUNCTION") || line.starts_with("END SUB")))
            break;
    }
    return found;
}

}  // namespace samples
