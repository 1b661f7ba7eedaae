// Draws the small pictures of the project tree, four times as large, and makes them smaller with soft edges, so that they
// are crisp at every resolution and on every ground. UI thread.
#include "project/tree_icons.h"

#include "base/handles.h"
#include "ui/paint.h"
#include "ui/scale.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <vector>

namespace {

constexpr int kSamples = 4;                    // in each direction, for a pixel
constexpr COLORREF kNothing = RGB(1, 254, 2);  // what is not drawn on

struct TreePalette {
    COLORREF folder, folderEdge, paper, edge, basic, include, c, assembly, resource, quiet;
};

TreePalette PaletteOf(const ThemeChrome& chrome, bool dark) {
    if (SystemHighContrast()) {
        const COLORREF ink = chrome.paneText, paper = chrome.paneBack;
        return {paper, ink, paper, ink, ink, ink, ink, ink, ink, ink};
    }
    return {.folder = dark ? RGB(0xDC, 0xB6, 0x67) : RGB(0xE8, 0xBC, 0x5A),
            .folderEdge = dark ? RGB(0xB8, 0x8F, 0x3C) : RGB(0xB9, 0x85, 0x1E),
            .paper = chrome.paneBack,
            .edge = dark ? RGB(0x9A, 0xA3, 0xAD) : RGB(0x6B, 0x74, 0x80),
            .basic = dark ? RGB(0x5A, 0xA9, 0xF5) : RGB(0x1A, 0x64, 0xC8),
            .include = dark ? RGB(0xC5, 0x8A, 0xF0) : RGB(0x80, 0x3C, 0xB4),
            .c = dark ? RGB(0x4F, 0xC3, 0xB0) : RGB(0x0B, 0x7A, 0x6B),
            .assembly = dark ? RGB(0xF0, 0x86, 0x64) : RGB(0xC0, 0x44, 0x1E),
            .resource = dark ? RGB(0x8C, 0xC8, 0x5A) : RGB(0x3F, 0x82, 0x14),
            .quiet = dark ? RGB(0x86, 0x8E, 0x98) : RGB(0x8A, 0x92, 0x9C)};
}

// Draws on a grid of 160 x 160 for one picture.
struct Canvas {
    HDC dc;
    int left;  // of the picture
    int side;

    int At(int unit) const { return MulDiv(unit, side, 160); }
    void Shape(std::initializer_list<POINT> grid, COLORREF fill) const {
        std::vector<POINT> points;
        for (const POINT& point : grid) points.push_back({left + At(point.x), At(point.y)});
        SetDCBrushColor(dc, fill);
        SetDCPenColor(dc, fill);
        Polygon(dc, points.data(), static_cast<int>(points.size()));
    }
    void Bar(int x, int y, int right, int bottom, COLORREF fill) const {
        const RECT area = {left + At(x), At(y), left + At(right), At(bottom)};
        SetDCBrushColor(dc, fill);
        FillRect(dc, &area, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
    }
};

void DrawFolder(const Canvas& at, const TreePalette& colours, bool open) {
    at.Shape({{10, 30}, {60, 30}, {75, 45}, {150, 45}, {150, 135}, {10, 135}}, colours.folderEdge);
    if (!open) return at.Shape({{20, 60}, {140, 60}, {140, 125}, {20, 125}}, colours.folder);
    at.Shape({{20, 40}, {56, 40}, {72, 58}, {136, 58}, {136, 74}, {20, 74}}, colours.paper);
    at.Shape({{34, 74}, {158, 74}, {140, 134}, {12, 134}}, colours.folder);
}

void DrawSheet(const Canvas& at, const TreePalette& colours) {
    at.Shape({{30, 10}, {100, 10}, {130, 40}, {130, 150}, {30, 150}}, colours.edge);
    at.Shape({{40, 20}, {94, 20}, {120, 46}, {120, 140}, {40, 140}}, colours.paper);
    at.Shape({{92, 14}, {126, 48}, {92, 48}}, colours.edge);
}

// A sheet with the letter of a language, which is made of bars on 6 x 7 fields, each a pixel at 96 dpi.
void DrawLetter(const Canvas& at, const TreePalette& colours, COLORREF ink, const std::array<const char*, 7>& letter) {
    DrawSheet(at, colours);
    for (int row = 0; row < 7; ++row)
        for (int column = 0; column < 6; ++column)
            if (letter[static_cast<std::size_t>(row)][column] != ' ')
                at.Bar(50 + column * 10, 60 + row * 10, 60 + column * 10, 70 + row * 10, ink);
}

void DrawLines(const Canvas& at, const TreePalette& colours, COLORREF ink) {
    DrawSheet(at, colours);
    for (const int y : {60, 80, 100, 120}) at.Bar(50, y, y == 120 ? 90 : 110, y + 10, ink);
}

void DrawPicture(const Canvas& at, TreePicture picture, const TreePalette& colours) {
    switch (picture) {
        case TreePicture::Folder: DrawFolder(at, colours, false); break;
        case TreePicture::FolderOpen: DrawFolder(at, colours, true); break;
        case TreePicture::Basic:
            DrawLetter(at, colours, colours.basic,
                       {"##### ", "##  ##", "##  ##", "##### ", "##  ##", "##  ##", "##### "});
            break;
        case TreePicture::Include:
            DrawLetter(at, colours, colours.include,
                       {"######", "  ##  ", "  ##  ", "  ##  ", "  ##  ", "  ##  ", "######"});
            break;
        case TreePicture::C:
            DrawLetter(at, colours, colours.c, {" #### ", "##  ##", "##    ", "##    ", "##    ", "##  ##", " #### "});
            break;
        case TreePicture::Assembly:
            DrawLetter(at, colours, colours.assembly,
                       {"  ##  ", " #### ", "##  ##", "##  ##", "######", "##  ##", "##  ##"});
            break;
        case TreePicture::Resource:
            DrawSheet(at, colours);
            at.Shape({{80, 52}, {110, 88}, {80, 124}, {50, 88}}, colours.resource);
            break;
        case TreePicture::Text: DrawLines(at, colours, colours.quiet); break;
        case TreePicture::Other:
            DrawSheet(at, colours);
            for (const int x : {50, 75, 100}) at.Bar(x, 100, x + 10, 110, colours.quiet);
            break;
        case TreePicture::None: break;
    }
}

// A pixel of the image list: the mean of the samples that were drawn on, multiplied by their share.
std::uint32_t PixelOf(const std::uint32_t* samples, std::size_t stride) {
    constexpr std::uint32_t kEmpty = 0x01FE02;  // kNothing, with red in front
    std::uint32_t sum[3] = {};
    std::uint32_t covered = 0;
    for (std::size_t y = 0; y < kSamples; ++y)
        for (std::size_t x = 0; x < kSamples; ++x) {
            const std::uint32_t sample = samples[y * stride + x] & 0xFFFFFF;
            if (sample == kEmpty) continue;
            ++covered;
            for (unsigned i = 0; i < 3; ++i) sum[i] += sample >> (8 * i) & 0xFF;
        }
    constexpr std::uint32_t kAll = kSamples * kSamples;
    return covered * 255 / kAll << 24 | sum[2] / kAll << 16 | sum[1] / kAll << 8 | sum[0] / kAll;
}

void DrawLarge(HDC dc, int side, const TreePalette& colours) {
    const RECT all = {0, 0, side * kTreePictures, side};
    SetDCBrushColor(dc, kNothing);
    FillRect(dc, &all, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
    SelectObject(dc, GetStockObject(DC_BRUSH));
    SelectObject(dc, GetStockObject(DC_PEN));
    for (int i = 0; i < kTreePictures; ++i) DrawPicture({dc, i * side, side}, static_cast<TreePicture>(i), colours);
    GdiFlush();
}

}  // namespace

HIMAGELIST TreeIconsCreate(int dpi, const ThemeChrome& chrome) {
    const int side = ScaledTo(16, dpi);
    const int width = side * kTreePictures;
    std::uint32_t* large = nullptr;
    std::uint32_t* small = nullptr;
    const UniqueBitmap drawn = PixelsNew(width * kSamples, side * kSamples, &large);
    const UniqueBitmap shown = PixelsNew(width, side, &small);
    const UniqueMemoryDc dc{CreateCompatibleDC(nullptr)};
    const HIMAGELIST list = ImageList_Create(side, side, ILC_COLOR32, kTreePictures, 0);
    if (!drawn || !shown || !dc || list == nullptr) return list;
    const HGDIOBJ before = SelectObject(dc.Get(), drawn.Get());
    DrawLarge(dc.Get(), side * kSamples, PaletteOf(chrome, ThemeIsDark()));
    SelectObject(dc.Get(), before);
    const auto stride = static_cast<std::size_t>(width) * kSamples;
    for (std::size_t y = 0; y < static_cast<std::size_t>(side); ++y)
        for (std::size_t x = 0; x < static_cast<std::size_t>(width); ++x)
            small[y * static_cast<std::size_t>(width) + x] =
                PixelOf(large + y * kSamples * stride + x * kSamples, stride);
    // A picture of which nothing is opaque would be drawn black, so the empty one has a spot that cannot be seen.
    small[static_cast<std::size_t>(TreePicture::None) * static_cast<std::size_t>(side)] = 0x01000000;
    ImageList_Add(list, shown.Get(), nullptr);
    return list;
}
