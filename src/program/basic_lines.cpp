// Finds the statements of a BASIC source by how its lines begin. This is deliberately no parser: the rules are those by
// which the compilers place their code, including "ELSE IF" and the column of a "#". Pure.
#include "program/basic_lines.h"

#include "base/scan_text.h"

#include <algorithm>
#include <cstddef>

namespace {

// `prefix` is upper case. Only ASCII letters are compared without regard to case, whatever the locale.
bool BeginsWith(std::string_view text, std::string_view prefix) { return TakePrefix(&text, prefix); }

bool IsLineEnd(std::string_view rest) { return rest.empty() || rest[0] == '\r' || rest[0] == '\n'; }

bool IsKeywordAlone(std::string_view text, std::string_view keyword) {
    if (!BeginsWith(text, keyword)) return false;
    const std::string_view rest = text.substr(keyword.size());
    return IsLineEnd(rest) || IsBlank(rest[0]) || rest[0] == '\'';
}

// Calls `visit(line, number)` for each line until it returns false. The text after the last LF is a line too.
template <typename Visit>
void ForEachLine(std::string_view source, Visit visit) {
    for (std::uint32_t number = 1; !source.empty(); ++number) {
        const std::size_t end = source.find('\n');
        if (!visit(source.substr(0, end), number) || end == std::string_view::npos) return;
        source.remove_prefix(end + 1);
    }
}

// Tells for each line in turn whether it is a statement of PBMAIN.
struct PbmainWalk {
    bool inside = false;

    bool Records(std::string_view line, bool controlOnly) {
        const std::string_view text = WithoutLeadingBlanks(line);
        if (!inside) {
            inside = BeginsWith(text, "FUNCTION PBMAIN") || BeginsWith(text, "SUB PBMAIN");
            return false;
        }
        if (controlOnly || IsBasicCommentOrBlank(text) || line[0] == '#') return false;
        // The closing line is a statement, because the compiler places a trap on it.
        inside = !BeginsWith(text, "END FUNCTION") && !BeginsWith(text, "END SUB");
        return true;
    }
};

}  // namespace

bool IsBasicCommentOrBlank(std::string_view line) {
    const std::string_view text = WithoutLeadingBlanks(line);
    if (IsLineEnd(text) || text[0] == '\'') return true;
    if (!BeginsWith(text, "REM")) return false;
    const std::string_view rest = text.substr(3);
    return IsLineEnd(rest) || IsBlank(rest[0]);
}

bool IsBasicControlOnlyLine(std::string_view line) {
    const std::string_view text = WithoutLeadingBlanks(line);
    return IsKeywordAlone(text, "ELSE") || IsKeywordAlone(text, "END IF");
}

int CollectPbmainLines(std::string_view source, std::uint32_t* out, int capacity) {
    int count = 0;
    PbmainWalk walk;
    ForEachLine(source, [&](std::string_view line, std::uint32_t number) {
        if (count >= capacity) return false;
        if (walk.Records(line, IsBasicControlOnlyLine(line))) out[count++] = number;
        return true;
    });
    return count;
}

BasicLineIndex BuildBasicLineIndex(std::string_view source) {
    BasicLineIndex index;
    PbmainWalk walk;
    ForEachLine(source, [&](std::string_view line, std::uint32_t number) {
        const bool controlOnly = IsBasicControlOnlyLine(line);
        index.controlOnly.push_back(controlOnly);
        if (index.pbmain.size() < kMaxPbmainLines && walk.Records(line, controlOnly)) index.pbmain.push_back(number);
        return true;
    });
    return index;
}

bool IsControlOnly(const BasicLineIndex& index, std::int64_t line) {
    return line >= 1 && static_cast<std::uint64_t>(line) <= index.controlOnly.size() &&
           index.controlOnly[static_cast<std::size_t>(line - 1)];
}

std::uint32_t PreviousPbmainLine(const BasicLineIndex& index, std::int64_t line) {
    const auto above = std::lower_bound(index.pbmain.begin(), index.pbmain.end(), line,
                                        [](std::uint32_t statement, std::int64_t limit) { return statement < limit; });
    return above == index.pbmain.begin() ? 0 : *(above - 1);
}
