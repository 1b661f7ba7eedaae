// Places in an editor that come from outside it. UI thread.
#include "documents/caret_place.h"

#include "documents/file_column.h"
#include "documents/pane_state.h"
#include "scintilla/sci.h"

#include <algorithm>

namespace {

constexpr LRESULT kLongestCharacter = 4;  // bytes in UTF-8

// The bytes of a character in the system's code page.
std::ptrdiff_t WidthInCodePage(std::string_view character) {
    if (character.size() == 1) return 1;
    wchar_t units[8] = {};
    char bytes[16] = {};
    const int length = MultiByteToWideChar(CP_UTF8, 0, character.data(), static_cast<int>(character.size()), units, 8);
    return std::max(1, WideCharToMultiByte(CP_ACP, 0, units, length, bytes, sizeof bytes, nullptr, nullptr));
}

}  // namespace

LRESULT CaretPositionAt(HWND editor, LRESULT position) {
    const LRESULT at = std::clamp<LRESULT>(position, 0, PaneSend(editor, SCI_GETLENGTH));
    // Scintilla steps over whole characters and over CR LF in one step.
    const LRESULT before = PaneSend(editor, SCI_POSITIONBEFORE, at);
    return PaneSend(editor, SCI_POSITIONAFTER, before) == at ? at : before;
}

LRESULT CaretPositionOfFileColumn(const DocumentTab& document, LRESULT line, LRESULT column) {
    const HWND editor = document.editor;
    line = std::clamp<LRESULT>(line, 0, std::max<LRESULT>(PaneSend(editor, SCI_GETLINECOUNT) - 1, 0));
    const LRESULT start = PaneSend(editor, SCI_POSITIONFROMLINE, line);
    const LRESULT room = PaneSend(editor, SCI_GETLINEENDPOSITION, line) - start;
    column = std::clamp<LRESULT>(column, 0, room);
    if (document.encoding != TextEncoding::Ansi) return CaretPositionAt(editor, start + column);
    // No character takes fewer bytes in the file than one, so the columns before this one are within this text.
    const LRESULT needed = std::min(room, (column + 1) * kLongestCharacter);
    return start + OffsetOfFileColumn(EditorPaneTextBetween(editor, start, start + needed), column, WidthInCodePage);
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

void CaretSelect(HWND editor, LRESULT anchor, LRESULT caret) {
    anchor = CaretPositionAt(editor, anchor);
    caret = CaretPositionAt(editor, caret);
    for (const LRESULT end : {anchor, caret}) CaretUncoverLine(editor, PaneSend(editor, SCI_LINEFROMPOSITION, end));
    PaneSend(editor, SCI_SETSEL, anchor, caret);
}
