// The colours of the frame and the editors, by the theme and style in the settings and by the system's high-contrast
// mode. UI thread only.
#include "ui/chrome.h"

#include "settings/settings_state.h"

#include <optional>

namespace {

constexpr int kThemeDark = 1;
constexpr int kOwnStyle = 0;

struct {
    bool assumed = false;            // the mode, whatever the system says
    std::optional<SystemLook> look;  // no value: the system was not asked yet
    // The colours of the high-contrast mode.
    ChromePalette chrome;
    EditorPalette palette;
    const EditorPalette* style = nullptr;  // of which `palette` was made; null: of none
} g_system;

const SystemLook& System() {
    if (!g_system.look) ThemeUseSystem(ThemeReadSystem());
    return *g_system.look;
}

Rgb RgbOfSystem(int index) {
    const COLORREF colour = GetSysColor(index);
    return static_cast<Rgb>(GetRValue(colour)) << 16 | static_cast<Rgb>(GetGValue(colour)) << 8 | GetBValue(colour);
}

}  // namespace

SystemLook ThemeReadSystem() {
    HIGHCONTRASTW contrast = {};
    contrast.cbSize = sizeof(contrast);
    const bool on = SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof(contrast), &contrast, 0) != FALSE &&
                    (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
    return {.highContrast = on || g_system.assumed,
            .colours = {.window = RgbOfSystem(COLOR_WINDOW),
                        .windowText = RgbOfSystem(COLOR_WINDOWTEXT),
                        .face = RgbOfSystem(COLOR_BTNFACE),
                        .faceText = RgbOfSystem(COLOR_BTNTEXT),
                        .highlight = RgbOfSystem(COLOR_HIGHLIGHT),
                        .highlightText = RgbOfSystem(COLOR_HIGHLIGHTTEXT),
                        .greyText = RgbOfSystem(COLOR_GRAYTEXT)}};
}

void ThemeUseSystem(const SystemLook& look) {
    g_system.look = look;
    g_system.chrome = HighContrastChrome(look.colours);
    g_system.style = nullptr;
}

void ThemeAssumeHighContrast() { g_system.assumed = true; }

const SystemLook& ThemeUsedSystem() { return System(); }

bool SystemHighContrast() { return System().highContrast; }

bool ThemeChosenDark() { return g_settings.theme == kThemeDark; }

bool ThemeIsDark() { return SystemHighContrast() ? HighContrastIsDark(System().colours) : ThemeChosenDark(); }

bool ThemeIsOwnStyle() { return g_settings.editorStylePreset == kOwnStyle; }

bool ThemeDrawsControls() { return !SystemHighContrast() && (ThemeChosenDark() || !ThemeIsOwnStyle()); }

bool ThemeDrawsDark() { return ThemeDrawsControls() && ThemeChosenDark(); }

const EditorPalette& ThemeCurrentPalette() {
    const EditorPalette& style = ThemePalette(g_settings.editorStylePreset, ThemeIsDark());
    if (!SystemHighContrast()) return style;
    if (g_system.style != &style) {
        g_system.style = &style;
        g_system.palette = HighContrastPalette(System().colours, style);
    }
    return g_system.palette;
}

const ChromePalette& ThemeCurrentChromePalette() {
    return SystemHighContrast() ? g_system.chrome : ThemeChromePalette(g_settings.editorStylePreset, ThemeIsDark());
}

const ThemeChrome& ThemeCurrentChrome() {
    static ThemeChrome chrome;
    const ChromePalette& palette = ThemeCurrentChromePalette();
    chrome = {.windowBack = ThemeColorRef(palette.windowBack),
              .paneBack = ThemeColorRef(palette.paneBack),
              .paneText = ThemeColorRef(palette.paneText),
              .tabBack = ThemeColorRef(palette.tabBack),
              // The active tab has the background of its editor.
              .tabActiveBack = ThemeColorRef(ThemeCurrentPalette().back),
              .tabText = ThemeColorRef(palette.tabText),
              .tabActiveText = ThemeColorRef(palette.tabActiveText),
              .accent = ThemeColorRef(palette.accent),
              .line = ThemeColorRef(palette.line),
              .statusBack = ThemeColorRef(palette.statusBack),
              .statusText = ThemeColorRef(palette.statusText),
              .hover = ThemeColorRef(palette.hover),
              .selected = ThemeColorRef(palette.selected),
              .quiet = ThemeColorRef(palette.quiet),
              .error = ThemeColorRef(palette.error),
              .modified = ThemeColorRef(palette.modified),
              .success = ThemeColorRef(palette.success)};
    return chrome;
}

bool OutputIsReadable() { return ThemeIsDark() || g_settings.readableOutput != 0 || SystemHighContrast(); }

COLORREF ThemeQuietText() { return ThemeCurrentChrome().quiet; }

COLORREF ThemeSelectedBack(bool focused) {
    if (!focused) return ThemeCurrentChrome().hover;
    return SystemHighContrast() ? ThemeColorRef(System().colours.highlight) : ThemeCurrentChrome().selected;
}

COLORREF ThemeInkOn(COLORREF ground, COLORREF usual) {
    const bool selected = SystemHighContrast() && ground == ThemeColorRef(System().colours.highlight);
    return selected ? ThemeColorRef(System().colours.highlightText) : usual;
}
