// Places in an editor that come from outside it. UI thread.
#include "editor/caret_place.h"

#include "editor/pane_state.h"
#include "scintilla/sci.h"

#include <algorithm>

LRESULT CaretPositionAt(HWND editor, LRESULT position) {
    const LRESULT at = std::clamp<LRESULT>(position, 0, PaneSend(editor, SCI_GETLENGTH));
    // Scintilla steps over whole characters and over CR LF in one step.
    const LRESULT before = PaneSend(editor, SCI_POSITIONBEFORE, at);
    return PaneSend(editor, SCI_POSITIONAFTER, before) == at ? at : before;
}

void CaretUncoverLine(HWND editor, LRESULT line) {
    // SCI_ENSUREVISIBLE on a visible line is not free: with word wrap on it wraps the whole document.
    if (PaneSend(editor, SCI_GETLINEVISIBLE, line) == 0) PaneSend(editor, SCI_ENSUREVISIBLE, line);
}

void CaretLeaveHiddenLine(HWND editor) {
    const LRESULT caret = PaneSend(editor, SCI_GETCURRENTPOS);
    LRESULT line = PaneSend(editor, SCI_LINEFROMPOSITION, caret);
    if (PaneSend(editor, SCI_GETLINEVISIBLE, line) != 0) return;
    while (line > 0 && PaneSend(editor, SCI_GETLINEVISIBLE, line) == 0) {
        const LRESULT parent = PaneSend(editor, SCI_GETFOLDPARENT, line);
        line = parent >= 0 && parent < line ? parent : line - 1;
    }
    PaneSend(editor, SCI_SETEMPTYSELECTION,
             PaneSend(editor, SCI_FINDCOLUMN, line, PaneSend(editor, SCI_GETCOLUMN, caret)));
}

void CaretGoTo(HWND editor, LRESULT position) {
    const LRESULT at = CaretPositionAt(editor, position);
    CaretUncoverLine(editor, PaneSend(editor, SCI_LINEFROMPOSITION, at));
    PaneSend(editor, SCI_GOTOPOS, at);
}

void CaretGoToMiddle(HWND editor, LRESULT position) {
    const LRESULT line = PaneSend(editor, SCI_LINEFROMPOSITION, CaretPositionAt(editor, position));
    const LRESULT row = PaneSend(editor, SCI_VISIBLEFROMDOCLINE, line) - PaneSend(editor, SCI_GETFIRSTVISIBLELINE);
    const bool inSight =
        PaneSend(editor, SCI_GETLINEVISIBLE, line) != 0 && row >= 0 && row < PaneSend(editor, SCI_LINESONSCREEN);
    CaretGoTo(editor, position);
    if (!inSight) CaretShowInMiddle(editor);
}

bool CaretToggleFold(HWND editor) {
    LRESULT line = PaneSend(editor, SCI_LINEFROMPOSITION, PaneSend(editor, SCI_GETCURRENTPOS));
    if ((PaneSend(editor, SCI_GETFOLDLEVEL, line) & SC_FOLDLEVELHEADERFLAG) == 0)
        line = PaneSend(editor, SCI_GETFOLDPARENT, line);
    if (line < 0) return false;
    PaneSend(editor, SCI_TOGGLEFOLD, line);
    CaretLeaveHiddenLine(editor);
    return true;
}

void CaretShowInMiddle(HWND editor) {
    const LRESULT caret = PaneSend(editor, SCI_GETCURRENTPOS);
    const LRESULT rows = PaneSend(editor, SCI_LINESONSCREEN);
    const LRESULT height = PaneSend(editor, SCI_TEXTHEIGHT);
    const LRESULT row = PaneSend(editor, SCI_POINTYFROMPOSITION, 0, caret) / std::max<LRESULT>(height, 1);
    if (row >= rows / 3 && row < rows - rows / 3) return;
    PaneSend(editor, SCI_LINESCROLL, 0, row - rows / 2);
}

void CaretSelect(HWND editor, LRESULT anchor, LRESULT caret) {
    anchor = CaretPositionAt(editor, anchor);
    caret = CaretPositionAt(editor, caret);
    for (const LRESULT end : {anchor, caret}) CaretUncoverLine(editor, PaneSend(editor, SCI_LINEFROMPOSITION, end));
    PaneSend(editor, SCI_SETSEL, anchor, caret);
}
