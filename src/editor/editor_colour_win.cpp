// When a document gets its colours. Scintilla colours from the top down to what it paints, which after a jump to the
// end of a large document means all of it. So the visible part is coloured by itself just before a paint, and the
// rest in short slices while nothing else happens. UI thread.
#include "editor/pane_state.h"

#include "scintilla/sci.h"

#include <algorithm>

namespace {

constexpr UINT_PTR kTimer = 0x4B43;
constexpr UINT kQuietMs = 150;           // nobody types for this long: idle
constexpr UINT kSliceMs = 10;            // the shortest timer there is
constexpr double kSliceSeconds = 0.003;  // a key that arrives during a slice waits no longer than this
constexpr std::size_t kFirstChunk = 32 << 10;
constexpr std::size_t kSmallestChunk = 4 << 10;
constexpr std::size_t kLargestChunk = 1 << 20;
constexpr LRESULT kNearEnough = 32 << 10;  // an uncoloured stretch above the view that a paint can just colour

// Without a lexer Scintilla asks the parent window for colours; there are none to give.
bool HasLexer(HWND editor) { return SciSend(editor, SCI_GETLEXER, 0, 0) != 0; }

struct VisibleRange {
    LRESULT start;
    LRESULT end;
};

VisibleRange VisibleText(HWND editor) {
    const LRESULT first = SciSend(editor, SCI_GETFIRSTVISIBLELINE, 0, 0);
    const LRESULT lines = SciSend(editor, SCI_LINESONSCREEN, 0, 0) + 1;
    const LRESULT firstLine = SciSend(editor, SCI_DOCLINEFROMVISIBLE, static_cast<WPARAM>(first), 0);
    const LRESULT lastLine = SciSend(editor, SCI_DOCLINEFROMVISIBLE, static_cast<WPARAM>(first + lines), 0);
    const LRESULT start = SciSend(editor, SCI_POSITIONFROMLINE, static_cast<WPARAM>(firstLine), 0);
    const LRESULT end = SciSend(editor, SCI_POSITIONFROMLINE, static_cast<WPARAM>(lastLine + 1), 0);
    return {start, end < 0 ? SciSend(editor, SCI_GETLENGTH, 0, 0) : end};
}

double Seconds() {
    LARGE_INTEGER now = {};
    LARGE_INTEGER frequency = {};
    QueryPerformanceCounter(&now);
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(now.QuadPart) / static_cast<double>(frequency.QuadPart);
}

// Colours [from, to) without the repaint of the whole window that SCI_COLOURISE asks for. One pixel is painted all the
// same: until a paint comes, Scintilla believes that the whole window is about to be painted and asks for nothing more,
// so that with no paint at all the caret would move unseen.
void ColouriseUnseen(HWND editor, LRESULT from, LRESULT to) {
    SciSend(editor, SCI_COLOURISE, static_cast<WPARAM>(from), to);
    ValidateRect(editor, nullptr);
    const RECT pixel = {0, 0, 1, 1};
    RedrawWindow(editor, &pixel, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_NOERASE);
}

// One slice. True when some of the document is still uncoloured.
bool ColourSlice(HWND editor, PaneState& state) {
    const LRESULT length = SciSend(editor, SCI_GETLENGTH, 0, 0);
    const LRESULT from = SciSend(editor, SCI_GETENDSTYLED, 0, 0);
    if (from >= length) return false;
    // A paint that waits colours what it shows, and must not be lost to the validation below.
    if (GetUpdateRect(editor, nullptr, FALSE)) return true;

    const LRESULT wanted = std::min(from + static_cast<LRESULT>(state.colourChunk), length);
    const LRESULT lastLine = SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(wanted), 0);
    const LRESULT lineStart = SciSend(editor, SCI_POSITIONFROMLINE, static_cast<WPARAM>(lastLine), 0);
    const LRESULT to = lineStart > from && wanted < length ? lineStart : wanted;

    const double began = Seconds();
    const VisibleRange visible = VisibleText(editor);
    if (from < visible.end && to > visible.start) {
        SciSend(editor, SCI_COLOURISE, static_cast<WPARAM>(from), to);
    } else {
        ColouriseUnseen(editor, from, to);
    }
    const double took = Seconds() - began;
    const double scale = took > 0 ? std::clamp(kSliceSeconds / took, 0.5, 2.0) : 2.0;
    state.colourChunk = std::clamp(static_cast<std::size_t>(static_cast<double>(state.colourChunk) * scale),
                                   kSmallestChunk, kLargestChunk);
    return to < length;
}

void CALLBACK OnTimer(HWND editor, UINT, UINT_PTR timer, DWORD) {
    PaneState* state = PaneStateOf(editor);
    if (state && ColourSlice(editor, *state)) {
        SetTimer(editor, timer, kSliceMs, OnTimer);
    } else {
        KillTimer(editor, timer);
        if (state) state->colouring = false;
    }
}

}  // namespace

void EditorColourRestart(HWND editor) {
    PaneState* state = PaneStateOf(editor);
    if (!state || !HasLexer(editor)) return;
    if (state->colourChunk == 0) state->colourChunk = kFirstChunk;
    state->colouring = SetTimer(editor, kTimer, kQuietMs, OnTimer) != 0;
}

void EditorColourStop(HWND editor) { KillTimer(editor, kTimer); }

LRESULT EditorColourBeforePaint(HWND editor) {
    const LRESULT styled = SciSend(editor, SCI_GETENDSTYLED, 0, 0);
    if (styled >= SciSend(editor, SCI_GETLENGTH, 0, 0) || !HasLexer(editor)) return -1;
    // A new lexer or theme leaves text uncoloured without a change of text.
    const PaneState* state = PaneStateOf(editor);
    if (state && !state->colouring) EditorColourRestart(editor);
    const VisibleRange visible = VisibleText(editor);
    if (visible.start - styled <= kNearEnough) return -1;
    // The paint region outlives this: SCI_COLOURISE only adds to it.
    SciSend(editor, SCI_COLOURISE, static_cast<WPARAM>(visible.start), visible.end);
    return styled;
}

void EditorColourAfterPaint(HWND editor, LRESULT resumeAt) {
    // Scintilla now believes that everything above the view is coloured; tell it where that is true.
    if (resumeAt >= 0) SciSend(editor, SCI_STARTSTYLING, static_cast<WPARAM>(resumeAt), 0);
}
