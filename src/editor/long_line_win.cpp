// Lines of megabytes in a text that is open already: pasted, dropped, received, restored, or joined from shorter ones. The
// reader of files looks for them itself. UI thread.
#include "editor/long_line.h"

#include "editor/editor_pane.h"
#include "editor/pane_state.h"
#include "scintilla/sci.h"

#include <algorithm>

namespace {

bool IsLong(LRESULT length) { return length >= static_cast<LRESULT>(kLongLine); }

// The bytes of the longest line among those that the change has left; what is shorter than kLongLine may be any number.
std::size_t LongestOfChange(HWND editor, const SCNotification& change, LRESULT line) {
    LRESULT longest = PaneSend(editor, SCI_LINELENGTH, line);
    if ((change.modificationType & SC_MOD_INSERTTEXT) == 0 || !IsLong(change.length))
        return static_cast<std::size_t>(longest);
    longest = std::max(longest, PaneSend(editor, SCI_LINELENGTH, line + change.linesAdded));
    LongestLine between;
    between.Look({change.text, static_cast<std::size_t>(change.length)});
    return std::max(static_cast<std::size_t>(longest), between.Length());
}

// Scintilla's buffer has a gap. Looking at each side of it moves nothing.
std::size_t LongestOfText(HWND editor) {
    const LRESULT gap = PaneSend(editor, SCI_GETGAPPOSITION), length = PaneSend(editor, SCI_GETLENGTH);
    LongestLine longest;
    const auto look = [&](LRESULT from, LRESULT to) {
        if (from >= to) return;
        const auto* const text = reinterpret_cast<const char*>(PaneSend(editor, SCI_GETRANGEPOINTER, from, to - from));
        if (text != nullptr) longest.Look({text, static_cast<std::size_t>(to - from)});
    };
    look(0, gap);
    look(gap, length);
    return longest.Length();
}

}  // namespace

void EditorPaneCheckLongLine(HWND editor, const SCNotification& change, LRESULT line) {
    PaneState* const state = PaneStateOf(editor);
    if (state == nullptr || state->plain) return;
    // Once plain, the whole text is looked at only after so much has gone that it may have been the line.
    if (state->longLine > 0 && ((change.modificationType & SC_MOD_DELETETEXT) == 0 || !IsLong(change.length))) return;
    const std::size_t longest = state->longLine > 0 ? LongestOfText(editor) : LongestOfChange(editor, change, line);
    const bool plain = longest >= kLongLine, wasPlain = state->longLine > 0;
    state->longLine = plain ? longest : 0;
    if (plain != wasPlain) EditorPaneShowPlainness(editor);
}
