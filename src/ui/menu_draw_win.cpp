#include "ui/menu_draw.h"

#include "base/handles.h"
#include "ui/chrome.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/menu_text.h"
#include "ui/paint.h"
#include "ui/subclass.h"

#include <commctrl.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace {

// An item as the system names it in WM_MEASUREITEM and WM_DRAWITEM: menu and position in one number.
struct ItemPlace {
    HMENU menu;
    UINT position;
};
ULONG_PTR Packed(ItemPlace place) { return reinterpret_cast<ULONG_PTR>(place.menu) << 16 | (place.position & 0xFFFF); }
ItemPlace Unpacked(ULONG_PTR data) { return {reinterpret_cast<HMENU>(data >> 16), static_cast<UINT>(data & 0xFFFF)}; }

MenuItemText TextOf(ItemPlace place) {
    wchar_t buffer[256] = {};
    GetMenuStringW(place.menu, place.position, buffer, static_cast<int>(std::size(buffer)), MF_BYPOSITION);
    return SplitMenuText(buffer);
}

MENUITEMINFOW InfoOf(ItemPlace place) {
    MENUITEMINFOW info = {};
    info.cbSize = sizeof(info);
    info.fMask = MIIM_FTYPE | MIIM_SUBMENU | MIIM_BITMAP;
    GetMenuItemInfoW(place.menu, place.position, TRUE, &info);
    return info;
}

COLORREF MenuBack() { return ThemeCurrentChrome().statusBack; }

HBRUSH BackBrush() {
    static UniqueBrush brush;
    static COLORREF colour = CLR_INVALID;
    if (colour != MenuBack()) {
        colour = MenuBack();
        brush.Reset(CreateSolidBrush(colour));
    }
    return brush.Get();
}

bool HasPictures(HMENU menu) {
    for (int i = 0; i < GetMenuItemCount(menu); ++i)
        if (InfoOf({menu, static_cast<UINT>(i)}).hbmpItem != nullptr) return true;
    return false;
}

bool IsDrawnHere(HMENU menu) { return GetMenuItemCount(menu) > 0 && (InfoOf({menu, 0}).fType & MFT_OWNERDRAW) != 0; }

// Makes the items owner-drawn, or gives them back to the system. A menu with pictures is drawn in every theme, because
// a system may copy the pictures without their transparency, as Wine does: they would be black squares.
// Returns whether an item was changed.
bool PrepareMenu(HMENU menu) {
    const bool drawn = ThemeDrawsControls() || HasPictures(menu);
    bool changed = false;
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        const ItemPlace place = {menu, static_cast<UINT>(i)};
        MENUITEMINFOW info = InfoOf(place);
        if (!drawn && (info.fType & MFT_OWNERDRAW) == 0) continue;
        info.fMask = MIIM_FTYPE | MIIM_DATA;
        info.fType = drawn ? info.fType | MFT_OWNERDRAW : info.fType & ~static_cast<UINT>(MFT_OWNERDRAW);
        info.dwItemData = drawn ? Packed(place) : 0;
        SetMenuItemInfoW(menu, place.position, TRUE, &info);
        changed = true;
    }
    if (!changed) return false;
    MENUINFO background = {};
    background.cbSize = sizeof(background);
    background.fMask = MIM_BACKGROUND;
    background.hbrBack = drawn ? BackBrush() : nullptr;
    SetMenuInfo(menu, &background);
    return true;
}

int NameWidth(std::wstring_view name) {
    const std::wstring shown = MenuNameShown(name);
    return UiTextWidth(shown.c_str(), static_cast<int>(shown.size()));
}

void MeasureItem(HWND window, MEASUREITEMSTRUCT& item) {
    const ItemPlace place = Unpacked(item.itemData);
    const MenuItemText text = TextOf(place);
    if (place.menu == GetMenu(window)) {  // the system adds the space around the items of a bar
        item.itemWidth = static_cast<UINT>(NameWidth(text.name));
        item.itemHeight = static_cast<UINT>(UiSizes().textHeight);
        return;
    }
    const MenuItemSize size =
        MenuItemSizeOf((InfoOf(place).fType & MFT_SEPARATOR) != 0, NameWidth(text.name),
                       text.key.empty() ? 0 : NameWidth(text.key), UiSizes().textHeight, g_ui.dpi);
    item.itemWidth = static_cast<UINT>(size.width);
    item.itemHeight = static_cast<UINT>(size.height);
}

void DrawTick(HDC dc, const RECT& item, COLORREF colour) {
    const int middle = (item.top + item.bottom) / 2, left = item.left + UiScaled(9);
    const POINT tick[] = {
        {left, middle}, {left + UiScaled(3), middle + UiScaled(3)}, {left + UiScaled(9), middle - UiScaled(4)}};
    DrawPolyline(dc, tick, colour, std::max(UiScaled(2), 1));
}

// `opacity`: 0..255.
void DrawPicture(HDC dc, const RECT& item, HBITMAP picture, BYTE opacity) {
    BITMAP size = {};
    if (GetObjectW(picture, sizeof(size), &size) == 0) return;
    const UniqueMemoryDc memory(CreateCompatibleDC(dc));
    const HGDIOBJ old = SelectObject(memory.Get(), picture);
    const int left = item.left + (UiScaled(kMenuGutter) - static_cast<int>(size.bmWidth)) / 2;
    const int top = (item.top + item.bottom - static_cast<int>(size.bmHeight)) / 2;
    GdiAlphaBlend(dc, left, top, size.bmWidth, size.bmHeight, memory.Get(), 0, 0, size.bmWidth, size.bmHeight,
                  {AC_SRC_OVER, 0, opacity, AC_SRC_ALPHA});
    SelectObject(memory.Get(), old);
}

void DrawSubmenuArrow(HDC dc, const RECT& item, COLORREF colour) {
    const int middle = (item.top + item.bottom) / 2, right = item.right - UiScaled(9), arm = UiScaled(4);
    DrawTriangle(dc, {{right - arm, middle - arm}, {right - arm, middle + arm}, {right, middle}}, colour);
}

void DrawPopupItem(const DRAWITEMSTRUCT& draw, ItemPlace place, COLORREF colour, UINT format) {
    const MENUITEMINFOW info = InfoOf(place);
    RECT area = draw.rcItem;
    if ((info.fType & MFT_SEPARATOR) != 0) {
        const int middle = (area.top + area.bottom) / 2;
        FillArea(draw.hDC, {area.left + UiScaled(4), middle, area.right - UiScaled(4), middle + 1},
                 ThemeCurrentChrome().line);
        return;
    }
    if ((draw.itemState & ODS_CHECKED) != 0)
        DrawTick(draw.hDC, area, colour);
    else if (info.hbmpItem != nullptr)
        DrawPicture(draw.hDC, area, info.hbmpItem, (draw.itemState & (ODS_GRAYED | ODS_DISABLED)) != 0 ? 100 : 255);
    const MenuItemText text = TextOf(place);
    area.left += UiScaled(kMenuGutter);
    area.right -= UiScaled(kMenuRight);
    DrawTextW(draw.hDC, text.name.c_str(), -1, &area, format);
    DrawTextW(draw.hDC, text.key.c_str(), -1, &area, format | DT_RIGHT | DT_NOPREFIX);
    if (info.hSubMenu != nullptr) DrawSubmenuArrow(draw.hDC, draw.rcItem, colour);
}

void DrawItem(HWND window, const DRAWITEMSTRUCT& draw) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const ItemPlace place = Unpacked(draw.itemData);
    const bool off = (draw.itemState & (ODS_GRAYED | ODS_DISABLED)) != 0;
    const bool lit = (draw.itemState & (ODS_SELECTED | ODS_HOTLIGHT)) != 0;
    const COLORREF colour = off ? MixColours(chrome.statusText, MenuBack(), 50) : chrome.statusText;
    // The keyboard stops at what is off, too, and shows it.
    FillArea(draw.hDC, draw.rcItem, !lit ? MenuBack() : off ? chrome.hover : chrome.selected);
    const HGDIOBJ oldFont = SelectObject(draw.hDC, UiFont());
    SetBkMode(draw.hDC, TRANSPARENT);
    SetTextColor(draw.hDC, colour);
    const UINT format = DT_SINGLELINE | DT_VCENTER | ((draw.itemState & ODS_NOACCEL) != 0 ? DT_HIDEPREFIX : 0U);
    if (place.menu == GetMenu(window)) {
        RECT area = draw.rcItem;
        DrawTextW(draw.hDC, TextOf(place).name.c_str(), -1, &area, format | DT_CENTER);
    } else {
        DrawPopupItem(draw, place, colour, format);
    }
    SelectObject(draw.hDC, oldFont);
    // The system would draw its own, black arrow over that of a submenu.
    ExcludeClipRect(draw.hDC, draw.rcItem.left, draw.rcItem.top, draw.rcItem.right, draw.rcItem.bottom);
}

// The rest of the bar beside its items, and the light line that the system draws below it.
void PaintBarRest(HWND window) {
    MENUBARINFO bar = {};
    bar.cbSize = sizeof(bar);
    RECT frame = {};
    HMENU menu = GetMenu(window);
    if (menu == nullptr || !GetMenuBarInfo(window, OBJID_MENU, 0, &bar) || !GetWindowRect(window, &frame)) return;
    RECT last = {};
    const int count = GetMenuItemCount(menu);
    RECT area = bar.rcBar;
    // A bar of several rows has free places in each; only the last is filled here.
    if (count > 0 && GetMenuItemRect(window, menu, static_cast<UINT>(count - 1), &last)) {
        area.left = last.right;
        area.top = last.top;
    }
    RECT line = {bar.rcBar.left, bar.rcBar.bottom, bar.rcBar.right, bar.rcBar.bottom + 1};
    OffsetRect(&area, -frame.left, -frame.top);
    OffsetRect(&line, -frame.left, -frame.top);
    const HDC dc = GetWindowDC(window);
    FillArea(dc, area, MenuBack());
    FillArea(dc, line, MenuBack());
    ReleaseDC(window, dc);
}

// The item with the mnemonic. The system looks only at texts that it draws itself.
LRESULT ItemOfMnemonic(HMENU menu, wchar_t key) {
    std::vector<std::wstring> names;
    int selected = -1;
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        if ((GetMenuState(menu, static_cast<UINT>(i), MF_BYPOSITION) & MF_HILITE) != 0) selected = i;
        names.push_back(TextOf({menu, static_cast<UINT>(i)}).name);
    }
    const MenuMnemonic found = FindMenuMnemonic(names, selected, key);
    if (found.item < 0) return MAKELRESULT(0, MNC_IGNORE);
    return MAKELRESULT(found.item, found.alone ? MNC_EXECUTE : MNC_SELECT);
}

LRESULT CALLBACK MenuDrawProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    return MenuDrawAround(window, message, wParam, lParam, SubclassNext);
}

}  // namespace

LRESULT MenuDrawAround(HWND window, UINT message, WPARAM wParam, LPARAM lParam, WNDPROC next) {
    if (message == WM_INITMENUPOPUP && HIWORD(lParam) == 0) {  // not the window's system menu
        const LRESULT result = next(window, message, wParam, lParam);
        PrepareMenu(reinterpret_cast<HMENU>(wParam));
        return result;
    }
    switch (message) {
        case WM_MEASUREITEM: {
            auto& item = *reinterpret_cast<MEASUREITEMSTRUCT*>(lParam);
            if (item.CtlType != ODT_MENU) break;
            MeasureItem(window, item);
            return TRUE;
        }
        case WM_DRAWITEM: {
            const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
            if (item.CtlType != ODT_MENU) break;
            DrawItem(window, item);
            return TRUE;
        }
        case WM_MENUCHAR:
            if (!IsDrawnHere(reinterpret_cast<HMENU>(lParam))) break;
            return ItemOfMnemonic(reinterpret_cast<HMENU>(lParam), static_cast<wchar_t>(LOWORD(wParam)));
        case WM_SETTEXT:  // a new caption may paint the whole frame
        case WM_NCPAINT:
        case WM_NCACTIVATE: {
            const LRESULT result = next(window, message, wParam, lParam);
            if (ThemeDrawsControls()) PaintBarRest(window);
            return result;
        }
        default: break;
    }
    return next(window, message, wParam, lParam);
}

void MenuDrawAttach(HWND window) { SubclassAdd(window, MenuDrawProc); }

void MenuDrawDetach(HWND window) { SubclassRemove(window, MenuDrawProc); }

void MenuDrawPrepare(HMENU menu) { PrepareMenu(menu); }

void MenuBarApplyTheme(HWND window) {
    HMENU menu = GetMenu(window);
    if (menu == nullptr) return;
    if (PrepareMenu(menu)) DrawMenuBar(window);
}
