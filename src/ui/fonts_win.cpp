#include "ui/fonts.h"

#include "base/bounded_text.h"
#include "base/handles.h"
#include "settings/settings_state.h"
#include "ui/dpi.h"

#include <algorithm>
#include <map>
#include <utility>

namespace {

struct UiFonts {
    UniqueFont text, bold, fixed, stock;
    UiFontSizes sizes;
};
constexpr int kStockFontPoints = 8;  // its height may be that of another DPI
constexpr wchar_t kFixedFace[] = L"Consolas";
std::map<int, UiFonts> g_fonts;     // by the DPI
std::map<int, UiFonts> g_oldFonts;  // windows may still use them

HFONT MakeBoldFont() {
    LOGFONTW description = {};
    GetObjectW(UiFont(), sizeof(description), &description);
    description.lfWeight = FW_BOLD;
    return CreateFontIndirectW(&description);
}

HFONT MakeFixedFont() {
    return CreateFontW(UiFontHeight(g_settings.outputFontSize), 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE,
                       DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY,
                       FIXED_PITCH | FF_MODERN, g_settings.outputFont);
}

HFONT MakeStockFont() {
    LOGFONTW description = {};
    GetObjectW(GetStockObject(DEFAULT_GUI_FONT), sizeof(description), &description);
    description.lfHeight = UiFontHeight(kStockFontPoints);
    return CreateFontIndirectW(&description);
}

void MeasureFont(HDC dc, HFONT font, int* width, int* height) {
    constexpr wchar_t kSample[] = L"0123456789ABCDEF";
    constexpr int kSampleLength = 16;
    const HGDIOBJ old = SelectObject(dc, font);
    SIZE size = {};
    TEXTMETRICW metrics = {};
    GetTextExtentPoint32W(dc, kSample, kSampleLength, &size);
    GetTextMetricsW(dc, &metrics);
    SelectObject(dc, old);
    *width = std::max<int>((size.cx + kSampleLength - 1) / kSampleLength, 1);
    *height = std::max<int>(metrics.tmHeight, 1);
}

UiFonts& Fonts() {
    UiFonts& fonts = g_fonts[g_ui.dpi];
    if (fonts.text && fonts.fixed) return fonts;
    fonts.text.Reset(UiMakeTextFont(g_ui.dpi));
    fonts.fixed.Reset(MakeFixedFont());
    UiFontSizes& sizes = fonts.sizes;
    const HDC dc = GetDC(nullptr);
    MeasureFont(dc, fonts.text.Get(), &sizes.textWidth, &sizes.textHeight);
    MeasureFont(dc, fonts.fixed.Get(), &sizes.fixedWidth, &sizes.fixedHeight);
    ReleaseDC(nullptr, dc);
    return fonts;
}

}  // namespace

HFONT UiFont() { return Fonts().text.Get(); }

HFONT UiBoldFont() {
    UniqueFont& bold = Fonts().bold;
    if (!bold) bold.Reset(MakeBoldFont());
    return bold.Get();
}

HFONT UiFixedFont() { return Fonts().fixed.Get(); }

HFONT UiStockFont() {
    UniqueFont& stock = Fonts().stock;
    if (!stock) stock.Reset(MakeStockFont());
    return stock.Get();
}

const UiFontSizes& UiSizes() { return Fonts().sizes; }

HFONT UiMakeTextFont(int dpi) {
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof(metrics);
    SystemParametersInfoForDpi(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0, static_cast<UINT>(dpi));
    return CreateFontIndirectW(&metrics.lfMessageFont);
}

int UiTextHeightOf(HFONT font) {
    int width = 0, height = 0;
    const HDC dc = GetDC(nullptr);
    MeasureFont(dc, font, &width, &height);
    ReleaseDC(nullptr, dc);
    return height;
}

std::wstring UiFixedFace(const wchar_t* wanted) {
    LOGFONTW description = {};
    description.lfCharSet = DEFAULT_CHARSET;
    SafeCopyW(description.lfFaceName, wanted);
    const UniqueFont font{CreateFontIndirectW(&description)};
    TEXTMETRICW metrics = {};
    const HDC dc = GetDC(nullptr);
    const HGDIOBJ old = SelectObject(dc, font.Get());
    GetTextMetricsW(dc, &metrics);
    SelectObject(dc, old);
    ReleaseDC(nullptr, dc);
    return (metrics.tmPitchAndFamily & TMPF_FIXED_PITCH) == 0 ? wanted : kFixedFace;  // the bit says the opposite
}

void UiFontsRenew() {
    if (!g_fonts.empty()) g_oldFonts = std::exchange(g_fonts, {});
}

std::vector<int> UiTextWidths(std::span<const std::wstring> texts) {
    std::vector<int> widths;
    const HDC dc = GetDC(nullptr);
    const HGDIOBJ old = SelectObject(dc, UiFont());
    for (const std::wstring& text : texts) {
        SIZE size = {};
        GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
        widths.push_back(static_cast<int>(size.cx));
    }
    SelectObject(dc, old);
    ReleaseDC(nullptr, dc);
    return widths;
}

int UiTextWidth(const wchar_t* text, int length) {
    const std::wstring one(text, static_cast<std::size_t>(length));
    return UiTextWidths({&one, 1}).front();
}
