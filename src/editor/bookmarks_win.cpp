#include "editor/bookmarks.h"

#include "editor/caret_place.h"
#include "editor/margins.h"
#include "scintilla/sci.h"

namespace {

constexpr LPARAM kBookmarks = LPARAM{1} << kMarkBookmark;

WPARAM CaretLine(HWND editor) {
    return static_cast<WPARAM>(
        SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(SciSend(editor, SCI_GETCURRENTPOS))));
}

}  // namespace

void BookmarkToggle(HWND editor) {
    const WPARAM line = CaretLine(editor);
    const bool set = (SciSend(editor, SCI_MARKERGET, line) & kBookmarks) != 0;
    SciSend(editor, set ? SCI_MARKERDELETE : SCI_MARKERADD, line, kMarkBookmark);
}

bool BookmarkGo(HWND editor, bool forward) {
    const UINT search = forward ? SCI_MARKERNEXT : SCI_MARKERPREVIOUS;
    const WPARAM caret = CaretLine(editor);
    // A search from before line 0 finds nothing, as it should.
    LRESULT line = forward || caret > 0 ? SciSend(editor, search, forward ? caret + 1 : caret - 1, kBookmarks) : -1;
    if (line < 0) {
        const LRESULT last = SciSend(editor, SCI_GETLINECOUNT) - 1;
        line = SciSend(editor, search, forward ? 0 : static_cast<WPARAM>(last), kBookmarks);
    }
    if (line < 0) return false;
    CaretGoToMiddle(editor, SciSend(editor, SCI_POSITIONFROMLINE, static_cast<WPARAM>(line)));
    return true;
}

void BookmarksClear(HWND editor) { SciClearMarker(editor, kMarkBookmark); }
