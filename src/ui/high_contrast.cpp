#include "ui/high_contrast.h"

#include <algorithm>
#include <initializer_list>

namespace {

constexpr double kAmple = 7.0;  // the contrast that WCAG asks of text for people who see little

// The strongest tint of `back` by `tint` on which `text` keeps an ample contrast.
Rgb Tinted(Rgb back, Rgb tint, Rgb text, int strongest = 0x20) {
    constexpr int kStep = 8;
    for (int alpha = strongest; alpha > 0; alpha -= kStep) {
        const Rgb tinted = ThemeBlend(tint, back, alpha);
        if (ThemeContrast(text, tinted) >= kAmple) return tinted;
    }
    return back;
}

// `colour` when it can be read on all of these, else `otherwise`.
Rgb ReadableOnAll(Rgb colour, std::initializer_list<Rgb> backs, Rgb otherwise) {
    const auto readable = [colour](Rgb back) { return ThemeContrast(colour, back) >= kReadableContrast; };
    return std::ranges::all_of(backs, readable) ? colour : otherwise;
}

}  // namespace

bool HighContrastIsDark(const SystemColours& colours) {
    return ThemeContrast(colours.window, 0xFFFFFF) > ThemeContrast(colours.window, 0x000000);
}

ChromePalette HighContrastChrome(const SystemColours& colours) {
    const ChromePalette& usual = ThemeChromePalette(0, HighContrastIsDark(colours));
    const Rgb hover = Tinted(colours.face, colours.faceText, colours.faceText);
    const Rgb selected = Tinted(colours.window, colours.highlight, colours.windowText);
    const auto mark = [&](Rgb colour) {
        return ReadableOnAll(colour, {colours.window, colours.face, hover, selected}, colours.windowText);
    };
    return {.windowBack = colours.face,
            .paneBack = colours.window,
            .paneText = colours.windowText,
            .tabBack = colours.face,
            .tabText = colours.faceText,
            .tabActiveText = colours.windowText,
            .accent = mark(colours.highlight),
            .line = colours.windowText,
            .statusBack = colours.face,
            .statusText = colours.faceText,
            .hover = hover,
            .selected = selected,
            .quiet = colours.windowText,
            .error = mark(usual.error),
            .modified = mark(usual.modified),
            .success = mark(usual.success),
            .stopLine = usual.stopLine};
}

EditorPalette HighContrastPalette(const SystemColours& colours, const EditorPalette& style) {
    const Rgb tinted = Tinted(colours.window, colours.highlight, colours.windowText);
    EditorPalette palette = style;
    palette.back = palette.margin = colours.window;
    palette.lineNumber = palette.guide = colours.windowText;
    palette.caretLine = Tinted(colours.window, colours.windowText, colours.windowText, 0x18);
    palette.selection = colours.highlight;
    palette.selectionText = colours.highlightText;
    palette.braceBack = palette.errorBack = tinted;
    const ChromePalette chrome = HighContrastChrome(colours);
    const Rgb stop = ThemeBlend(chrome.stopLine, palette.caretLine, ThemeStopLineAlpha(HighContrastIsDark(colours)));
    const Rgb added = ThemeBlend(chrome.success, palette.caretLine, kNewLineAlpha);
    for (Rgb& text : palette.text) {
        const bool ample = ThemeContrast(text, colours.window) >= kAmple;
        text = ample ? ReadableOnAll(text, {palette.caretLine, tinted, stop, added}, colours.windowText)
                     : colours.windowText;
    }
    return palette;
}
