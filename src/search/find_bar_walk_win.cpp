#include "search/find_bar_walk.h"

#include "base/clock.h"
#include "scintilla/sci.h"
#include "search/find_editor.h"
#include "search/find_internal.h"

#include <algorithm>
#include <optional>

namespace {

constexpr std::size_t kMostCounted = 1'000'000;   // matches; their starts are kept
constexpr std::ptrdiff_t kAboveView = 4 * 1024;   // bytes above the view in which a match in sight may begin
constexpr std::ptrdiff_t kMostView = 256 * 1024;  // bytes of very long lines that get marks
constexpr int kMostMarks = 5000;
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

// The text in sight, in whole lines.
FindSpan VisibleText(HWND editor) {
    const auto lineShown = [editor](LRESULT visible) {
        return SciSend(editor, SCI_DOCLINEFROMVISIBLE, static_cast<WPARAM>(visible));
    };
    const LRESULT top = SciSend(editor, SCI_GETFIRSTVISIBLELINE);
    const LRESULT first = lineShown(top), last = lineShown(top + SciSend(editor, SCI_LINESONSCREEN) + 1);
    const FindSpan span{SciSend(editor, SCI_POSITIONFROMLINE, static_cast<WPARAM>(first)),
                        SciSend(editor, SCI_GETLINEENDPOSITION, static_cast<WPARAM>(last))};
    return {span.start, std::min(span.end, span.start + kMostView)};
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
    const FindSpan view = VisibleText(walk.editor);
    const double until = ClockMs() + kMarkMs;
    const RegexText text = EditorTextOf(walk.editor);
    const LRESULT above = SciSend(walk.editor, SCI_LINEFROMPOSITION,
                                  static_cast<WPARAM>(std::max<std::ptrdiff_t>(0, view.start - kAboveView)));
    const std::ptrdiff_t from = std::max<std::ptrdiff_t>(
        SciSend(walk.editor, SCI_POSITIONFROMLINE, static_cast<WPARAM>(above)), view.start - 2 * kAboveView);
    RegexSearch search(walk.query.code);
    search.Begin(text, {from, view.end}, false, [until](std::ptrdiff_t) { return ClockMs() < until; });
    for (int marks = 0; marks < kMostMarks && search.Next() == RegexResult::Match; ++marks)
        if (search.Match().end > view.start) FindMark(walk.editor, FindMarks::Bar, search.Match());
    walk.marked = {from, view.end};
}

FindBarCount WalkCount(const FindBarWalk& walk, FindSpan shown) {
    FindBarCount count{.total = walk.starts.size(), .counting = walk.finding || walk.counting, .capped = walk.capped};
    const auto place = std::ranges::lower_bound(walk.starts, shown.start);
    if (place != walk.starts.end() && *place == shown.start)
        count.current = static_cast<std::size_t>(place - walk.starts.begin()) + 1;
    return count;
}
