#include "editor/fold_commands.h"

#include "base/events.h"
#include "base/texts.h"
#include "editor/caret_place.h"
#include "editor/editor_pane.h"
#include "editor/pane_state.h"
#include "scintilla/sci.h"
#include "ui/long_work.h"
#include "ui/redraw.h"

namespace {

bool IsHeader(HWND editor, LRESULT line) {
    return (PaneSend(editor, SCI_GETFOLDLEVEL, line) & SC_FOLDLEVELHEADERFLAG) != 0;
}

bool IsFolded(HWND editor, LRESULT line) {
    return IsHeader(editor, line) && PaneSend(editor, SCI_GETFOLDEXPANDED, line) == 0;
}

// The first line of the block that a command at this line folds; -1: there is none.
LRESULT BlockToFold(HWND editor, LRESULT line) {
    if (IsHeader(editor, line) && !IsFolded(editor, line)) return line;
    return PaneSend(editor, SCI_GETFOLDPARENT, line);
}

LRESULT CaretLine(HWND editor) { return PaneSend(editor, SCI_LINEFROMPOSITION, PaneSend(editor, SCI_GETCURRENTPOS)); }

// The levels of lines come with their colours. False when the user has stopped it.
bool LevelsAreKnown(HWND editor) {
    LongWork work(
        Text(L"Looking at blocks"), [](const wchar_t* text) { g_events.statusText(text); });
    const bool known = EditorColourAll(editor, [&work](double share) { return work.GoesOn(share); });
    if (work.Shown()) g_events.statusText(known ? L"" : Text(L"Stopped: nothing was folded"));
    return known;
}

void EndFolding(HWND editor) {
    CaretLeaveHiddenLine(editor);
    PaneSend(editor, SCI_SCROLLCARET);
}

}  // namespace

void EditorFoldAtCaret(HWND editor, bool fold) {
    if (editor == nullptr) return;
    const LRESULT line = CaretLine(editor);
    const LRESULT header = fold ? BlockToFold(editor, line) : IsFolded(editor, line) ? line : -1;
    if (header < 0) return;
    PaneSend(editor, SCI_FOLDLINE, header, fold ? SC_FOLDACTION_CONTRACT : SC_FOLDACTION_EXPAND);
    EndFolding(editor);
}

void EditorFoldAll(HWND editor, bool fold) {
    if (editor == nullptr || (fold && !LevelsAreKnown(editor))) return;
    PaneSend(editor, SCI_FOLDALL, fold ? SC_FOLDACTION_CONTRACT : SC_FOLDACTION_EXPAND);
    EndFolding(editor);
}

void EditorFoldLevel(HWND editor, int level) {
    if (editor == nullptr || !LevelsAreKnown(editor)) return;
    const LRESULT lines = PaneSend(editor, SCI_GETLINECOUNT);
    {
        const RedrawPause pause(editor);
        for (LRESULT line = 0; line < lines; ++line) {
            if (!IsHeader(editor, line)) continue;
            const LRESULT depth =
                (PaneSend(editor, SCI_GETFOLDLEVEL, line) & SC_FOLDLEVELNUMBERMASK) - SC_FOLDLEVELBASE + 1;
            if (depth > level) continue;
            const bool folds = depth == level;
            if (folds != IsFolded(editor, line))
                PaneSend(editor, SCI_FOLDLINE, line, folds ? SC_FOLDACTION_CONTRACT : SC_FOLDACTION_EXPAND);
        }
    }
    InvalidateRect(editor, nullptr, FALSE);
    EndFolding(editor);
}
