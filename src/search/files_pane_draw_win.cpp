// Draws the rows of the results: a file with the number of its hits, a hit with its line and the match marked, and what
// a replacement would put there. UI thread only.
#include "search/files_pane.h"

#include "base/utf8.h"
#include "search/files_internal.h"
#include "ui/chrome.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/list_view.h"
#include "ui/paint.h"

#include <algorithm>

namespace {

constexpr int kIndent = 14, kBox = 20;  // at 96 dpi
constexpr std::size_t kLineDigits = 6;  // room for the number of a line

struct RowPaint {
    HDC dc;
    RECT area;
    COLORREF back;
};

// Draws a piece of text and moves the left edge behind it.
void DrawPiece(RowPaint& row, std::wstring_view text, COLORREF colour) {
    if (text.empty() || row.area.left >= row.area.right) return;
    SIZE size = {};
    GetTextExtentPoint32W(row.dc, text.data(), static_cast<int>(text.size()), &size);
    SetTextColor(row.dc, ThemeInkOn(row.back, colour));
    DrawTextW(row.dc, text.data(), static_cast<int>(text.size()), &row.area, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
    row.area.left += size.cx;
}

void DrawMarked(RowPaint& row, std::wstring_view text, COLORREF back, COLORREF colour, bool struckOut) {
    if (text.empty()) return;
    SIZE size = {};
    GetTextExtentPoint32W(row.dc, text.data(), static_cast<int>(text.size()), &size);
    const int middle = (row.area.top + row.area.bottom) / 2;
    const RECT mark = {row.area.left, row.area.top + UiScaled(1), std::min(row.area.left + size.cx, row.area.right),
                       row.area.bottom - UiScaled(1)};
    if (mark.left >= mark.right) return;
    const COLORREF ink = ThemeInkOn(row.back, colour);
    // A tint of the selection of the high-contrast mode would not suit its text.
    if (ink == colour)
        FillArea(row.dc, mark, back);
    else
        FrameArea(row.dc, mark, ink);
    DrawPiece(row, text, colour);
    if (struckOut) FillArea(row.dc, {mark.left, middle, mark.right, middle + std::max(UiScaled(1), 1)}, ink);
}

void DrawTickBox(HDC dc, int left, int middle, bool ticked, bool partly, COLORREF colour) {
    const int half = UiScaled(6);
    const RECT box = {left, middle - half, left + 2 * half + 1, middle + half + 1};
    FrameArea(dc, box, colour);
    const POINT tick[] = {{box.left + UiScaled(3), middle},
                          {box.left + UiScaled(5), middle + UiScaled(3)},
                          {box.right - UiScaled(3), middle - UiScaled(3)}};
    if (ticked)
        DrawPolyline(dc, tick, colour, std::max(UiScaled(2), 1));
    else if (partly)
        FillArea(dc, {box.left + UiScaled(3), middle, box.right - UiScaled(3), middle + UiScaled(2)}, colour);
}

void DrawFileRow(RowPaint row, const ResultFile& file, const FilesRowPlaces& places) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const COLORREF ink = ThemeInkOn(row.back, chrome.paneText);
    const int middle = (row.area.top + row.area.bottom) / 2;
    const int left = row.area.left + UiScaled(6), arm = UiScaled(4);
    if (file.folded)
        DrawTriangle(row.dc, {{left, middle - arm}, {left, middle + arm}, {left + arm, middle}}, ink);
    else
        DrawTriangle(row.dc,
                     {{left - 1, middle - 2}, {left + 2 * arm - 1, middle - 2}, {left + arm - 1, middle + arm - 2}},
                     ink);
    const auto ticked = static_cast<std::size_t>(std::ranges::count(file.ticked, true));
    const auto open =
        file.hits.size() - static_cast<std::size_t>(std::ranges::count(file.hits, true, &FileHit::replaced));
    if (places.tick < places.text && open > 0)
        DrawTickBox(row.dc, places.tick, middle, ticked == open, ticked > 0, ink);
    row.area.left = places.text;
    SelectObject(row.dc, UiFont());
    const std::size_t slash = file.label.rfind(L'\\') + 1;  // npos + 1 is 0
    DrawPiece(row, std::wstring_view{file.label}.substr(slash), chrome.paneText);
    if (slash > 0) DrawPiece(row, L"   " + file.label.substr(0, slash - 1), ThemeQuietText());
    DrawPiece(row, L"   " + std::to_wstring(file.hits.size()), chrome.accent);
}

// What a replacement puts there.
std::wstring PreviewOf(const FileHit& hit) {
    std::wstring text =
        g_files.options.regex || g_files.options.preserveCase ? Utf8ToWideText(hit.preview) : g_files.options.with;
    std::ranges::replace_if(
        text, [](wchar_t c) { return c < L' '; }, L' ');
    return text;
}

// The text before a match, without its beginning where the match would be out of sight.
std::wstring BeforeInSight(std::wstring before, std::size_t match, const RECT& area) {
    const auto room = static_cast<std::size_t>(std::max<LONG>(area.right - area.left, 0) / UiSizes().fixedWidth);
    const std::size_t kept = room / 3;
    if (before.size() + match <= room || before.size() <= kept) return before;
    return L"\u2026" + before.substr(before.size() - kept);
}

void DrawHitRow(RowPaint row, const ResultFile& file, std::size_t index, const FilesRowPlaces& places) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    bool gone = false;
    const FileHit hit = FilesHitNow(file, index, &gone);
    if (places.tick < places.text && !hit.replaced)
        DrawTickBox(row.dc, places.tick, (row.area.top + row.area.bottom) / 2, file.ticked[index], false,
                    ThemeInkOn(row.back, ThemeQuietText()));
    SelectObject(row.dc, UiFixedFont());
    std::wstring number = std::to_wstring(hit.line + 1);
    number.insert(0, kLineDigits - std::min(number.size(), kLineDigits), L' ');
    row.area.left = places.text;
    DrawPiece(row, number + L"  ", ThemeQuietText());
    const std::string_view shown = hit.shown;
    const COLORREF plain = gone ? ThemeQuietText() : chrome.paneText;
    const std::wstring match = Utf8ToWideText(shown.substr(hit.markStart, hit.markLength));
    DrawPiece(row, BeforeInSight(Utf8ToWideText(shown.substr(0, hit.markStart)), match.size(), row.area), plain);
    if (gone) {
        DrawPiece(row, match, plain);
    } else if (g_files.options.replacing && file.ticked[index]) {
        DrawMarked(row, match, MixColours(row.back, chrome.error, 25), chrome.paneText, true);
        DrawMarked(row, PreviewOf(hit), MixColours(row.back, chrome.success, 25), chrome.paneText, false);
    } else {
        DrawMarked(row, match, MixColours(row.back, hit.replaced ? chrome.success : chrome.modified, 30),
                   chrome.paneText, false);
    }
    DrawPiece(row, Utf8ToWideText(shown.substr(hit.markStart + hit.markLength)), plain);
}

void DrawResultRow(HDC dc, int index) {
    if (index < 0 || static_cast<std::size_t>(index) >= g_files.results.RowCount()) return;
    RECT bounds = {.left = LVIR_BOUNDS};
    SendMessageW(g_filesPane.list, LVM_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&bounds));
    RECT client = {};
    GetClientRect(g_filesPane.list, &client);
    bounds.right = client.right;
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const bool selected =
        SendMessageW(g_filesPane.list, LVM_GETITEMSTATE, static_cast<WPARAM>(index), LVIS_SELECTED) != 0;
    const bool focused = GetFocus() == g_filesPane.list;
    const COLORREF back = selected ? ThemeSelectedBack(focused) : chrome.paneBack;
    ListRowFill(dc, bounds, back, selected, focused);
    SetBkMode(dc, TRANSPARENT);
    const HGDIOBJ oldFont = GetCurrentObject(dc, OBJ_FONT);
    const ResultRow row = g_files.results.RowAt(static_cast<std::size_t>(index));
    const ResultFile& file = g_files.results.files[row.file];
    if (row.hit)
        DrawHitRow({dc, bounds, back}, file, *row.hit, FilesRowPlacesOf(row));
    else
        DrawFileRow({dc, bounds, back}, file, FilesRowPlacesOf(row));
    SelectObject(dc, oldFont);
}

}  // namespace

FilesRowPlaces FilesRowPlacesOf(ResultRow row) {
    const int tick = UiScaled(row.hit ? 2 * kIndent - 8 : kIndent + 6);
    return {tick, tick + (g_files.options.replacing ? UiScaled(kBox) : 0)};
}

std::wstring FilesRowText(ResultRow row) {
    const ResultFile& file = g_files.results.files[row.file];
    if (!row.hit) return file.label + L" (" + std::to_wstring(file.hits.size()) + L")";
    bool gone = false;
    const FileHit hit = FilesHitNow(file, *row.hit, &gone);
    return std::to_wstring(hit.line + 1) + L": " + Utf8ToWideText(hit.shown);
}

LRESULT FilesDrawItem(const NMLVCUSTOMDRAW& draw) {
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
    if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT) return CDRF_DODEFAULT;
    DrawResultRow(draw.nmcd.hdc, static_cast<int>(draw.nmcd.dwItemSpec));
    return CDRF_SKIPDEFAULT;
}
