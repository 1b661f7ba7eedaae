// Gives inline assembly its own text colour, which replaces the colours of the BASIC lexer. Done for the visible lines
// just before they are painted. UI thread.
#include "documents/pane_state.h"

#include "documents/pane_rules.h"
#include "documents/theme.h"
#include "language/inline_regions.h"
#include "scintilla/sci.h"

#include <SciLexer.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

constexpr int kIndicator = INDICATOR_CONTAINER;
constexpr LRESULT kLookBack = 200;           // lines above the view that are searched for the start of a block
constexpr LRESULT kLongestText = 256 << 10;  // bytes; longer lines are no assembly and keep their colours

}  // namespace

void EditorPaneMarkInlineRegions(HWND editor) {
    if (PaneSend(editor, SCI_GETLEXER) != SCLEX_VB) return;
    const LRESULT first = PaneSend(editor, SCI_DOCLINEFROMVISIBLE, PaneSend(editor, SCI_GETFIRSTVISIBLELINE));
    const LRESULT last = first + PaneSend(editor, SCI_LINESONSCREEN) + 1;
    const LRESULT viewStart = PaneSend(editor, SCI_POSITIONFROMLINE, first);
    const LRESULT start = PaneSend(editor, SCI_POSITIONFROMLINE, std::max<LRESULT>(first - kLookBack, 0));
    LRESULT end = PaneSend(editor, SCI_POSITIONFROMLINE, last + 1);
    if (end < 0) end = PaneSend(editor, SCI_GETLENGTH);
    if (end <= start || end - start > kLongestText) return;

    std::string text(static_cast<std::size_t>(end - start) + 1, '\0');
    Sci_TextRangeFull range = {{start, end}, text.data()};
    SciSend(editor, SCI_GETTEXTRANGEFULL, 0, reinterpret_cast<LPARAM>(&range));
    text.pop_back();
    const std::vector<TextRange> ranges = InlineAssemblyRanges(text);

    PaneState* state = PaneStateOf(editor);
    if (state == nullptr || (ranges.empty() && !state->inlineShown)) return;
    state->inlineShown = true;
    const COLORREF colour = ThemeAssemblyColour();
    if (PaneSend(editor, SCI_INDICGETSTYLE, kIndicator) != INDIC_TEXTFORE)
        PaneSend(editor, SCI_INDICSETSTYLE, kIndicator, INDIC_TEXTFORE);
    if (PaneSend(editor, SCI_INDICGETFORE, kIndicator) != static_cast<LRESULT>(colour))
        PaneSend(editor, SCI_INDICSETFORE, kIndicator, static_cast<LRESULT>(colour));
    if (PaneSend(editor, SCI_GETINDICATORCURRENT) != kIndicator) PaneSend(editor, SCI_SETINDICATORCURRENT, kIndicator);

    // Scintilla repaints only what these messages change, so the next paint changes nothing.
    for (const MarkedRun& run : MarkedRuns(ranges, start, {viewStart, end}))
        PaneSend(editor, run.on ? SCI_INDICATORFILLRANGE : SCI_INDICATORCLEARRANGE, run.span.start,
                 run.span.end - run.span.start);
}
