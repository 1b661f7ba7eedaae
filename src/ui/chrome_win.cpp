// The frame's colours by the theme and style in force. UI thread.
#include "ui/chrome.h"

#include "settings/settings_state.h"
#include "ui/theme_table.h"

namespace {

constexpr int kThemeDark = 1;

COLORREF Ref(Rgb rgb) { return ThemeColorRef(rgb); }

}  // namespace

bool ThemeIsDark() { return g_settings.theme == kThemeDark; }

const ThemeChrome& ThemeCurrentChrome() {
    static ThemeChrome chrome;
    const ChromePalette& palette = ThemeChromePalette(ThemeIsDark());
    chrome = {.windowBack = Ref(palette.windowBack),
              .paneBack = Ref(palette.paneBack),
              .paneText = Ref(palette.paneText),
              .tabBack = Ref(palette.tabBack),
              .tabActiveBack = Ref(ThemePalette(g_settings.editorStylePreset, ThemeIsDark())
                                       .back),  // the active tab and its editor are one surface
              .tabText = Ref(palette.tabText),
              .tabActiveText = Ref(palette.tabActiveText),
              .accent = Ref(palette.accent),
              .line = Ref(palette.line),
              .statusBack = Ref(palette.statusBack),
              .statusText = Ref(palette.statusText),
              .hover = Ref(palette.hover),
              .error = Ref(palette.error),
              .modified = Ref(palette.modified),
              .success = Ref(palette.success)};
    return chrome;
}
