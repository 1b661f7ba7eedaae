// Gives inline assembly its own text colour, which replaces the colours of the BASIC lexer. Done for the visible lines
// just before they are painted. A block may begin far above them: a paint searches a part of the text for its start, and
// a timer goes on with the rest. UI thread.
#include "documents/pane_state.h"

#include "documents/pane_rules.h"
#include "documents/theme.h"
#include "language/inline_regions.h"
#include "scintilla/sci.h"

#include <SciLexer.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace {

constexpr int kIndicator = INDICATOR_CONTAINER;
constexpr LRESULT kLongestText = 256 << 10;  // bytes; longer lines are no assembly and keep their colours
constexpr LRESULT kLineHead = 4 << 10;       // bytes of a long line that are looked at
constexpr int kStretches = 4;                // searched at once, 1 MB: about a millisecond
constexpr UINT_PTR kTimer = 0x4B44;
constexpr UINT kTimerMs = 10;

std::ptrdiff_t StretchBefore(HWND editor, std::ptrdiff_t end) {
    const std::ptrdiff_t wanted = std::max<std::ptrdiff_t>(end - kAssemblyStretch, 0);
    const LRESULT line = PaneSend(editor, SCI_LINEFROMPOSITION, wanted);
    const LRESULT start = PaneSend(editor, SCI_POSITIONFROMLINE, line);
    if (start == wanted) return start;
    const LRESULT next = PaneSend(editor, SCI_POSITIONFROMLINE, line + 1);
    return next > 0 && next < end ? next : start;  // else it is one long line
}

std::string LinesBetween(HWND editor, std::ptrdiff_t start, std::ptrdiff_t end) {
    const bool oneLongLine = end - start > kAssemblyStretch;
    return EditorPaneTextBetween(editor, start, oneLongLine ? start + kLineHead : end);
}

std::optional<bool> SearchAbove(HWND editor, PaneState& state, LRESULT position) {
    const AssemblySource source = {
        .text = [editor](std::ptrdiff_t start, std::ptrdiff_t end) { return LinesBetween(editor, start, end); },
        .stretchBefore = [editor](std::ptrdiff_t end) { return StretchBefore(editor, end); }};
    return AssemblySearch(state.assembly, position, source, kStretches);
}

LRESULT ViewStart(HWND editor) {
    const LRESULT first = PaneSend(editor, SCI_DOCLINEFROMVISIBLE, PaneSend(editor, SCI_GETFIRSTVISIBLELINE));
    return PaneSend(editor, SCI_POSITIONFROMLINE, first);
}

void CALLBACK OnAssemblyTimer(HWND editor, UINT, UINT_PTR timer, DWORD) {
    PaneState* state = PaneStateOf(editor);
    const std::optional<bool> inside = state != nullptr ? SearchAbove(editor, *state, ViewStart(editor)) : false;
    if (!inside) return;  // goes on with the next tick
    KillTimer(editor, timer);
    if (*inside) InvalidateRect(editor, nullptr, FALSE);
}

bool BeginsInAssembly(HWND editor, PaneState& state, LRESULT viewStart) {
    const std::optional<bool> inside = SearchAbove(editor, state, viewStart);
    if (!inside) SetTimer(editor, kTimer, kTimerMs, OnAssemblyTimer);
    return inside.value_or(false);
}

}  // namespace

bool EditorPaneInAssembly(HWND editor, LRESULT position) {
    PaneState* state = PaneStateOf(editor);
    if (state == nullptr) return false;
    // A copy, because the next paint asks for the start of the view again.
    const AssemblyAbove known = state->assembly;
    const std::optional<bool> inside = SearchAbove(editor, *state, position);
    state->assembly = known;
    return inside.value_or(false);
}

void EditorPaneForgetAssembly(HWND editor, LRESULT line) {
    PaneState* state = PaneStateOf(editor);
    if (state != nullptr) AssemblyForget(state->assembly, PaneSend(editor, SCI_POSITIONFROMLINE, line));
}

void EditorPaneMarkInlineRegions(HWND editor) {
    PaneState* state = PaneStateOf(editor);
    if (state == nullptr || PaneSend(editor, SCI_GETLEXER) != SCLEX_VB) return;
    const LRESULT start = ViewStart(editor);
    const LRESULT below = PaneSend(editor, SCI_GETFIRSTVISIBLELINE) + PaneSend(editor, SCI_LINESONSCREEN) + 1;
    const LRESULT last = PaneSend(editor, SCI_DOCLINEFROMVISIBLE, below);
    LRESULT end = PaneSend(editor, SCI_POSITIONFROMLINE, last + 1);
    if (end < 0) end = PaneSend(editor, SCI_GETLENGTH);
    if (end <= start || end - start > kLongestText) return;
    const std::string text = EditorPaneTextBetween(editor, start, end);
    const std::vector<TextRange> ranges = InlineAssemblyRanges(text, BeginsInAssembly(editor, *state, start));

    if (ranges.empty() && !state->inlineShown) return;
    state->inlineShown = true;
    const COLORREF colour = ThemeAssemblyColour();
    if (PaneSend(editor, SCI_INDICGETSTYLE, kIndicator) != INDIC_TEXTFORE)
        PaneSend(editor, SCI_INDICSETSTYLE, kIndicator, INDIC_TEXTFORE);
    if (PaneSend(editor, SCI_INDICGETFORE, kIndicator) != static_cast<LRESULT>(colour))
        PaneSend(editor, SCI_INDICSETFORE, kIndicator, static_cast<LRESULT>(colour));
    if (PaneSend(editor, SCI_GETINDICATORCURRENT) != kIndicator) PaneSend(editor, SCI_SETINDICATORCURRENT, kIndicator);

    // Scintilla repaints only what these messages change, so the next paint changes nothing.
    for (const MarkedRun& run : MarkedRuns(ranges, start, {start, end}))
        PaneSend(editor, run.on ? SCI_INDICATORFILLRANGE : SCI_INDICATORCLEARRANGE, run.span.start,
                 run.span.end - run.span.start);
}
