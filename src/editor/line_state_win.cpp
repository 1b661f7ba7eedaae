// What the lines of a pane know of the lines above them. The lexer keeps it for each line that is coloured. For a place
// far below, of which only the visible part is coloured, the one thing that matters at once is searched for: whether a
// block of inline assembly that begins above is still open. A paint searches a part of the text; a timer goes on with the
// rest. UI thread.
#include "editor/pane_state.h"

#include "language/basic_lexer.h"
#include "language/inline_regions.h"
#include "scintilla/sci.h"

#include <algorithm>
#include <optional>
#include <string>

namespace {

constexpr LRESULT kLineHead = 4 << 10;  // bytes of a long line that are looked at
constexpr int kStretches = 4;           // searched at once, 1 MB: about a millisecond
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

}  // namespace

LineState EditorPaneLineState(HWND editor, LRESULT line) {
    PaneState* state = PaneStateOf(editor);
    if (state == nullptr || line <= 0 || PaneSend(editor, SCI_GETLEXER) != kBasicLexer) return 0;
    const LRESULT start = PaneSend(editor, SCI_POSITIONFROMLINE, line);
    if (EditorColourUpTo(editor, start)) return static_cast<LineState>(PaneSend(editor, SCI_GETLINESTATE, line - 1));
    // A copy, because the next paint asks for the start of the view again.
    const AssemblyAbove known = state->assembly;
    const std::optional<bool> inside = SearchAbove(editor, *state, start);
    state->assembly = known;
    return inside.value_or(false) ? kScanAssembly : 0;
}

void EditorPaneForgetAssembly(HWND editor, LRESULT line) {
    PaneState* state = PaneStateOf(editor);
    if (state != nullptr) AssemblyForget(state->assembly, PaneSend(editor, SCI_POSITIONFROMLINE, line));
}

void EditorPaneFindAssembly(HWND editor, LRESULT position) {
    PaneState* state = PaneStateOf(editor);
    const LRESULT above = PaneSend(editor, SCI_LINEFROMPOSITION, position) - 1;
    if (state == nullptr || above < 0 || PaneSend(editor, SCI_GETLEXER) != kBasicLexer) return;
    const std::optional<bool> inside = SearchAbove(editor, *state, position);
    if (!inside) SetTimer(editor, kTimer, kTimerMs, OnAssemblyTimer);
    // What else an earlier colouring has left there is more likely to be right than nothing.
    const auto left = static_cast<LineState>(PaneSend(editor, SCI_GETLINESTATE, above));
    const bool leftInside = (left & kScanAssembly) != 0;
    if (inside.value_or(false) != leftInside) PaneSend(editor, SCI_SETLINESTATE, above, leftInside ? 0 : kScanAssembly);
}
