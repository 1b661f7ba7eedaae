#include "ui/menu.h"

#include "base/log.h"
#include "base/texts.h"
#include "ui/menu_draw.h"
#include "ui/ui_state.h"

#include <iterator>

namespace {

void AppendItem(HMENU menu, const MenuItem& item) {
    const UINT state = (item.enabled ? MF_ENABLED : MF_GRAYED) | (item.checked ? MF_CHECKED : MF_UNCHECKED);
    AppendMenuW(menu, item.id == 0 ? MF_SEPARATOR : MF_STRING | state, item.id, item.text);
    if (item.picture == nullptr) return;
    MENUITEMINFOW info = {};
    info.cbSize = sizeof(info);
    info.fMask = MIIM_BITMAP;
    info.hbmpItem = item.picture;
    SetMenuItemInfoW(menu, item.id, FALSE, &info);
}

void TranslateItem(HMENU menu, int at) {
    wchar_t english[256] = {};
    if (GetMenuStringW(menu, static_cast<UINT>(at), english, static_cast<int>(std::size(english)), MF_BYPOSITION) == 0)
        return;
    const wchar_t* const text = Text(english);
    if (text == english) return;
    MENUITEMINFOW info = {};
    info.cbSize = sizeof(info);
    info.fMask = MIIM_STRING;
    info.dwTypeData = const_cast<wchar_t*>(text);  // the system only reads it
    SetMenuItemInfoW(menu, static_cast<UINT>(at), TRUE, &info);
}

}  // namespace

void MenuTranslate(HMENU menu) {
    if (!TextsAreTranslated()) return;
    for (int at = 0; at < GetMenuItemCount(menu); ++at) {
        TranslateItem(menu, at);
        if (const HMENU inner = GetSubMenu(menu, at); inner != nullptr) MenuTranslate(inner);
    }
}

UINT ShowPopupMenu(HWND owner, std::span<const MenuItem> items, POINT screen, UINT flags) {
    const HMENU menu = CreatePopupMenu();
    if (menu == nullptr) {
        AppLogMsg(L"FAIL: ShowPopupMenu error=%lu", GetLastError());
        return 0;
    }
    for (const MenuItem& item : items) AppendItem(menu, item);
    // The main window draws its menus always, another owner while its menu is open.
    const bool attach = owner != g_ui.hMainWnd;
    if (attach) MenuDrawAttach(owner);
    MenuDrawPrepare(menu);  // TPM_NONOTIFY keeps WM_INITMENUPOPUP away
    const BOOL chosen =
        TrackPopupMenu(menu, TPM_RETURNCMD | TPM_RIGHTBUTTON | flags, screen.x, screen.y, 0, owner, nullptr);
    if (attach) MenuDrawDetach(owner);
    DestroyMenu(menu);
    return static_cast<UINT>(chosen);
}
