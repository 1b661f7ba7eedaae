// Draws the label above the editor that shows the sticky header. UI thread.
#include "documents/sticky_label.h"

#include "documents/documents_state.h"
#include "editor/margins.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "ui/chrome.h"
#include "ui/fonts.h"
#include "ui/paint.h"

#include <iterator>

namespace {

// The x position (pixels) at which the editor's text begins; the header begins there too.
int TextStart() {
    LRESULT start = SciSend(g_documents.hEditor, SCI_GETMARGINLEFT);
    for (WPARAM margin = 0; margin < kMarginCount; ++margin)
        start += SciSend(g_documents.hEditor, SCI_GETMARGINWIDTHN, margin);
    return static_cast<int>(start);
}

}  // namespace

bool StickyHeaderDraw(const DRAWITEMSTRUCT& item) {
    if (item.CtlID != IDC_STICKY_HEADER) return false;
    const ThemeChrome& chrome = ThemeCurrentChrome();
    FillArea(item.hDC, item.rcItem, chrome.tabActiveBack);
    RECT line = item.rcItem;
    line.top = line.bottom - 1;
    FillArea(item.hDC, line, chrome.line);
    wchar_t text[512] = {};
    GetWindowTextW(item.hwndItem, text, static_cast<int>(std::size(text)));
    RECT area = item.rcItem;
    area.left += TextStart();
    HGDIOBJ oldFont = SelectObject(item.hDC, UiFont());
    SetBkMode(item.hDC, TRANSPARENT);
    SetTextColor(item.hDC, chrome.tabText);
    DrawTextW(item.hDC, text, -1, &area, DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX);
    SelectObject(item.hDC, oldFont);
    return true;
}
