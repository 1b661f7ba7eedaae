#include "ai/replacement_marks.h"

#include "base/line_diff.h"

#include <algorithm>

namespace {

constexpr int kFewLines = 10;  // new lines under which the removed ones are still found

bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// As an annotation can show it: Scintilla draws no tabs there, and an empty line would not be coloured.
std::string ShownLine(std::string_view line, int tabWidth) {
    std::string shown;
    std::size_t column = 0;
    for (const char c : line) {
        if (shown.size() >= kShownLineBytes && !IsContinuation(c)) return shown + "...";
        if (c == '\t') {
            const std::size_t width = static_cast<std::size_t>(std::clamp(tabWidth, 1, 64));
            const std::size_t spaces = width - column % width;
            shown.append(spaces, ' ');
            column += spaces;
            continue;
        }
        shown += static_cast<unsigned char>(c) < ' ' ? '?' : c;
        if (!IsContinuation(c)) ++column;
    }
    return shown.empty() ? " " : shown;
}

std::string Lines(int count) { return std::to_string(count) + (count == 1 ? " line" : " lines"); }

// The first of the lines from `first` on; `room` is how many may still be shown.
std::string ShownLines(const std::vector<std::string_view>& lines, const LineHunk& hunk, int tabWidth, int* room) {
    const int count = hunk.oldEnd - hunk.oldFirst;
    int shown = std::min({count, kShownRemoved, *room});
    if (shown == count - 1 && shown > 0 && shown < *room) shown = count;  // the line itself in place of its count
    *room -= shown;
    std::string text;
    for (int line = hunk.oldFirst; line < hunk.oldFirst + shown; ++line) {
        if (line > hunk.oldFirst) text += '\n';
        text += ShownLine(lines[static_cast<std::size_t>(line)], tabWidth);
    }
    if (shown == 0) return "... " + Lines(count) + " removed";
    return shown < count
               ? text + "\n... " + std::to_string(count - shown) + " more " + (count - shown == 1 ? "line" : "lines")
               : text;
}

// The longest part of the line that fits, of whole characters; at least one character. Bytes.
std::size_t FittingPart(const std::string& line, const std::function<bool(const std::string&)>& fits) {
    std::size_t low = 1;
    std::size_t high = line.size();
    while (low < high) {
        const std::size_t middle = (low + high + 1) / 2;
        if (fits(line.substr(0, middle)))
            low = middle;
        else
            high = middle - 1;
    }
    while (low > 1 && low < line.size() && IsContinuation(line[low])) --low;
    while (low < line.size() && IsContinuation(line[low])) ++low;
    return low;
}

std::string WrappedText(std::string_view text, const std::function<bool(const std::string&)>& fits) {
    std::string wrapped;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        std::string line(text.substr(at, end - at));
        while (line.size() > 1 && !fits(line)) {
            const std::size_t part = FittingPart(line, fits);
            if (part == line.size()) break;
            wrapped += line.substr(0, part) + '\n';
            line.erase(0, part);
        }
        wrapped += line;
        if (end < text.size()) wrapped += '\n';
        at = end + 1;
    }
    return wrapped;
}

void AddRemoved(std::vector<RemovedLines>& removed, int below, std::string text) {
    if (!removed.empty() && removed.back().below == below)
        removed.back().text += "\n" + text;
    else
        removed.push_back({below, std::move(text)});
}

}  // namespace

ByteRange RangeAfterEdit(ByteRange range, const TextEdit& edit, std::size_t whole) {
    const std::size_t end = range.start + range.length;
    if (edit.inserted) {
        const bool inside = edit.position > range.start && edit.position < end;
        const bool edge = edit.position == range.start || edit.position == end;
        const bool refills = range.length == 0 || (edit.undone && range.length < whole);
        if (inside || (edge && refills))
            range.length += edit.length;
        else if (edit.position <= range.start)
            range.start += edit.length;
        return range;
    }
    const std::size_t editEnd = edit.position + edit.length;
    const std::size_t from = std::max(edit.position, range.start);
    const std::size_t to = std::min(editEnd, end);
    if (to > from) range.length -= to - from;
    if (edit.position < range.start) range.start -= std::min(editEnd, range.start) - edit.position;
    return range;
}

bool EditTouches(const ByteRange& range, const TextEdit& edit) {
    const std::size_t editEnd = edit.inserted ? edit.position : edit.position + edit.length;
    return edit.position <= range.start + range.length && editEnd >= range.start;
}

ReplacementMarks MarksOfReplacement(std::string_view oldText, std::string_view newText, int firstLine, int tabWidth) {
    const std::vector<std::string_view> oldLines = LinesOf(oldText);
    ReplacementMarks marks;
    int room = kShownRemovedTogether;
    for (const LineHunk& hunk : LineDiff(oldLines, LinesOf(newText))) {
        marks.addedCount += hunk.newEnd - hunk.newFirst;
        marks.removedCount += hunk.oldEnd - hunk.oldFirst;
        if (hunk.newEnd > hunk.newFirst) marks.added.push_back({firstLine + hunk.newFirst, firstLine + hunk.newEnd});
        if (hunk.oldEnd == hunk.oldFirst) continue;
        std::string text = ShownLines(oldLines, hunk, tabWidth, &room);
        const int above = firstLine + hunk.newFirst - 1;
        if (above >= 0)
            AddRemoved(marks.removed, above, std::move(text));
        else if (hunk.newEnd > hunk.newFirst && hunk.newEnd - hunk.newFirst <= kFewLines)
            AddRemoved(marks.removed, hunk.newEnd - 1, std::move(text));
        else
            AddRemoved(marks.removed, 0, "(removed above this line)\n" + text);
    }
    return marks;
}

void WrapRemoved(ReplacementMarks& marks, const std::function<bool(const std::string& part)>& fits) {
    for (RemovedLines& removed : marks.removed) removed.text = WrappedText(removed.text, fits);
}

std::wstring MarksSummary(const ReplacementMarks& marks) {
    const std::string text =
        marks.addedCount == 0 && marks.removedCount == 0
            ? "AI replacement: no line is different"
            : "AI replacement: " + Lines(marks.addedCount) + " new, " + std::to_string(marks.removedCount) + " removed";
    return {text.begin(), text.end()};
}
