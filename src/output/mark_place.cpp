#include "output/mark_place.h"

#include <algorithm>
#include <functional>

namespace {

constexpr std::size_t kMostRemovals = 64;             // kept of one place
constexpr std::ptrdiff_t kLongestCounted = 64 << 10;  // bytes, in which each place counts the line breaks
constexpr std::string_view kBlanks = " \t\r\n";

std::ptrdiff_t LengthOf(const MarkEdit& edit) { return static_cast<std::ptrdiff_t>(edit.text.size()); }

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

bool IsBlankText(std::string_view text) { return text.find_first_not_of(kBlanks) == std::string_view::npos; }

// Line breaks of any kind.
std::ptrdiff_t LineBreaks(std::string_view text) {
    std::ptrdiff_t count = 0;
    for (std::size_t i = 0; i < text.size(); ++i)
        count += text[i] == '\n' || (text[i] == '\r' && (i + 1 == text.size() || text[i + 1] != '\n'));
    return count;
}

// Start of the line (from 0) of the text; npos: it has no such line.
std::size_t StartOfLine(std::string_view text, std::ptrdiff_t line) {
    std::size_t at = 0;
    for (; line > 0; --line) {
        at = text.find_first_of("\r\n", at);
        if (at == std::string_view::npos) return at;
        at += text.substr(at).starts_with("\r\n") ? 2 : 1;
    }
    return at;
}

std::string_view LineAt(std::string_view text, std::size_t start) {
    return text.substr(start, text.find_first_of("\r\n", start) - start);
}

MarkSpan StatementOf(std::string_view line) {
    const std::size_t first = line.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return {static_cast<std::ptrdiff_t>(first), static_cast<std::ptrdiff_t>(line.find_last_not_of(kBlanks) + 1)};
}

bool IsThere(const MarkPlace& place) { return place.removals.empty() || place.removals.back().replaced; }

void TakeAway(MarkPlace& place, const MarkEdit& edit) {
    if (place.removals.size() >= kMostRemovals) place.removals.erase(place.removals.begin());
    const std::ptrdiff_t offset = place.start - edit.position;
    place.removals.push_back({.offset = offset,
                              .length = LengthOf(edit),
                              .lines = edit.lines,
                              .lineOffset = offset > kLongestCounted
                                                ? -1
                                                : LineBreaks(edit.text.substr(0, static_cast<std::size_t>(offset))),
                              .hash = edit.hash,
                              .blank = IsBlankText(edit.text),
                              .edit = edit.number,
                              .span = place.end - place.start});
    place.start = place.end = edit.position;
}

bool IsTextOf(const MarkRemoval& removal, const MarkEdit& edit) {
    return removal.length == LengthOf(edit) && removal.hash == edit.hash;
}

// The removed text is there again, at its place or, as lines that were moved, at another one.
bool ComesBack(MarkPlace& place, const MarkEdit& edit) {
    const bool here = edit.position == place.start;
    std::size_t at = place.removals.size() - 1;
    // Undo goes back beyond a text that was there in between.
    while (edit.undone && here && at > 0 && !IsTextOf(place.removals[at], edit)) --at;
    const MarkRemoval removal = place.removals[at];
    if (!IsTextOf(removal, edit)) return false;
    if (!here && (removal.lines == 0 || removal.blank)) return false;  // such a text is typed anywhere
    place.removals.resize(at);
    place.start = edit.position + removal.offset;
    place.end = place.start + removal.span;
    return true;
}

// Other text was put in place of the removed one at once: the line is there in another form.
bool IsReplaced(MarkPlace& place, const MarkEdit& edit) {
    MarkRemoval& last = place.removals.back();
    if (edit.number != last.edit + 1 || edit.position != place.start || edit.lines != last.lines || last.lineOffset < 0)
        return false;
    const std::size_t start = StartOfLine(edit.text, last.lineOffset);
    if (start == std::string_view::npos) return false;
    const MarkSpan span = StatementOf(LineAt(edit.text, start));
    if (span.start == span.end) return false;
    last.replaced = true;
    place.start = edit.position + static_cast<std::ptrdiff_t>(start) + span.start;
    place.end = place.start + span.end - span.start;
    place.caret = 0;
    return true;
}

// Undo puts back what was removed at an end of the place.
bool GrowAgain(MarkPlace& place, const MarkEdit& edit) {
    if (!edit.undone || place.cuts.empty()) return false;
    const MarkCut cut = place.cuts.back();
    const std::ptrdiff_t edge = cut.before > 0 ? place.start : place.end;
    if (edit.position != edge || cut.length != LengthOf(edit) || cut.hash != edit.hash) return false;
    if (cut.before > 0) {
        place.start = edit.position + cut.length - cut.before;
        place.end += cut.length;
    } else {
        place.end = edit.position + cut.behind;
    }
    place.cuts.pop_back();
    return true;
}

bool AfterInsertion(MarkPlace& place, const MarkEdit& edit) {
    const std::ptrdiff_t length = LengthOf(edit);
    if (!IsThere(place)) {
        if (ComesBack(place, edit) || IsReplaced(place, edit)) return true;
        if (edit.position < place.start) place.start = place.end = place.start + length;
        return false;
    }
    if (GrowAgain(place, edit)) return true;
    if (edit.position <= place.start) place.start += length;
    if (edit.position < place.end || place.start > place.end) place.end += length;
    return false;
}

bool IsCovered(const MarkPlace& place, std::ptrdiff_t from, std::ptrdiff_t to, bool lines) {
    if (place.start < from || place.end > to) return false;
    return place.start < place.end || lines || (from < place.start && place.start < to);
}

void KeepCut(MarkPlace& place, const MarkEdit& edit, std::ptrdiff_t before, std::ptrdiff_t behind) {
    if (place.cuts.size() >= kMostRemovals) place.cuts.erase(place.cuts.begin());
    place.cuts.push_back({.length = LengthOf(edit), .hash = edit.hash, .before = before, .behind = behind});
}

bool AfterRemoval(MarkPlace& place, const MarkEdit& edit) {
    const std::ptrdiff_t from = edit.position;
    const std::ptrdiff_t length = LengthOf(edit);
    const std::ptrdiff_t to = from + length;
    const bool lines = edit.lines > 0;
    const bool whole = place.removals.empty()
                           ? IsCovered(place, from, to, lines)
                           : from <= place.start && place.start <= to && (from < place.start || lines);
    if (whole) {
        TakeAway(place, edit);
        return true;
    }
    if (to <= place.start) {
        place.start -= length;
        place.end -= length;
    } else if (from < place.end && from <= place.start) {
        KeepCut(place, edit, to - place.start, 0);
        place.caret = std::max<std::ptrdiff_t>(place.caret - (to - place.start), 0);
        place.start = from;
        place.end -= length;
    } else if (from < place.end && to < place.end) {
        place.end -= length;
    } else if (from < place.end) {
        KeepCut(place, edit, 0, place.end - from);
        place.end = from;
    }
    return false;
}

bool IsWordByte(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x80 || (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= 'a' && byte <= 'z') || byte == '_';
}

// The type of a BASIC name: count%, text$.
bool IsSuffix(char c) { return c == '%' || c == '&' || c == '!' || c == '#' || c == '$' || c == '@' || c == '?'; }

// Of a constant, a string constant and a metastatement: %SIZE, $NAME, #INCLUDE.
bool IsPrefix(char c) { return c == '%' || c == '$' || c == '#'; }

}  // namespace

bool MarkIsGone(const MarkPlace& place) {
    for (auto removal = place.removals.rbegin(); removal != place.removals.rend() && !removal->replaced; ++removal)
        if (removal->lines > 0) return true;
    return false;
}

MarkEdit WholeEdit(MarkEdit edit) {
    edit.lines = LineBreaks(edit.text);
    edit.hash = std::hash<std::string_view>{}(edit.text);
    return edit;
}

bool MoveMark(MarkPlace& place, const MarkEdit& edit) {
    return edit.inserted ? AfterInsertion(place, edit) : AfterRemoval(place, edit);
}

MarkSpan SpanOfDiagnostic(std::string_view line, std::ptrdiff_t column) {
    const MarkSpan statement = StatementOf(line);
    if (column < statement.start || statement.start == statement.end) return statement;
    // Behind the end of the line something is missing: the last word is what it is missing after.
    std::ptrdiff_t at = std::min(column, statement.end - 1);
    const auto byte = [line](std::ptrdiff_t i) { return line[static_cast<std::size_t>(i)]; };
    if (IsBlank(byte(at))) return statement;
    const bool prefixed = IsPrefix(byte(at)) && at + 1 < statement.end && IsWordByte(byte(at + 1));
    std::ptrdiff_t end = at + 1 + prefixed;
    if (prefixed || IsWordByte(byte(at))) {
        while (!prefixed && at > statement.start && IsWordByte(byte(at - 1))) --at;
        while (end < statement.end && IsWordByte(byte(end))) ++end;
        if (end < statement.end && IsSuffix(byte(end))) ++end;
    } else if (byte(at) == '"') {
        const std::size_t close = line.find('"', static_cast<std::size_t>(end));
        end = close == std::string_view::npos ? statement.end : static_cast<std::ptrdiff_t>(close) + 1;
    }
    return {at, std::min(end, statement.end)};
}
