// Gives inline assembly its own colour, over whatever the BASIC lexer made of it: for the visible lines, just before they
// are painted. UI thread.
#include "language/inline_regions.h"

#include "documents/pane_state.h"
#include "documents/theme.h"
#include "scintilla/sci.h"

#include <SciLexer.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

constexpr int kIndicator = INDICATOR_CONTAINER;
constexpr LRESULT kLookBack = 200;           // lines above the view in which a block may have begun
constexpr LRESULT kLongestText = 256 << 10;  // a view of longer lines than these is no assembly

LRESULT Send(HWND editor, UINT message, LRESULT wParam = 0, LRESULT lParam = 0) {
    return SciSend(editor, message, static_cast<WPARAM>(wParam), lParam);
}

void Mark(HWND editor, LRESULT start, LRESULT length, bool on) {
    if (length <= 0) return;
    Send(editor, on ? SCI_INDICATORFILLRANGE : SCI_INDICATORCLEARRANGE, start, length);
}

}  // namespace

void EditorPaneMarkInlineRegions(HWND editor) {
    if (Send(editor, SCI_GETLEXER) != SCLEX_VB) return;
    const LRESULT first = Send(editor, SCI_DOCLINEFROMVISIBLE, Send(editor, SCI_GETFIRSTVISIBLELINE));
    const LRESULT last = first + Send(editor, SCI_LINESONSCREEN) + 1;
    const LRESULT viewStart = Send(editor, SCI_POSITIONFROMLINE, first);
    const LRESULT start = Send(editor, SCI_POSITIONFROMLINE, std::max<LRESULT>(first - kLookBack, 0));
    LRESULT end = Send(editor, SCI_POSITIONFROMLINE, last + 1);
    if (end < 0) end = Send(editor, SCI_GETLENGTH);
    if (end <= start || end - start > kLongestText) return;

    std::string text(static_cast<std::size_t>(end - start) + 1, '\0');
    Sci_TextRangeFull range = {{start, end}, text.data()};
    SciSend(editor, SCI_GETTEXTRANGEFULL, 0, reinterpret_cast<LPARAM>(&range));
    text.pop_back();
    const std::vector<TextRange> ranges = InlineAssemblyRanges(text);

    PaneState* state = PaneStateOf(editor);
    if (!state || (ranges.empty() && !state->inlineShown)) return;
    state->inlineShown = true;
    const COLORREF colour = ThemeAssemblyColour();
    if (Send(editor, SCI_INDICGETSTYLE, kIndicator) != INDIC_TEXTFORE)
        Send(editor, SCI_INDICSETSTYLE, kIndicator, INDIC_TEXTFORE);
    if (Send(editor, SCI_INDICGETFORE, kIndicator) != static_cast<LRESULT>(colour))
        Send(editor, SCI_INDICSETFORE, kIndicator, static_cast<LRESULT>(colour));
    if (Send(editor, SCI_GETINDICATORCURRENT) != kIndicator) Send(editor, SCI_SETINDICATORCURRENT, kIndicator);

    // Only differences reach Scintilla's repaint, so that this settles after one paint.
    LRESULT at = viewStart;
    for (const TextRange& found : ranges) {
        const LRESULT from = start + static_cast<LRESULT>(found.start);
        const LRESULT to = from + static_cast<LRESULT>(found.length);
        if (to <= viewStart) continue;
        Mark(editor, at, from - at, false);
        Mark(editor, from, to - from, true);
        at = to;
    }
    Mark(editor, at, end - at, false);
}
