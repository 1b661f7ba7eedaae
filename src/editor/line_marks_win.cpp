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

std::vector<TakenMark> TakeBefore(HWND editor, const LineMarksMove& move) {
    const auto count = static_cast<LRESULT>(move.after.size());
    return TakeFromLines(editor, move.first, move.first + count - 1,
                         [&move](LRESULT line) { return static_cast<std::int32_t>(line - move.first); });
}

std::vector<TakenMark> TakeAfter(HWND editor, const LineMarksMove& move) {
    LRESULT first = -1, last = -1;
    for (const LRESULT line : move.after) {
        if (line >= 0 && (first < 0 || line < first)) first = line;
        last = std::max(last, line);
    }
    if (first < 0) return {};
    return TakeFromLines(editor, first, last, [&move](LRESULT line) {
        const auto found = std::ranges::find(move.after, static_cast<std::int32_t>(line));
        return found == move.after.end() ? -1 : static_cast<std::int32_t>(found - move.after.begin());
    });
}

// The mark has another handle now; -1: it is off, and may come back.
void TellRenewed(HWND editor, int before, int after) {
    if (const PaneState* const state = PaneStateOf(editor); state != nullptr && state->document != 0)
        g_events.markerRenewed(state->document, before, after);
}

void PutOnLine(HWND editor, LRESULT line, const TakenMark& mark) {
    TellRenewed(editor, mark.handle, static_cast<int>(PaneSend(editor, SCI_MARKERADD, line, mark.marker)));
}

void PutBefore(HWND editor, LineMarksMove* move, const std::vector<TakenMark>& marks) {
    for (const TakenMark& mark : marks) PutOnLine(editor, move->first + mark.line, mark);
    for (const TakenMark& mark : std::exchange(move->gone, {})) PutOnLine(editor, move->first + mark.line, mark);
}

void PutAfter(HWND editor, LineMarksMove* move, const std::vector<TakenMark>& marks) {
    for (const TakenMark& mark : marks) {
        const LRESULT line = move->after[static_cast<std::size_t>(mark.line)];
        if (line >= 0) {
            PutOnLine(editor, line, mark);
        } else {
            move->gone.push_back(mark);
            TellRenewed(editor, mark.handle, -1);
        }
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
    move.taken = TakeBefore(editor, move);
    AddActionBefore(editor, move.token);
    return move;
}

void LineMarksPut(HWND editor, LineMarksMove move) {
    PutAfter(editor, &move, std::exchange(move.taken, {}));
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
        move->taken = after ? TakeAfter(editor, *move) : TakeBefore(editor, *move);
    else if (after)
        PutAfter(editor, &*move, std::exchange(move->taken, {}));
    else
        PutBefore(editor, &*move, std::exchange(move->taken, {}));
}
