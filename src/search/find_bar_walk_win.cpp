#include "search/find_bar_walk.h"

#include "base/clock.h"
#include "scintilla/sci.h"
#include "search/find_editor.h"
#include "search/find_internal.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t kMostCounted = 1'000'000;  // matches; their starts are kept
constexpr std::ptrdiff_t kAboveView = 4 * 1024;  // bytes above the view in which a match in sight may begin
constexpr std::ptrdiff_t kMostView = 16 * 1024;  // bytes in sight that are searched in whole lines
constexpr int kMostMarks = 5000;                 // of a part
constexpr double kMarkMs = 30;

// One part of looking for the match to show. False when the time is over.
bool FindPart(FindBarWalk& walk, const RegexText& text, const RegexGoesOn& inTime, std::optional<FindSpan>& found) {
    RegexSearch search(walk.query.code);
    search.Begin(text, {walk.findAt, std::min(walk.findEnd, text.length)}, false, inTime);
    walk.end = search.Next();
    walk.findAt = search.Position();
    if (walk.end == RegexResult::Stopped) return false;
    if (walk.end == RegexResult::Match) found = search.Match();
    if (walk.end == RegexResult::NoMatch && !walk.wrapped) {
        walk.wrapped = true;
        walk.findAt = 0;
        walk.findEnd = text.length;
        return true;
    }
    walk.finding = false;
    return true;
}

bool CountPart(FindBarWalk& walk, const RegexText& text, const RegexGoesOn& inTime) {
    RegexSearch search(walk.query.code);
    search.Begin(text, {walk.countAt, text.length}, walk.lastEnd == walk.countAt, inTime);
    while ((walk.end = search.Next()) == RegexResult::Match) {
        walk.capped = walk.starts.size() >= kMostCounted;
        if (walk.capped) break;
        walk.starts.push_back(search.Match().start);
        walk.lastEnd = search.Match().end;
    }
    walk.countAt = search.Position();
    if (walk.end == RegexResult::Stopped) return false;
    walk.counting = false;
    return true;
}

// The text in sight: in whole lines, or only the parts of lines when these are long.
std::vector<FindSpan> VisibleText(HWND editor) {
    const auto ask = [editor](UINT message, LRESULT wParam = 0, LRESULT lParam = 0) {
        return SciSend(editor, message, static_cast<WPARAM>(wParam), lParam);
    };
    const auto textOf = [&](LRESULT from, LRESULT to) {
        return FindSpan{ask(SCI_POSITIONFROMLINE, from), ask(SCI_GETLINEENDPOSITION, to)};
    };
    const LRESULT top = ask(SCI_GETFIRSTVISIBLELINE), bottom = top + ask(SCI_LINESONSCREEN) + 1;
    const FindSpan whole = textOf(ask(SCI_DOCLINEFROMVISIBLE, top), ask(SCI_DOCLINEFROMVISIBLE, bottom));
    if (whole.end - whole.start <= kMostView) return {whole};
    RECT client = {};
    GetClientRect(editor, &client);
    if (ask(SCI_GETWRAPMODE) != SC_WRAP_NONE)
        return {{ask(SCI_POSITIONFROMPOINT, 0, 0), ask(SCI_POSITIONFROMPOINT, client.right, client.bottom)}};
    std::vector<FindSpan> parts;
    for (LRESULT row = top, before = -1; row <= bottom; ++row) {
        const LRESULT line = ask(SCI_DOCLINEFROMVISIBLE, row);
        if (line == std::exchange(before, line)) continue;
        const FindSpan text = textOf(line, line);
        const LRESULT y = ask(SCI_POINTYFROMPOSITION, 0, text.start);
        parts.push_back(
            {std::clamp<std::ptrdiff_t>(ask(SCI_POSITIONFROMPOINT, 0, y), text.start, text.end),
             std::clamp<std::ptrdiff_t>(ask(SCI_POSITIONFROMPOINT, client.right, y), text.start, text.end)});
    }
    return parts;
}

// Marks the matches in a part of the text. Returns what was searched.
FindSpan MarkPart(const FindBarWalk& walk, FindSpan part, const RegexGoesOn& inTime) {
    const LRESULT above = SciSend(walk.editor, SCI_LINEFROMPOSITION,
                                  static_cast<WPARAM>(std::max<std::ptrdiff_t>(0, part.start - kAboveView)));
    const std::ptrdiff_t from = std::max<std::ptrdiff_t>(
        SciSend(walk.editor, SCI_POSITIONFROMLINE, static_cast<WPARAM>(above)), part.start - 2 * kAboveView);
    RegexSearch search(walk.query.code);
    search.Begin(EditorTextOf(walk.editor), {from, part.end}, false, inTime);
    for (int marks = 0; marks < kMostMarks && search.Next() == RegexResult::Match; ++marks)
        if (search.Match().end > part.start) FindMark(walk.editor, FindMarks::Bar, search.Match());
    return {from, part.end};
}

}  // namespace

void WalkForget(FindBarWalk& walk) {
    if (walk.editor != nullptr && IsWindow(walk.editor))
        FindUnmark(walk.editor, FindMarks::Bar, {0, SciSend(walk.editor, SCI_GETLENGTH)});
    walk = {.editor = walk.editor};
}

void WalkFindFrom(FindBarWalk& walk, std::ptrdiff_t from) {
    walk.finding = true;
    walk.wrapped = false;
    walk.findAt = from;
    walk.findEnd = SciSend(walk.editor, SCI_GETLENGTH);
    WalkCountAgain(walk);
}

void WalkCountAgain(FindBarWalk& walk) {
    walk.counting = walk.query.code != nullptr;
    walk.capped = false;
    walk.countAt = 0;
    walk.lastEnd = -1;
    walk.starts.clear();
}

bool WalkStep(FindBarWalk& walk, double milliseconds, std::optional<FindSpan>& found) {
    const double until = ClockMs() + milliseconds;
    const RegexGoesOn inTime = [until](std::ptrdiff_t) { return ClockMs() < until; };
    const RegexText text = EditorTextOf(walk.editor);
    bool goesOn = walk.query.code != nullptr;
    while (goesOn && walk.finding) goesOn = FindPart(walk, text, inTime, found);
    if (walk.end == RegexResult::TooComplex) walk.counting = false;
    if (goesOn && walk.counting) CountPart(walk, text, inTime);
    return walk.finding || walk.counting;
}

void WalkMarkVisible(FindBarWalk& walk) {
    FindUnmark(walk.editor, FindMarks::Bar, walk.marked);
    walk.marked = {};
    if (walk.query.code == nullptr) return;
    const double until = ClockMs() + kMarkMs;
    const RegexGoesOn inTime = [until](std::ptrdiff_t) { return ClockMs() < until; };
    const std::vector<FindSpan> view = VisibleText(walk.editor);
    for (const FindSpan& part : view) {
        const FindSpan searched = MarkPart(walk, part, inTime);
        walk.marked = &part == &view.front() ? searched : FindSpan{walk.marked.start, searched.end};
    }
}

FindBarCount WalkCount(const FindBarWalk& walk, FindSpan shown) {
    FindBarCount count{.total = walk.starts.size(), .counting = walk.finding || walk.counting, .capped = walk.capped};
    const auto place = std::ranges::lower_bound(walk.starts, shown.start);
    if (place != walk.starts.end() && *place == shown.start)
        count.current = static_cast<std::size_t>(place - walk.starts.begin()) + 1;
    return count;
}
