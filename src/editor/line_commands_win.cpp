// The commands for lines and letters at work in an editor. What they make of a text is in line_changes. UI thread.
#include "editor/line_commands.h"

#include "base/events.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "editor/caret_place.h"
#include "editor/caret_set.h"
#include "editor/caret_steps.h"
#include "editor/comment_toggle.h"
#include "editor/editor_pane.h"
#include "editor/line_changes.h"
#include "editor/line_marks.h"
#include "editor/margins.h"
#include "editor/pane_state.h"
#include "files/text_encoding.h"
#include "language/format_range.h"
#include "language/lexer_table.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "ui/long_work.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

LRESULT LineCountOf(HWND editor) { return PaneSend(editor, SCI_GETLINECOUNT); }

// The start of the line, or the end of the text behind its last line.
LRESULT LineStart(HWND editor, LRESULT line) {
    return line < LineCountOf(editor) ? PaneSend(editor, SCI_POSITIONFROMLINE, line) : PaneSend(editor, SCI_GETLENGTH);
}

std::string LinesText(HWND editor, const LineBlock& block) {
    return EditorPaneTextBetween(editor, LineStart(editor, block.first), LineStart(editor, block.last + 1));
}

void Replace(HWND editor, LRESULT start, LRESULT end, std::string_view text) {
    PaneSend(editor, SCI_SETTARGETRANGE, start, end);
    SciSend(editor, SCI_REPLACETARGET, text.size(), reinterpret_cast<LPARAM>(text.data()));
}

std::string_view EolOf(HWND editor) {
    switch (PaneSend(editor, SCI_GETEOLMODE)) {
        case SC_EOL_LF: return "\n";
        case SC_EOL_CR: return "\r";
        default: return "\r\n";
    }
}

void ShowStatus(const wchar_t* text) { g_events.statusText(text); }

// Whether the lines have something that they would lose if they were taken out and put in again.
bool HasMarksOrFolds(HWND editor, const LineBlock& block) {
    const LRESULT folded = PaneSend(editor, SCI_CONTRACTEDFOLDNEXT, block.first);
    return LineMarksAreIn(editor, block) || (folded >= 0 && folded <= block.last);
}

// --- Which lines

// The block of `blocks` in which the line is.
std::size_t BlockOf(const std::vector<LineBlock>& blocks, std::ptrdiff_t line) {
    const auto after = std::ranges::upper_bound(blocks, line, {}, &LineBlock::first);
    return after == blocks.begin() ? 0 : static_cast<std::size_t>(after - blocks.begin()) - 1;
}

// For each selection, the value of the block that its lines belong to.
std::vector<LRESULT> ForEachCaret(const std::vector<LineBlock>& own, const std::vector<LineBlock>& blocks,
                                  const std::vector<LRESULT>& ofBlocks) {
    std::vector<LRESULT> all;
    for (const LineBlock& lines : own) all.push_back(ofBlocks[BlockOf(blocks, lines.first)]);
    return all;
}

// The lines of the selections; without one, those of the whole document.
std::vector<LineBlock> LinesOrAll(HWND editor) {
    if (!CaretsAreEmpty(editor)) return MergedBlocks(CaretLines(editor));
    return {{0, LineCountOf(editor) - 1}};
}

// --- Duplicate and delete

bool EachSelectsWithinALine(HWND editor, const std::vector<CaretSpan>& spans) {
    return std::ranges::all_of(
        spans,
        [editor](const CaretSpan& span) {
            return span.start() < span.end() && PaneSend(editor, SCI_LINEFROMPOSITION, span.start()) ==
                                                    PaneSend(editor, SCI_LINEFROMPOSITION, span.end());
        });
}

// The indexes of the spans in the order of the text.
std::vector<std::size_t> InOrder(const std::vector<CaretSpan>& spans) {
    std::vector<std::size_t> order(spans.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::ranges::sort(order, {}, [&spans](std::size_t i) { return spans[i].start(); });
    return order;
}

// Replaces the text of each span by `make` of it, and selects what came of it; with `behind` the old text stays, and what
// was made stands behind it.
void ChangeSpans(HWND editor, std::vector<CaretSpan> spans, std::vector<CaretSpan> selected, bool behind,
                 const std::function<std::string(std::string_view)>& make) {
    const auto main = static_cast<std::size_t>(PaneSend(editor, SCI_GETMAINSELECTION));
    const CaretUndoStep step(editor);
    LRESULT moved = 0;
    for (const std::size_t i : InOrder(spans)) {
        CaretSpan& now = selected[i];
        now.anchor += moved;
        now.caret += moved;
        const LRESULT start = spans[i].start() + moved, end = spans[i].end() + moved;
        const std::string before = EditorPaneTextBetween(editor, start, end);
        const std::string text = make(before);
        const auto length = static_cast<LRESULT>(text.size());
        if (behind) {
            Replace(editor, end, end, text);
            now.anchor += length;
            now.caret += length;
            moved += length;
            continue;
        }
        if (text != before) Replace(editor, start, end, text);
        const LRESULT grown = length - (end - start);
        for (LRESULT* place : {&now.anchor, &now.caret})
            if (*place >= end) *place += grown;
        moved += grown;
    }
    CaretsSelect(editor, selected, main);
}

void DuplicateLines(HWND editor) {
    const std::vector<LineBlock> own = CaretLines(editor);
    const std::vector<LineBlock> blocks = MergedBlocks(own);
    const KeptCarets carets = CaretsKeep(editor);
    const CaretUndoStep step(editor);
    std::vector<LRESULT> shifts(blocks.size());
    LRESULT shift = 0;
    for (std::size_t i = 0; i < blocks.size(); ++i) shifts[i] = shift += blocks[i].count();
    for (std::size_t i = blocks.size(); i-- > 0;) {
        const std::string text = LinesText(editor, blocks[i]);
        const LRESULT end = LineStart(editor, blocks[i].last + 1);
        const bool lastLine = blocks[i].last + 1 == LineCountOf(editor);
        Replace(editor, end, end, lastLine ? std::string(EolOf(editor)) + text : text);
    }
    CaretsRestore(editor, carets, ForEachCaret(own, blocks, shifts));
}

void Duplicate(HWND editor) {
    const std::vector<CaretSpan> spans = CaretSpans(editor);
    if (!EachSelectsWithinALine(editor, spans)) return DuplicateLines(editor);
    ChangeSpans(editor, spans, spans, true, [](std::string_view text) { return std::string(text); });
}

void DeleteLines(HWND editor) {
    const std::vector<LineBlock> blocks = MergedBlocks(CaretLines(editor));
    const LRESULT column = PaneSend(editor, SCI_GETCOLUMN, PaneSend(editor, SCI_GETCURRENTPOS));
    {
        const CaretUndoStep step(editor);
        for (std::size_t i = blocks.size(); i-- > 0;) {
            const LineBlock& block = blocks[i];
            LineMarksMove marks = LineMarksTake(editor, block);
            // The line that becomes the last one loses its break, as the one that goes had none.
            const bool last = block.last + 1 == LineCountOf(editor) && block.first > 0;
            const LRESULT start =
                last ? PaneSend(editor, SCI_GETLINEENDPOSITION, block.first - 1) : LineStart(editor, block.first);
            Replace(editor, start, LineStart(editor, block.last + 1), {});
            LineMarksPut(editor, std::move(marks));
        }
    }
    std::vector<CaretSpan> spans;
    LRESULT gone = 0;
    for (const LineBlock& block : blocks) {
        const LRESULT line = std::min(block.first - gone, LineCountOf(editor) - 1);
        const LRESULT place = PaneSend(editor, SCI_FINDCOLUMN, line, column);
        spans.push_back({place, place});
        gone += block.count();
    }
    CaretsSelect(editor, spans, 0);
    CaretLeaveHiddenLine(editor);
}

// --- Move

// The lines that a block passes on its way: one, with the folded block that hides below it. Empty at the end of the text.
LineBlock LinesPassed(HWND editor, const LineBlock& block, bool up) {
    LineBlock passed = up ? LineBlock{block.first - 1, block.first - 1} : LineBlock{block.last + 1, block.last + 1};
    const LRESULT count = LineCountOf(editor);
    if (passed.first < 0 || passed.last >= count) return {0, -1};
    const auto hidden = [editor](LRESULT line) { return PaneSend(editor, SCI_GETLINEVISIBLE, line) == 0; };
    while (up && passed.first > 0 && hidden(passed.first)) --passed.first;
    while (!up && passed.last + 1 < count && hidden(passed.last + 1)) ++passed.last;
    return passed;
}

// Lets two neighbours change places. Only one of them is taken out and put in again; the other one keeps its marks and what
// is folded in it, so it is the one that has some.
void SwapBlocks(HWND editor, const LineBlock& upper, const LineBlock& lower) {
    const bool movesUpper = HasMarksOrFolds(editor, lower) || !HasMarksOrFolds(editor, upper);
    const LineBlock& moved = movesUpper ? upper : lower;
    const TextMove move = MoveOver(LinesText(editor, upper), LinesText(editor, lower), movesUpper);
    const LRESULT start = LineStart(editor, upper.first);
    LineMarksMove marks = LineMarksTake(editor, moved);
    const auto at = [start](std::size_t offset) { return start + static_cast<LRESULT>(offset); };
    Replace(editor, at(move.erased.start), at(move.erased.end), {});
    Replace(editor, at(move.at), at(move.at), move.text);
    std::iota(marks.after.begin(), marks.after.end(),
              static_cast<std::int32_t>(movesUpper ? upper.first + lower.count() : upper.first));
    LineMarksPut(editor, std::move(marks));
}

void MoveLines(HWND editor, bool up) {
    const std::vector<LineBlock> own = CaretLines(editor);
    const std::vector<LineBlock> blocks = MergedBlocks(own);
    const LineBlock& outer = up ? blocks.front() : blocks.back();
    if (LinesPassed(editor, outer, up).count() <= 0) return;  // at the end of the text nothing moves
    const KeptCarets carets = CaretsKeep(editor);
    std::vector<LRESULT> shifts(blocks.size());
    {
        const CaretUndoStep step(editor);
        for (std::size_t n = 0; n < blocks.size(); ++n) {
            const std::size_t i = up ? n : blocks.size() - 1 - n;
            const LineBlock passed = LinesPassed(editor, blocks[i], up);
            shifts[i] = up ? -passed.count() : passed.count();
            up ? SwapBlocks(editor, passed, blocks[i]) : SwapBlocks(editor, blocks[i], passed);
        }
    }
    CaretsRestore(editor, carets, ForEachCaret(own, blocks, shifts));
    PaneSend(editor, SCI_SCROLLCARET);
}

// --- Changes of the text of lines

// Replaces what differs in each line, so that marks and carets stay where they are.
bool ReplaceInLines(HWND editor, const LineBlock& block, const std::function<std::string(std::string_view)>& change,
                    LongWork& work) {
    const std::string before = LinesText(editor, block);
    const std::string after = change(before);
    const LRESULT start = LineStart(editor, block.first);
    const std::vector<LineReplacement> replacements = LineReplacements(before, after);
    double done = 0;
    for (const LineReplacement& each : replacements) {
        const LRESULT from = start + static_cast<LRESULT>(each.start);
        Replace(editor, from, from + static_cast<LRESULT>(each.length), each.text);
        if (!work.GoesOn(++done / static_cast<double>(replacements.size()))) return false;
    }
    return true;
}

void ChangeLines(HWND editor, const wchar_t* what, const std::vector<LineBlock>& blocks,
                 const std::function<std::string(std::string_view)>& change) {
    LongWork work(what, ShowStatus);
    {
        const CaretUndoStep step(editor);
        for (std::size_t i = blocks.size(); i-- > 0;)
            if (!ReplaceInLines(editor, blocks[i], change, work)) break;
    }
    if (work.Stopped()) EditorPaneTakeBack(editor);
    if (work.Shown()) g_events.statusText(work.Stopped() ? Text(L"Stopped: nothing was changed") : L"");
}

// Removes a part of the text that is whole lines, with the break above them when they are the last ones.
void RemoveLines(HWND editor, LRESULT start, LRESULT end) {
    LineBlock block = {PaneSend(editor, SCI_LINEFROMPOSITION, start), PaneSend(editor, SCI_LINEFROMPOSITION, end)};
    if (LineStart(editor, block.first) != start) ++block.first;
    if (LineStart(editor, block.last) == end && end < PaneSend(editor, SCI_GETLENGTH)) --block.last;
    if (!LineMarksAreIn(editor, block)) return Replace(editor, start, end, {});
    LineMarksMove marks = LineMarksTake(editor, block);
    Replace(editor, start, end, {});
    LineMarksPut(editor, std::move(marks));
}

void RemoveRepeated(HWND editor) {
    LongWork work(Text(L"Removing"), ShowStatus);
    const std::vector<LineBlock> blocks = LinesOrAll(editor);
    double removed = 0;
    {
        const CaretUndoStep step(editor);
        for (std::size_t i = blocks.size(); i-- > 0 && !work.Stopped();) {
            const std::vector<TextSpan> spans = RepeatedLines(LinesText(editor, blocks[i]));
            const LRESULT start = LineStart(editor, blocks[i].first);
            const LRESULT lines = LineCountOf(editor);
            for (std::size_t n = spans.size(); n-- > 0;) {
                RemoveLines(editor, start + static_cast<LRESULT>(spans[n].start),
                            start + static_cast<LRESULT>(spans[n].end));
                if (!work.GoesOn(1 - static_cast<double>(n) / static_cast<double>(spans.size()))) break;
            }
            removed += static_cast<double>(lines - LineCountOf(editor));
        }
    }
    if (work.Stopped()) EditorPaneTakeBack(editor);
    const std::wstring said = TextWith(L"{1} lines removed", {std::to_wstring(static_cast<long long>(removed))});
    ShowStatus(work.Stopped() ? Text(L"Stopped: nothing was changed") : said.c_str());
}

// What of each line of a selection of columns is selected; nothing for another selection.
std::vector<SortKey> KeysOfColumns(HWND editor, const LineBlock& block) {
    std::vector<SortKey> keys;
    if (PaneSend(editor, SCI_GETSELECTIONMODE) != SC_SEL_RECTANGLE) return keys;
    keys.resize(static_cast<std::size_t>(block.count()));
    for (const CaretSpan& span : CaretSpans(editor)) {
        const LRESULT line = PaneSend(editor, SCI_LINEFROMPOSITION, span.start());
        if (line < block.first || line > block.last) continue;
        keys[static_cast<std::size_t>(line - block.first)] = {
            static_cast<std::size_t>(span.start() - PaneSend(editor, SCI_POSITIONFROMLINE, line)),
            static_cast<std::size_t>(span.end() - span.start())};
    }
    return keys;
}

void SortBlock(HWND editor, const LineBlock& block, bool down, LongWork& work) {
    const std::string before = LinesText(editor, block);
    const SortedLines sorted =
        SortLines(before, down, KeysOfColumns(editor, block), [&work](double share) { return work.GoesOn(share); });
    if (sorted.stopped || sorted.text == before) return;
    LineMarksMove marks = LineMarksTake(editor, block);
    const LRESULT start = LineStart(editor, block.first);
    Replace(editor, start, start + static_cast<LRESULT>(before.size()), sorted.text);
    for (std::size_t i = 0; i < sorted.order.size(); ++i)
        marks.after[sorted.order[i]] = static_cast<std::int32_t>(block.first + static_cast<LRESULT>(i));
    LineMarksPut(editor, std::move(marks));
}

void SortSelected(HWND editor, bool down) {
    LongWork work(Text(L"Sorting"), ShowStatus);
    const std::vector<LineBlock> blocks = LinesOrAll(editor);
    const KeptCarets carets = CaretsKeep(editor);
    {
        const CaretUndoStep step(editor);
        for (std::size_t i = blocks.size(); i-- > 0 && !work.Stopped();) SortBlock(editor, blocks[i], down, work);
    }
    if (work.Stopped()) EditorPaneTakeBack(editor);
    if (work.Shown()) g_events.statusText(work.Stopped() ? Text(L"Stopped: nothing was sorted") : L"");
    CaretsRestore(editor, carets, {});
}

// A caret alone joins its line with the next one.
void JoinSelected(HWND editor) {
    std::vector<LineBlock> blocks = CaretLines(editor);
    const LRESULT last = LineCountOf(editor) - 1;
    for (LineBlock& block : blocks)
        if (block.first == block.last) block.last = std::min<std::ptrdiff_t>(block.last + 1, last);
    blocks = MergedBlocks(blocks);
    const CaretUndoStep step(editor);
    for (std::size_t i = blocks.size(); i-- > 0;) {
        const std::string before = LinesText(editor, blocks[i]);
        const std::string after = JoinLines(before);
        if (after == before) continue;
        LineMarksMove marks = LineMarksTake(editor, {blocks[i].first + 1, blocks[i].last});
        const LRESULT start = LineStart(editor, blocks[i].first);
        // What stays at the front is not touched, so a caret in it stays.
        const auto same = static_cast<std::size_t>(std::ranges::mismatch(before, after).in1 - before.begin());
        Replace(editor, start + static_cast<LRESULT>(same), start + static_cast<LRESULT>(before.size()),
                std::string_view(after).substr(same));
        LineMarksPut(editor, std::move(marks));
    }
}

// --- Letters

wchar_t UpperOf(wchar_t c) {
    CharUpperBuffW(&c, 1);
    return c;
}

wchar_t LowerOf(wchar_t c) {
    CharLowerBuffW(&c, 1);
    return c;
}

std::string InCase(std::string_view text, int command) {
    if (!IsValidUtf8Bytes(text.data(), text.size())) return std::string(text);  // its bytes would not come back
    std::wstring wide = Utf8ToWideText(text);
    const auto length = static_cast<DWORD>(wide.size());
    if (command == IDM_CASE_UPPER) CharUpperBuffW(wide.data(), length);
    if (command == IDM_CASE_LOWER) CharLowerBuffW(wide.data(), length);
    if (command == IDM_CASE_TITLE) wide = TitleCase(wide, UpperOf, LowerOf);
    return ToUtf8(wide);
}

void ChangeCase(HWND editor, int command) {
    const std::vector<CaretSpan> selected = CaretSpans(editor);
    std::vector<CaretSpan> spans = selected;
    for (CaretSpan& span : spans) {  // a caret alone means the word at it
        if (span.start() != span.end()) continue;
        span = {PaneSend(editor, SCI_WORDSTARTPOSITION, span.caret, TRUE),
                PaneSend(editor, SCI_WORDENDPOSITION, span.caret, TRUE)};
    }
    for (const std::size_t i : InOrder(spans))  // two carets in one word
        for (std::size_t n = 0; n < i; ++n)
            if (spans[n].start() < spans[i].end() && spans[i].start() < spans[n].end())
                spans[i].anchor = spans[i].caret;
    ChangeSpans(editor, spans, selected, false, [command](std::string_view text) { return InCase(text, command); });
}

std::size_t TabWidthOf(HWND editor) {
    return static_cast<std::size_t>(std::max<LRESULT>(1, PaneSend(editor, SCI_GETTABWIDTH)));
}

// The lines whose text or whose break an erasing takes away: those that are selected as a whole, up to the start of
// another line or to the end of the text; of any other selection, all but the first, which takes in the rest of the last.
std::optional<LineBlock> LinesErased(HWND editor) {
    if (PaneSend(editor, SCI_GETSELECTIONS) != 1 || CaretsAreEmpty(editor)) return std::nullopt;
    const LRESULT start = PaneSend(editor, SCI_GETSELECTIONSTART), end = PaneSend(editor, SCI_GETSELECTIONEND);
    LineBlock block = {PaneSend(editor, SCI_LINEFROMPOSITION, start), PaneSend(editor, SCI_LINEFROMPOSITION, end)};
    const bool endsAtStart = LineStart(editor, block.last) == end;
    if (LineStart(editor, block.first) != start || (!endsAtStart && end != PaneSend(editor, SCI_GETLENGTH)))
        ++block.first;
    else if (endsAtStart)
        --block.last;
    return block.count() > 0 ? std::optional{block} : std::nullopt;
}

// The line that Backspace (or Del, with `forward`) would add to the one above it; 0: none.
LRESULT LineToJoin(HWND editor, bool forward) {
    if (PaneSend(editor, SCI_GETSELECTIONS) != 1 || !CaretsAreEmpty(editor)) return 0;
    const LRESULT caret = PaneSend(editor, SCI_GETCURRENTPOS), line = PaneSend(editor, SCI_LINEFROMPOSITION, caret);
    if (!forward) return LineStart(editor, line) == caret ? line : 0;
    const bool atEnd = PaneSend(editor, SCI_GETLINEENDPOSITION, line) == caret;
    return atEnd && line + 1 < LineCountOf(editor) ? line + 1 : 0;
}

void DoLineCommand(HWND editor, int command) {
    const std::size_t width = TabWidthOf(editor);
    switch (command) {
        case IDM_LINES_DUPLICATE: return Duplicate(editor);
        case IDM_LINES_DELETE: return DeleteLines(editor);
        case IDM_LINES_UP:
        case IDM_LINES_DOWN: return MoveLines(editor, command == IDM_LINES_UP);
        case IDM_LINES_JOIN: return JoinSelected(editor);
        case IDM_LINES_SORT:
        case IDM_LINES_SORT_DOWN: return SortSelected(editor, command == IDM_LINES_SORT_DOWN);
        case IDM_LINES_UNIQUE: return RemoveRepeated(editor);
        case IDM_LINES_TRIM: return ChangeLines(editor, Text(L"Trimming"), LinesOrAll(editor), TrimLineEnds);
        case IDM_TABS_TO_BLANKS:
            return ChangeLines(editor, Text(L"Converting"), LinesOrAll(editor),
                               [width](std::string_view text) { return TabsToBlanks(text, width); });
        case IDM_BLANKS_TO_TABS:
            return ChangeLines(editor, Text(L"Converting"), LinesOrAll(editor),
                               [width](std::string_view text) { return BlanksToTabs(text, width); });
        default: return ChangeCase(editor, command);
    }
}

}  // namespace

void EditorLineCommand(HWND editor, int command) {
    if (editor == nullptr || PaneSend(editor, SCI_GETREADONLY) != 0) return;
    const CaretsDrawOnce once(editor);
    DoLineCommand(editor, command);
    CaretStepsPlaced(editor);
}

void EditorErase(HWND editor, const std::function<void()>& erase) {
    const CaretsDrawOnce once(editor);
    const std::optional<LineBlock> lines = LinesErased(editor);
    if (!lines || PaneSend(editor, SCI_GETREADONLY) != 0 || !LineMarksAreIn(editor, *lines)) return erase();
    const CaretUndoStep step(editor);
    LineMarksMove marks = LineMarksTake(editor, *lines);
    const bool users = LineMarksTakenAreUsers(marks);
    erase();
    LineMarksPut(editor, std::move(marks));
    if (const PaneState* const pane = PaneStateOf(editor); pane != nullptr && users)
        g_events.documentStatus(pane->document,
                                Text(L"Bookmarks and breakpoints went with the lines; undo brings them back"));
}

void EditorEraseCharacter(HWND editor, bool forward, const std::function<void()>& erase) {
    const LRESULT line = LineToJoin(editor, forward);
    // Where both lines have marks, undo could not tell whose they were.
    if (line == 0 || PaneSend(editor, SCI_GETREADONLY) != 0 || !LineMarksAreIn(editor, {line, line}) ||
        LineMarksAreIn(editor, {line - 1, line - 1}))
        return EditorErase(editor, erase);
    const CaretsDrawOnce once(editor);
    const CaretUndoStep step(editor);
    LineMarksMove marks = LineMarksTake(editor, {line, line});
    marks.after = {static_cast<std::int32_t>(line - 1)};
    erase();
    LineMarksPut(editor, std::move(marks));
}

void EditorReplace(HWND editor, const std::function<void()>& change) {
    const LRESULT start = PaneSend(editor, SCI_GETSELECTIONSTART), end = PaneSend(editor, SCI_GETSELECTIONEND);
    if (start == end || PaneSend(editor, SCI_LINEFROMPOSITION, start) == PaneSend(editor, SCI_LINEFROMPOSITION, end))
        return change();
    EditorErase(editor, change);
}

void EditorCut(HWND editor) {
    if (editor == nullptr) return;
    const CaretUndoStep together(editor);
    EditorErase(editor, [editor] { PaneSend(editor, SCI_CUT); });
}

void EditorCutLine(HWND editor) {
    const CaretUndoStep step(editor);
    const std::vector<LineBlock> lines = MergedBlocks(CaretLines(editor));
    PaneSend(editor, SCI_SETSEL, LineStart(editor, lines.front().first), LineStart(editor, lines.back().last + 1));
    EditorErase(editor, [editor] { PaneSend(editor, SCI_CUT); });
}

void EditorPaste(HWND editor) {
    if (editor == nullptr) return;
    const CaretsDrawOnce once(editor);
    const CaretUndoStep together(editor);
    EditorReplace(editor, [editor] { PaneSend(editor, SCI_PASTE); });
}

void EditorToggleComment(HWND editor) {
    if (editor == nullptr || PaneSend(editor, SCI_GETREADONLY) != 0) return;
    const PaneState* pane = PaneStateOf(editor);
    const std::string_view mark = LineCommentMark(LexerFromExtension(pane != nullptr ? pane->path.c_str() : L""));
    if (mark.empty()) return;
    // A caret alone keeps its distance from the end of its line, because only the front changes.
    std::vector<CaretSpan> spans = CaretSpans(editor);
    std::vector<std::pair<LRESULT, LRESULT>> fromEnd;  // line, bytes
    for (const CaretSpan& span : spans) {
        const LRESULT line = PaneSend(editor, SCI_LINEFROMPOSITION, span.caret);
        fromEnd.emplace_back(line, PaneSend(editor, SCI_GETLINEENDPOSITION, line) - span.caret);
    }
    const bool alone = CaretsAreEmpty(editor);
    const auto main = static_cast<std::size_t>(PaneSend(editor, SCI_GETMAINSELECTION));
    ChangeLines(editor, Text(L"Commenting"), MergedBlocks(CaretLines(editor)),
                [mark](std::string_view text) { return ToggleLineComments(text, mark); });
    for (std::size_t i = 0; alone && i < spans.size(); ++i) {
        const auto& [line, bytes] = fromEnd[i];
        const LRESULT start = PaneSend(editor, SCI_POSITIONFROMLINE, line);
        spans[i].anchor = spans[i].caret = std::max(start, PaneSend(editor, SCI_GETLINEENDPOSITION, line) - bytes);
    }
    if (alone) CaretsSelect(editor, spans, main);
    CaretStepsPlaced(editor);
}
