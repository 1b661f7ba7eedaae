#include "ui/fonts.h"

#include "ui/ui_state.h"

static HFONT g_uiFont = nullptr;

HFONT UiFont() {
    if (g_uiFont == nullptr) {
        NONCLIENTMETRICSW metrics = {};
        metrics.cbSize = sizeof(metrics);
        SystemParametersInfoForDpi(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0, static_cast<UINT>(g_ui.dpi));
        g_uiFont = CreateFontIndirectW(&metrics.lfMessageFont);
    }
    return g_uiFont;
}

void UiFontReset() {
    if (g_uiFont != nullptr) DeleteObject(g_uiFont);
    g_uiFont = nullptr;
}

void FillArea(HDC dc, const RECT& area, COLORREF colour) {
    SetDCBrushColor(dc, colour);
    FillRect(dc, &area, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}
