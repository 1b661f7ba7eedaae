#include "ui/style_chrome.h"

#include <initializer_list>

namespace {

constexpr Rgb kBlack = 0x000000;

// Each step goes further in the same direction, because all backgrounds are dark or all are light.
Rgb ReadableOnEach(Rgb colour, std::initializer_list<Rgb> backs) {
    for (const Rgb back : backs) colour = ThemeReadableOn(colour, back);
    return colour;
}

}  // namespace

ChromePalette ChromeOfStyle(const EditorPalette& page, Rgb accent, const ChromePalette& usual, bool dark) {
    const Rgb text = page.text[static_cast<int>(TextRole::Text)];
    const Rgb shade = dark ? ThemeBlend(kBlack, page.margin, 0x38) : ThemeBlend(text, page.margin, 0x07);
    ChromePalette chrome = usual;
    chrome.windowBack = chrome.tabBack = ThemeBlend(accent, shade, 0x0A);
    chrome.statusBack = ThemeBlend(accent, shade, dark ? 0x1A : 0x0E);
    chrome.paneBack = ThemeBlend(chrome.windowBack, page.back, dark ? 0x60 : 0x40);
    chrome.line = ThemeBlend(text, chrome.windowBack, 0x2C);
    chrome.hover = ThemeBlend(text, chrome.windowBack, dark ? 0x18 : 0x10);
    chrome.selected = ThemeBlend(accent, chrome.paneBack, dark ? 0x30 : 0x1E);

    const auto readable = [&](Rgb colour) {
        return ReadableOnEach(
            colour, {page.back, chrome.paneBack, chrome.windowBack, chrome.statusBack, chrome.hover, chrome.selected});
    };
    chrome.accent = readable(accent);
    chrome.error = readable(usual.error);
    // As pale as can be, because it also tints the new lines of a replacement.
    chrome.success = ReadableOnEach(usual.success, {chrome.paneBack, chrome.selected, chrome.windowBack});
    chrome.modified = ThemeReadableOn(usual.modified, chrome.tabBack);
    chrome.quiet = readable(ThemeBlend(text, chrome.paneBack, 0xA8));
    chrome.tabText = readable(ThemeBlend(text, chrome.tabBack, 0xB8));
    chrome.tabActiveText = readable(text);
    chrome.statusText = readable(ThemeBlend(text, chrome.statusBack, 0xD8));
    // Text stands also on the marks of what was found, replaced and put in its place in the selected row.
    chrome.paneText = ReadableOnEach(readable(text), {ThemeBlend(chrome.modified, chrome.selected, 77),
                                                      ThemeBlend(chrome.error, chrome.selected, 64),
                                                      ThemeBlend(chrome.success, chrome.selected, 64)});
    return chrome;
}
