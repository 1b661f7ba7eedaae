// When a document gets its colours. Left alone, Scintilla colours from the top down to what it shows, which after a jump
// to the end of a 100 MB document takes seconds. So it is told that everything is coloured, and the pane keeps the true
// mark: the visible part is coloured just before a paint, the rest in short slices while nothing else happens. UI thread.
#include "editor/pane_state.h"

#include "editor/pane_rules.h"
#include "language/basic_lexer.h"
#include "scintilla/sci.h"

#include <algorithm>

namespace {

constexpr UINT_PTR kTimer = 0x4B43;
constexpr UINT kQuietMs = 150;          // nobody types for this long: idle
constexpr UINT kSliceMs = 10;           // the shortest timer there is
constexpr LRESULT kLittle = 128 << 10;  // bytes coloured for a question: a few milliseconds

// Without a lexer Scintilla asks the parent window for colours; there are none to give.
bool HasLexer(HWND editor) { return SciSend(editor, SCI_GETLEXER, 0, 0) != 0; }

PaneSpan VisiblePart(HWND editor) {
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

void ClaimColoured(HWND editor) {
    SciSend(editor, SCI_STARTSTYLING, static_cast<WPARAM>(SciSend(editor, SCI_GETLENGTH)), 0);
}

void NoticeReset(HWND editor, PaneState& state, LRESULT length) {
    const LRESULT styled = SciSend(editor, SCI_GETENDSTYLED);
    if (styled < length) ColourMarksOnReset(&state.colours, styled);
}

// The start of the line that is `after` lines behind that of `position`.
LRESULT LineStartAfter(HWND editor, LRESULT position, LRESULT after) {
    const LRESULT line = PaneSend(editor, SCI_LINEFROMPOSITION, position) + after;
    const LRESULT start = PaneSend(editor, SCI_POSITIONFROMLINE, line);
    return start < 0 ? PaneSend(editor, SCI_GETLENGTH) + 1 : start;  // never reached when there is no such line
}

// The lexer has come to `to`.
void NotePass(HWND editor, PaneState& state, LRESULT to) {
    const bool same = PaneSend(editor, SCI_PRIVATELEXERCALL, kStateIsAsBefore) != 0;
    ColourMarksOnPass(&state.colours, to, same, LineStartAfter(editor, to - 1, 2));
}

// SCI_COLOURISE asks for a repaint of everything, even when nothing that can be seen has changed. Validating the window is
// not enough: Scintilla remembers that it asked and does not ask again before it has painted, so it paints an empty area.
void CancelRepaint(HWND editor, PaneState& state) {
    ValidateRect(editor, nullptr);
    state.emptyPaint = true;
    SendMessageW(editor, WM_PAINT, 0, 0);
    state.emptyPaint = false;
}

// One slice. True when some of the document is still uncoloured.
bool ColourSlice(HWND editor, PaneState& state) {
    const LRESULT length = SciSend(editor, SCI_GETLENGTH);
    NoticeReset(editor, state, length);
    const LRESULT from = state.colours.coloured;
    const ColourStep step = NextColourStep(from, length, GetUpdateRect(editor, nullptr, FALSE) != FALSE);
    if (step != ColourStep::Slice) return step == ColourStep::Wait;

    const LRESULT wanted = ColourSliceWanted(state.colours, static_cast<LRESULT>(state.colourChunk), length);
    const LRESULT lastLine = SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(wanted), 0);
    const LRESULT lineStart = SciSend(editor, SCI_POSITIONFROMLINE, static_cast<WPARAM>(lastLine), 0);
    const LRESULT to = ColourSliceEnd(from, wanted, lineStart, length);

    const double began = Seconds();
    const PaneSpan visible = VisiblePart(editor);
    SciSend(editor, SCI_COLOURISE, static_cast<WPARAM>(from), to);
    ClaimColoured(editor);
    NotePass(editor, state, to);
    if (IsUnseen({from, to}, visible)) CancelRepaint(editor, state);
    state.colourChunk = NextColourChunk(state.colourChunk, Seconds() - began);
    return state.colours.coloured < length;
}

// How long the text must still stay unchanged until it counts as quiet. 0: it is.
UINT QuietMsLeft(const PaneState& state) {
    const ULONGLONG quiet = GetTickCount64() - state.changedAt;
    return quiet >= kQuietMs ? 0 : static_cast<UINT>(kQuietMs - quiet);
}

void CALLBACK OnColourTimer(HWND editor, UINT, UINT_PTR timer, DWORD) {
    PaneState* state = PaneStateOf(editor);
    if (const UINT wait = state != nullptr ? QuietMsLeft(*state) : 0; wait > 0) {
        SetTimer(editor, timer, std::max(wait, kSliceMs), OnColourTimer);
        return;
    }
    if (state != nullptr && ColourSlice(editor, *state)) {
        SetTimer(editor, timer, kSliceMs, OnColourTimer);
    } else {
        KillTimer(editor, timer);
        if (state != nullptr) state->colouring = false;
    }
}

void StartColourTimer(HWND editor, PaneState& state) {
    if (state.colourChunk == 0) state.colourChunk = kFirstColourChunk;
    state.colouring = SetTimer(editor, kTimer, kQuietMs, OnColourTimer) != 0;
}

void ColourLater(HWND editor, PaneState& state) {
    ClaimColoured(editor);
    state.changedAt = GetTickCount64();
    // The timer is armed once, because arming it costs more than the rest of a change, of which a command may make
    // 200,000. A timer that runs already waits longer (OnColourTimer).
    if (!state.colouring) StartColourTimer(editor, state);
}

}  // namespace

void EditorColourRestart(HWND editor) {
    PaneState* state = PaneStateOf(editor);
    if (state == nullptr || !HasLexer(editor)) return;
    ColourMarksOnReset(&state->colours, 0);
    ColourLater(editor, *state);
}

void EditorColourOnChange(HWND editor, LRESULT position, LRESULT inserted, LRESULT deleted) {
    PaneState* state = PaneStateOf(editor);
    if (state == nullptr || !HasLexer(editor)) return;
    // Scintilla itself takes back its mark to `position`.
    if (const LRESULT styled = SciSend(editor, SCI_GETENDSTYLED); styled < position)
        ColourMarksOnReset(&state->colours, styled);
    ColourMarksOnChange(&state->colours, {.position = position,
                                          .inserted = inserted,
                                          .deleted = deleted,
                                          .lineStart = LineStartAfter(editor, position, 0),
                                          .settles = LineStartAfter(editor, position + inserted, 2)});
    ColourLater(editor, *state);
}

void EditorColourStop(HWND editor) { KillTimer(editor, kTimer); }

PaintColours EditorColourBeforePaint(HWND editor) {
    PaneState* state = PaneStateOf(editor);
    if (state == nullptr) return PaintColours::Ready;
    if (!HasLexer(editor)) {
        ClaimColoured(editor);  // or every paint would ask
        return PaintColours::Ready;
    }
    const LRESULT length = SciSend(editor, SCI_GETLENGTH);
    NoticeReset(editor, *state, length);
    if (state->colours.coloured >= length) return PaintColours::Ready;
    if (!state->colouring) StartColourTimer(editor, *state);

    const PaneSpan visible = VisiblePart(editor);
    const PaintColours needed = ColoursForPaint(state->colours, visible);
    switch (needed) {
        case PaintColours::Ready: break;
        // The paint itself colours from the mark on, and repaints no more than what changed.
        case PaintColours::FromMark: PaneSend(editor, SCI_STARTSTYLING, state->colours.coloured); break;
        case PaintColours::FromView: PaneSend(editor, SCI_STARTSTYLING, state->colours.view.end); break;
        case PaintColours::VisibleOnly:
            EditorPaneFindAssembly(editor, visible.start);
            SciSend(editor, SCI_COLOURISE, static_cast<WPARAM>(visible.start), visible.end);
            ColourMarksOnView(&state->colours, visible, LineStartAfter(editor, visible.end - 1, 2));
            ClaimColoured(editor);
            break;
    }
    return needed;
}

bool EditorColourUpTo(HWND editor, LRESULT position) {
    PaneState* state = PaneStateOf(editor);
    if (state == nullptr || !HasLexer(editor)) return false;
    NoticeReset(editor, *state, SciSend(editor, SCI_GETLENGTH));
    const LRESULT from = state->colours.coloured;
    if (position <= from) return true;
    if (position - from > kLittle) return false;
    SciSend(editor, SCI_COLOURISE, static_cast<WPARAM>(from), position);
    ClaimColoured(editor);
    NotePass(editor, *state, position);
    return true;
}

bool EditorColourAll(HWND editor, const std::function<bool(double)>& goesOn) {
    constexpr LRESULT kPiece = 128 << 10;  // bytes between two questions
    PaneState* state = PaneStateOf(editor);
    if (state == nullptr || !HasLexer(editor)) return true;
    const LRESULT length = SciSend(editor, SCI_GETLENGTH);
    NoticeReset(editor, *state, length);
    while (state->colours.coloured < length) {
        const LRESULT from = state->colours.coloured;
        const LRESULT to = std::min(length, LineStartAfter(editor, from + kPiece, 1));
        SciSend(editor, SCI_COLOURISE, static_cast<WPARAM>(from), to);
        ClaimColoured(editor);
        NotePass(editor, *state, to);
        if (state->colours.coloured <= from) return true;  // no lexer after all
        if (!goesOn(static_cast<double>(to) / static_cast<double>(length))) return false;
    }
    return true;
}

void EditorColourAfterPaint(HWND editor, PaintColours before) {
    PaneState* state = PaneStateOf(editor);
    const bool byPaint = before == PaintColours::FromMark || before == PaintColours::FromView;
    if (state == nullptr || !byPaint) return;
    ColourMarks& marks = state->colours;
    const LRESULT styled = SciSend(editor, SCI_GETENDSTYLED);
    if (before == PaintColours::FromMark) {
        if (styled > marks.coloured) NotePass(editor, *state, styled);
    } else if (styled > marks.view.end) {
        ColourMarksOnView(&marks, {marks.view.start, styled}, LineStartAfter(editor, styled - 1, 2));
    }
    ClaimColoured(editor);
}
