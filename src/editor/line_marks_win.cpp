#include "editor/line_marks.h"

#include "base/events.h"
#include "editor/margins.h"
#include "editor/pane_state.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace {

constexpr int kKeptMarks[] = {kMarkBookmark, kMarkBreakpoint, kMarkCurrent, kMarkCurrentLine};
constexpr LRESULT kUsersMask = (1 << kMarkBookmark) | (1 << kMarkBreakpoint);
constexpr LRESULT kKeptMask = kUsersMask | (1 << kMarkCurrent) | (1 << kMarkCurrentLine);
constexpr std::size_t kMostLines = 4'000'000;  // that the moves of one pane hold: 16 MB

bool IsKept(LRESULT marker) { return std::ranges::find(kKeptMarks, marker) != std::end(kKeptMarks); }

// Takes the marks off a line. `index`: what stands for the line.
void TakeFromLine(HWND editor, LRESULT line, std::int32_t index, std::vector<TakenMark>* taken) {
    const std::size_t before = taken->size();
    for (LRESULT which = 0;; ++which) {
        const LRESULT handle = PaneSend(editor, SCI_MARKERHANDLEFROMLINE, line, which);
        if (handle < 0) break;
        const LRESULT marker = PaneSend(editor, SCI_MARKERNUMBERFROMLINE, line, which);
        if (IsKept(marker)) taken->push_back({index, static_cast<int>(marker), static_cast<int>(handle)});
    }
    for (std::size_t i = before; i < taken->size(); ++i) PaneSend(editor, SCI_MARKERDELETEHANDLE, (*taken)[i].handle);
}

// Takes the marks off all lines from `first` to `last` for which `indexOf` gives an index.
template <typename IndexOf>
std::vector<TakenMark> TakeFromLines(HWND editor, LRESULT first, LRESULT last, IndexOf indexOf) {
    std::vector<TakenMark> taken;
    LRESULT line = PaneSend(editor, SCI_MARKERNEXT, first, kKeptMask);
    for (; line >= 0 && line <= last; line = PaneSend(editor, SCI_MARKERNEXT, line + 1, kKeptMask))
        if (const std::int32_t index = indexOf(line); index >= 0) TakeFromLine(editor, line, index, &taken);
    return taken;
}

// The matches that are marked in the lines from `first` to `last` for which `indexOf` gives an index. Text that is taken out
// loses them.
template <typename IndexOf>
std::vector<TakenMatch> MatchesInLines(HWND editor, LRESULT first, LRESULT last, IndexOf indexOf) {
    std::vector<TakenMatch> matches;
    const LRESULT end = PaneSend(editor, SCI_POSITIONFROMLINE, last + 1);
    for (LRESULT at = PaneSend(editor, SCI_POSITIONFROMLINE, first); at < end;) {
        const LRESULT next = PaneSend(editor, SCI_INDICATOREND, kIndicatorFound, at);
        if (next <= at) break;  // there is none in the whole text
        const LRESULT line = PaneSend(editor, SCI_LINEFROMPOSITION, at);
        const LRESULT start = PaneSend(editor, SCI_POSITIONFROMLINE, line);
        const bool marked = PaneSend(editor, SCI_INDICATORVALUEAT, kIndicatorFound, at) != 0;
        const LRESULT stop = marked ? std::min(next, PaneSend(editor, SCI_POSITIONFROMLINE, line + 1)) : next;
        const std::int32_t index = marked ? indexOf(line) : -1;
        if (index >= 0) matches.push_back({index, at - start, stop - at});
        at = std::max(stop, at + 1);
    }
    return matches;
}

void MarkMatch(HWND editor, LRESULT line, const TakenMatch& match) {
    const LRESULT before = PaneSend(editor, SCI_GETINDICATORCURRENT);
    PaneSend(editor, SCI_SETINDICATORCURRENT, kIndicatorFound);
    const LRESULT start = PaneSend(editor, SCI_POSITIONFROMLINE, line) + match.start;
    const LRESULT room = PaneSend(editor, SCI_POSITIONFROMLINE, line + 1) - start;
    if (room > 0) PaneSend(editor, SCI_INDICATORFILLRANGE, start, std::min(match.length, room));
    PaneSend(editor, SCI_SETINDICATORCURRENT, before);
}

void TakeBefore(HWND editor, LineMarksMove* move) {
    const LRESULT last = move->first + static_cast<LRESULT>(move->after.size()) - 1;
    const auto indexOf = [move](LRESULT line) { return static_cast<std::int32_t>(line - move->first); };
    move->taken = TakeFromLines(editor, move->first, last, indexOf);
    move->takenMatches = MatchesInLines(editor, move->first, last, indexOf);
}

void TakeAfter(HWND editor, LineMarksMove* move) {
    LRESULT first = -1, last = -1;
    for (const LRESULT line : move->after) {
        if (line >= 0 && (first < 0 || line < first)) first = line;
        last = std::max(last, line);
    }
    move->taken.clear();
    move->takenMatches.clear();
    if (first < 0) return;
    std::vector<std::int32_t> indexes(static_cast<std::size_t>(last - first) + 1, -1);
    for (std::size_t i = 0; i < move->after.size(); ++i)
        if (move->after[i] >= 0)
            indexes[static_cast<std::size_t>(move->after[i] - first)] = static_cast<std::int32_t>(i);
    const auto indexOf = [&](LRESULT line) { return indexes[static_cast<std::size_t>(line - first)]; };
    move->taken = TakeFromLines(editor, first, last, indexOf);
    move->takenMatches = MatchesInLines(editor, first, last, indexOf);
}

// The mark has another handle now; -1: it is off, and may come back.
void TellRenewed(HWND editor, int before, int after) {
    if (const PaneState* const state = PaneStateOf(editor); state != nullptr && state->document != 0)
        g_events.markerRenewed(state->document, before, after);
}

void PutOnLine(HWND editor, LRESULT line, const TakenMark& mark) {
    TellRenewed(editor, mark.handle, static_cast<int>(PaneSend(editor, SCI_MARKERADD, line, mark.marker)));
}

void PutBefore(HWND editor, LineMarksMove* move) {
    for (const TakenMark& mark : std::exchange(move->taken, {})) PutOnLine(editor, move->first + mark.line, mark);
    for (const TakenMark& mark : std::exchange(move->gone, {})) PutOnLine(editor, move->first + mark.line, mark);
    for (const auto matches : {&LineMarksMove::takenMatches, &LineMarksMove::goneMatches})
        for (const TakenMatch& match : std::exchange(move->*matches, {}))
            MarkMatch(editor, move->first + match.line, match);
}

void PutAfter(HWND editor, LineMarksMove* move) {
    for (const TakenMark& mark : std::exchange(move->taken, {})) {
        const LRESULT line = move->after[static_cast<std::size_t>(mark.line)];
        if (line >= 0) {
            PutOnLine(editor, line, mark);
        } else {
            move->gone.push_back(mark);
            TellRenewed(editor, mark.handle, -1);
        }
    }
    for (const TakenMatch& match : std::exchange(move->takenMatches, {})) {
        const LRESULT line = move->after[static_cast<std::size_t>(match.line)];
        line >= 0 ? MarkMatch(editor, line, match) : move->goneMatches.push_back(match);
    }
}

// A token names the move and tells whether its lines are about to be changed or have been changed.
int BeforeToken(int token) { return token * 2; }
int AfterToken(int token) { return token * 2 + 1; }

// Scintilla sends SCN_SAVEPOINTLEFT only at a change of the text. This action has left the save point by then, so it is
// told here.
void AddActionBefore(HWND editor, int token) {
    const bool saved = PaneSend(editor, SCI_GETMODIFY) == 0;
    PaneSend(editor, SCI_ADDUNDOACTION, BeforeToken(token), UNDO_NONE);
    if (!saved || PaneSend(editor, SCI_GETMODIFY) == 0) return;
    SCNotification left = {};
    left.nmhdr = {.hwndFrom = editor, .idFrom = static_cast<UINT_PTR>(GetDlgCtrlID(editor)), .code = SCN_SAVEPOINTLEFT};
    SendMessageW(GetParent(editor), WM_NOTIFY, left.nmhdr.idFrom, reinterpret_cast<LPARAM>(&left));
}

void KeepMove(LineMarkMoves* moves, LineMarksMove move) {
    moves->made.push_back(std::move(move));
    std::size_t lines = 0;
    for (const LineMarksMove& each : moves->made) lines += each.after.size();
    while (lines > kMostLines && moves->made.size() > 1) {
        lines -= moves->made.front().after.size();
        moves->made.erase(moves->made.begin());
    }
}

}  // namespace

bool LineMarksAreIn(HWND editor, const LineBlock& block) {
    // SCI_MARKERNEXT may look through all lines up to the end of the text, and there may be a block for each second line.
    constexpr std::ptrdiff_t kFewLines = 32;
    if (block.count() <= kFewLines) {
        for (LRESULT line = block.first; line <= block.last; ++line)
            if ((PaneSend(editor, SCI_MARKERGET, line) & kKeptMask) != 0) return true;
        return false;
    }
    const LRESULT marked = PaneSend(editor, SCI_MARKERNEXT, block.first, kKeptMask);
    return marked >= 0 && marked <= block.last;
}

bool LineMarksTakenAreUsers(const LineMarksMove& move) {
    return std::ranges::any_of(
        move.taken, [](const TakenMark& mark) { return (kUsersMask >> mark.marker & 1) != 0; });
}

LineMarksMove LineMarksTake(HWND editor, const LineBlock& block) {
    LineMarksMove move;
    move.first = block.first;
    move.after.assign(static_cast<std::size_t>(std::max<std::ptrdiff_t>(block.count(), 0)), -1);
    if (PaneState* const state = PaneStateOf(editor); state != nullptr) move.token = ++state->lineMarks.lastToken;
    TakeBefore(editor, &move);
    AddActionBefore(editor, move.token);
    return move;
}

void LineMarksPut(HWND editor, LineMarksMove move) {
    PutAfter(editor, &move);
    PaneSend(editor, SCI_ADDUNDOACTION, AfterToken(move.token), UNDO_NONE);
    if (PaneState* const state = PaneStateOf(editor); state != nullptr) KeepMove(&state->lineMarks, std::move(move));
}

void LineMarksOnUndo(HWND editor, int token, bool undo) {
    PaneState* const state = PaneStateOf(editor);
    if (state == nullptr) return;
    const auto move = std::ranges::find(state->lineMarks.made, token / 2, &LineMarksMove::token);
    if (move == state->lineMarks.made.end()) return;
    const bool after = token == AfterToken(move->token);
    // Undo meets the end of the change first, redo its beginning.
    if (after == undo)
        after ? TakeAfter(editor, &*move) : TakeBefore(editor, &*move);
    else
        after ? PutAfter(editor, &*move) : PutBefore(editor, &*move);
}
