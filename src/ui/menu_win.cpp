#include "ui/menu.h"

#include "base/log.h"

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

}  // namespace

UINT ShowPopupMenu(HWND owner, std::span<const MenuItem> items, POINT screen, UINT flags) {
    const HMENU menu = CreatePopupMenu();
    if (menu == nullptr) {
        AppLogMsg(L"FAIL: ShowPopupMenu error=%lu", GetLastError());
        return 0;
    }
    for (const MenuItem& item : items) AppendItem(menu, item);
    const BOOL chosen =
        TrackPopupMenu(menu, TPM_RETURNCMD | TPM_RIGHTBUTTON | flags, screen.x, screen.y, 0, owner, nullptr);
    DestroyMenu(menu);
    return static_cast<UINT>(chosen);
}
