#include "base/difference.h"

#include "base/line_diff.h"
#include "base/utf8.h"

#include <algorithm>

namespace {

constexpr int kAround = 3;                  // lines shown before and after a change
constexpr std::size_t kLongestLine = 1000;  // bytes of a line that are shown

struct DifferenceText {
    const std::vector<std::string_view>& oldLines;
    const std::vector<std::string_view>& newLines;
    std::size_t most;
    std::vector<DifferenceLine> lines;

    void Add(DifferenceKind kind, const wchar_t* sign, std::string_view line) {
        if (lines.size() <= most) lines.push_back({kind, sign + Utf8ToWideText(line.substr(0, kLongestLine))});
    }
    void AddOld(DifferenceKind kind, const wchar_t* sign, int first, int end) {
        for (int line = first; line < end; ++line) Add(kind, sign, oldLines[static_cast<std::size_t>(line)]);
    }
    void AddNew(int first, int end) {
        for (int line = first; line < end; ++line)
            Add(DifferenceKind::Added, L"+ ", newLines[static_cast<std::size_t>(line)]);
    }
};

}  // namespace

std::vector<DifferenceLine> DifferenceOf(std::string_view oldText, std::string_view newText, std::size_t most) {
    // An empty text has no line here, so that nothing is shown as removed.
    const std::vector<std::string_view> oldLines = oldText.empty() ? std::vector<std::string_view>{} : LinesOf(oldText);
    const std::vector<std::string_view> newLines = LinesOf(newText);
    const std::vector<LineHunk> hunks = LineDiff(oldLines, newLines);
    DifferenceText shown{oldLines, newLines, most, {}};
    int at = 0;  // the first line of the old text that is not shown
    for (std::size_t i = 0; i < hunks.size() && shown.lines.size() < most; ++i) {
        const LineHunk& hunk = hunks[i];
        const int from = std::max(at, hunk.oldFirst - kAround);
        if (from > at || i == 0)
            shown.lines.push_back({DifferenceKind::Place, L"Line " + std::to_wstring(hunk.newFirst + 1)});
        shown.AddOld(DifferenceKind::Same, L"  ", from, hunk.oldFirst);
        shown.AddOld(DifferenceKind::Removed, L"- ", hunk.oldFirst, hunk.oldEnd);
        shown.AddNew(hunk.newFirst, hunk.newEnd);
        const int next = i + 1 < hunks.size() ? hunks[i + 1].oldFirst : static_cast<int>(oldLines.size());
        at = std::min(hunk.oldEnd + kAround, next);
        shown.AddOld(DifferenceKind::Same, L"  ", hunk.oldEnd, at);
    }
    if (shown.lines.size() > most) {
        shown.lines.resize(most);
        shown.lines.push_back({DifferenceKind::Place, L"..."});
    }
    return std::move(shown.lines);
}
