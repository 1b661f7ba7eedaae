// The selections of an editor. UI thread.
#include "editor/caret_set.h"

#include "base/events.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "editor/caret_place.h"
#include "editor/editor_pane.h"
#include "editor/pane_state.h"
#include "language/format_range.h"
#include "scintilla/sci.h"

#include <algorithm>
#include <string>

namespace {

LRESULT LineOf(HWND editor, LRESULT position) { return PaneSend(editor, SCI_LINEFROMPOSITION, position); }

KeptEnd KeepEnd(HWND editor, LRESULT position) {
    const LRESULT line = LineOf(editor, position);
    return {line, PaneSend(editor, SCI_GETCOLUMN, position),
            PaneSend(editor, SCI_GETLINEENDPOSITION, line) == position};
}

LRESULT PositionOfEnd(HWND editor, const KeptEnd& end, LRESULT shift, bool toLineEnd) {
    const LRESULT last = PaneSend(editor, SCI_GETLINECOUNT) - 1;
    const LRESULT line = std::clamp<LRESULT>(end.line + shift, 0, last);
    return toLineEnd ? PaneSend(editor, SCI_GETLINEENDPOSITION, line)
                     : PaneSend(editor, SCI_FINDCOLUMN, line, end.column);
}

bool HasColumns(HWND editor) { return PaneSend(editor, SCI_GETSELECTIONMODE) == SC_SEL_RECTANGLE; }

LRESULT ShiftOf(const std::vector<LRESULT>& shifts, std::size_t index) {
    return index < shifts.size() ? shifts[index] : 0;
}

void Tell(HWND editor, const std::wstring& text) {
    if (const PaneState* pane = PaneStateOf(editor); pane != nullptr)
        g_events.documentStatus(pane->document, text.c_str());
}

// The end of the last line that is hidden by a block that is folded at `line`; `line` itself when none is.
LRESULT LastHiddenBelow(HWND editor, LRESULT line) {
    const LRESULT count = PaneSend(editor, SCI_GETLINECOUNT);
    while (line + 1 < count && PaneSend(editor, SCI_GETLINEVISIBLE, line + 1) == 0) ++line;
    return line;
}

// The next place of the text from `from` on, or -1.
LRESULT FindFrom(HWND editor, const std::string& text, LRESULT from, LRESULT to, int flags) {
    PaneSend(editor, SCI_SETTARGETRANGE, from, to);
    PaneSend(editor, SCI_SETSEARCHFLAGS, flags);
    return SciSend(editor, SCI_SEARCHINTARGET, text.size(), reinterpret_cast<LPARAM>(text.data()));
}

CaretSpan MainSpan(HWND editor) { return {PaneSend(editor, SCI_GETANCHOR), PaneSend(editor, SCI_GETCURRENTPOS)}; }

// False when there was a selection already.
bool SelectWordAtCaret(HWND editor) {
    const CaretSpan main = MainSpan(editor);
    if (main.start() != main.end()) return false;
    const LRESULT start = PaneSend(editor, SCI_WORDSTARTPOSITION, main.caret, TRUE);
    const LRESULT end = PaneSend(editor, SCI_WORDENDPOSITION, main.caret, TRUE);
    if (end > start) PaneSend(editor, SCI_SETSELECTIONNCARET, PaneSend(editor, SCI_GETMAINSELECTION), end);
    if (end > start) PaneSend(editor, SCI_SETSELECTIONNANCHOR, PaneSend(editor, SCI_GETMAINSELECTION), start);
    return true;
}

// A whole word is looked for as a whole word. In BASIC the same name may be written with other letters.
int FlagsFor(HWND editor, const CaretSpan& span) {
    const bool word = PaneSend(editor, SCI_ISRANGEWORD, span.start(), span.end()) != 0;
    const bool basic = EditorPaneBlockTable(editor) != nullptr;
    return (basic ? 0 : SCFIND_MATCHCASE) | (word ? SCFIND_WHOLEWORD : 0);
}

bool IsSelected(const std::vector<CaretSpan>& spans, LRESULT start) {
    return std::ranges::any_of(
        spans, [start](const CaretSpan& span) { return span.start() == start; });
}

}  // namespace

KeptCarets CaretsKeep(HWND editor) {
    KeptCarets kept;
    kept.columns = HasColumns(editor);
    if (kept.columns) {
        kept.carets.push_back({KeepEnd(editor, PaneSend(editor, SCI_GETRECTANGULARSELECTIONANCHOR)),
                               KeepEnd(editor, PaneSend(editor, SCI_GETRECTANGULARSELECTIONCARET))});
        for (KeptEnd* end : {&kept.carets[0].anchor, &kept.carets[0].caret}) end->atLineEnd = false;
        return kept;
    }
    for (const CaretSpan& span : CaretSpans(editor))
        kept.carets.push_back({KeepEnd(editor, span.anchor), KeepEnd(editor, span.caret)});
    kept.main = static_cast<std::size_t>(PaneSend(editor, SCI_GETMAINSELECTION));
    return kept;
}

void CaretsRestore(HWND editor, const KeptCarets& kept, const std::vector<LRESULT>& shifts) {
    if (kept.columns) {
        const KeptCaret& corners = kept.carets[0];
        PaneSend(editor, SCI_SETRECTANGULARSELECTIONANCHOR,
                 PositionOfEnd(editor, corners.anchor, ShiftOf(shifts, 0), false));
        PaneSend(editor, SCI_SETRECTANGULARSELECTIONCARET,
                 PositionOfEnd(editor, corners.caret, ShiftOf(shifts, 0), false));
        return;
    }
    std::vector<CaretSpan> spans;
    for (std::size_t i = 0; i < kept.carets.size(); ++i) {
        const KeptCaret& each = kept.carets[i];
        // A selection to the end of a line reaches the end of what the line is now; a caret keeps its column.
        const bool selects = each.anchor.line != each.caret.line || each.anchor.column != each.caret.column;
        const auto place = [&](const KeptEnd& end) {
            return PositionOfEnd(editor, end, ShiftOf(shifts, i), selects && end.atLineEnd && end.column > 0);
        };
        spans.push_back({place(each.anchor), place(each.caret)});
    }
    CaretsSelect(editor, spans, kept.main);
}

std::vector<CaretSpan> CaretSpans(HWND editor) {
    std::vector<CaretSpan> spans;
    const LRESULT count = PaneSend(editor, SCI_GETSELECTIONS);
    for (LRESULT i = 0; i < count; ++i)
        spans.push_back({PaneSend(editor, SCI_GETSELECTIONNANCHOR, i), PaneSend(editor, SCI_GETSELECTIONNCARET, i)});
    return spans;
}

void CaretsSelect(HWND editor, const std::vector<CaretSpan>& spans, std::size_t main) {
    for (std::size_t i = 0; i < spans.size(); ++i)
        PaneSend(editor, i == 0 ? SCI_SETSELECTION : SCI_ADDSELECTION, spans[i].caret, spans[i].anchor);
    // Places that fell together have become one.
    const LRESULT last = PaneSend(editor, SCI_GETSELECTIONS) - 1;
    PaneSend(editor, SCI_SETMAINSELECTION, std::min(static_cast<LRESULT>(main), last));
}

CaretsDrawOnce::CaretsDrawOnce(HWND editor) : editor_(editor) {
    constexpr LRESULT kMany = 50;
    if (PaneSend(editor, SCI_GETSELECTIONS) >= kMany) pause_.emplace(editor);
}

CaretsDrawOnce::~CaretsDrawOnce() {
    if (!pause_) return;
    pause_.reset();
    RedrawWindow(editor_, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME);
}

bool CaretsAreColumns(HWND editor) {
    const LRESULT mode = PaneSend(editor, SCI_GETSELECTIONMODE);
    return mode == SC_SEL_RECTANGLE || mode == SC_SEL_THIN;  // thin: what is left when text was typed over it
}

bool CaretsAreEmpty(HWND editor) { return PaneSend(editor, SCI_GETSELECTIONEMPTY) != 0; }

std::vector<LineBlock> CaretLines(HWND editor) {
    std::vector<LineBlock> blocks;
    for (const CaretSpan& span : CaretSpans(editor)) {
        const LRESULT last = LineOf(editor, span.end());
        const bool endsAtStart = PaneSend(editor, SCI_POSITIONFROMLINE, last) == span.end();
        const LineRange lines = LinesOfSelection(static_cast<int>(LineOf(editor, span.start())), static_cast<int>(last),
                                                 endsAtStart && !HasColumns(editor));
        blocks.push_back({lines.first, LastHiddenBelow(editor, lines.last)});
    }
    return blocks;
}

void CaretToggleAt(HWND editor, std::vector<CaretSpan> spans, LRESULT position) {
    const auto there = std::ranges::find_if(
        spans, [position](const CaretSpan& span) { return span.start() <= position && position <= span.end(); });
    if (there == spans.end() && spans.size() < kMostCarets)
        spans.push_back({position, position});
    else if (there != spans.end() && spans.size() > 1)
        spans.erase(there);
    CaretsSelect(editor, spans, spans.size() - 1);
}

void CaretAddBeside(HWND editor, bool above) {
    if (editor == nullptr) return;
    const std::vector<CaretSpan> spans = CaretSpans(editor);
    LRESULT line = LineOf(editor, spans.front().caret);
    LRESULT column = 0;  // that of the caret which is furthest right: in a short line another one could not go so far
    for (const CaretSpan& span : spans) {
        line = above ? std::min(line, LineOf(editor, span.caret)) : std::max(line, LineOf(editor, span.caret));
        column = std::max(column, PaneSend(editor, SCI_GETCOLUMN, span.caret));
    }
    const LRESULT count = PaneSend(editor, SCI_GETLINECOUNT);
    do line += above ? -1 : 1;
    while (line >= 0 && line < count && PaneSend(editor, SCI_GETLINEVISIBLE, line) == 0);
    if (line < 0 || line >= count || spans.size() >= kMostCarets) return;
    const LRESULT position = PaneSend(editor, SCI_FINDCOLUMN, line, column);
    PaneSend(editor, SCI_ADDSELECTION, position, position);
    PaneSend(editor, SCI_SCROLLRANGE, position, position);
}

void CaretSelectNext(HWND editor) {
    if (editor == nullptr || SelectWordAtCaret(editor)) return;
    const CaretSpan main = MainSpan(editor);
    const std::string text = EditorPaneTextBetween(editor, main.start(), main.end());
    const std::vector<CaretSpan> spans = CaretSpans(editor);
    const int flags = FlagsFor(editor, main);
    const LRESULT length = PaneSend(editor, SCI_GETLENGTH);
    LRESULT from = main.end();
    bool wrapped = false;
    LRESULT found = -1;
    for (;;) {
        found = FindFrom(editor, text, from, wrapped ? main.start() : length, flags);
        if (found >= 0 && !IsSelected(spans, found)) break;
        if (found < 0 && wrapped) return Tell(editor, Text(L"Every place is selected"));
        from = found < 0 ? 0 : found + static_cast<LRESULT>(text.size());
        wrapped = wrapped || found < 0;
    }
    if (spans.size() >= kMostCarets) return;
    const LRESULT end = found + static_cast<LRESULT>(text.size());
    CaretUncoverLine(editor, LineOf(editor, found));
    const bool backwards = main.caret < main.anchor;
    PaneSend(editor, SCI_ADDSELECTION, backwards ? found : end, backwards ? end : found);
    PaneSend(editor, SCI_SCROLLRANGE, found, end);
}

void CaretSelectEach(HWND editor) {
    if (editor == nullptr) return;
    SelectWordAtCaret(editor);
    const CaretSpan main = MainSpan(editor);
    const std::string text = EditorPaneTextBetween(editor, main.start(), main.end());
    if (text.empty()) return;
    const int flags = FlagsFor(editor, main);
    const LRESULT length = PaneSend(editor, SCI_GETLENGTH);
    std::vector<CaretSpan> spans;
    std::size_t mainIndex = 0;
    LRESULT from = 0;
    while (spans.size() < kMostCarets) {
        const LRESULT found = FindFrom(editor, text, from, length, flags);
        if (found < 0) break;
        from = found + static_cast<LRESULT>(text.size());
        if (found == main.start()) mainIndex = spans.size();
        spans.push_back({found, from});
    }
    CaretsSelect(editor, spans, mainIndex);
    // How many they are stands beside the caret's place in the status bar, as long as they are there.
    if (spans.size() == kMostCarets)
        Tell(editor, FormatW(Text(L"%d selections: the first ones"), static_cast<int>(kMostCarets)));
}

bool CaretsEndColumns(HWND editor) {
    if (!CaretsAreColumns(editor)) return false;
    const LRESULT caret = PaneSend(editor, SCI_GETRECTANGULARSELECTIONCARET);
    PaneSend(editor, SCI_CLEARSELECTIONS);
    PaneSend(editor, SCI_SETEMPTYSELECTION, caret);
    return true;
}

void CaretsToggleColumns(HWND editor) {
    if (editor == nullptr) return;
    if (CaretsAreColumns(editor)) {
        const LRESULT anchor = PaneSend(editor, SCI_GETRECTANGULARSELECTIONANCHOR);
        const LRESULT caret = PaneSend(editor, SCI_GETRECTANGULARSELECTIONCARET);
        PaneSend(editor, SCI_CLEARSELECTIONS);  // else the next one would be of columns again
        PaneSend(editor, SCI_SETSELECTION, caret, anchor);
        return;
    }
    const CaretSpan main = MainSpan(editor);
    PaneSend(editor, SCI_SETRECTANGULARSELECTIONANCHOR, main.anchor);
    PaneSend(editor, SCI_SETRECTANGULARSELECTIONCARET, main.caret);
}
