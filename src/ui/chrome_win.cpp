// The colours of the frame, by the theme and style in the settings. UI thread only.
#include "ui/chrome.h"

#include "settings/settings_state.h"
#include "ui/paint.h"
#include "ui/theme_table.h"

namespace {

constexpr int kThemeDark = 1;

}  // namespace

bool ThemeIsDark() { return g_settings.theme == kThemeDark; }

const ThemeChrome& ThemeCurrentChrome() {
    static ThemeChrome chrome;
    const ChromePalette& palette = ThemeChromePalette(ThemeIsDark());
    chrome = {.windowBack = ThemeColorRef(palette.windowBack),
              .paneBack = ThemeColorRef(palette.paneBack),
              .paneText = ThemeColorRef(palette.paneText),
              .tabBack = ThemeColorRef(palette.tabBack),
              .tabActiveBack = ThemeColorRef(ThemePalette(g_settings.editorStylePreset, ThemeIsDark())
                                                 .back),  // the active tab has the background of its editor
              .tabText = ThemeColorRef(palette.tabText),
              .tabActiveText = ThemeColorRef(palette.tabActiveText),
              .accent = ThemeColorRef(palette.accent),
              .line = ThemeColorRef(palette.line),
              .statusBack = ThemeColorRef(palette.statusBack),
              .statusText = ThemeColorRef(palette.statusText),
              .hover = ThemeColorRef(palette.hover),
              .error = ThemeColorRef(palette.error),
              .modified = ThemeColorRef(palette.modified),
              .success = ThemeColorRef(palette.success)};
    return chrome;
}

bool SystemHighContrast() {
    HIGHCONTRASTW contrast = {};
    contrast.cbSize = sizeof(contrast);
    return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof(contrast), &contrast, 0) != FALSE &&
           (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

bool OutputIsReadable() { return ThemeIsDark() || g_settings.readableOutput != 0 || SystemHighContrast(); }

COLORREF ThemeQuietText() {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    return MixColours(chrome.paneText, chrome.paneBack, 38);
}
