#include "documents/document_place.h"

#include "documents/file_column.h"
#include "editor/caret_place.h"
#include "editor/editor_pane.h"

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
