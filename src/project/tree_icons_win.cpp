// Draws the small pictures of the project tree. UI thread.
#include "project/tree_icons.h"

#include "base/handles.h"
#include "ui/chrome.h"
#include "ui/scale.h"

#include <iterator>

namespace {

constexpr COLORREF kFolderColour = RGB(0xD9, 0xA6, 0x3A);  // visible on a light and on a dark pane

struct Pictures {
    HDC dc;
    int side;  // pixels of one picture

    // A coordinate of the 16 x 16 grid in pixels.
    int At(int unit) const { return MulDiv(unit, side, 16); }
};

void FillShape(const Pictures& pictures, int picture, const POINT* grid, int count, COLORREF fill, COLORREF edge) {
    POINT points[8];
    for (int i = 0; i < count; ++i)
        points[i] = {picture * pictures.side + pictures.At(grid[i].x), pictures.At(grid[i].y)};
    SetDCBrushColor(pictures.dc, fill);
    SetDCPenColor(pictures.dc, edge);
    Polygon(pictures.dc, points, count);
}

void DrawPictures(const Pictures& pictures, const ThemeChrome& chrome) {
    const RECT all = {0, 0, pictures.side * 3, pictures.side};
    SetDCBrushColor(pictures.dc, chrome.paneBack);
    FillRect(pictures.dc, &all, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
    SelectObject(pictures.dc, GetStockObject(DC_BRUSH));
    SelectObject(pictures.dc, GetStockObject(DC_PEN));

    constexpr POINT kFolder[] = {{1, 3}, {6, 3}, {8, 5}, {14, 5}, {14, 13}, {1, 13}};
    FillShape(pictures, kTreeIconFolder, kFolder, static_cast<int>(std::size(kFolder)), kFolderColour, kFolderColour);
    constexpr POINT kSheet[] = {{3, 1}, {10, 1}, {13, 4}, {13, 14}, {3, 14}};
    FillShape(pictures, kTreeIconFile, kSheet, static_cast<int>(std::size(kSheet)), chrome.paneBack, chrome.paneText);
    constexpr POINT kCorner[] = {{10, 1}, {13, 4}, {10, 4}};
    FillShape(pictures, kTreeIconFile, kCorner, static_cast<int>(std::size(kCorner)), chrome.accent, chrome.paneText);
}

}  // namespace

HIMAGELIST TreeIconsCreate(int dpi, const ThemeChrome& chrome) {
    const int side = ScaledTo(16, dpi);
    const HIMAGELIST list = ImageList_Create(side, side, ILC_COLOR24 | ILC_MASK, 3, 0);
    const HDC screen = GetDC(nullptr);
    const UniqueBitmap bitmap{CreateCompatibleBitmap(screen, side * 3, side)};
    const UniqueMemoryDc dc{CreateCompatibleDC(screen)};
    ReleaseDC(nullptr, screen);
    if (list != nullptr && dc && bitmap) {
        const HGDIOBJ before = SelectObject(dc.Get(), bitmap.Get());
        DrawPictures({dc.Get(), side}, chrome);
        SelectObject(dc.Get(), before);
        ImageList_AddMasked(list, bitmap.Get(), chrome.paneBack);
    }
    return list;
}
