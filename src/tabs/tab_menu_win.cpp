// The menus and the tooltip of the tabs: what can be done with one, and the list of the first nine. UI thread.
#include "tabs/tab_bar.h"

#include "base/texts.h"
#include "documents/document_row.h"
#include "documents/save_rules.h"
#include "files/text_encoding.h"
#include "resources/ids.h"
#include "settings/settings_state.h"
#include "tabs/tab_bar_internal.h"
#include "tabs/tab_text.h"
#include "ui/menu.h"
#include "ui/ui_state.h"

#include <algorithm>

namespace {

constexpr int kListed = 9;

bool IsListItem(UINT id) { return id >= IDM_TAB_NUMBER_FIRST && id < IDM_TAB_NUMBER_FIRST + kListed; }

int PlaceOfItem(HMENU menu, UINT command) {
    for (int i = 0; i < GetMenuItemCount(menu); ++i)
        if (GetMenuItemID(menu, i) == command) return i;
    return -1;
}

}  // namespace

// Shows the document first, because the menu's commands act on the active one.
void TabMenuShow(HWND strip, int index, POINT at) {
    if (!IsTabIndex(index) || TabBarSelect(index) == 0) return;
    const DocumentTab& tab = TabAt(index);
    const DocumentId document = tab.id;
    // WM_INITMENUPOPUP of the main window enables the commands.
    const MenuItem items[] = {{.id = IDM_FILE_CLOSE, .text = Text(L"&Close\tCtrl+W")},
                              {.id = IDM_TAB_CLOSE_OTHERS, .text = Text(L"Close &Others")},
                              {.id = IDM_TAB_CLOSE_RIGHT, .text = Text(L"Close to the &Right")},
                              {.id = IDM_TAB_CLOSE_SAVED, .text = Text(L"Close &Saved")},
                              {.id = IDM_FILE_CLOSE_ALL, .text = Text(L"Close &All")},
                              {.id = IDM_TAB_REOPEN, .text = Text(L"Reopen Closed &Tab\tCtrl+Shift+T")},
                              {},
                              {.id = IDM_TAB_PIN, .text = Text(L"&Pin Tab")},
                              {},
                              {.id = IDM_FILE_SAVE, .text = Text(L"Sa&ve\tCtrl+S")},
                              {.id = IDM_FILE_RELOAD, .text = Text(L"Re&load\tCtrl+R")},
                              {},
                              {.id = IDM_TAB_COPY_PATH, .text = Text(L"Copy &Full Path\tAlt+Shift+C")},
                              {.id = IDM_TAB_COPY_NAME, .text = Text(L"Copy &Name")},
                              {.id = IDM_TAB_OPEN_FOLDER, .text = Text(L"Open Folder in &Explorer")}};
    ClientToScreen(strip, &at);
    const UINT command = ShowPopupMenu(g_ui.hMainWnd, items, at);
    // TrackPopupMenu ran a message loop, so the document may be gone or no longer active.
    if (command == 0 || TabBarSelect(TabBarFindDocument(document)) == 0) return;
    FocusCurrentEditor();
    PostMessageW(g_ui.hMainWnd, WM_COMMAND, command, 0);
}

std::wstring TabTipOf(int index) {
    const DocumentTab& tab = TabAt(index);
    std::wstring text = tab.hasFile ? tab.path : tab.label;
    text += L"\n" + TabStateText(TabStateOf(tab));
    if (tab.pinned) text += Text(L", pinned");
    if (tab.editor != nullptr)
        text += std::wstring(L" - ") + EncodingName(EncodingOfNextSave(tab, EncodingOfNewFiles(g_settings)), tab.form);
    // What the words do not tell, like the new name of a file.
    const std::wstring news = OutsideTipText(tab.outside, false);
    return news.empty() ? text : text + L"\n" + news;
}

void TabMenuFill(HMENU menu) {
    if (PlaceOfItem(menu, IDM_TAB_LIST) < 0) return;
    for (int i = GetMenuItemCount(menu) - 1; i >= 0; --i)
        if (IsListItem(GetMenuItemID(menu, i))) DeleteMenu(menu, static_cast<UINT>(i), MF_BYPOSITION);
    const int at = PlaceOfItem(menu, IDM_TAB_LIST);
    for (int i = 0; i < std::min(TabCount(), kListed); ++i) {
        std::wstring text = TabMenuText(i, TabBarNameOf(i));
        if (TabAt(i).modified) text += L" *";
        if (i < kListed - 1) text += L"\tCtrl+" + std::to_wstring(i + 1);
        InsertMenuW(menu, static_cast<UINT>(at + i), MF_BYPOSITION | MF_STRING,
                    static_cast<UINT_PTR>(IDM_TAB_NUMBER_FIRST + i), text.c_str());
    }
}
