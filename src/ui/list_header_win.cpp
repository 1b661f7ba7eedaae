#include "ui/list_header.h"

#include "ui/chrome.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/paint.h"
#include "ui/subclass.h"

#include <commctrl.h>

#include <iterator>

namespace {

constexpr int kPadding = 6;  // at 96 dpi

void DrawHeaderItem(const NMCUSTOMDRAW& draw) {
    wchar_t title[64] = {};
    HDITEMW item = {};
    item.mask = HDI_TEXT | HDI_FORMAT;
    item.pszText = title;
    item.cchTextMax = static_cast<int>(std::size(title));
    SendMessageW(draw.hdr.hwndFrom, HDM_GETITEMW, draw.dwItemSpec, reinterpret_cast<LPARAM>(&item));
    const ThemeChrome& chrome = ThemeCurrentChrome();
    RECT cell = draw.rc;
    FillArea(draw.hdc, cell, chrome.tabBack);
    FillArea(draw.hdc, {cell.left, cell.bottom - 1, cell.right, cell.bottom}, chrome.line);
    FillArea(draw.hdc, {cell.right - 1, cell.top + UiScaled(4), cell.right, cell.bottom - UiScaled(4)}, chrome.line);
    InflateRect(&cell, -UiScaled(kPadding), 0);
    const HGDIOBJ oldFont = SelectObject(draw.hdc, UiFont());
    SetBkMode(draw.hdc, TRANSPARENT);
    SetTextColor(draw.hdc, chrome.tabText);
    const bool right = (item.fmt & HDF_JUSTIFYMASK) == HDF_RIGHT;
    DrawTextW(draw.hdc, title, -1, &cell,
              DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS | (right ? DT_RIGHT : 0U));
    SelectObject(draw.hdc, oldFont);
}

// The control paints the part after the last column itself.
void FillRest(const NMCUSTOMDRAW& draw) {
    RECT rest = {}, last = {};
    GetClientRect(draw.hdr.hwndFrom, &rest);
    const LRESULT count = SendMessageW(draw.hdr.hwndFrom, HDM_GETITEMCOUNT, 0, 0);
    if (count > 0 && SendMessageW(draw.hdr.hwndFrom, HDM_GETITEMRECT, static_cast<WPARAM>(count - 1),
                                  reinterpret_cast<LPARAM>(&last)) != FALSE)
        rest.left = last.right;
    FillArea(draw.hdc, rest, ThemeCurrentChrome().tabBack);
}

LRESULT DrawHeader(const NMCUSTOMDRAW& draw) {
    if (draw.dwDrawStage == CDDS_ITEMPREPAINT) {
        DrawHeaderItem(draw);
        return CDRF_SKIPDEFAULT;
    }
    if (draw.dwDrawStage == CDDS_POSTPAINT) FillRest(draw);
    return draw.dwDrawStage == CDDS_PREPAINT ? CDRF_NOTIFYITEMDRAW | CDRF_NOTIFYPOSTPAINT : CDRF_DODEFAULT;
}

LRESULT CALLBACK HeaderOwnerProc(HWND list, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    if (message == WM_NOTIFY) {
        const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
        if (header.code == NM_CUSTOMDRAW &&
            header.hwndFrom == reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0)))
            return DrawHeader(*reinterpret_cast<const NMCUSTOMDRAW*>(lParam));
    }
    return SubclassNext(list, message, wParam, lParam);
}

}  // namespace

void ListHeaderApplyTheme(HWND list) {
    SubclassAdd(list, HeaderOwnerProc);  // setting it again changes nothing
    InvalidateRect(reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0)), nullptr, TRUE);
}
